#!/bin/bash
# headers.sh INCLUDE CC CXX: every installed public header compiles alone, as C11 and as C++20.
set -euo pipefail

include=$1 cc=$2 cxx=$3
flags=(-fsyntax-only -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror "-I$include")
cd "$include"
headers=(vela/*.h)
[[ ${#headers[@]} -ge 13 && -f vela/vela.hpp ]] || { echo "headers are missing in $include"; exit 1; }

failed=0
for header in "${headers[@]}"; do
    printf '#include <%s>\nint notEmpty;\n' "$header" | "$cc" -x c -std=c11 "${flags[@]}" - || { echo "$header: not C11"; failed=1; }
done
for header in "${headers[@]}" vela/vela.hpp; do
    printf '#include <%s>\n' "$header" | "$cxx" -x c++ -std=c++20 "${flags[@]}" - || { echo "$header: not C++20"; failed=1; }
done
exit $failed
