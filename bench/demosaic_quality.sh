#!/usr/bin/env bash
# Demosaic quality against OpenCV on natural photographs. Fetches the
# photographs that Debian's python3-skimage ships (without installing it)
# into testdata/, builds bench/demosaic_quality.cpp against the library in
# BUILD (default build/) and OpenCV, and prints colour PSNR per picture and
# Bayer pattern. Needs libopencv-imgproc-dev and libopencv-imgcodecs-dev
# (scripts/install-deps.sh --bench).
set -euo pipefail
cd "$(dirname "$0")/.."
build=$(realpath -e "${1:-build}")
data=testdata/skimage
if [[ ! -d $data/x ]]; then
  mkdir -p "$data"
  (cd "$data" && apt-get download python3-skimage && dpkg -x python3-skimage_*.deb x)
fi
pictures=$(find "$data/x" -path '*skimage/data/*' \( -name astronaut.png -o -name chelsea.png -o -name coffee.png \
  -o -name rocket.jpg -o -name motorcycle_left.png \) | sort)
[[ -n $pictures ]] || { echo "no photographs under $data" >&2; exit 1; }
program="$build/bench/demosaic_quality"
mkdir -p "$(dirname "$program")"
g++ -O2 -std=c++20 -Wall -Wextra bench/demosaic_quality.cpp -o "$program" -Iinclude \
  -isystem /usr/include/opencv4 -L"$build/src" -lkestrelink -Wl,-rpath,"$build/src" \
  -lopencv_imgcodecs -lopencv_imgproc -lopencv_core
# shellcheck disable=SC2086
"$program" $pictures
