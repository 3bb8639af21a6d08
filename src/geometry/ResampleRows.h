#pragma once
// Rows of the decimating resample: every step-th pixel of a source row, whole
// pixels of Bytes bytes, to `count` successive output pixels. The vector rows
// of the active variant move what they can (steps 2, 3 and 4); the plain
// loops finish the row, one load and one store a pixel.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "primitives/Variant.h"

namespace kestrelink::geometry {

template <size_t Bytes>
void DecimateRowPlain(const uint8_t* src, uint32_t step, uint32_t count, uint8_t* dst) {
  const size_t stride = size_t(step) * Bytes;
  for (uint32_t i = 0; i < count; ++i) std::memcpy(dst + size_t(i) * Bytes, src + i * stride, Bytes);
}

// Pixels of 3 and 6 bytes moved as 4 and 8: each load takes a byte or two of
// the next source pixel, which exists, and each store runs into the next
// output pixel, which is written after it; the last pixel moves exactly.
template <size_t Bytes, size_t Wide>
void DecimateRowWide(const uint8_t* src, uint32_t step, uint32_t count, uint8_t* dst) {
  if (count == 0) return;
  const size_t stride = size_t(step) * Bytes;
  for (uint32_t i = 0; i + 1 < count; ++i) std::memcpy(dst + size_t(i) * Bytes, src + i * stride, Wide);
  std::memcpy(dst + size_t(count - 1) * Bytes, src + (count - 1) * stride, Bytes);
}

// A vector row: moves the leading pixels of a row of `count` outputs, reading
// no source byte past pixel (count - 1) * step and writing no output byte past
// pixel count - 1; answers the pixels done.
using DecimateVectorRow = uint32_t (*)(const uint8_t* src, uint32_t count, uint8_t* dst);

// Slots by pixel size (1 to 8 bytes) and step (2 to 4); an empty slot moves nothing.
struct ResampleRowKernels {
  DecimateVectorRow rows[9][5];
};

extern const ResampleRowKernels kResampleRowsPortable;  // no vector rows
extern const ResampleRowKernels kResampleRowsSSE2;      // halving rows for 1, 2 and 4 bytes
extern const ResampleRowKernels kResampleRowsAVX2;      // byte shuffles, two lanes a step
extern const ResampleRowKernels kResampleRowsAVX512;    // byte shuffles, four lanes a step, then single lanes

inline const ResampleRowKernels& ResampleRows() {
  static const ResampleRowKernels* const slots[kVariantCount] = {&kResampleRowsPortable, &kResampleRowsSSE2, nullptr,
                                                                 &kResampleRowsAVX2, &kResampleRowsAVX512};
  return PickVariant(slots);
}

template <size_t Bytes>
void DecimateRow(const uint8_t* src, uint32_t step, uint32_t count, uint8_t* dst) {
  if (count == 0) return;
  if (step == 1) {
    std::memcpy(dst, src, size_t(count) * Bytes);
    return;
  }
  uint32_t done = 0;
  if (step <= 4)
    if (const DecimateVectorRow row = ResampleRows().rows[Bytes][step]) done = row(src, count, dst);
  src += size_t(done) * step * Bytes;
  dst += size_t(done) * Bytes;
  if constexpr (Bytes == 3 || Bytes == 6)
    DecimateRowWide<Bytes, Bytes + Bytes / 3>(src, step, count - done, dst);
  else
    DecimateRowPlain<Bytes>(src, step, count - done, dst);
}

}  // namespace kestrelink::geometry
