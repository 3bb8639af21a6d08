// 512-bit byte scans (AVX-512 BW), built with those flags. Whole vectors
// use plain loads; the tail goes through one masked load, which never
// touches a byte past the range.
#include <immintrin.h>

#include "compress/kernels/ByteScan.h"

namespace kestrelink::compress {
namespace {

inline __mmask64 Mask64(size_t n) { return n >= 64 ? ~__mmask64(0) : (__mmask64(1) << n) - 1; }

size_t FindEqualPair(const uint8_t* p, size_t n) {
  size_t i = 0;
  for (; i + 65 <= n; i += 64) {
    const __mmask64 equal = _mm512_cmpeq_epi8_mask(_mm512_loadu_si512(p + i), _mm512_loadu_si512(p + i + 1));
    if (equal) return i + size_t(__builtin_ctzll(equal));
  }
  if (i + 1 < n) {  // pairs starting at i .. n-2: at most 64 of them
    const size_t pairs = n - 1 - i;
    const __mmask64 within = Mask64(pairs);
    const __m512i a = _mm512_maskz_loadu_epi8(within, p + i);
    const __m512i b = _mm512_maskz_loadu_epi8(within, p + i + 1);
    const __mmask64 equal = _mm512_mask_cmpeq_epi8_mask(within, a, b);
    if (equal) return i + size_t(__builtin_ctzll(equal));
  }
  return n;
}

size_t CountEqual(const uint8_t* p, size_t n, uint8_t v) {
  const __m512i vv = _mm512_set1_epi8(char(v));
  size_t i = 0;
  for (; i + 64 <= n; i += 64) {
    const __mmask64 differ = _mm512_cmpneq_epi8_mask(_mm512_loadu_si512(p + i), vv);
    if (differ) return i + size_t(__builtin_ctzll(differ));
  }
  if (i < n) {
    const __mmask64 within = Mask64(n - i);
    const __mmask64 differ = _mm512_mask_cmpneq_epi8_mask(within, _mm512_maskz_loadu_epi8(within, p + i), vv);
    if (differ) return i + size_t(__builtin_ctzll(differ));
  }
  return n;
}

}  // namespace

const ByteScanKernels kByteScanAVX512 = {FindEqualPair, CountEqual};

}  // namespace kestrelink::compress
