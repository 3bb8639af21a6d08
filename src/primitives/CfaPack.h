#pragma once
// Packing of one interpolated row's three planes into interleaved pixels,
// planes in the order of the destination's channels.
#include <cstdint>

#include "convert/rows/ColourRowsCopy.h"

namespace kestrelink::cfa {

inline void PackPlanes(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, uint8_t* dst, uint32_t width) {
  rows::CopyRows().merge3(p0, p1, p2, dst, width);
}

inline void PackPlanes(const uint16_t* p0, const uint16_t* p1, const uint16_t* p2, uint8_t* dst, uint32_t width) {
  uint16_t* out = reinterpret_cast<uint16_t*>(dst);
  for (uint32_t x = 0; x < width; ++x) {
    out[3 * size_t(x)] = p0[x];
    out[3 * size_t(x) + 1] = p1[x];
    out[3 * size_t(x) + 2] = p2[x];
  }
}

}  // namespace kestrelink::cfa
