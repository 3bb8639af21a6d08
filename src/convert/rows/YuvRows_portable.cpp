// Portable rows of the 10- and 20-bit 4:2:2 layouts.
#include <cstddef>
#include <cstring>

#include "convert/YuvFormula.h"
#include "convert/rows/YuvRows.h"

namespace kestrelink::rows {
namespace {

using yuv::Bgr;

inline uint32_t Word(const uint8_t* p) {
  uint32_t u;
  std::memcpy(&u, p, 4);
  return u;
}

// Top 8 bits of the 10-bit sample at bit `shift` of `u`.
inline int Top8(uint32_t u, int shift) { return int((u >> (shift + 2)) & 0xFF); }

}  // namespace

void Packed10ToPlanesPortable(const uint8_t* src, uint16_t* b, uint16_t* g, uint16_t* r, uint32_t w) {
  for (uint32_t x = 0; x < w; x += 6, src += 16) {
    const uint32_t w0 = Word(src), w1 = Word(src + 4), w2 = Word(src + 8), w3 = Word(src + 12);
    const int y[6] = {Top8(w0, 10), Top8(w1, 0), Top8(w1, 20), Top8(w2, 10), Top8(w3, 0), Top8(w3, 20)};
    const int u[3] = {Top8(w0, 0), Top8(w1, 10), Top8(w2, 20)};
    const int v[3] = {Top8(w0, 20), Top8(w2, 0), Top8(w3, 10)};
    for (int i = 0; i < 6; ++i) {
      const Bgr p = yuv::Pixel(y[i], u[i >> 1], v[i >> 1]);
      b[x + i] = p.b, g[x + i] = p.g, r[x + i] = p.r;
    }
  }
}

namespace {

inline int Word20(const uint8_t* p) { return (p[0] | (p[1] << 8)) >> 2; }

}  // namespace

// Pixel x takes Y from word 2 (x & 1) of its pair and the pair's U and V;
// the V of a pair whose second pixel lies past the row counts as 0.
void Words20ToPlanesPortable(const uint8_t* src, uint16_t* b, uint16_t* g, uint16_t* r, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x) {
    const uint8_t* q = src + 8 * size_t(x / 2);
    const Bgr p = yuv::Pixel(Word20(q + 4 * (x & 1)), Word20(q + 2), (x | 1) < w ? Word20(q + 6) : 0);
    b[x] = p.b, g[x] = p.g, r[x] = p.r;
  }
}

const YuvRowKernels kYuvRowsPortable = {Packed10ToPlanesPortable, Words20ToPlanesPortable};

}  // namespace kestrelink::rows
