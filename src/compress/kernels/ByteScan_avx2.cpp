// 256-bit byte scans (AVX2), built with that flag.
#include <immintrin.h>

#include "compress/kernels/ByteScan.h"

namespace kestrelink::compress {
namespace {

size_t FindEqualPair(const uint8_t* p, size_t n) {
  size_t i = 0;
  for (; i + 33 <= n; i += 32) {
    const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i));
    const __m256i b = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i + 1));
    const unsigned mask = unsigned(_mm256_movemask_epi8(_mm256_cmpeq_epi8(a, b)));
    if (mask) return i + unsigned(__builtin_ctz(mask));
  }
  if (i + 17 <= n) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i + 1));
    const unsigned mask = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)));
    if (mask) return i + unsigned(__builtin_ctz(mask));
    i += 16;
  }
  return i + FindEqualPairPortable(p + i, n - i);
}

size_t CountEqual(const uint8_t* p, size_t n, uint8_t v) {
  const __m256i vv = _mm256_set1_epi8(char(v));
  size_t i = 0;
  for (; i + 32 <= n; i += 32) {
    const __m256i a = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + i));
    const unsigned differ = ~unsigned(_mm256_movemask_epi8(_mm256_cmpeq_epi8(a, vv)));
    if (differ) return i + unsigned(__builtin_ctz(differ));
  }
  return i + CountEqualPortable(p + i, n - i, v);
}

}  // namespace

const ByteScanKernels kByteScanAVX2 = {FindEqualPair, CountEqual};

}  // namespace kestrelink::compress
