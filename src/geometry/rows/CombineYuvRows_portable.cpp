// Portable four-pixel steps of the YUV combines.
#include "convert/YuvFormula.h"
#include "geometry/rows/CombineYuvRows.h"

namespace kestrelink::rows {
namespace {

inline void Put(uint8_t* d, yuv::Bgr p) { d[0] = p.b, d[1] = p.g, d[2] = p.r; }

// Two pixels sharing one U, V pair.
inline void Pair(uint8_t* d, int y0, int y1, int u, int v) {
  const int g = yuv::GreenOffset(u, v);
  Put(d, yuv::PixelWithGreen(y0, u, v, g));
  Put(d + 3, yuv::PixelWithGreen(y1, u, v, g));
}

void Yuv422Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  for (uint32_t k = 0; k < steps; ++k, s += 8, d += 12) {
    Pair(d, s[0], s[2], s[1], s[3]);
    Pair(d + 6, s[4], s[6], s[5], s[7]);
  }
}

void Uvy422Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  for (uint32_t k = 0; k < steps; ++k, s += 8, d += 12) {
    Pair(d, s[1], s[3], s[0], s[2]);
    Pair(d + 6, s[5], s[7], s[4], s[6]);
  }
}

void Uvy411Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  for (uint32_t k = 0; k < steps; ++k, s += 6, d += 12) {
    Pair(d, s[1], s[2], s[0], s[3]);
    Pair(d + 6, s[4], s[5], s[0], s[3]);
  }
}

void Uvy444Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  for (uint32_t k = 0; k < 4 * steps; ++k, s += 3, d += 3) Put(d, yuv::Pixel(s[1], s[0], s[2]));
}

}  // namespace

const CombineYuvKernels kCombineYuvPortable = {{Yuv422Steps, Uvy422Steps, Uvy411Steps, Uvy444Steps}};

}  // namespace kestrelink::rows
