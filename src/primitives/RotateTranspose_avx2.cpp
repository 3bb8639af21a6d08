// AVX2 transposes (this file is built with -mavx2): the tile walk with
// squares of 32 bytes a row, 32 x 32 bytes, 16 x 16 words, 8 x 8 and 4 x 4
// of the four- and eight-byte pixels; their ragged edges go to the 16-byte
// and 8-byte squares of the SSE2 walk. The interleaves work inside each
// 16-byte lane, so a square is taken as two halves of 16-byte columns: a
// register holds a row of the half's upper part in its low lane and the
// matching row of its lower part in its high lane, and leaves as a whole
// 32-byte row of the destination.
#include <immintrin.h>

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "primitives/RotateTranspose.h"

namespace kestrelink::rotate {
namespace {
#include "primitives/TransposeTiles.h"
#include "primitives/TransposeBlocks.h"

template <int Bytes>
struct WideBlock {
  static constexpr uint32_t kSide = 32 / Bytes;
  static constexpr uint32_t kHalf = kSide / 2;  // pixels of a 16-byte lane
  using Next = RegisterBlock<Bytes>;
  static void Move(const uint8_t* s, ptrdiff_t ss, uint8_t* d, ptrdiff_t ds) {
    for (uint32_t h = 0; h < 2; ++h) {
      // Source columns h*kHalf .. +kHalf-1 become destination rows h*kHalf .. +kHalf-1.
      __m256i r[kHalf];
      for (uint32_t k = 0; k < kHalf; ++k) {
        const uint8_t* upper = s + ptrdiff_t(k) * ss + 16 * h;
        const uint8_t* lower = upper + ptrdiff_t(kHalf) * ss;
        r[k] = _mm256_inserti128_si256(
            _mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(upper))),
            _mm_loadu_si128(reinterpret_cast<const __m128i*>(lower)), 1);
      }
      Interleave<Bytes, kHalf>(r);
      for (uint32_t k = 0; k < kHalf; ++k)
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d + ptrdiff_t(h * kHalf + k) * ds), r[k]);
    }
  }
};

template <int Bytes>
void Transpose(const uint8_t* src, ptrdiff_t ss, uint8_t* dst, ptrdiff_t ds, uint32_t cols, uint32_t rows) {
  if constexpr (16 % Bytes == 0)
    TransposeTiled<Bytes, WideBlock<Bytes>>(src, ss, dst, ds, cols, rows);
  else
    TransposeTiled<Bytes, PixelBlock<Bytes>>(src, ss, dst, ds, cols, rows);
}

}  // namespace

const TransposeKernels kTransposeAVX2 = {Transpose<1>, Transpose<2>, Transpose<3>,
                                         Transpose<4>, Transpose<6>, Transpose<8>};

}  // namespace kestrelink::rotate
