#!/usr/bin/env bash
# Configures and builds into DIR (default build/) with two jobs. Extra
# arguments go to cmake; BUILD_TARGET names one target to build instead of all.
set -euo pipefail
cd "$(dirname "$0")/.."
dir="${1:-build}"
shift || true
launcher=()
command -v ccache >/dev/null && launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache -DCMAKE_C_COMPILER_LAUNCHER=ccache)
cmake -S . -B "$dir" -DCMAKE_BUILD_TYPE="${BUILD_TYPE:-Release}" "${launcher[@]}" "$@" >/dev/null
cmake --build "$dir" -j2 ${BUILD_TARGET:+--target "$BUILD_TARGET"}
