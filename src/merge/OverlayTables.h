#pragma once
// Tables of the 8-bit overlay kernels, drawn from the merger's own tables
// at each call (a few hundred entries, next to a frame of a million pixels).
#include <cstdint>

#include "merge/MergeRows.h"

namespace kestrelink::merge {

// The 8-bit gamma table (entries 0 .. 255) in bytes.
struct GammaBytes {
  uint8_t entry[256];
  explicit GammaBytes(const uint16_t* gamma) {
    for (int v = 0; v < 256; ++v) entry[v] = uint8_t(gamma[v]);
  }
};

// A ColourTable whose entry v is colour(index(v)); colour(i) answers the
// blue, green and red bytes through its three arguments.
template <class Index, class Colour>
ColourTable MakeColourTable(Index index, Colour colour) {
  ColourTable t;
  for (int v = 0; v < 256; ++v) colour(index(v), t.plane[0][v], t.plane[1][v], t.plane[2][v]);
  PackColourTable(t);
  return t;
}

}  // namespace kestrelink::merge
