// Sub-band sets of the block coder and its plane range.
#include "compress/wavelet/SetPartitionCoder.h"

namespace kestrelink::wavelet {

int BuildSpeck2Sets(int levels, const uint32_t* mortonTable, Speck2Set* sets) {
  const int count = 3 * levels + 1;
  for (int i = 0; i < count; ++i) {
    const int v = i == 0 ? levels : levels - (i - 1) / 3;
    const int side = 32 >> v;
    const int k = i == 0 ? 0 : i - 3 * ((i - 1) / 3);
    // Band below the low band, then to its right, then diagonal, as (x, y).
    const int x = (k == 2 || k == 3) ? side : 0;
    const int y = (k == 1 || k == 3) ? side : 0;
    Speck2Set& s = sets[i];
    s.width = s.height = side;
    s.x = x;
    s.y = y;
    s.index = i;
    s.start = mortonTable[y * 32 + x];
    s.sideLog = int8_t(__builtin_ctz(uint32_t(side)));
  }
  return count;
}

Speck2Params PlaneRange(int top, int ratio) {
  Speck2Params p;
  const int planes = (top + 1) * ratio / 100;
  p.extraBits = int(((top + 1) * ratio / 100.0 - planes) * 100);
  p.lowestPlane = top - planes > 0 ? top - planes : 0;
  return p;
}

uint32_t Speck2BlockBound() {
  // Per plane: the set flags and the flags between set groups, four flags
  // for each split block of 16 or more samples, one bit a sample; once per
  // sample its sign and lower bits; the top field and the end bits.
  constexpr uint32_t planes = kSpeck2TopLimit + 1;
  constexpr uint32_t perPlane = kMaxSpeck2Sets + 6 + 4 * (64 + 16 + 4 + 1) + 1024;
  constexpr uint32_t bits = 10 + planes * perPlane + 1024 * (1 + kSpeck2TopLimit) + 2;
  return (bits + 7) / 8;
}

}  // namespace kestrelink::wavelet
