// The fixed-point transform compiled for AVX-512 (F, BW, VL): the AVX2
// kernels, with the radix-2 passes of half-length 16 and more, the split
// pass and the magnitudes sixteen lanes a step.
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

// MulRe and MulIm on sixteen lanes from whole 64-bit products: each sum
// x c - y s (x s + y c) plus the rounding half is exact in 64 bits, and its
// bits 15 .. 46 are the rounded product, the same 32 bits as the high and
// low split gives. Even lanes multiply in place, odd ones after a shuffle
// down; the shifts put each result back in its own half of the 64 bits.
inline void Multiply16(__m512i xr, __m512i xi, __m512i c, __m512i s, __m512i& tr, __m512i& ti) {
  const __m512i half = _mm512_set1_epi64(16384);
  const __m512i xro = _mm512_shuffle_epi32(xr, _MM_PERM_DDBB), xio = _mm512_shuffle_epi32(xi, _MM_PERM_DDBB);
  const __m512i co = _mm512_shuffle_epi32(c, _MM_PERM_DDBB), so = _mm512_shuffle_epi32(s, _MM_PERM_DDBB);
  const __m512i reEven = _mm512_add_epi64(_mm512_sub_epi64(_mm512_mul_epi32(xr, c), _mm512_mul_epi32(xi, s)), half);
  const __m512i reOdd = _mm512_add_epi64(_mm512_sub_epi64(_mm512_mul_epi32(xro, co), _mm512_mul_epi32(xio, so)), half);
  const __m512i imEven = _mm512_add_epi64(_mm512_add_epi64(_mm512_mul_epi32(xr, s), _mm512_mul_epi32(xi, c)), half);
  const __m512i imOdd = _mm512_add_epi64(_mm512_add_epi64(_mm512_mul_epi32(xro, so), _mm512_mul_epi32(xio, co)), half);
  tr = _mm512_mask_blend_epi32(0xAAAA, _mm512_srli_epi64(reEven, 15), _mm512_slli_epi64(reOdd, 17));
  ti = _mm512_mask_blend_epi32(0xAAAA, _mm512_srli_epi64(imEven, 15), _mm512_slli_epi64(imOdd, 17));
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

// SplitPass8 sixteen bins a step.
void SplitPass16(const FftPlan& plan, const int32_t* re, const int32_t* im, int16_t* dst, int scaleFactor) {
  const uint32_t m = plan.half;
  const int shift = plan.shift + scaleFactor;
  uint32_t k = 1;
  if (plan.multiplier == 1 && shift >= 1 && shift <= 30 && m >= 32) {
    const __m512i reverse = _mm512_setr_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
    const __m512i round = _mm512_set1_epi32(1 << (shift - 1));
    const __m128i count = _mm_cvtsi32_si128(shift);
    for (; k + 16 <= m; k += 16) {
      const __m512i pr = Load16(re + k), pi = Load16(im + k);
      const __m512i qr = _mm512_permutexvar_epi32(reverse, Load16(re + m - k - 15));
      const __m512i qi = _mm512_permutexvar_epi32(reverse, Load16(im + m - k - 15));
      const __m512i ar = _mm512_add_epi32(pr, qr), ai = _mm512_sub_epi32(pi, qi);
      const __m512i br = _mm512_sub_epi32(pr, qr), bi = _mm512_add_epi32(pi, qi);
      __m512i tr, ti;
      Multiply16(br, bi, Load16(plan.splitRe.data() + k), Load16(plan.splitIm.data() + k), tr, ti);
      const __m512i xr = _mm512_sra_epi32(_mm512_add_epi32(_mm512_add_epi32(ar, ti), round), count);
      const __m512i xi = _mm512_sra_epi32(_mm512_add_epi32(_mm512_sub_epi32(ai, tr), round), count);
      // Each 128-bit lane interleaves and saturates its own four bins, as in SplitPass8.
      const __m512i packed = _mm512_packs_epi32(_mm512_unpacklo_epi32(xr, xi), _mm512_unpackhi_epi32(xr, xi));
      _mm512_storeu_si512(dst + 2 * k, packed);
    }
  }
  SplitPass(plan, re, im, dst, scaleFactor, 0, 1);
  SplitPass(plan, re, im, dst, scaleFactor, k, m + 1);
}

// out[i] += lane i of m in double precision, i < 16.
inline void AddWidened16(double* out, __m512 m) {
  const __m256 low = _mm512_castps512_ps256(m);
  const __m256 high = _mm256_castpd_ps(_mm512_extractf64x4_pd(_mm512_castps_pd(m), 1));
  _mm512_storeu_pd(out, _mm512_add_pd(_mm512_loadu_pd(out), _mm512_cvtps_pd(low)));
  _mm512_storeu_pd(out + 8, _mm512_add_pd(_mm512_loadu_pd(out + 8), _mm512_cvtps_pd(high)));
}

// AddMagnitudePairs8 sixteen points a step.
void AddMagnitudePairs16(const Ipp16sc* points, double* up, double* down, uint32_t count) {
  const __m512i reverse = _mm512_setr_epi32(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0);
  const __m512i lowest = _mm512_set1_epi32(-32768);
  uint32_t j = 0;
  for (; j + 16 <= count; j += 16) {
    const __m512i pairs = _mm512_loadu_si512(points + j);
    const __m512i imInt = _mm512_srai_epi32(pairs, 16);
    const __m512 re = _mm512_cvtepi32_ps(_mm512_srai_epi32(_mm512_slli_epi32(pairs, 16), 16));
    const __m512 im = _mm512_cvtepi32_ps(imInt);
    const __m512 sq = _mm512_mul_ps(re, re);
    const __m512 m = _mm512_sqrt_ps(_mm512_add_ps(sq, _mm512_mul_ps(im, im)));
    __m512 mirror = m;
    if (_mm512_cmpeq_epi32_mask(imInt, lowest)) {
      const __m512i negated = _mm512_subs_epi16(_mm512_setzero_si512(), pairs);
      const __m512 conjIm = _mm512_cvtepi32_ps(_mm512_srai_epi32(negated, 16));
      mirror = _mm512_sqrt_ps(_mm512_add_ps(sq, _mm512_mul_ps(conjIm, conjIm)));
    }
    AddWidened16(up + j, m);
    AddWidened16(down - j - 15, _mm512_permutexvar_ps(reverse, mirror));
  }
  AddMagnitudePairs8(points + j, up + j, down - j, count - j);
}

void Forward(const FftPlan& plan, const int16_t* src, const int16_t* ahead, int16_t* dst, int scaleFactor,
             int32_t* work) {
  ForwardRowBody(plan, src, ahead, dst, scaleFactor, work, Front8, Radix2Pass16, SplitPass16);
}
}  // namespace

const FftKernels kFftKernelsAVX512 = {Forward, AddMagnitudes8, AddMagnitudePairs16, ConjCcs8};

}  // namespace kestrelink::fft
