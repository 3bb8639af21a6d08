#!/usr/bin/env bash
# Installs what is missing, builds, and converts the built-in synthetic
# 12-bit camera frame into PNG files (kestrelink-demo/ by default).
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
BUILD_TARGET=kestrelink_tool scripts/build.sh build -DKESTRELINK_BUILD_TOOLS=ON
build/tools/kestrelink demo "$@"
