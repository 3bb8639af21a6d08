#pragma once
// Row kernels of the planar colour sources: three planes to interleaved
// pixels. Every kernel takes the planes in the order of the destination
// bytes they feed, D0, D1, D2. Pointers are byte addresses with no alignment
// assumed; 16-bit samples are little-endian words.
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

// Pixel-part tables: part[i] holds byte i of a BGRx pixel, so a pixel is
// part[0][s0] | part[1][s1] | part[2][s2]. Each has 2^bits entries (bits 8,
// 10 or 12) and a sample is masked to them. They must be the converter's:
// t(s) << 8i with t(s) = s for 8 bits and t(0) = 0, t(s) = (s - 1) >> (bits - 8)
// above; the vector rows compute those entries in line, and the variant test
// holds them to the tables.
struct PixelPartTables {
  const uint32_t* part[3];
  uint32_t bits;
};

struct PlanarRowKernels {
  // BGRx pixels from the pixel-part tables, fourth byte 0; 8-bit planes
  // (bits 8), and 16-bit planes (bits 10 or 12).
  void (*bytes_to_bgrx)(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                        const PixelPartTables& tables);
  void (*words_to_bgrx)(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                        const PixelPartTables& tables);
  // 16-bit samples shifted right by `shift` (16 or more gives 0) and truncated
  // to bytes: into BGRx pixels whose fourth byte stays as it was, and into
  // BGR24 pixels.
  void (*words_shift_to_bgrx)(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                              uint32_t shift);
  void (*words_shift_to_bgr24)(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                               uint32_t shift);
};

extern const PlanarRowKernels kPlanarRowsPortable;
extern const PlanarRowKernels kPlanarRowsAVX2;
extern const PlanarRowKernels kPlanarRowsAVX512;

inline const PlanarRowKernels& PlanarRows() {
  static const PlanarRowKernels* const slots[kVariantCount] = {&kPlanarRowsPortable, nullptr, nullptr,
                                                               &kPlanarRowsAVX2, &kPlanarRowsAVX512};
  return PickVariant(slots);
}

// Portable rows, also the tails of the vector variants.
void BytesToBgrxPortable(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                         const PixelPartTables& tables);
void WordsToBgrxPortable(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                         const PixelPartTables& tables);
void WordsShiftToBgrxPortable(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                              uint32_t shift);
void WordsShiftToBgr24Portable(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                               uint32_t shift);

}  // namespace kestrelink::rows
