#pragma once
// The wavelet verb, and the round trip that the demo shows.
#include <cstdint>
#include <ostream>
#include <span>
#include <string_view>
#include <vector>

#include "Args.h"

namespace kestrelink::tool {

int RunWavelet(std::span<const std::string_view> args);
void PrintWaveletUsage(std::ostream& out);

struct WaveletTrip {
  uint32_t bytes;          // the wavelet frame's size
  int largestDifference;   // between the raw frame and its decoded copy
};
// Encodes raw (one byte a pixel at 8 bits, else little-endian words) into
// stream and decodes it back; a failure is a RunError.
WaveletTrip WaveletRoundTrip(const FrameSize& size, int bits, int levels, const std::vector<uint8_t>& raw,
                             std::vector<uint8_t>& stream);

}  // namespace kestrelink::tool
