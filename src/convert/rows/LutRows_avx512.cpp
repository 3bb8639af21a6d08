// AVX-512 joined-pixel lookups: sixteen table loads per gather.
#include <immintrin.h>

#include "convert/rows/LutRows.h"

namespace kestrelink::rows {
namespace {

void Lut8ToBgrxGather(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx) {
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m512i idx = _mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + x)));
    _mm512_storeu_si512(dst + 4 * size_t(x), _mm512_i32gather_epi32(idx, bgrx, 4));
  }
  Lut8ToBgrx(src + x, dst + 4 * size_t(x), w - x, bgrx);
}

void Lut16ToBgrxGather(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx, uint32_t mask) {
  const __m512i m = _mm512_set1_epi32(int(mask));
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m256i s = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * size_t(x)));
    const __m512i idx = _mm512_and_si512(_mm512_cvtepu16_epi32(s), m);
    _mm512_storeu_si512(dst + 4 * size_t(x), _mm512_i32gather_epi32(idx, bgrx, 4));
  }
  Lut16ToBgrx(src + 2 * size_t(x), dst + 4 * size_t(x), w - x, bgrx, mask);
}

}  // namespace

const LutRowKernels kLutRowsAVX512 = {Lut8ToBgrxGather, Lut16ToBgrxGather};

}  // namespace kestrelink::rows
