#pragma once
// The table lookups of the packed mono sources' colour-map path, as
// functors over staged 16-bit indices: look(indices, out, n) writes n
// pixels. Indices are masked to the table.
#include <cstdint>

#include "convert/rows/LutRows.h"

namespace kestrelink::colormap {

// Joined colour pixels: BGRx, fourth byte 0, or the first three bytes.
struct BgrxLook {
  const uint32_t* lut;
  uint32_t mask;
  void operator()(const uint8_t* index, uint8_t* out, uint32_t n) const { rows::Lut16ToBgrx(index, out, n, lut, mask); }
};
struct BgrLook {
  const uint32_t* lut;
  uint32_t mask;
  void operator()(const uint8_t* index, uint8_t* out, uint32_t n) const { rows::Lut16ToBgr(index, out, n, lut, mask); }
};

// One table: the entry's low byte, or the whole 16-bit entry.
struct ByteLook {
  const uint16_t* table;
  uint32_t mask;
  void operator()(const uint8_t* index, uint8_t* out, uint32_t n) const {
    rows::Lut16ToByte(index, out, n, table, mask);
  }
};
struct WordLook {
  const uint16_t* table;
  uint32_t mask;
  void operator()(const uint8_t* index, uint8_t* out, uint32_t n) const {
    rows::Lut16ToWord(index, out, n, table, mask);
  }
};

// Byte 0 of the joined colour pixel (the low byte of table 0) as a 16-bit
// word.
struct FirstByteWordLook {
  const uint32_t* lut;
  uint32_t mask;
  void operator()(const uint8_t* index, uint8_t* out, uint32_t n) const {
    for (uint32_t i = 0; i < n; ++i) {
      out[2 * size_t(i)] = uint8_t(lut[(index[2 * size_t(i)] | index[2 * size_t(i) + 1] << 8) & mask]);
      out[2 * size_t(i) + 1] = 0;
    }
  }
};

}  // namespace kestrelink::colormap
