#!/bin/bash
# Installs what is missing, builds the benchmarks in release and measures purchase orders of each size, then the parts
# and the values.
# usage: bench.sh [--sizes "4K 1M 10M 100M"] [OPTIONS OF BENCH_ORDERS...]
. "$(dirname "$0")/common.sh"

sizes="4K 1M 10M 100M"
if [[ ${1:-} == --sizes ]]; then
    sizes=$2
    shift 2
fi
scripts/install-deps.sh build bench >&2
BUILD_ARGS=(--target make_orders bench_orders bench_values bench_parts)
build_preset bench >&2
for size in $sizes; do
    file=build/bench/orders-$size.xml
    [[ -f $file ]] || build/bench/bench/make_orders "$size" > "$file"
    build/bench/bench/bench_orders "$file" "$@"
    echo
done
build/bench/bench/bench_parts
build/bench/bench/bench_values || echo "some figures of the values are missed" >&2
