#!/usr/bin/env bash
# Installs what is missing, builds, and converts the built-in synthetic
# 12-bit camera frame into PNG files (kestrelink-demo/ by default).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
scripts/build.sh build -DKESTRELINK_BUILD_TESTS=OFF
build/tools/kestrelink demo "$@"
