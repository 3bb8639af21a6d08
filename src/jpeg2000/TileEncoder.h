#pragma once
// The coder of the one tile: cuts each component's wavelet bands into
// code-blocks, codes every block over the OpenMP team, and writes the
// packets in the order the converter fixes (resolution, then component,
// then the one precinct of the resolution, layer 0).
#include <cstdint>

#include "jpeg2000/ByteStream.h"

namespace kestrelink::j2k {

struct TileSettings {
  uint32_t width;
  uint32_t height;
  uint32_t components;
  uint32_t levels;
  uint32_t blockWidthExp;   // code-block sides are 1 << exp, at most 64
  uint32_t blockHeightExp;
};

// planes[c] holds component c after the transforms, rows `width` apart.
void WriteTilePackets(const TileSettings& tile, const int32_t* const* planes, ByteStream& out);

}  // namespace kestrelink::j2k
