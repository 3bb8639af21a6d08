#pragma once
// Packing of one interpolated row's three planes into interleaved pixels,
// planes in the order of the destination's channels.
#include <cstdint>

#include "convert/rows/ColourRowsCopy.h"
#include "primitives/CfaRows.h"

namespace kestrelink::cfa {

inline void PackPlanes(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, uint8_t* dst, uint32_t width) {
  rows::CopyRows().merge3(p0, p1, p2, dst, width);
}

inline void PackPlanes(const uint16_t* p0, const uint16_t* p1, const uint16_t* p2, uint8_t* dst, uint32_t width) {
  CfaRows().pack16(p0, p1, p2, reinterpret_cast<uint16_t*>(dst), width);
}

}  // namespace kestrelink::cfa
