#!/bin/bash
# consume_c.sh PREFIX LIBDIR CC RUN README: builds and runs hosts in C11 with nothing but pkg-config and the compiler: a
# small one, and the one that the README shows.
set -euo pipefail

prefix=$1 libdir=$2 cc=$3 run=$4 readme=$5
work=$prefix.c
rm -rf "$work"
mkdir -p "$work"
cp "$(dirname "$0")/consumer/host.c" "$work/small.c"
awk '/^```/ { inside = $0 == "```c"; next } inside' "$readme" >"$work/readme.c"

export PKG_CONFIG_LIBDIR=$prefix/$libdir/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs velacpubase)"
for host in small readme; do
    "$cc" -std=c11 -Wall -Wextra -Wpedantic -Werror "$work/$host.c" -o "$work/$host.exe" "${flags[@]}"
    # Into a file, as a Wine server that this starts would hold a pipe open.
    LD_LIBRARY_PATH=$prefix/$libdir WINEPATH=$prefix/bin "$run" "$work/$host.exe" >"$work/$host.output" 2>&1 ||
        { cat "$work/$host.output"; exit 1; }
    cat "$work/$host.output"
    grep -q 'processor level [1-7]' "$work/$host.output"
done
grep -q 'pixel 1: 160 blurred  40 sharp 198' "$work/readme.output"
