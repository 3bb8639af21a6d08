// Portable rows of the 10- and 20-bit 4:2:2 layouts.
#include <cstddef>
#include <cstring>

#include "convert/YuvFormula.h"
#include "convert/rows/YuvRows.h"

namespace kestrelink::rows {
namespace {

using yuv::Bgr;

struct StoreBgr24 {
  static constexpr size_t kBytes = 3;
  static void Put(uint8_t* d, Bgr p) { d[0] = p.b, d[1] = p.g, d[2] = p.r; }
};
struct StoreBgrx {
  static constexpr size_t kBytes = 4;
  static void Put(uint8_t* d, Bgr p) { d[0] = p.b, d[1] = p.g, d[2] = p.r; }
};

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

template <class Store>
void Words20Row(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t i = 0; i < w / 2; ++i) {
    const uint8_t* q = src + 8 * size_t(i);
    const int u = Word20(q + 2), v = Word20(q + 6), g = yuv::GreenOffset(u, v);
    Store::Put(dst + Store::kBytes * 2 * i, yuv::PixelWithGreen(Word20(q), u, v, g));
    Store::Put(dst + Store::kBytes * (2 * i + 1), yuv::PixelWithGreen(Word20(q + 4), u, v, g));
  }
  if (w & 1) {  // Y0 and U lie in the row; V is taken as 0
    const uint8_t* q = src + 4 * size_t(w - 1);
    Store::Put(dst + Store::kBytes * (w - 1), yuv::Pixel(Word20(q), Word20(q + 2), 0));
  }
}

}  // namespace

void Words20ToBgr24Portable(const uint8_t* src, uint8_t* dst, uint32_t w) { Words20Row<StoreBgr24>(src, dst, w); }
void Words20ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w) { Words20Row<StoreBgrx>(src, dst, w); }

const YuvRowKernels kYuvRowsPortable = {Packed10ToPlanesPortable, Words20ToBgr24Portable, Words20ToBgrxPortable};

}  // namespace kestrelink::rows
