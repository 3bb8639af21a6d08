#pragma once
// The integer 5/3 lifting filter of the wavelet blocks, and the abstract
// filter over it. Samples are 32-bit; a block is reached through row pointers
// so that a level works on the top-left sub-region without strides.
#include <cstdint>

#include "compress/wavelet/WaveletDebug.h"

template <class T>
class CWaveletFilter {
 public:
  virtual bool Forward(int width, int height, T** rows) = 0;
  virtual bool Inverse(int width, int height, T** rows) = 0;
  virtual ~CWaveletFilter() = default;
};

class CDaubcies53Filter : public CWaveletFilter<int32_t>, public CWaveletDebug {
 public:
  // One level over the width x height region: rows, then columns, each
  // through a transposing temporary. Both answer true.
  bool Forward(int width, int height, int32_t** rows) override;
  // Same shape as Forward, rows first too.
  bool Inverse(int width, int height, int32_t** rows) override;
};

namespace kestrelink::wavelet {

// One-dimensional steps over n samples (n even, at least 4): low half to
// out[0 .. n/2), high half to out[n/2 .. n). Forward uses x as scratch.
void LiftForward(int32_t* x, int n, int32_t* out);
void LiftInverse(const int32_t* in, int n, int32_t* out);

}  // namespace kestrelink::wavelet
