#pragma once
// Kernels of the quarter turns: a region's pixels moved across its main
// diagonal, tile by tile, so that both frames are walked a few cache lines
// at a time instead of a column at a time across the whole frame. With a
// negative source step (rows read bottom-up) this is the clockwise quarter
// turn; with a negative destination step, the anticlockwise one. One table
// per processor variant (portable, SSE2, AVX2; the other slots fall back).
#include <cstddef>
#include <cstdint>

#include "primitives/PixelSizes.h"
#include "primitives/Variant.h"

namespace kestrelink::rotate {

// dst pixel (row j, column i) = src pixel (row i, column j) for i < rows and
// j < cols. Steps are in bytes, of either sign; the regions must not overlap.
using TransposeRegion = void (*)(const uint8_t* src, ptrdiff_t srcStep, uint8_t* dst, ptrdiff_t dstStep, uint32_t cols,
                                 uint32_t rows);

struct TransposeKernels {
  TransposeRegion bySize[prim::kPixelSizeCount];  // 1, 2, 3, 4, 6 and 8 bytes a pixel

  // The kernel for pixels of `bytes` bytes (1, 2, 3, 4, 6 or 8), else null.
  TransposeRegion ForPixel(int bytes) const {
    const int slot = prim::PixelSizeSlot(bytes);
    return slot < 0 ? nullptr : bySize[slot];
  }
};

extern const TransposeKernels kTransposePortable;
extern const TransposeKernels kTransposeSSE2;
extern const TransposeKernels kTransposeAVX2;

inline const TransposeKernels& Transposes() {
  static const TransposeKernels* const slots[kVariantCount] = {&kTransposePortable, &kTransposeSSE2, nullptr,
                                                               &kTransposeAVX2, nullptr};
  return PickVariant(slots);
}

}  // namespace kestrelink::rotate
