#!/usr/bin/env bash
# Installs the built library into a scratch prefix, then builds a consumer
# against it twice: through the CMake package config and through pkg-config.
# Usage: install_test.sh BUILD_DIR SOURCE_DIR
set -euo pipefail
build="$1"
source="$2"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

cmake --install "$build" --prefix "$work/prefix" >/dev/null
libdir="$(dirname "$(find "$work/prefix" -name 'libkestrelink.so' | head -n 1)")"

cmake -S "$source/tests/install/consumer" -B "$work/cmake-build" -DCMAKE_PREFIX_PATH="$work/prefix" >/dev/null
cmake --build "$work/cmake-build" >/dev/null
LD_LIBRARY_PATH="$libdir" "$work/cmake-build/consumer"

export PKG_CONFIG_PATH="$libdir/pkgconfig"
g++ -std=c++20 "$source/tests/install/consumer/main.cpp" -o "$work/pc-consumer" $(pkg-config --cflags --libs kestrelink)
LD_LIBRARY_PATH="$libdir" "$work/pc-consumer"
