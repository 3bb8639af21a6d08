// 4:1:1 and 4:4:4 sources (UVY411: U Y0 Y1 V Y2 Y3; UVY444: U Y V) to BGRx,
// BGR24 and RGB24, studio range, and the byte re-orderings of the family.
// The conversions go a piece of a row at a time through the thread's own
// small buffer and the vector rows of packed 4:2:2: a 4:1:1 group is its two
// pairs with the chroma given twice, and a 4:4:4 pixel is a pair of itself,
// of which every other converted pixel is kept. Each pixel meets exactly the
// arithmetic of the planar kernels, with no frame-sized scratch.
#include <kestrelink/CIppImageConverter.h>

#include <immintrin.h>

#include <algorithm>
#include <cstring>

#include "convert/ColorMapEngine.h"
#include "frame/RowLoop.h"
#include "platform/OpenMP.h"
#include "primitives/Primitives.h"
#include "primitives/Variant.h"
#include "primitives/YccRows.h"

using kestrelink::ForEachRow;
using kestrelink::RowAt;
using kestrelink::platform::SetBlockTimeZero;
namespace ycc = kestrelink::ycc;

namespace {

// Start of row `row` of a 4:1:1 frame, (row * w * 3) >> 1.
inline const uint8_t* Row411(const void* src, uint32_t w, uint32_t row) {
  return static_cast<const uint8_t*>(src) + ((uint64_t(row) * w * 3) >> 1);
}

constexpr uint32_t kPairs = 512;  // pairs a piece: 2 KiB of packed 4:2:2

// Blocks of 12 source bytes widened to 16 bytes of pairs by one byte shuffle:
// two 4:1:1 groups to Y0 U Y1 V Y2 U Y3 V twice, or four 4:4:4 pixels to
// Y U Y V each.
constexpr uint8_t kWiden411[16] = {1, 0, 2, 3, 4, 0, 5, 3, 7, 6, 8, 9, 10, 6, 11, 9};
constexpr uint8_t kWiden444[16] = {1, 0, 1, 2, 4, 3, 4, 5, 7, 6, 7, 8, 10, 9, 10, 11};

// The blocks whose 16-byte load stays inside the `readable` bytes at s;
// answers how many it widened.
__attribute__((target("ssse3"))) uint32_t WidenSsse3(const uint8_t* s, uint8_t* d, uint32_t blocks, size_t readable,
                                                     const uint8_t* index) {
  const __m128i shuffle = _mm_loadu_si128(reinterpret_cast<const __m128i*>(index));
  uint32_t k = 0;
  for (; k < blocks && 12 * size_t(k) + 16 <= readable; ++k)
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 16 * size_t(k)),
                     _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(s + 12 * size_t(k))), shuffle));
  return k;
}

void Widen(const uint8_t* s, uint8_t* d, uint32_t blocks, size_t readable, const uint8_t* index, bool vector) {
  for (uint32_t k = vector ? WidenSsse3(s, d, blocks, readable, index) : 0; k < blocks; ++k)
    for (int i = 0; i < 16; ++i) d[16 * size_t(k) + i] = s[12 * size_t(k) + index[i]];
}

// Every other BGRx pixel of `both`, n of them.
void KeepEvenBgrx(const uint8_t* both, uint8_t* o, uint32_t n, bool vector) {
  uint32_t i = 0;
  for (; vector && i + 4 <= n; i += 4) {
    const __m128 a = _mm_loadu_ps(reinterpret_cast<const float*>(both + 8 * size_t(i)));
    const __m128 b = _mm_loadu_ps(reinterpret_cast<const float*>(both + 8 * size_t(i) + 16));
    _mm_storeu_ps(reinterpret_cast<float*>(o + 4 * size_t(i)), _mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0)));
  }
  for (; i < n; ++i) std::memcpy(o + 4 * size_t(i), both + 8 * size_t(i), 4);
}

void KeepEvenBgr24(const uint8_t* both, uint8_t* o, uint32_t n, bool) {
  for (uint32_t i = 0; i < n; ++i) std::memcpy(o + 3 * size_t(i), both + 6 * size_t(i), 3);
}

// Whether the byte shuffles may be used: SSSE3 or a wider variant is active.
bool VectorWiden() { return kestrelink::ActiveVariant() >= kestrelink::kVariantSSSE3; }

// The whole groups of UVY411 rows through convert(pairs, dst, count).
template <class Convert>
bool Uvy411Rows(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t pixelBytes, bool flip, Convert convert) {
  if (!src || !dst || w < 4 || h < 1) return false;
  const uint32_t groups = w / 4;
  const bool vector = VectorWiden();
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    alignas(64) uint8_t piece[4 * kPairs];
    const uint8_t* s = Row411(src, w, in);
    uint8_t* d = RowAt(dst, pixelBytes * size_t(w), out);
    for (uint32_t g = 0; g < groups; g += kPairs / 2) {
      const uint32_t n = std::min(kPairs / 2, groups - g);
      const uint8_t* from = s + 6 * size_t(g);
      Widen(from, piece, n / 2, 6 * size_t(groups - g), kWiden411, vector);
      if (n & 1) {  // the odd last group of the piece
        const uint8_t* q = from + 6 * size_t(n - 1);
        uint8_t* p = piece + 8 * size_t(n - 1);
        p[0] = q[1], p[1] = q[0], p[2] = q[2], p[3] = q[3], p[4] = q[4], p[5] = q[0], p[6] = q[5], p[7] = q[3];
      }
      convert(piece, d + 4 * pixelBytes * size_t(g), 2 * n);
    }
  });
  return true;
}

// UVY444 rows: each pixel converted as a pair of itself, the first of the two
// kept by keep(both, dst, n, vector).
template <class Convert, class Keep>
bool Uvy444Rows(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t pixelBytes, bool flip, Convert convert,
                Keep keep) {
  if (!src || !dst || w < 1 || h < 1) return false;
  const bool vector = VectorWiden();
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    alignas(64) uint8_t piece[4 * kPairs];
    alignas(64) uint8_t both[8 * kPairs];
    const uint8_t* s = RowAt(src, 3 * size_t(w), in);
    uint8_t* d = RowAt(dst, pixelBytes * size_t(w), out);
    for (uint32_t x = 0; x < w; x += kPairs) {
      const uint32_t n = std::min(kPairs, w - x);
      const uint8_t* from = s + 3 * size_t(x);
      Widen(from, piece, n / 4, 3 * size_t(w - x), kWiden444, vector);
      for (uint32_t i = n & ~3u; i < n; ++i) {  // the last pixels of the piece
        const uint8_t* q = from + 3 * size_t(i);
        uint8_t* p = piece + 4 * size_t(i);
        p[0] = q[1], p[1] = q[0], p[2] = q[1], p[3] = q[2];
      }
      convert(piece, both, n);
      keep(both, d + pixelBytes * size_t(x), n, vector);
    }
  });
  return true;
}

auto ToBgrx() {
  return [row = ycc::YccRows().pairs_to_bgrx](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, 0); };
}
auto ToC3(ycc::ChannelOrder order) {
  return [row = ycc::YccRows().pairs_to_c3, order](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, order); };
}

}  // namespace

// The planar forms of the two group layouts, the class's own helpers.
bool CIppImageConverter::YUV411ToYUV411P(uint32_t w, uint32_t h, void* src, uint16_t* Y, void* U, void* V,
                                         bool flip) {
  const uint32_t groups = w / 4;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    const uint8_t* s = Row411(src, w, in);
    uint8_t* y = RowAt(Y, w, out);  // bytes, whatever the type says
    uint8_t* u = RowAt(U, groups, out);
    uint8_t* v = RowAt(V, groups, out);
    for (uint32_t g = 0; g < groups; ++g, s += 6, y += 4) {
      u[g] = s[0], v[g] = s[3];
      y[0] = s[1], y[1] = s[2], y[2] = s[4], y[3] = s[5];
    }
  });
  return true;
}

bool CIppImageConverter::YUV444ToYUV444P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  // Plane order U, Y, V sorts out the source's U Y V bytes.
  if (!flip) {
    Ipp8u* const planes[3] = {static_cast<Ipp8u*>(U), static_cast<Ipp8u*>(Y), static_cast<Ipp8u*>(V)};
    return ippiCopy_8u_C3P3R(static_cast<const Ipp8u*>(src), int(3 * w), planes, int(w), {int(w), int(h)}) == 0;
  }
  ForEachRow(h, true, [&](uint32_t in, uint32_t out) {
    const uint8_t* s = RowAt(src, 3 * size_t(w), in);
    uint8_t *y = RowAt(Y, w, out), *u = RowAt(U, w, out), *v = RowAt(V, w, out);
    for (uint32_t x = 0; x < w; ++x) u[x] = s[3 * x], y[x] = s[3 * x + 1], v[x] = s[3 * x + 2];
  });
  return true;
}

bool CIppImageConverter::UVY411ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY411ToBGRx(w, h, src, dst, flip);
  return Uvy411Rows(w, h, src, dst, 4, flip, ToBgrx());
}

bool CIppImageConverter::UVY411ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY411ToBGR24(w, h, src, dst, flip);
  return Uvy411Rows(w, h, src, dst, 3, flip, ToC3(ycc::kOrderBGR));
}

bool CIppImageConverter::UVY411ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return Uvy411Rows(w, h, src, dst, 3, flip, ToC3(ycc::kOrderRGB));
}

bool CIppImageConverter::UVY444ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY444ToBGRx(w, h, src, dst, flip);
  return Uvy444Rows(w, h, src, dst, 4, flip, ToBgrx(), KeepEvenBgrx);
}

bool CIppImageConverter::UVY444ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY444ToBGR24(w, h, src, dst, flip);
  return Uvy444Rows(w, h, src, dst, 3, flip, ToC3(ycc::kOrderBGR), KeepEvenBgr24);
}

bool CIppImageConverter::UVY444ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return Uvy444Rows(w, h, src, dst, 3, flip, ToC3(ycc::kOrderRGB), KeepEvenBgr24);
}

// A partial last group is unpacked from the bytes the row holds, the rest
// taken as 0, and writes only its pixels inside the row.
bool CIppImageConverter::UVY411ToYUV422(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (!src || !dst) return false;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    const uint8_t* s = Row411(src, w, in);
    const size_t srcBytes = size_t(Row411(src, w, in + 1) - s);
    uint8_t* d = RowAt(dst, 2 * size_t(w), out);
    for (uint32_t x = 0; x < w; x += 4) {
      uint8_t g[6] = {};
      std::memcpy(g, s + 6 * size_t(x / 4), std::min<size_t>(6, srcBytes - 6 * size_t(x / 4)));
      const uint8_t out8[8] = {g[1], g[0], g[2], g[3], g[4], g[0], g[5], g[3]};
      std::memcpy(d + 2 * size_t(x), out8, 2 * std::min<size_t>(4, w - x));
    }
  });
  return true;
}

bool CIppImageConverter::YUV444PToUVY444(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (!src || !dst) return false;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    const uint8_t* s = RowAt(src, 4 * size_t(w), in);
    uint8_t* d = RowAt(dst, 3 * size_t(w), out);
    for (uint32_t x = 0; x < w; ++x, s += 4, d += 3) d[0] = s[2], d[1] = s[0], d[2] = s[1];
  });
  return true;
}
