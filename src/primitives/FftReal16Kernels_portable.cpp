// The portable fixed-point transform: the reference every variant matches.
#include <algorithm>
#include <cstdint>

#include "primitives/FftReal16Plan.h"

namespace kestrelink::fft {
namespace {
#include "primitives/FftReal16Body.h"

void Forward(const FftPlan& plan, const int16_t* src, const int16_t* ahead, int16_t* dst, int scaleFactor,
             int32_t* work) {
  ForwardRowBody(plan, src, ahead, dst, scaleFactor, work, FrontPlain, Radix2Pass,
                 [](const FftPlan& p, const int32_t* re, const int32_t* im, int16_t* d, int sf) {
                   SplitPass(p, re, im, d, sf);
                 });
}
}  // namespace

const FftKernels kFftKernelsPortable = {Forward, AddMagnitudesPlain, AddMagnitudePairsPlain, ConjCcsPlain};

}  // namespace kestrelink::fft
