// The fixed-point transform compiled for AVX2 (this file is built with
// -mavx2): the same body, its passes vectorised eight lanes at a time, and
// the magnitudes eight points a step with the same single-precision steps.
#include <immintrin.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "primitives/FftReal16Plan.h"

namespace kestrelink::fft {
namespace {
#include "primitives/FftReal16Body.h"
#include "primitives/FftReal16Avx2Body.h"

void Forward(const FftPlan& plan, const int16_t* src, const int16_t* ahead, int16_t* dst, int scaleFactor,
             int32_t* work) {
  ForwardRowBody(plan, src, ahead, dst, scaleFactor, work, Front8, Radix2Pass8, SplitPass8);
}
}  // namespace

const FftKernels kFftKernelsAVX2 = {Forward, AddMagnitudes8, AddMagnitudePairs8, ConjCcs8};

}  // namespace kestrelink::fft
