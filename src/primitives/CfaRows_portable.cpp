// Portable rows of the colour-filter-array interpolation: the reference that
// every vector variant matches sample for sample.
#include "primitives/CfaRows.h"

namespace kestrelink::cfa {
namespace {

int Clamp(int v, int top) { return v < 0 ? 0 : v > top ? top : v; }

template <class Sample, class Window>
void Interior(const Window& in, PlaneRow<Sample> out, uint32_t x0, uint32_t x1, int top) {
  const Sample *r0 = in.row[0], *r1 = in.row[1], *r2 = in.row[2], *r3 = in.row[3], *r4 = in.row[4];
  for (uint32_t x = x0; x < x1; ++x) {
    const int c = r2[x];
    const int h1 = r2[x - 1] + r2[x + 1], v1 = r1[x] + r3[x];
    const int h2 = r2[x - 2] + r2[x + 2], v2 = r0[x] + r4[x];
    const int d = r1[x - 1] + r1[x + 1] + r3[x - 1] + r3[x + 1];
    const bool xSite = (x & 1) != uint32_t(out.greenOdd);
    if (xSite) {
      out.x[x] = Sample(c);
      out.g[x] = Sample(Clamp((8 * c + 4 * (h1 + v1) - 2 * (h2 + v2) + 8) >> 4, top));
      out.y[x] = Sample(Clamp((12 * c + 4 * d - 3 * (h2 + v2) + 8) >> 4, top));
    } else {
      out.g[x] = Sample(c);
      out.x[x] = Sample(Clamp((10 * c + 8 * h1 - 2 * h2 - 2 * d + v2 + 8) >> 4, top));
      out.y[x] = Sample(Clamp((10 * c + 8 * v1 - 2 * v2 - 2 * d + h2 + 8) >> 4, top));
    }
  }
}

}  // namespace

void Interior8Portable(const Window8& in, PlaneRow<uint8_t> out, uint32_t x0, uint32_t x1) {
  Interior(in, out, x0, x1, 255);
}

void Interior16Portable(const Window16& in, PlaneRow<uint16_t> out, uint32_t x0, uint32_t x1, uint32_t top) {
  Interior(in, out, x0, x1, int(top));
}

void Pack16Portable(const uint16_t* p0, const uint16_t* p1, const uint16_t* p2, uint16_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x, dst += 3) {
    dst[0] = p0[x];
    dst[1] = p1[x];
    dst[2] = p2[x];
  }
}

uint32_t Bits16Portable(const uint16_t* row, uint32_t w) {
  uint32_t seen = 0;
  for (uint32_t x = 0; x < w; ++x) seen |= row[x];
  return seen;
}

void Pack8x4Portable(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x, dst += 4) {
    dst[0] = p0[x];
    dst[1] = p1[x];
    dst[2] = p2[x];
  }
}

const CfaRowKernels kCfaRowsPortable = {Interior8Portable, Interior16Portable, Pack16Portable, Bits16Portable,
                                        Pack8x4Portable};

}  // namespace kestrelink::cfa
