#pragma once
// Rows of the 10- and 20-bit 4:2:2 layouts through the library's integer
// formula (convert/YuvFormula.h), one table per processor variant; every
// variant gives the words of the portable one; the planar rows interleave
// them.
//   10-bit packed: 16 bytes hold six pixels as four little-endian words of
//   three 10-bit samples (bits 0-9, 10-19, 20-29): U0 Y0 V0 | Y1 U1 Y2 |
//   V1 Y3 U2 | Y4 V2 Y5; each sample gives its top 8 bits, no rounding.
//   20-bit: four 16-bit words Y0 U Y1 V a pair, each taken >> 2; the words
//   of a partial last pair that lie past the row count as 0.
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

struct YuvRowKernels {
  // B, G, R of `w` pixels as 16-bit planes (values 0 .. 255). The 10-bit
  // packed row converts the whole groups of six that cover `w` and may write
  // up to kPlanePadding words past those; the 20-bit row writes `w` words.
  void (*p10_to_planes)(const uint8_t* src, uint16_t* b, uint16_t* g, uint16_t* r, uint32_t w);
  void (*w20_to_planes)(const uint8_t* src, uint16_t* b, uint16_t* g, uint16_t* r, uint32_t w);
};

inline constexpr uint32_t kPlanePadding = 16;

extern const YuvRowKernels kYuvRowsPortable;
extern const YuvRowKernels kYuvRowsAVX2;

inline const YuvRowKernels& YuvRows() {
  static const YuvRowKernels* const slots[kVariantCount] = {&kYuvRowsPortable, nullptr, nullptr, &kYuvRowsAVX2,
                                                            nullptr};
  return PickVariant(slots);
}

// Portable rows, also the tails of the vector variants.
void Packed10ToPlanesPortable(const uint8_t* src, uint16_t* b, uint16_t* g, uint16_t* r, uint32_t w);
void Words20ToPlanesPortable(const uint8_t* src, uint16_t* b, uint16_t* g, uint16_t* r, uint32_t w);

}  // namespace kestrelink::rows
