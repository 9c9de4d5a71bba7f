#!/bin/bash
# Runs all tests with counters and prints how much of the library they reach: lines, and branches without those that
# only exceptions take.
. "$(dirname "$0")/common.sh"

scripts/install-deps.sh build test ci
build_preset coverage -DQZXMLLIB_BUILD_EXAMPLES=OFF > build/coverage.log 2>&1 || { tail -50 build/coverage.log; exit 1; }
use_comma_locale
find build/coverage -name '*.gcda' -delete
ctest --preset coverage -j2 > build/coverage/tests.log 2>&1 || { tail -50 build/coverage/tests.log; exit 1; }
gcovr --root . --filter 'qzxmllib/' --object-directory build/coverage --exclude-throw-branches \
    --exclude-unreachable-branches --print-summary --output build/coverage/table.txt
cat build/coverage/table.txt
