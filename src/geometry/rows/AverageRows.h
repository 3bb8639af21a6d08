#pragma once
// Row kernels of the frame averages, one table per processor variant. The
// body is written once (AverageRowsBody.h) and compiled per instruction set;
// every variant gives the bytes of the portable one.
//   sum = the sample summed over the frames (full), or sums + new - old
//   (rolling, wrapping in 32 bits); dst = clamp(sum / n, 0, max) with
//   truncating division; sums keep sum.
// Samples are runs of `count` contiguous samples (8-bit, or little-endian
// 16-bit words); the x4 kernels take pixels of four samples and touch only
// the first three of each pixel, in the frames, the sums and dst alike.
#include <cstddef>
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

// Truncating division of a sum by n, clamped to 0 .. max. A negative sum
// gives 0. A nonnegative one is divided as sum * (1 / n) + 0.5 / n in
// double, truncated: for sums and divisors below 2^31 the true quotient
// lies at least 1 / (2n) from the next integer while the rounding error
// stays below 2^-20 / n, so the result is the exact integer quotient.
struct AverageDivisor {
  double reciprocal, bias;
  int32_t max;
};

inline AverageDivisor MakeDivisor(int n, int32_t max) { return {1.0 / n, 0.5 / n, max}; }

// The exact scalar form, for the rows the kernels don't vectorise.
inline int32_t DivideClamp(int32_t sum, const AverageDivisor& d) {
  const int32_t q = sum > 0 ? int32_t(double(sum) * d.reciprocal + d.bias) : 0;
  return q < d.max ? q : d.max;
}

struct AverageRowKernels {
  // Full: rows[f] points at the run in frame f, n frames.
  void (*full8)(const uint8_t* const* rows, int n, int32_t* sums, uint8_t* dst, size_t count, const AverageDivisor& d);
  void (*full16)(const uint8_t* const* rows, int n, int32_t* sums, uint8_t* dst, size_t count, const AverageDivisor& d);
  void (*full8x4)(const uint8_t* const* rows, int n, int32_t* sums, uint8_t* dst, size_t pixels,
                  const AverageDivisor& d);
  void (*full16x4)(const uint8_t* const* rows, int n, int32_t* sums, uint8_t* dst, size_t pixels,
                   const AverageDivisor& d);
  // Rolling.
  void (*rolling8)(const uint8_t* in, const uint8_t* out, int32_t* sums, uint8_t* dst, size_t count,
                   const AverageDivisor& d);
  void (*rolling16)(const uint8_t* in, const uint8_t* out, int32_t* sums, uint8_t* dst, size_t count,
                    const AverageDivisor& d);
  void (*rolling8x4)(const uint8_t* in, const uint8_t* out, int32_t* sums, uint8_t* dst, size_t pixels,
                     const AverageDivisor& d);
};

extern const AverageRowKernels kAverageRowsPortable;
extern const AverageRowKernels kAverageRowsAVX2;
extern const AverageRowKernels kAverageRowsAVX512;

inline const AverageRowKernels& AverageRows() {
  static const AverageRowKernels* const slots[kVariantCount] = {&kAverageRowsPortable, nullptr, nullptr,
                                                                &kAverageRowsAVX2, &kAverageRowsAVX512};
  return PickVariant(slots);
}

}  // namespace kestrelink::rows
