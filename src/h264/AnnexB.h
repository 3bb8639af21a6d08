#pragma once
// Annex B byte streams: NAL units behind start codes 00 00 01 (or 00 00 00 01).
#include <cstddef>
#include <cstdint>
#include <vector>

namespace UMC {

enum NalType : uint8_t {
  NAL_SLICE = 1,
  NAL_IDR_SLICE = 5,
  NAL_SEI = 6,
  NAL_SPS = 7,
  NAL_PPS = 8,
  NAL_AUD = 9,
};

inline uint8_t NalTypeOf(uint8_t header) { return header & 31; }

// Offset of the first 00 00 01 at or after `from`, or `size` if none.
size_t FindStartCode(const uint8_t* data, size_t size, size_t from);

// Length of the start code at the very front of `data`: 3, 4, or 0 for none.
size_t StartCodeLength(const uint8_t* data, size_t size);

// The payload of a NAL unit without its emulation-prevention bytes.
std::vector<uint8_t> UnescapeRbsp(const uint8_t* nal, size_t size);

}  // namespace UMC
