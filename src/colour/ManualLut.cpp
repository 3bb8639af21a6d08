// Identity and manual-balance channel tables.
#include "colour/BayerCorrectorImpl.h"
#include "colour/ChannelLuts.h"

namespace kestrelink::colour {

void ResetToIdentity(CBayerCorrectorImpl& s) {
  for (uint32_t i = 0; i < kLutEntries; ++i) s.redLut[i] = s.greenLut[i] = s.blueLut[i] = i;
}

namespace {
uint32_t Clamped(int64_t v, int64_t top) { return uint32_t(v < 0 ? 0 : v > top ? top : v); }
}  // namespace

// Offsets are in sample units of the depth. Entries may exceed 255; 8-bit
// output keeps their low byte, so a 12-bit table wraps there (a settled
// behaviour of the manual balance).
void BuildManualLut(CBayerCorrectorImpl& s) {
  const uint32_t depth = s.bitDepth > 16 ? 16 : s.bitDepth;
  const int64_t top = (int64_t(1) << depth) - 1;
  for (int64_t i = 0; i <= top; ++i) {
    s.redLut[i] = Clamped(i + s.redOffset, top);
    s.greenLut[i] = Clamped(i + s.greenOffset, top);
    s.blueLut[i] = Clamped(i + s.blueOffset, top);
  }
}

}  // namespace kestrelink::colour
