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
  // The packed form holds length + 2 values: the two always-zero parts of
  // the end bins have their own room.
  std::vector<Ipp16s> packed(size_t(length) + 2);
  std::vector<Ipp16sc> points(static_cast<size_t>(length));
  std::vector<int32_t> work(size_t(workBytes) / sizeof(int32_t) + 1);
  ippsZero_16sc(points.data(), length);
  const auto addMagnitudes = kestrelink::fft::ActiveFftKernels().addMagnitudes;
  const uint32_t n = uint32_t(length), half = n >> 1;
  for (int r = 0; r < rowCount; ++r) {
    if (!rows[r]) continue;
    ippsFFTFwd_RToCCS_16s_Sfs(rows[r], packed.data(), spec, 1, reinterpret_cast<Ipp8u*>(work.data()));
    ippsConjCcs_16sc(packed.data(), points.data(), length);
    if (centred == 0) {
      addMagnitudes(points.data(), spectrum, n);
    } else {
      // Output i reads point i - half at and above half, i + half below it.
      addMagnitudes(points.data() + half, spectrum, half);
      addMagnitudes(points.data(), spectrum + half, n - half);
    }
  }
  ippsFFTFree_R_16s(spec);
  return true;
}
