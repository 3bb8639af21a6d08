// 128-bit byte scans (SSE2, the x86-64 baseline).
#include <emmintrin.h>

#include "compress/kernels/ByteScan.h"

namespace kestrelink::compress {
namespace {

size_t FindEqualPair(const uint8_t* p, size_t n) {
  size_t i = 0;
  for (; i + 17 <= n; i += 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i + 1));
    const unsigned mask = unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)));
    if (mask) return i + unsigned(__builtin_ctz(mask));
  }
  return i + FindEqualPairPortable(p + i, n - i);
}

size_t CountEqual(const uint8_t* p, size_t n, uint8_t v) {
  const __m128i vv = _mm_set1_epi8(char(v));
  size_t i = 0;
  for (; i + 16 <= n; i += 16) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + i));
    const unsigned differ = ~unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(a, vv))) & 0xFFFFu;
    if (differ) return i + unsigned(__builtin_ctz(differ));
  }
  return i + CountEqualPortable(p + i, n - i, v);
}

}  // namespace

const ByteScanKernels kByteScanSSE2 = {FindEqualPair, CountEqual};

}  // namespace kestrelink::compress
