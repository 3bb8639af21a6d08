#pragma once
// Row kernels of the colour-map path: one table load per pixel. Indices are
// masked to the table, so a sample above the table's depth wraps inside it.
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

// The joined-pixel lookups, the hot ones, in processor variants (gathers).
struct LutRowKernels {
  void (*lut8_to_bgrx)(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx);
  void (*lut16_to_bgrx)(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx, uint32_t mask);
};

extern const LutRowKernels kLutRowsPortable;
extern const LutRowKernels kLutRowsAVX2;
extern const LutRowKernels kLutRowsAVX512;

inline const LutRowKernels& LutRows() {
  static const LutRowKernels* const slots[kVariantCount] = {&kLutRowsPortable, nullptr, nullptr, &kLutRowsAVX2,
                                                            &kLutRowsAVX512};
  return PickVariant(slots);
}

// BGRx pixels from a table of joined pixels.
void Lut8ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx);
void Lut16ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx, uint32_t mask);
// The first three bytes of each joined pixel.
void Lut8ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx);
void Lut16ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx, uint32_t mask);
// The low byte of a 16-bit table entry.
void Lut8ToByte(const uint8_t* src, uint8_t* dst, uint32_t w, const uint16_t* table);
void Lut16ToByte(const uint8_t* src, uint8_t* dst, uint32_t w, const uint16_t* table, uint32_t mask);
// The whole 16-bit entry.
void Lut16ToWord(const uint8_t* src, uint8_t* dst, uint32_t w, const uint16_t* table, uint32_t mask);

}  // namespace kestrelink::rows
