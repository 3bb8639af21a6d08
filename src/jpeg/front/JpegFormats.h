#pragma once
// The format codes of the JPEG front: which depths each accepts, and what
// decoding reports for it.
#include <cstdint>

namespace kestrelink::jpegfront {

bool FormatAccepted(uint32_t format, uint32_t bitCount, uint32_t sampleBits);

struct DecodeInfo {
  uint32_t format = 0, bitCount = 0, sampleBits = 0;
};
// 0, 0, 0 for an unknown code.
DecodeInfo DecodeImageInfo(uint32_t format, uint32_t bitCount);

}  // namespace kestrelink::jpegfront
