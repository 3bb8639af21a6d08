// Channel-table text files of the Bayer corrector: arbitrary bytes into the
// three 65536-entry tables; every entry must stay a 16-bit value.
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "colour/BayerCorrectorImpl.h"
#include "colour/ChannelLuts.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static CBayerCorrectorImpl state;
  kestrelink::colour::ResetToIdentity(state);
  kestrelink::colour::ParseChannelLutText(state, reinterpret_cast<const char*>(data), size);
  for (uint32_t i = 0; i < kestrelink::colour::kLutEntries; ++i)
    if (state.redLut[i] > 0xFFFF || state.greenLut[i] > 0xFFFF || state.blueLut[i] > 0xFFFF) std::abort();
  return 0;
}
