#pragma once
// One axis of a resize: which source pixels a destination position reads
// and with what weights, for each interpolation kind. Weights are computed in
// double precision and sum to 1; the kernels quantise them.
#include <cstdint>

namespace kestrelink::resize {

struct AxisMap {
  int kind;          // IPPI_INTER_...
  double factor;     // destination pixels a source pixel
  double shift;      // in destination pixels
  double roiStart;   // the source ROI's origin, which maps onto destination 0
  int32_t lo, hi;    // source pixels that may be read: lo .. hi-1
  int taps;          // TapCount(kind, factor)
};

// Taps an axis needs: 1 nearest, 2 linear, 4 cubic, 6 Lanczos; the area
// average takes every pixel that a destination pixel's span may touch.
int TapCount(int kind, double factor);

// The kinds the kernels know.
bool KnownInterpolation(int kind);

// Fills idx[0 .. taps) with source pixels (each within lo .. hi-1) and
// w[0 .. taps) with their weights for destination position d. Unused taps
// repeat the last pixel with weight 0.
void AxisTaps(const AxisMap& m, int64_t d, int32_t* idx, double* w);

// Catmull-Rom and three-lobe Lanczos at distance x, for tests as well.
double CubicWeight(double x);
double LanczosWeight(double x);

// Weights in 1/16384 that sum to exactly 16384, the largest taking the
// rounding remainder.
inline constexpr int kWeightBits = 14;
int16_t QuantiseWeight(double w);
void QuantiseWeights(const double* w, int taps, int16_t* q);

}  // namespace kestrelink::resize
