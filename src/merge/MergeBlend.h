#pragma once
// The 8-bit blend of 32 pixels in AVX2 registers, for the AVX2 and AVX-512
// merger rows (each unit builds it with its own instruction set).
#include <immintrin.h>

namespace kestrelink::merge {
namespace {

// ((256 - w) b + w a) >> 8 of 32 pixels, wa = w and wb = 256 - w in each
// 16-bit lane; the sum stays below 2^16.
inline __m256i BlendBytes(__m256i a, __m256i b, __m256i wa, __m256i wb) {
  const __m256i zero = _mm256_setzero_si256();
  const __m256i low = _mm256_srli_epi16(
      _mm256_add_epi16(_mm256_mullo_epi16(_mm256_unpacklo_epi8(a, zero), wa),
                       _mm256_mullo_epi16(_mm256_unpacklo_epi8(b, zero), wb)),
      8);
  const __m256i high = _mm256_srli_epi16(
      _mm256_add_epi16(_mm256_mullo_epi16(_mm256_unpackhi_epi8(a, zero), wa),
                       _mm256_mullo_epi16(_mm256_unpackhi_epi8(b, zero), wb)),
      8);
  return _mm256_packus_epi16(low, high);
}

}  // namespace
}  // namespace kestrelink::merge
