#pragma once
// Morton order of a 32 x 32 block: x in the even bit positions of the index,
// y in the odd ones. Within each 2 x 2 group the order is (0,0), (1,0),
// (0,1), (1,1) as (x, y); a block of side 2^k at index m covers m to
// m + 4^k - 1, its quadrants in the order top left, top right, bottom left,
// bottom right.
#include <cstdint>

namespace kestrelink::wavelet {

struct MortonPosition {
  uint32_t y, x;
};

// One entry per sample by (y, x): table[y * 32 + x].
void BuildMortonTable(uint32_t* table);
// One (y, x) pair per Morton index.
void BuildPositionTable(MortonPosition* table);
// A position table built once for the process.
const MortonPosition* PositionTable();

}  // namespace kestrelink::wavelet
