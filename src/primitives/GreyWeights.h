#pragma once
// Fixed-point stand-ins for the motion detector's 65,536-entry weight
// tables: a table entry t(x) is (min(x, clampAt) * mul + add) >> shift for
// every sample x the stand-in was checked over. Products stay within 32 bits.
#include <cstdint>

namespace kestrelink::analysis {

struct GreyWeight {
  uint32_t mul = 0, add = 0, shift = 0;
  uint32_t clampAt = 0xFFFF;  // samples above give the entry of clampAt
};

inline uint32_t WeighSample(const GreyWeight& w, uint32_t x) {
  return ((x < w.clampAt ? x : w.clampAt) * w.mul + w.add) >> w.shift;
}

// Stand-ins for 8-bit samples take the form the 16-bit-lane kernels compute:
// the high half of (x << 8) * mul, plus add >> 8, shifted by shift - 8. That
// is (x * mul + add) >> shift exactly when mul < 65536, add is a multiple of
// 256, shift is 8 or more and x * mul + add stays below 2^24 (the sum then
// fits the lane).
struct GreyForm {
  uint32_t addStep = 1;           // the offset a multiple of this
  uint32_t maxMul = 0xFFFFFFFFu;  // the multiplier at most this
  uint32_t minShift = 0;          // the shift at least this
  uint32_t maxSum = 0xFFFFFFFFu;  // x * mul + add at most this
};
inline constexpr GreyForm kGrey8Form{256, 65535, 8, 0xFFFFFF};

// One weight per sample position of a pixel, in memory order.
struct GreyWeights {
  GreyWeight first, second, third;
};

}  // namespace kestrelink::analysis
