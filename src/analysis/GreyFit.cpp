// Fixed-point stand-ins of the weight tables, searched shift by shift.
#include "analysis/GreyFit.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace kestrelink::analysis {

namespace {

// The offset range [lo, hi) for which (x * mul + add) >> shift gives
// table[x] for every x <= top; empty when lo >= hi.
void OffsetRange(const uint16_t* table, uint32_t top, uint64_t mul, uint32_t shift, int64_t& lo, int64_t& hi) {
  lo = std::numeric_limits<int64_t>::min();
  hi = std::numeric_limits<int64_t>::max();
  for (uint64_t x = 0; x <= top; ++x) {
    const int64_t product = int64_t(x * mul);
    lo = std::max(lo, (int64_t(table[x]) << shift) - product);
    hi = std::min(hi, (int64_t(table[x] + 1) << shift) - product);
  }
}

bool Reproduces(const uint16_t* table, uint32_t top, const GreyWeight& w, uint32_t maxSum) {
  for (uint32_t x = 0; x <= top; ++x)
    if (uint64_t(x) * w.mul + w.add > maxSum || WeighSample(w, x) != table[x]) return false;
  return true;
}

}  // namespace

bool FitGreyWeight(const uint16_t* table, double weight, uint32_t top, bool clampTo256, GreyWeight& out,
                   GreyForm form) {
  if (!(weight >= 0 && weight < 1) || form.addStep == 0) return false;
  uint32_t last = top;
  if (clampTo256) {
    const uint16_t* over = std::find_if(table, table + top + 1, [](uint16_t v) { return v >= 256; });
    if (over != table + top + 1) last = uint32_t(over - table);
  }
  for (uint32_t shift = form.minShift; shift <= 24; ++shift) {
    const double scaled = std::ldexp(weight, int(shift));
    for (int64_t mul = int64_t(scaled) - 1; mul <= int64_t(scaled) + 2; ++mul) {
      if (mul < 0 || mul > int64_t(form.maxMul)) continue;
      int64_t lo, hi;
      OffsetRange(table, last, uint64_t(mul), shift, lo, hi);
      const int64_t step = form.addStep, add = std::max<int64_t>((lo + step - 1) / step * step, 0);
      if (add >= hi) continue;
      const GreyWeight fit{uint32_t(mul), uint32_t(add), shift, last};
      if (Reproduces(table, last, fit, form.maxSum)) {
        out = fit;
        return true;
      }
    }
  }
  return false;
}

}  // namespace kestrelink::analysis
