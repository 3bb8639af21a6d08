// Portable byte scans: the reference the vector variants must match.
#include "compress/kernels/ByteScan.h"

namespace kestrelink::compress {

size_t FindEqualPairPortable(const uint8_t* p, size_t n) {
  for (size_t i = 0; i + 1 < n; ++i)
    if (p[i] == p[i + 1]) return i;
  return n;
}

size_t CountEqualPortable(const uint8_t* p, size_t n, uint8_t v) {
  size_t i = 0;
  while (i < n && p[i] == v) ++i;
  return i;
}

const ByteScanKernels kByteScanPortable = {FindEqualPairPortable, CountEqualPortable};

}  // namespace kestrelink::compress
