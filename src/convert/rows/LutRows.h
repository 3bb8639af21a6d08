#pragma once
// Row kernels of the colour-map path: one table load per pixel. Indices are
// masked to the table, so a sample above the table's depth wraps inside it.
// Gathers were measured and don't beat plain loads on a table of this size,
// so these rows have no vector variants.
#include <cstdint>

namespace kestrelink::rows {

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
