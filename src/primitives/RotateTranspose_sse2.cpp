// SSE2 transposes (the x86-64 baseline, so no extra flags): the tile walk
// with squares of one 16-byte register a row, 16 x 16 bytes, 8 x 8 words,
// 4 x 4 and 2 x 2 of the four- and eight-byte pixels. A square is turned by
// log2(side) rounds of the same interleave of register k with register
// k + side/2. Three- and six-byte pixels do not divide a register and go a
// pixel at a time, still tile by tile.
#include <emmintrin.h>

#include <algorithm>
#include <cstring>

#include "primitives/RotateTranspose.h"

namespace kestrelink::rotate {
namespace {
#include "primitives/TransposeTiles.h"

template <int Bytes>
inline __m128i Low(__m128i a, __m128i b) {
  if constexpr (Bytes == 1) return _mm_unpacklo_epi8(a, b);
  if constexpr (Bytes == 2) return _mm_unpacklo_epi16(a, b);
  if constexpr (Bytes == 4) return _mm_unpacklo_epi32(a, b);
  return _mm_unpacklo_epi64(a, b);
}

template <int Bytes>
inline __m128i High(__m128i a, __m128i b) {
  if constexpr (Bytes == 1) return _mm_unpackhi_epi8(a, b);
  if constexpr (Bytes == 2) return _mm_unpackhi_epi16(a, b);
  if constexpr (Bytes == 4) return _mm_unpackhi_epi32(a, b);
  return _mm_unpackhi_epi64(a, b);
}

template <int Bytes>
struct RegisterBlock {
  static constexpr uint32_t kSide = 16 / Bytes;
  static void Move(const uint8_t* s, ptrdiff_t ss, uint8_t* d, ptrdiff_t ds) {
    __m128i r[kSide], t[kSide];
    for (uint32_t k = 0; k < kSide; ++k)
      r[k] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + ptrdiff_t(k) * ss));
    for (uint32_t round = 1; round < kSide; round *= 2) {
      for (uint32_t k = 0; k < kSide / 2; ++k) {
        t[2 * k] = Low<Bytes>(r[k], r[k + kSide / 2]);
        t[2 * k + 1] = High<Bytes>(r[k], r[k + kSide / 2]);
      }
      for (uint32_t k = 0; k < kSide; ++k) r[k] = t[k];
    }
    for (uint32_t k = 0; k < kSide; ++k) _mm_storeu_si128(reinterpret_cast<__m128i*>(d + ptrdiff_t(k) * ds), r[k]);
  }
};

template <int Bytes>
void Transpose(const uint8_t* src, ptrdiff_t ss, uint8_t* dst, ptrdiff_t ds, uint32_t cols, uint32_t rows) {
  if constexpr (16 % Bytes == 0)
    TransposeTiled<Bytes, RegisterBlock<Bytes>>(src, ss, dst, ds, cols, rows);
  else
    TransposeTiled<Bytes, PixelBlock<Bytes>>(src, ss, dst, ds, cols, rows);
}

}  // namespace

const TransposeKernels kTransposeSSE2 = {Transpose<1>, Transpose<2>, Transpose<3>,
                                         Transpose<4>, Transpose<6>, Transpose<8>};

}  // namespace kestrelink::rotate
