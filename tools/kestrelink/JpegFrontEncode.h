#pragma once
// jpeg encode --format: any camera layout through CJpegConversion, with its
// software back-ends or, with --gpu, the GPU companion.
#include <cstdint>
#include <string>

#include "Args.h"

namespace kestrelink::tool {

struct FrontEncodeRequest {
  FrameSize size;
  uint32_t format = 0, bits = 0, sampleBits = 0;
  int quality = 85;
  bool gpu = false;
  std::string in, out;
};

// Bytes of one frame of the format at that depth: planes follow one another
// for the three-plane format 300.
uint64_t FrontFrameBytes(uint32_t format, uint32_t bits, uint32_t width, uint32_t height);

int EncodeThroughFront(const FrontEncodeRequest& request);

}  // namespace kestrelink::tool
