// The counts of the 256 byte values of a buffer. Four tables take turns so
// that runs of one value do not wait on their own last increment.
#include "compress/HuffmanCode.h"

namespace kestrelink::compress {

void CountBytes(const Ipp8u* src, uint32_t size, Ipp32s counts[256]) {
  uint32_t tables[4][256] = {};
  uint32_t i = 0;
  for (; i + 4 <= size; i += 4) {
    ++tables[0][src[i]];
    ++tables[1][src[i + 1]];
    ++tables[2][src[i + 2]];
    ++tables[3][src[i + 3]];
  }
  for (; i < size; ++i) ++tables[0][src[i]];
  for (uint32_t s = 0; s < 256; ++s) counts[s] = Ipp32s(tables[0][s] + tables[1][s] + tables[2][s] + tables[3][s]);
}

}  // namespace kestrelink::compress
