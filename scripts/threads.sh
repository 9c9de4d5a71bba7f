#!/bin/bash
# Runs all tests, among them that of eight threads over shared tables and options, under the thread sanitizer.
. "$(dirname "$0")/common.sh"

scripts/install-deps.sh build test ci
build_preset threads
log=build/threads/tests.log
ctest --preset threads -j2 > "$log" 2>&1 || { grep -E -A20 'WARNING: ThreadSanitizer|Failed' "$log" | head -100; }
grep -E 'tests passed|tests failed' "$log"
reports=$(grep -c 'WARNING: ThreadSanitizer' "$log" || true)
echo "threads.sh: $reports reports"
[[ $reports -eq 0 ]]
