// CIppImageWrapper::Compute1DFFT: the summed magnitude spectrum of a set of
// 16-bit rows, through the fixed-point real transform with scale factor 1.
#include <kestrelink/CIppImageWrapper.h>

#include <vector>

#include "primitives/FftReal16.h"
#include "primitives/FftReal16Plan.h"

namespace {

// 0, 1 and 2 name the transform's own hints; anything else asks for none.
IppHintAlgorithm MapHint(HintAlgorithm hint) {
  switch (hint) {
    case HintFast: return ippAlgHintFast;
    case HintAccurate: return ippAlgHintAccurate;
    default: return ippAlgHintNone;
  }
}

}  // namespace

bool CIppImageWrapper::Compute1DFFT(int centred, int length, int order, int rowCount, int flag, HintAlgorithm hint,
                                    short** rows, double* spectrum) {
  // Settled behaviour of the format: the answer is true whatever the
  // transform says; a call it cannot serve leaves spectrum as it was.
  if (rowCount <= 0 || !rows || !spectrum || length < 2 || order < 1 || order > 30 || length != (1 << order))
    return true;
  IppsFFTSpec_R_16s* spec = nullptr;
  if (ippsFFTInitAlloc_R_16s(&spec, order, flag, MapHint(hint)) != ippStsNoErr) return true;
  int workBytes = 0;
  ippsFFTGetBufSize_R_16s(spec, &workBytes);
  // The packed form holds length + 2 values, points 0 .. length / 2: the
  // two always-zero parts of the end bins have their own room. Point
  // length - k of the expanded spectrum is the conjugate of point k, so both
  // halves are summed from the lower one.
  const uint32_t n = uint32_t(length), half = n >> 1;
  std::vector<Ipp16sc> packed(half + 1);
  std::vector<int32_t> work(size_t(workBytes) / sizeof(int32_t) + 1);
  const auto& kernels = kestrelink::fft::ActiveFftKernels();
  // Output i of the centred spectrum reads point i - half at and above half,
  // i + half below it: point k goes to k (or half + k), its conjugate
  // length - k to length - k (or half - k).
  double* const low = centred == 0 ? spectrum : spectrum + half;
  double* const high = centred == 0 ? spectrum + n : spectrum + half;
  double* const middle = centred == 0 ? spectrum + half : spectrum;
  for (int r = 0; r < rowCount; ++r) {
    if (!rows[r]) continue;
    // The transform reads its row in short runs, too short for the hardware
    // to fetch ahead: it asks for the next row as it goes.
    const Ipp16s* ahead = r + 1 < rowCount ? rows[r + 1] : nullptr;
    kestrelink::fft::ForwardFetchingAhead(rows[r], reinterpret_cast<Ipp16s*>(packed.data()), spec, 1,
                                          reinterpret_cast<Ipp8u*>(work.data()), ahead);
    kernels.addMagnitudes(packed.data(), low, 1);
    kernels.addMagnitudes(packed.data() + half, middle, 1);
    kernels.addMagnitudePairs(packed.data() + 1, low + 1, high - 1, half - 1);
  }
  ippsFFTFree_R_16s(spec);
  return true;
}
