// SSE2 (the x86-64 baseline, so no extra flags): four pixels a register,
// each a 32-bit lane. The weights go in pairs of 16-bit lanes to one
// multiply-add; those beyond 16 bits are split: 38470 G is -27066 G + (G << 16),
// 32768 B and 32768 R are shifts by 15.
#include <immintrin.h>

#include "jpeg/front/YcbcraRows.h"

namespace kestrelink::jpegfront {
namespace {

// The weights of the low and high 16-bit lanes of each 32-bit lane.
inline __m128i Weights(int low, int high) {
  return _mm_set1_epi32(int32_t(uint32_t(uint16_t(high)) << 16 | uint16_t(low)));
}

// 256 (pure blue's Cb, pure red's Cr) to 255; every other value is below 256.
inline __m128i Top255(__m128i v) { return _mm_sub_epi32(v, _mm_srli_epi32(v, 8)); }

}  // namespace

void RgbaRowToYcbcraSSE2(const uint8_t* in, uint8_t* out, int width) {
  const __m128i low8 = _mm_set1_epi32(0xFF);
  const __m128i alpha = _mm_set1_epi32(int32_t(0xFF000000u));
  const __m128i yRound = _mm_set1_epi32(32768);
  const __m128i cRound = _mm_set1_epi32((128 << 16) + 32768);  // the chroma offset folded in
  const __m128i yRg = Weights(19595, -27066), yB = Weights(7471, 0);
  const __m128i cbRg = Weights(-11059, -21709);
  const __m128i crRg = Weights(0, -27439), crB = Weights(-5329, 0);
  int x = 0;
  for (; x + 4 <= width; x += 4) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + 4 * x));
    const __m128i r = _mm_and_si128(v, low8);
    const __m128i g = _mm_and_si128(_mm_srli_epi32(v, 8), low8);
    const __m128i b = _mm_and_si128(_mm_srli_epi32(v, 16), low8);
    const __m128i rg = _mm_or_si128(r, _mm_slli_epi32(g, 16));
    __m128i y = _mm_add_epi32(_mm_madd_epi16(rg, yRg), _mm_slli_epi32(g, 16));
    y = _mm_add_epi32(_mm_add_epi32(y, _mm_madd_epi16(b, yB)), yRound);
    y = _mm_srli_epi32(y, 16);
    __m128i cb = _mm_add_epi32(_mm_madd_epi16(rg, cbRg), _mm_slli_epi32(b, 15));
    cb = Top255(_mm_srai_epi32(_mm_add_epi32(cb, cRound), 16));
    __m128i cr = _mm_add_epi32(_mm_madd_epi16(rg, crRg), _mm_slli_epi32(r, 15));
    cr = _mm_add_epi32(_mm_add_epi32(cr, _mm_madd_epi16(b, crB)), cRound);
    cr = Top255(_mm_srai_epi32(cr, 16));
    const __m128i ycbcr = _mm_or_si128(_mm_or_si128(y, _mm_slli_epi32(cb, 8)), _mm_slli_epi32(cr, 16));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 4 * x), _mm_or_si128(ycbcr, _mm_and_si128(v, alpha)));
  }
  RgbaRowToYcbcraPortable(in + 4 * x, out + 4 * x, width - x);
}

}  // namespace kestrelink::jpegfront
