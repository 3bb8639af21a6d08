#pragma once
// The library's integer YUV formula (convert/YuvFormula.h) on AVX2 vectors
// of 16-bit lanes; for units built with -mavx2 only.
#include <immintrin.h>

#include <cstdint>

namespace kestrelink::rows::avx2 {

// g per pixel from 16-bit U - 128 and V - 128.
inline __m256i GreenOffset(__m256i u, __m256i v) {
  const __m256i weights = _mm256_set1_epi32(int(uint32_t(uint16_t(-32152)) << 16 | 12727u));
  const __m256i high = _mm256_set1_epi32(int(0xFFFF0000u));
  const __m256i half = _mm256_set1_epi32(32768), full = _mm256_set1_epi32(65536);
  auto green = [&](__m256i uv) {
    const __m256i t = _mm256_add_epi32(_mm256_madd_epi16(uv, weights), _mm256_and_si256(uv, high));
    const __m256i up = _mm256_and_si256(_mm256_cmpgt_epi32(t, _mm256_setzero_si256()), full);
    return _mm256_srai_epi32(_mm256_add_epi32(t, _mm256_sub_epi32(up, half)), 16);
  };
  return _mm256_packs_epi32(green(_mm256_unpacklo_epi16(u, v)), green(_mm256_unpackhi_epi16(u, v)));
}

inline __m256i Limit(__m256i x) {
  return _mm256_min_epi16(_mm256_max_epi16(x, _mm256_setzero_si256()), _mm256_set1_epi16(255));
}

}  // namespace kestrelink::rows::avx2
