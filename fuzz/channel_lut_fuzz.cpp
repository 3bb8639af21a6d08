// Channel-table text files of the Bayer corrector: arbitrary bytes into the
// three 65536-entry tables; every entry must stay a 16-bit value.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "colour/BayerCorrectorImpl.h"
#include "colour/ChannelLuts.h"

namespace {

using kestrelink::colour::kLutEntries;

// Bits above the sixteenth in any entry. Left uninstrumented: it reads whole
// tables that the parser owns, once a run, and would otherwise set the pace.
__attribute__((no_sanitize("address", "undefined"))) uint32_t HighBits(const uint32_t* table) {
  uint32_t high = 0;
  for (uint32_t i = 0; i < kLutEntries; ++i) high |= table[i];
  return high >> 16;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static CBayerCorrectorImpl state;  // constructed with identity tables
  static uint32_t identity[kLutEntries];
  static const bool ready = [] {
    for (uint32_t i = 0; i < kLutEntries; ++i) identity[i] = i;
    return true;
  }();
  (void)ready;
  for (uint32_t* table : {state.redLut.get(), state.greenLut.get(), state.blueLut.get()})
    std::memcpy(table, identity, sizeof identity);
  kestrelink::colour::ParseChannelLutText(state, reinterpret_cast<const char*>(data), size);
  if (HighBits(state.redLut.get()) | HighBits(state.greenLut.get()) | HighBits(state.blueLut.get())) std::abort();
  return 0;
}
