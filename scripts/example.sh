#!/bin/bash
# Installs what is missing, builds the library and the GPX example in release, and runs it.
# usage: example.sh [FILE...]   without a file, on the samples of examples/gpx
. "$(dirname "$0")/common.sh"

files=()
for file in "$@"; do
    files+=("$(cd - > /dev/null; realpath -m -- "$file")")
done
scripts/install-deps.sh build >&2
BUILD_ARGS=(--target gpx)
build_preset release -DQZXMLLIB_BUILD_TESTS=OFF -DQZXMLLIB_BUILD_BENCH=OFF >&2
if [[ ${#files[@]} -eq 0 ]]; then
    mkdir -p build/release/examples/gpx/data
    python3 examples/gpx/make_track.py > build/release/examples/gpx/data/track.gpx
    files=(examples/gpx/data/all-elements.gpx build/release/examples/gpx/data/track.gpx)
fi
exec build/release/examples/gpx/gpx "${files[@]}"
