#pragma once
// Rows of the decimating resample: every step-th pixel of a source row, whole
// pixels of Bytes bytes, to `count` successive output pixels. One load and one
// store a pixel; steps 1 and 2 of the common pixel sizes move whole vectors.
#include <cstddef>
#include <cstdint>
#include <cstring>

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

// Every second pixel of 1, 2 and 4 bytes, 16 output bytes a step, then the
// plain loop; answers the pixels done.
uint32_t DecimateHalf1(const uint8_t* src, uint32_t count, uint8_t* dst);
uint32_t DecimateHalf2(const uint8_t* src, uint32_t count, uint8_t* dst);
uint32_t DecimateHalf4(const uint8_t* src, uint32_t count, uint8_t* dst);

template <size_t Bytes>
void DecimateRow(const uint8_t* src, uint32_t step, uint32_t count, uint8_t* dst) {
  if (count == 0) return;
  if (step == 1) {
    std::memcpy(dst, src, size_t(count) * Bytes);
    return;
  }
  uint32_t done = 0;
  if (step == 2) {
    if constexpr (Bytes == 1) done = DecimateHalf1(src, count, dst);
    if constexpr (Bytes == 2) done = DecimateHalf2(src, count, dst);
    if constexpr (Bytes == 4) done = DecimateHalf4(src, count, dst);
  }
  if constexpr (Bytes == 3 || Bytes == 6)
    DecimateRowWide<Bytes, Bytes + Bytes / 3>(src, step, count, dst);
  else
    DecimateRowPlain<Bytes>(src + size_t(done) * step * Bytes, step, count - done, dst + size_t(done) * Bytes);
}

}  // namespace kestrelink::geometry
