#pragma once
// Row kernels of the mirror and of the half turn: a row's pixels in reverse
// order, one kernel a pixel size, one table per processor variant (portable,
// AVX2; the other slots fall back). Pointers are byte addresses with no
// alignment assumed; source and destination rows must not overlap. Every
// variant gives the same bytes as the portable one.
#include <cstddef>
#include <cstdint>

#include "primitives/PixelSizes.h"
#include "primitives/Variant.h"

namespace kestrelink::mirror {

// dst pixel i = src pixel n-1-i, for i from 0 to n-1.
using ReverseRow = void (*)(const uint8_t* src, uint8_t* dst, uint32_t n);

struct MirrorRowKernels {
  ReverseRow bySize[prim::kPixelSizeCount];  // 1, 2, 3, 4, 6 and 8 bytes a pixel

  // The kernel for pixels of `bytes` bytes (1, 2, 3, 4, 6 or 8), else null.
  ReverseRow ForPixel(int bytes) const {
    const int slot = prim::PixelSizeSlot(bytes);
    return slot < 0 ? nullptr : bySize[slot];
  }
};

extern const MirrorRowKernels kMirrorRowsPortable;
extern const MirrorRowKernels kMirrorRowsAVX2;

inline const MirrorRowKernels& MirrorRows() {
  static const MirrorRowKernels* const slots[kVariantCount] = {&kMirrorRowsPortable, nullptr, nullptr, &kMirrorRowsAVX2,
                                                               nullptr};
  return PickVariant(slots);
}

// The portable row, also the tail of the vector variants.
template <int Bytes>
void ReversePortable(const uint8_t* src, uint8_t* dst, uint32_t n) {
  const uint8_t* s = src + size_t(n) * Bytes;
  for (uint32_t i = 0; i < n; ++i) {
    s -= Bytes;
    for (int b = 0; b < Bytes; ++b) dst[size_t(i) * Bytes + b] = s[b];
  }
}

}  // namespace kestrelink::mirror
