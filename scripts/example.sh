#!/bin/bash
# Installs what is missing, builds the library and the examples in release, and runs them.
# usage: example.sh [FILE...]        GPX files; without a file, the samples of examples/gpx, and any XML
#        example.sh --any FILE...    any XML or Fast Infoset
. "$(dirname "$0")/common.sh"

example=gpx
if [[ ${1:-} == --any ]]; then
    example=anyxml
    shift
fi
files=()
for file in "$@"; do
    files+=("$(cd - > /dev/null; realpath -m -- "$file")")
done
scripts/install-deps.sh build >&2
BUILD_ARGS=(--target gpx anyxml)
build_preset release -DQZXMLLIB_BUILD_TESTS=OFF -DQZXMLLIB_BUILD_BENCH=OFF >&2
if [[ $example == gpx && ${#files[@]} -eq 0 ]]; then
    mkdir -p build/release/examples/gpx/data
    python3 examples/gpx/make_track.py > build/release/examples/gpx/data/track.gpx
    files=(examples/gpx/data/all-elements.gpx build/release/examples/gpx/data/track.gpx)
    build/release/examples/anyxml/anyxml bench/orders.xsd
fi
exec "build/release/examples/$example/$example" "${files[@]}"
