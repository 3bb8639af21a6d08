// The fixed-point transform compiled for AVX-512 (F, BW, VL): the AVX2
// kernels, with the radix-2 passes of half-length 16 and more sixteen
// butterflies a step.
#include <immintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "primitives/FftReal16Plan.h"

namespace kestrelink::fft {
namespace {
#include "primitives/FftReal16Body.h"
#include "primitives/FftReal16Avx2Body.h"

inline __m512i Load16(const int32_t* p) { return _mm512_loadu_si512(p); }
inline void Store16(int32_t* p, __m512i v) { _mm512_storeu_si512(p, v); }

// MulRe and MulIm on sixteen lanes, with the same high and low split.
inline void Multiply16(__m512i xr, __m512i xi, __m512i c, __m512i s, __m512i& tr, __m512i& ti) {
  const __m512i low = _mm512_set1_epi32(0x7FFF), half = _mm512_set1_epi32(16384);
  const __m512i rh = _mm512_srai_epi32(xr, 15), ih = _mm512_srai_epi32(xi, 15);
  const __m512i rl = _mm512_and_si512(xr, low), il = _mm512_and_si512(xi, low);
  const __m512i reHigh = _mm512_sub_epi32(_mm512_mullo_epi32(rh, c), _mm512_mullo_epi32(ih, s));
  const __m512i reLow = _mm512_sub_epi32(_mm512_mullo_epi32(rl, c), _mm512_mullo_epi32(il, s));
  const __m512i imHigh = _mm512_add_epi32(_mm512_mullo_epi32(rh, s), _mm512_mullo_epi32(ih, c));
  const __m512i imLow = _mm512_add_epi32(_mm512_mullo_epi32(rl, s), _mm512_mullo_epi32(il, c));
  tr = _mm512_add_epi32(reHigh, _mm512_srai_epi32(_mm512_add_epi32(reLow, half), 15));
  ti = _mm512_add_epi32(imHigh, _mm512_srai_epi32(_mm512_add_epi32(imLow, half), 15));
}

void Radix2Pass16(int32_t* re, int32_t* im, uint32_t half, uint32_t h, const int32_t* cr, const int32_t* ci) {
  if (h < 16) return Radix2Pass8(re, im, half, h, cr, ci);
  for (uint32_t s = 0; s < half; s += 2 * h) {
    int32_t *ar = re + s, *ai = im + s, *br = re + s + h, *bi = im + s + h;
    for (uint32_t j = 0; j < h; j += 16) {
      __m512i tr, ti;
      Multiply16(Load16(br + j), Load16(bi + j), Load16(cr + j), Load16(ci + j), tr, ti);
      const __m512i xr = Load16(ar + j), xi = Load16(ai + j);
      Store16(br + j, _mm512_sub_epi32(xr, tr));
      Store16(bi + j, _mm512_sub_epi32(xi, ti));
      Store16(ar + j, _mm512_add_epi32(xr, tr));
      Store16(ai + j, _mm512_add_epi32(xi, ti));
    }
  }
}

void Forward(const FftPlan& plan, const int16_t* src, int16_t* dst, int scaleFactor, int32_t* work) {
  ForwardRowBody(plan, src, dst, scaleFactor, work, Front8, Radix2Pass16, SplitPass8);
}
}  // namespace

const FftKernels kFftKernelsAVX512 = {Forward, AddMagnitudes8, AddMagnitudePairs8, ConjCcs8};

}  // namespace kestrelink::fft
