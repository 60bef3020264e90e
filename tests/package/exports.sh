#!/bin/bash
# exports.sh LIBRARY LIST SYSTEM NAME VERSION NM OBJDUMP: the built library exports the listed symbols and nothing else,
# is called NAME, says its VERSION, and needs nothing but what every system has.
set -euo pipefail

library=$1 list=$2 system=$3 name=$4 version=$5 nm=$6 objdump=$7
failed=0

same() # WHAT EXPECTED FOUND
{
    [[ $2 == "$3" ]] && return
    echo "$1 differ (< expected, > found):"
    diff <(echo "$2") <(echo "$3") || true
    failed=1
}

headers=$("$objdump" -p "$library")
if [[ $system == Windows ]]; then
    expected=$(sed -n 's/^\([A-Za-z][A-Za-z0-9_]*\).*/\1/p' "$list" | LC_ALL=C sort)
    found=$(awk '/^\[Ordinal\/Name Pointer\] Table/ { on = 1; next } on && !NF { exit } on && /\[/ { print $NF }' \
        <<<"$headers" | LC_ALL=C sort)
    called=$(awk '/^Name / && NF == 3 { print $3; exit }' <<<"$headers")
    # The resource that Windows shows: UTF-16 text. On Linux the version is part of the file's name.
    says=$(strings -el "$library" | sed -n '/^FileVersion$/{n;p}')
    needed=$(awk '/DLL Name:/ { print $3 }' <<<"$headers")
    allowed='^(kernel32|msvcrt|shlwapi|shell32|user32|advapi32|api-ms-win-.*)\.dll$'
else
    expected=$(awk '/^[A-Za-z]/ { print $1, $2 == "DATA" ? "data" : "function" }' "$list" | LC_ALL=C sort)
    found=$("$nm" -D --defined-only "$library" |
        awk '{ print $3, $2 == "T" ? "function" : $2 ~ /[BDR]/ ? "data" : $2 }' | LC_ALL=C sort)
    says=$(basename "$(readlink -f "$library")" | sed 's/^.*\.so\.//')
    called=$(awk '$1 == "SONAME" { print $2 }' <<<"$headers")
    needed=$(awk '$1 == "NEEDED" { print $2 }' <<<"$headers")
    allowed='^(lib(stdc\+\+|gcc_s|c\+\+|c\+\+abi|unwind|c|m|pthread|dl)\.so\.[0-9]+|ld-linux-x86-64\.so\.2)$'
    must() # WHAT PATTERN
    {
        grep -Eq "$2" <<<"$headers" || { echo "$1"; failed=1; }
    }
    must "the stack is not marked as data" '^ +STACK '
    must "relocations stay writable" '^ +RELRO '
    must "symbols are bound late" '^ +FLAGS +0x0*[1-9a-f]?[89a-f]$'
    ! grep -A1 '^ *STACK ' <<<"$headers" | grep -q 'flags rwx' || { echo "the stack is executable"; failed=1; }
    ! grep -q 'TEXTREL' <<<"$headers" || { echo "text relocations"; failed=1; }
fi

[[ -n $expected ]] || { echo "empty list"; failed=1; }
same exports "$expected" "$found"
same names "$name" "$called"
same versions "$version" "$says"
foreign=$(grep -Eiv "$allowed" <<<"$needed" || true)
same "foreign libraries" "" "$foreign"
exit $failed
