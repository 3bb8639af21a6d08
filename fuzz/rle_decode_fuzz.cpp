// RLE streams of CIppImageCompress: arbitrary payloads decoded into a
// frame of a size the input gives; see lossless_fuzz.h.
#include "lossless_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  return FuzzLosslessDecoder(IppCompressRLE, data, size);
}
