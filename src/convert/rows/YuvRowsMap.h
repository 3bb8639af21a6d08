#pragma once
// Rows of the colour-map path for the 8-bit YUV layouts: each pixel through
// the library's integer formula in its group's own layout, then B, G, R
// through tables 0, 1, 2 (8-bit tables, an entry's low byte). `srcBytes` is
// what may be read from the row's start on (the rest of the frame); a partial
// last group is converted whole, reading the bytes that follow the row, those
// past `srcBytes` taken as 0, and only its pixels inside the row are written. BGRx rows keep the fourth byte. Lookups don't pay as gathers, so
// these rows have no vector variants.
#include <cstddef>
#include <cstdint>

#include "convert/rows/ColourRowsMap.h"

namespace kestrelink::rows {

// Groups: YUV422 Y0 U Y1 V; UVY422 U Y0 V Y1; UVY411 U Y0 Y1 V Y2 Y3; UVY444 U Y V.
void MapYuv422ToBgrx(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapYuv422ToBgr24(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapUvy422ToBgrx(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapUvy422ToBgr24(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapUvy411ToBgrx(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapUvy411ToBgr24(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapUvy444ToBgrx(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapUvy444ToBgr24(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t);

}  // namespace kestrelink::rows
