// Portable run-length loops: the reference the vector variants must match,
// written as the format reads.
#include <algorithm>

#include "compress/kernels/RleCoder.h"

namespace kestrelink::compress {

size_t RleEncodePortable(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  size_t i = 0, o = 0;
  while (i < n) {
    const uint8_t b = src[i];
    size_t repeats = 0;  // equal bytes after b, at most 256
    while (repeats < 256 && i + 1 + repeats < n && src[i + 1 + repeats] == b) ++repeats;
    if (repeats == 0) {
      if (o == room) break;
      dst[o++] = b;
      ++i;
      continue;
    }
    if (room - o < 3) break;
    dst[o] = b;
    dst[o + 1] = b;
    dst[o + 2] = uint8_t(repeats - 1);
    o += 3;
    i += 1 + repeats;
  }
  *taken = i;
  return o;
}

size_t RleDecodePortable(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  size_t i = 0, o = 0;
  while (n - i >= 3) {
    if (src[i] != src[i + 1]) {
      if (o == room) break;
      dst[o++] = src[i++];
      continue;
    }
    const size_t copies = size_t(src[i + 2]) + 2, filled = std::min(copies, room - o);
    std::fill(dst + o, dst + o + filled, src[i]);
    o += filled;
    if (filled < copies) break;
    i += 3;
  }
  if (n - i < 3) {  // the last one or two bytes stand for themselves
    while (i < n && o < room) dst[o++] = src[i++];
  }
  *taken = i;
  return o;
}

const RleCoderKernels kRleCoderPortable = {RleEncodePortable, RleDecodePortable};

}  // namespace kestrelink::compress
