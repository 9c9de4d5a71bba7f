#!/bin/bash
# Makes seeded single changes to the library (a relation, off by one, a dropped statement, swapped arguments), builds
# and tests each, and lists those that no test notices.
# usage: mutants.sh [--count N] [--seed N] [--files PATTERN]     200 changes, seed 1, all sources
. "$(dirname "$0")/common.sh"

scripts/install-deps.sh build test
tree=build/mutants-source
rm -rf "$tree"
mkdir -p "$tree" build/mutants
git ls-files -z | xargs -0 cp --parents -t "$tree"
exec python3 scripts/mutants.py --source "$tree" --build build/mutants "$@"
