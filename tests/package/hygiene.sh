#!/bin/bash
# hygiene.sh CHECK NM OBJDUMP OBJECT...: the check of tier objects passes the good ones and rejects every bad one
# for its own fault.
set -euo pipefail

check=("sh" "$1" "$2" "$3")
shift 3
declare -A fault=(
    [inline_sse2]="weak symbol|COMDAT section"
    [initialiser_sse2]="initialiser section"
    [state_sse2]="writable section"
    [global_sse2]="global symbol _Z6helperf"
    [reference_sse2]="reference to _Z9elsewheref"
    [vex_sse2]="VEX instruction"
    [fused_avx2]="fused multiply-add"
)
failed=0
seen=0
for object; do
    name=$(basename "$object")
    name=${name%%.cpp.*}
    code=0
    output=$("${check[@]}" "$object" 2>&1) || code=$?
    case $name in
    good_*) [[ $code -eq 0 && -z $output ]] ;;
    *) [[ $code -eq 1 && $output =~ ${fault[$name]} ]] ;;
    esac || {
        echo "$name: exit $code, output: $output"
        failed=1
    }
    seen=$((seen + 1))
done
[[ $seen -eq $((${#fault[@]} + 2)) ]] || { echo "$seen objects checked"; failed=1; }
# One bad object among good ones is enough, and nothing to check is an error.
! "${check[@]}" "$@" 2>/dev/null || { echo "all objects together pass"; failed=1; }
! "${check[@]}" 2>/dev/null || { echo "no object passes"; failed=1; }
exit $failed
