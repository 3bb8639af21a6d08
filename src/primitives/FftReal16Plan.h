#pragma once
// What a real 16-bit transform of one order keeps between calls: the
// bit-reversal order of its N/2 complex points, the twiddles of each pass
// and of the split pass in Q15, and the final scaling. Internal to the FFT
// kernels; callers hold it as an IppsFFTSpec_R_16s.
#include <cstdint>
#include <vector>

#include "primitives/FftReal16.h"
#include "primitives/Variant.h"

namespace kestrelink::fft {

struct FftPlan {
  int order = 0;
  int flag = 0;
  int hint = 0;
  uint32_t n = 0;      // real samples
  uint32_t half = 0;   // complex points, n / 2
  int guard = 0;       // bits the samples are shifted left by on entry (negative: right)
  // Final scaling of the split pass's output (2 X[k], `guard` bits up): the
  // value times `multiplier`, shifted right by `shift` plus the scale factor.
  int64_t multiplier = 1;
  int shift = 0;
  std::vector<uint32_t> reversed;          // half entries: the bit-reversed place of each point
  std::vector<int32_t> passRe, passIm;     // pass of half-length h: entries h - 1 .. 2h - 2
  std::vector<int32_t> splitRe, splitIm;   // e^{-2 pi i k / n}, k = 0 .. half
};

// Runs the whole forward transform of one row; work holds 2 * half lanes.
// ahead, when not null, is a row of the same length to fetch into the cache
// meanwhile (variants that read the row in short runs use it).
using ForwardRow = void (*)(const FftPlan& plan, const int16_t* src, const int16_t* ahead, int16_t* dst,
                            int scaleFactor, int32_t* work);
// spectrum[i] += sqrt(re * re + im * im) of point i, in single precision.
using AddMagnitudes = void (*)(const Ipp16sc* points, double* spectrum, uint32_t count);

// up[j] += |points[j]| and down[-j] += |conj points[j]| for j < count, in
// the same single-precision steps (the conjugate of -32768 is 32767, so
// that magnitude can differ): both halves of a real row's spectrum from
// its lower half.
using AddMagnitudePairs = void (*)(const Ipp16sc* points, double* up, double* down, uint32_t count);
// Expands the packed form of a transform of length len (len + 2 values) to
// len points, the upper ones as conjugates of the lower.
using ConjCcs = void (*)(const int16_t* src, Ipp16sc* dst, uint32_t len);

struct FftKernels {
  ForwardRow forward;
  AddMagnitudes addMagnitudes;
  AddMagnitudePairs addMagnitudePairs;
  ConjCcs conjCcs;
};

extern const FftKernels kFftKernelsPortable;
extern const FftKernels kFftKernelsAVX2;
extern const FftKernels kFftKernelsAVX512;

inline const FftKernels& ActiveFftKernels() {
  static const FftKernels* const slots[kVariantCount] = {&kFftKernelsPortable, nullptr, nullptr, &kFftKernelsAVX2,
                                                         &kFftKernelsAVX512};
  return PickVariant(slots);
}

}  // namespace kestrelink::fft
