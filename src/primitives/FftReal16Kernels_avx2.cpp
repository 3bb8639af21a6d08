// The fixed-point transform compiled for AVX2 (this file is built with
// -mavx2): the same body, its passes vectorised eight lanes at a time, and
// the magnitudes eight points a step with the same single-precision steps.
#include <immintrin.h>

#include <algorithm>
#include <cstdint>

#include "primitives/FftReal16Plan.h"

namespace kestrelink::fft {
namespace {
#include "primitives/FftReal16Body.h"

void Forward(const FftPlan& plan, const int16_t* src, int16_t* dst, int scaleFactor, int32_t* work) {
  ForwardRowBody(plan, src, dst, scaleFactor, work);
}

void AddMagnitudes8(const Ipp16sc* points, double* spectrum, uint32_t count) {
  uint32_t i = 0;
  for (; i + 8 <= count; i += 8) {
    // Eight (re, im) pairs of 16 bits: sign-extend, then split the halves.
    const __m256i pairs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(points + i));
    const __m256 re = _mm256_cvtepi32_ps(_mm256_srai_epi32(_mm256_slli_epi32(pairs, 16), 16));
    const __m256 im = _mm256_cvtepi32_ps(_mm256_srai_epi32(pairs, 16));
    const __m256 m = _mm256_sqrt_ps(_mm256_add_ps(_mm256_mul_ps(re, re), _mm256_mul_ps(im, im)));
    double* out = spectrum + i;
    _mm256_storeu_pd(out, _mm256_add_pd(_mm256_loadu_pd(out), _mm256_cvtps_pd(_mm256_castps256_ps128(m))));
    _mm256_storeu_pd(out + 4, _mm256_add_pd(_mm256_loadu_pd(out + 4), _mm256_cvtps_pd(_mm256_extractf128_ps(m, 1))));
  }
  AddMagnitudesPlain(points + i, spectrum + i, count - i);
}
}  // namespace

const FftKernels kFftKernelsAVX2 = {Forward, AddMagnitudes8};

}  // namespace kestrelink::fft
