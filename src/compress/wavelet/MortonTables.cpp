// Filling the Morton and position tables of a block.
#include "compress/wavelet/MortonTables.h"

namespace kestrelink::wavelet {

namespace {

uint32_t Interleave(uint32_t x, uint32_t y) {
  uint32_t m = 0;
  for (uint32_t b = 0; b < 5; ++b) m |= ((x >> b) & 1) << (2 * b) | ((y >> b) & 1) << (2 * b + 1);
  return m;
}

}  // namespace

void BuildMortonTable(uint32_t* table) {
  for (uint32_t y = 0; y < 32; ++y)
    for (uint32_t x = 0; x < 32; ++x) table[y * 32 + x] = Interleave(x, y);
}

void BuildPositionTable(MortonPosition* table) {
  for (uint32_t y = 0; y < 32; ++y)
    for (uint32_t x = 0; x < 32; ++x) table[Interleave(x, y)] = {y, x};
}

const MortonPosition* PositionTable() {
  static const struct Table {
    MortonPosition entries[1024];
    Table() { BuildPositionTable(entries); }
  } table;
  return table.entries;
}

}  // namespace kestrelink::wavelet
