#!/bin/bash
# consume_c.sh PREFIX LIBDIR CC RUN: builds and runs a host in C11 with nothing but pkg-config and the compiler.
set -euo pipefail

prefix=$1 libdir=$2 cc=$3 run=$4
source=$(dirname "$0")/consumer/host.c
work=$prefix.c
rm -rf "$work"
mkdir -p "$work"

export PKG_CONFIG_LIBDIR=$prefix/$libdir/pkgconfig
read -ra flags <<<"$(pkg-config --cflags --libs velacpubase)"
"$cc" -std=c11 -Wall -Wextra -Wpedantic -Werror "$source" -o "$work/host.exe" "${flags[@]}"
# Into a file: a first Wine server would hold a pipe open.
LD_LIBRARY_PATH=$prefix/$libdir WINEPATH=$prefix/bin "$run" "$work/host.exe" >"$work/output"
cat "$work/output"
cat "$work/output"
grep -q 'processor level [1-7]' "$work/output"
