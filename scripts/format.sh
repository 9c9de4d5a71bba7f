#!/bin/bash
# Tells which C++ files do not have the form of .clang-format; with --fix it rewrites them.
. "$(dirname "$0")/common.sh"

mode=(--dry-run --Werror)
[[ ${1:-} != --fix ]] || mode=(-i)
git ls-files -co --exclude-standard '*.h' '*.cpp' | xargs clang-format "${mode[@]}"
