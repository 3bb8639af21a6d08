// AVX-512 interior runs of the general rotation: sixteen destination pixels
// at a time for the bicubic kind (built without FMA, so every product and
// sum rounds as in the portable rule); nearest and bilinear keep the AVX2
// runs.
#include <immintrin.h>

#include "primitives/RotateCubicBody.h"

namespace kestrelink::rotate {
namespace {

inline __m512i Join(__m256i lo, __m256i hi) { return _mm512_inserti64x4(_mm512_castsi256_si512(lo), hi, 1); }

inline __m512 Join(__m256 lo, __m256 hi) {
  return _mm512_castpd_ps(_mm512_insertf64x4(_mm512_castpd256_pd512(_mm256_castps_pd(lo)), _mm256_castps_pd(hi), 1));
}

// float(p - trunc(p)) of eight points, and trunc(p).
inline __m256 Fraction(__m512d p, __m256i whole) {
  return _mm512_cvtpd_ps(_mm512_sub_pd(p, _mm512_cvtepi32_pd(whole)));
}

struct Lanes16 {
  static constexpr int kLanes = 16;
  using I = __m512i;
  using F = __m512;
  static F Splat(float v) { return _mm512_set1_ps(v); }
  static I Splat(int v) { return _mm512_set1_epi32(v); }
  static I AddI(I a, I b) { return _mm512_add_epi32(a, b); }
  static void Taps(const Warp& w, double uRow, double vRow, int X, I& iu, I& iv, F& tx, F& ty) {
    const __m512d steps = _mm512_setr_pd(0, 1, 2, 3, 4, 5, 6, 7);
    const __m512d x0 = _mm512_add_pd(_mm512_set1_pd(double(X)), steps);
    const __m512d x1 = _mm512_add_pd(_mm512_set1_pd(double(X + 8)), steps);
    const __m512d ux = _mm512_set1_pd(w.ux), vx = _mm512_set1_pd(w.vx);
    const __m512d ur = _mm512_set1_pd(uRow), vr = _mm512_set1_pd(vRow);
    const __m512d u0 = _mm512_add_pd(_mm512_mul_pd(ux, x0), ur), u1 = _mm512_add_pd(_mm512_mul_pd(ux, x1), ur);
    const __m512d v0 = _mm512_add_pd(_mm512_mul_pd(vx, x0), vr), v1 = _mm512_add_pd(_mm512_mul_pd(vx, x1), vr);
    const __m256i iu0 = _mm512_cvttpd_epi32(u0), iu1 = _mm512_cvttpd_epi32(u1);
    const __m256i iv0 = _mm512_cvttpd_epi32(v0), iv1 = _mm512_cvttpd_epi32(v1);
    iu = Join(iu0, iu1);
    iv = Join(iv0, iv1);
    tx = Join(Fraction(u0, iu0), Fraction(u1, iu1));
    ty = Join(Fraction(v0, iv0), Fraction(v1, iv1));
  }
  static I Offsets(const Warp& w, I x, I y, int bytes) {
    return _mm512_add_epi32(_mm512_mullo_epi32(y, _mm512_set1_epi32(int(w.srcStep))),
                            _mm512_mullo_epi32(x, _mm512_set1_epi32(bytes)));
  }
  static I Gather(const Warp& w, I offsets) { return _mm512_i32gather_epi32(offsets, w.src, 1); }
  static F Field(I words, int shift, int mask) {
    return _mm512_cvtepi32_ps(_mm512_and_si512(_mm512_srli_epi32(words, unsigned(shift)), _mm512_set1_epi32(mask)));
  }
  static I RoundLimit(F v, float max) {
    const F r = _mm512_min_ps(_mm512_max_ps(_mm512_add_ps(v, Splat(0.5f)), _mm512_setzero_ps()), Splat(max));
    return _mm512_cvttps_epi32(r);
  }
  template <class T, int C, int W>
  static void Store(T* d, const I* samples) {
    if constexpr (C == 1 && sizeof(T) == 1) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm512_cvtepi32_epi8(samples[0]));
    } else if constexpr (C == 1) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), _mm512_cvtepi32_epi16(samples[0]));
    } else if constexpr (sizeof(T) == 1 && C == 4) {
      __m512i px = _mm512_and_si512(_mm512_loadu_si512(d),
                                    Splat(int(0xFF000000u)));  // the fourth sample stays
      for (int c = 0; c < 3; ++c) px = _mm512_or_si512(px, _mm512_slli_epi32(samples[c], unsigned(8 * c)));
      _mm512_storeu_si512(d, px);
    } else {
      StorePixels<T, C, W>(d, samples, kLanes);
    }
  }
};

}  // namespace

const RotateRunKernels kRotateRunsAVX512 = {
    kRotateRunsAVX2.nearest8c1,        kRotateRunsAVX2.linear8c1,         kRotateRunsAVX2.nearest8ac4,
    kRotateRunsAVX2.linear8ac4,        kRotateRunsAVX2.nearest16c1,       kRotateRunsAVX2.linear16c1,
    CubicRun<Lanes16, uint8_t, 1, 1>,  CubicRun<Lanes16, uint8_t, 3, 3>,  CubicRun<Lanes16, uint8_t, 4, 3>,
    CubicRun<Lanes16, uint16_t, 1, 1>, CubicRun<Lanes16, uint16_t, 3, 3>, CubicRun<Lanes16, uint16_t, 4, 3>};

}  // namespace kestrelink::rotate
