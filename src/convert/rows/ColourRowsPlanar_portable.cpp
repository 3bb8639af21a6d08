// Portable planar-colour rows: the reference every vector variant must match.
// The table rows cost three loads and two ors a pixel.
#include <cstring>

#include "convert/rows/ColourRowsPlanar.h"

namespace kestrelink::rows {
namespace {

uint32_t Load16(const uint8_t* p) { return uint32_t(p[0] | p[1] << 8); }
uint8_t Narrow(uint32_t s, uint32_t shift) { return shift < 16 ? uint8_t(s >> shift) : 0; }

// Bytes 0-2 of `pixelBytes`-byte pixels from three planes of words; a fourth byte stays.
template <uint32_t pixelBytes>
void WordsShiftRow(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x, dst += pixelBytes) {
    const size_t at = 2 * size_t(x);
    dst[0] = Narrow(Load16(d0 + at), shift);
    dst[1] = Narrow(Load16(d1 + at), shift);
    dst[2] = Narrow(Load16(d2 + at), shift);
  }
}

}  // namespace

void BytesToBgrxPortable(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                         const PixelPartTables& t) {
  for (uint32_t x = 0; x < w; ++x) {
    const uint32_t px = t.part[0][d0[x]] | t.part[1][d1[x]] | t.part[2][d2[x]];
    std::memcpy(dst + 4 * size_t(x), &px, 4);
  }
}

void WordsToBgrxPortable(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                         const PixelPartTables& t) {
  const uint32_t mask = (1u << t.bits) - 1;  // a sample above the depth wraps inside the table
  for (uint32_t x = 0; x < w; ++x) {
    const size_t at = 2 * size_t(x);
    const uint32_t px =
        t.part[0][Load16(d0 + at) & mask] | t.part[1][Load16(d1 + at) & mask] | t.part[2][Load16(d2 + at) & mask];
    std::memcpy(dst + 4 * size_t(x), &px, 4);
  }
}

void WordsShiftToBgrxPortable(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                              uint32_t shift) {
  WordsShiftRow<4>(d0, d1, d2, dst, w, shift);
}

void WordsShiftToBgr24Portable(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                               uint32_t shift) {
  WordsShiftRow<3>(d0, d1, d2, dst, w, shift);
}

const PlanarRowKernels kPlanarRowsPortable = {
    BytesToBgrxPortable, WordsToBgrxPortable, WordsShiftToBgrxPortable, WordsShiftToBgr24Portable,
};

}  // namespace kestrelink::rows
