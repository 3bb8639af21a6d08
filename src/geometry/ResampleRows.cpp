// Halving rows with SSE2, which every x86-64 processor has. Each step reads
// 32 source bytes and keeps the first pixel of each pair.
#include <emmintrin.h>

#include "geometry/ResampleRows.h"

namespace kestrelink::geometry {

namespace {

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store(uint8_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

uint32_t DecimateHalf1(const uint8_t* src, uint32_t count, uint8_t* dst) {
  const __m128i low = _mm_set1_epi16(0xFF);
  uint32_t i = 0;
  // The last pair's second byte may lie past the row: stop a pixel short.
  for (; i + 17 <= count; i += 16) {
    const uint8_t* s = src + 2 * size_t(i);
    Store(dst + i, _mm_packus_epi16(_mm_and_si128(Load(s), low), _mm_and_si128(Load(s + 16), low)));
  }
  return i;
}

uint32_t DecimateHalf2(const uint8_t* src, uint32_t count, uint8_t* dst) {
  uint32_t i = 0;
  for (; i + 9 <= count; i += 8) {
    const uint8_t* s = src + 4 * size_t(i);
    // Sign-extended low words pack back unchanged.
    const __m128i a = _mm_srai_epi32(_mm_slli_epi32(Load(s), 16), 16);
    const __m128i b = _mm_srai_epi32(_mm_slli_epi32(Load(s + 16), 16), 16);
    Store(dst + 2 * size_t(i), _mm_packs_epi32(a, b));
  }
  return i;
}

uint32_t DecimateHalf4(const uint8_t* src, uint32_t count, uint8_t* dst) {
  uint32_t i = 0;
  for (; i + 5 <= count; i += 4) {
    const uint8_t* s = src + 8 * size_t(i);
    const __m128 a = _mm_castsi128_ps(Load(s)), b = _mm_castsi128_ps(Load(s + 16));
    Store(dst + 4 * size_t(i), _mm_castps_si128(_mm_shuffle_ps(a, b, _MM_SHUFFLE(2, 0, 2, 0))));
  }
  return i;
}

}  // namespace

constinit const ResampleRowKernels kResampleRowsPortable = {};

constinit const ResampleRowKernels kResampleRowsSSE2 = [] {
  ResampleRowKernels k = {};
  k.rows[1][2] = DecimateHalf1;
  k.rows[2][2] = DecimateHalf2;
  k.rows[4][2] = DecimateHalf4;
  return k;
}();

}  // namespace kestrelink::geometry
