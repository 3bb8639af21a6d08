#pragma once
// Finding the fixed-point stand-in of a weight table, checked entry by entry.
#include <cstdint>

#include "primitives/GreyWeights.h"

namespace kestrelink::analysis {

// A multiplier, offset and shift reproducing table[0 .. top] exactly, for a
// table of round(x * weight) (weight below 1). With clampTo256, samples from
// the first entry of 256 or more on take that entry (enough for a grey
// clamped to 255), and the check stops there. False when no stand-in of at
// most 24 bits of shift reproduces every entry checked. `form` narrows the
// search to stand-ins of a narrower kernel (kGrey8Form).
bool FitGreyWeight(const uint16_t* table, double weight, uint32_t top, bool clampTo256, GreyWeight& out,
                   GreyForm form = {});

}  // namespace kestrelink::analysis
