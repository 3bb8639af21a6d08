// AVX2 joined-pixel lookups: eight table loads per gather.
#include <immintrin.h>

#include "convert/rows/LutRows.h"

namespace kestrelink::rows {
namespace {

void Lut8ToBgrxGather(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx) {
  const auto* table = reinterpret_cast<const int*>(bgrx);
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m256i idx = _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + x)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 4 * size_t(x)), _mm256_i32gather_epi32(table, idx, 4));
  }
  Lut8ToBgrx(src + x, dst + 4 * size_t(x), w - x, bgrx);
}

void Lut16ToBgrxGather(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx, uint32_t mask) {
  const auto* table = reinterpret_cast<const int*>(bgrx);
  const __m256i m = _mm256_set1_epi32(int(mask));
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * size_t(x)));
    const __m256i idx = _mm256_and_si256(_mm256_cvtepu16_epi32(s), m);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 4 * size_t(x)), _mm256_i32gather_epi32(table, idx, 4));
  }
  Lut16ToBgrx(src + 2 * size_t(x), dst + 4 * size_t(x), w - x, bgrx, mask);
}

}  // namespace

const LutRowKernels kLutRowsAVX2 = {Lut8ToBgrxGather, Lut16ToBgrxGather};

}  // namespace kestrelink::rows
