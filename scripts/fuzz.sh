#!/bin/bash
# Builds the fuzz targets and runs each from its seeds in fuzz/corpus; what is found stays in build/fuzz/found.
# usage: fuzz.sh [SECONDS EACH]      0, the default, runs the seeds alone
. "$(dirname "$0")/common.sh"

seconds=${1:-0}
scripts/install-deps.sh build ci
build_preset fuzz > build/fuzz.log 2>&1 || { tail -50 build/fuzz.log; exit 1; }
declare -A corpora=([fi_load]=fi [json_load]=json)
for target in element_forms fi_load inflate json_load orders pattern values; do
    seeds=fuzz/corpus/${corpora[$target]:-$target}
    found=build/fuzz/found/$target
    mkdir -p "$found"
    mode=(-runs=0 "$seeds")
    [[ $seconds -eq 0 ]] || mode=("-max_total_time=$seconds" "$found" "$seeds")
    log=build/fuzz/$target.log
    build/fuzz/fuzz/"$target" -artifact_prefix="$found/" -timeout=20 "${mode[@]}" > "$log" 2>&1 ||
        { tail -60 "$log"; echo "fuzz.sh: $target fails" >&2; exit 1; }
    echo "fuzz.sh: $target $(grep -E '^Done|DONE' "$log" | tail -1)"
done
