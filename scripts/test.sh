#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test; then builds again
# with AddressSanitizer and UndefinedBehaviorSanitizer and runs them there.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh

scripts/build.sh build -DKESTRELINK_BUILD_TESTS=ON -DKESTRELINK_BUILD_TOOLS=ON
(cd build && ctest --output-on-failure -j2)

BUILD_TYPE=RelWithDebInfo scripts/build.sh build-sanitize -DKESTRELINK_SANITIZE=ON
(cd build-sanitize && ASAN_OPTIONS=detect_leaks=1 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j2)
