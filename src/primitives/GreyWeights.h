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

// One weight per sample position of a pixel, in memory order.
struct GreyWeights {
  GreyWeight first, second, third;
};

}  // namespace kestrelink::analysis
