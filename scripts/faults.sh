#!/bin/bash
# Fails every single allocation of the library's operations in turn, and every call of the system by which files are
# written. The test suite does the same.
. "$(dirname "$0")/common.sh"

scripts/install-deps.sh build test
BUILD_ARGS=(--target QzFaultsTest QzDocumentTest)
build_preset release -DQZXMLLIB_BUILD_TESTS=ON
build/release/tests/faults/QzFaultsTest
build/release/tests/document/QzDocumentTest --gtest_filter='FileStreamTest.*'
