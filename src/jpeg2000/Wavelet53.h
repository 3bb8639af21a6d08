#pragma once
// The reversible 5-3 wavelet over the levels of one plane of signed 32-bit
// samples, in place. Each level transforms the low-pass band of the level
// before: columns first, then rows; the low half of each direction keeps
// (size + 1) >> 1 samples and the high half size >> 1, so the bands of a
// level stand as LL | HL over LH | HH in the band's top-left corner.
// Borders extend symmetrically; a single sample stays as it is.
#include <cstddef>
#include <cstdint>

namespace kestrelink::j2k {

struct PlaneView {
  int32_t* samples;
  size_t stride;  // samples between rows
  uint32_t width;
  uint32_t height;
};

// scratch: width * height samples for the column pass.
void Forward53(const PlaneView& plane, uint32_t levels, int32_t* scratch);
void Inverse53(const PlaneView& plane, uint32_t levels, int32_t* scratch);

// Size of the band that level `level` transforms (level 0 is the whole plane).
inline uint32_t LevelSize(uint32_t size, uint32_t level) {
  return uint32_t((uint64_t(size) + (uint64_t(1) << level) - 1) >> level);
}

}  // namespace kestrelink::j2k
