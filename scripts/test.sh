#!/bin/bash
# Installs what is missing, builds everything in release and runs all tests.
# usage: test.sh [ARGUMENTS OF CTEST...]
. "$(dirname "$0")/common.sh"

scripts/install-deps.sh build test generator
use_comma_locale
build_preset release -DQZXMLLIB_BUILD_TESTS=ON -DQZXMLLIB_BUILD_GENERATOR=ON -DQZXMLLIB_BUILD_BENCH=OFF ${QZ_CMAKE_ARGS:-}
exec ctest --test-dir build/release --output-on-failure -j2 "$@"
