#include "jpeg/front/YcbcraRows.h"

#include <algorithm>

#include "primitives/Variant.h"

namespace kestrelink::jpegfront {

void RgbaRowToYcbcraPortable(const uint8_t* in, uint8_t* out, int width) {
  for (int x = 0; x < width; ++x, in += 4, out += 4) {
    const int r = in[0], g = in[1], b = in[2];
    out[0] = uint8_t((19595 * r + 38470 * g + 7471 * b + 32768) >> 16);
    out[1] = uint8_t(std::min(((-11059 * r - 21709 * g + 32768 * b + 32768) >> 16) + 128, 255));
    out[2] = uint8_t(std::min(((32768 * r - 27439 * g - 5329 * b + 32768) >> 16) + 128, 255));
    out[3] = in[3];
  }
}

void RgbaRowToYcbcra(const uint8_t* in, uint8_t* out, int width) {
  if (ActiveVariant() >= kVariantSSE2)
    RgbaRowToYcbcraSSE2(in, out, width);
  else
    RgbaRowToYcbcraPortable(in, out, width);
}

}  // namespace kestrelink::jpegfront
