#pragma once
// Row kernels of the colour-filter-array interpolation, one table per
// processor variant. A mosaic row holds two colours: green, and one of red or
// blue (call it X) on the other columns; Y is the colour of the rows above
// and below. Each kernel fills one output row of three planes (X, G, Y) for
// columns x0 .. x1-1 from the five mosaic rows y-2 .. y+2, which it may read
// at columns x0-2 .. x1+1.
//
// The interpolation is gradient-corrected linear: each missing colour is the
// bilinear estimate plus a share of the Laplacian of the colour present at
// the pixel, with these weights in sixteenths (C centre, W/E/N/S the
// neighbours at distance 1, WW/EE/NN/SS at distance 2, D the four diagonals):
//   G at X or Y sites:       8C + 4(W+E+N+S) - 2(WW+EE+NN+SS)
//   X at G sites (row X):   10C + 8(W+E) - 2(WW+EE) - 2D + (NN+SS)
//   Y at G sites (column Y):10C + 8(N+S) - 2(NN+SS) - 2D + (WW+EE)
//   Y at X sites (diagonal):12C + 4D - 3(WW+EE+NN+SS)
// rounded as (sum + 8) >> 4 and clamped to 0 .. top.
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::cfa {

// Five row addresses, y-2 first.
struct Window8 {
  const uint8_t* row[5];
};
struct Window16 {
  const uint16_t* row[5];
};

// Where an output row's planes go; greenOdd says whether green sits on the
// odd columns of the centre row.
template <class Sample>
struct PlaneRow {
  Sample* x;
  Sample* g;
  Sample* y;
  bool greenOdd;
};

struct CfaRowKernels {
  void (*interior8)(const Window8& in, PlaneRow<uint8_t> out, uint32_t x0, uint32_t x1);
  // Samples are clamped to `top` (an all-ones value up to 65535).
  void (*interior16)(const Window16& in, PlaneRow<uint16_t> out, uint32_t x0, uint32_t x1, uint32_t top);
  // Three planes of 16-bit samples interleaved into pixels of three words, p0 first.
  void (*pack16)(const uint16_t* p0, const uint16_t* p1, const uint16_t* p2, uint16_t* dst, uint32_t w);
  // Every bit set in a row of w samples.
  uint32_t (*bits16)(const uint16_t* row, uint32_t w);
  // Three planes of bytes into the first three bytes of four-byte pixels,
  // p0 first; the fourth byte keeps what dst held.
  void (*pack8x4)(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, uint8_t* dst, uint32_t w);
};

extern const CfaRowKernels kCfaRowsPortable;
extern const CfaRowKernels kCfaRowsSSE2;
extern const CfaRowKernels kCfaRowsAVX2;
extern const CfaRowKernels kCfaRowsAVX512;

inline const CfaRowKernels& CfaRows() {
  static const CfaRowKernels* const slots[kVariantCount] = {&kCfaRowsPortable, &kCfaRowsSSE2, nullptr,
                                                            &kCfaRowsAVX2, &kCfaRowsAVX512};
  return PickVariant(slots);
}

// Portable rows, also the tails of the vector variants.
void Interior8Portable(const Window8& in, PlaneRow<uint8_t> out, uint32_t x0, uint32_t x1);
void Interior16Portable(const Window16& in, PlaneRow<uint16_t> out, uint32_t x0, uint32_t x1, uint32_t top);
void Pack16Portable(const uint16_t* p0, const uint16_t* p1, const uint16_t* p2, uint16_t* dst, uint32_t w);
uint32_t Bits16Portable(const uint16_t* row, uint32_t w);
void Pack8x4Portable(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, uint8_t* dst, uint32_t w);

}  // namespace kestrelink::cfa
