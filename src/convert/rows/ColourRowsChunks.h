#pragma once
// Two row kernels in sequence through a buffer on the stack: chunks of a row
// small enough to stay in the first-level cache, so that a conversion can be
// made of two vectorised steps at little more than the cost of one pass.
#include <algorithm>
#include <cstdint>

namespace kestrelink::rows {

// first(x, n, mid) fills `mid` from pixels x .. x+n-1, then second(x, n, mid)
// takes them on; `midBytes` is what a pixel needs in between.
template <uint32_t midBytes, class First, class Second>
inline void ThroughChunks(uint32_t w, First first, Second second) {
  constexpr uint32_t kPixels = 1024;
  alignas(64) uint8_t mid[kPixels * midBytes];
  for (uint32_t x = 0; x < w; x += kPixels) {
    const uint32_t n = std::min(kPixels, w - x);
    first(x, n, mid);
    second(x, n, mid);
  }
}

}  // namespace kestrelink::rows
