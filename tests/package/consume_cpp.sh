#!/bin/bash
# consume_cpp.sh PREFIX LIBDIR CMAKE TOOLCHAIN CXX RUN: builds and runs a host in C++20 that finds the package.
set -euo pipefail

prefix=$1 libdir=$2 cmake=$3 toolchain=$4 cxx=$5 run=$6
source=$(dirname "$0")/consumer
work=$prefix.cpp
rm -rf "$work"

compiler=("-DCMAKE_CXX_COMPILER=$cxx")
[[ -z $toolchain ]] || compiler=("-DCMAKE_TOOLCHAIN_FILE=$toolchain")
"$cmake" -G Ninja -S "$source" -B "$work" "${compiler[@]}" "-DVelaCPUBase_DIR=$prefix/$libdir/cmake/VelaCPUBase" >/dev/null
"$cmake" --build "$work" >/dev/null
program=$work/host
[[ -e $program ]] || program=$work/host.exe
# Into a file, as a Wine server that this starts would hold a pipe open.
LD_LIBRARY_PATH=$prefix/$libdir WINEPATH=$prefix/bin "$run" "$program" >"$work/output" 2>&1 ||
    { cat "$work/output"; exit 1; }
cat "$work/output"
grep -q 'processor level [1-7]' "$work/output"
