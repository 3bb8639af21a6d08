#!/usr/bin/env bash
# Installs what building and testing Kestrelink needs on Debian 12, and
# nothing when it is all there already. With --bench, also the benchmark's
# peers; with --fuzz, clang for the libFuzzer targets.
set -euo pipefail

packages=(build-essential cmake pkg-config ccache libgtest-dev libpng-dev python3 libx264-dev libavcodec-dev libavutil-dev ffmpeg libjpeg62-turbo-dev libopenjp2-7-dev libgrokj2k1-dev libpugixml-dev libmfx-dev)
for arg in "$@"; do
  case "$arg" in
    --bench) packages+=(libbenchmark-dev libyuv-dev libopencv-core-dev libopencv-imgproc-dev libopencv-imgcodecs-dev libzstd-dev liblz4-dev libcharls-dev libturbojpeg0-dev libfftw3-dev libopencolorio-dev) ;;
    --fuzz) packages+=(clang libclang-rt-dev libomp-dev) ;;
    *) echo "install-deps.sh: unknown option $arg (use --bench or --fuzz)" >&2; exit 2 ;;
  esac
done

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"
