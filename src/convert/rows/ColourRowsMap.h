#pragma once
// Rows of the colour-map path for the colour sources: three table lookups a
// pixel, destination byte (or word) i from table i. Tables with an output of
// 8 bits or less hold byte values, and a byte destination takes an entry's
// low byte. BGRx rows keep the fourth byte. Raw 16-bit samples are masked to
// the table (`mask` = 2^in - 1), so a sample above the depth wraps inside it;
// the other indices are what each layout's rule makes of the pixel, always
// inside a table of that layout's depth. Lookups don't pay as gathers, so
// these rows have no vector variants.
#include <cstdint>

namespace kestrelink::rows {

struct ColourTables {
  const uint16_t* t[3];
  uint32_t mask;
};

// Interleaved 8-bit sources: B, G, R bytes; B, G, R, x; and R, G, B.
void MapBgr24ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapBgr24ToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapBgrxToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapBgrxToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapRgb24ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapRgb24ToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);

// Interleaved 16-bit sources: B, G, R words; R, G, B; and B, G, R, x.
void MapBgr48ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapBgr48ToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapRgb48ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapRgb48ToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapBgr64ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
// Whole 16-bit entries out, the index limited to `mask` rather than wrapped.
void MapBgr48ToBgr48(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapBgr64ToBgr48(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);

// Three planes, given in the order of the destination bytes they feed.
void MapPlanes8ToBgrx(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                      const ColourTables& t);
void MapPlanes8ToBgr24(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                       const ColourTables& t);
void MapPlanes16ToBgrx(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                       const ColourTables& t);
void MapPlanes16ToBgr24(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                        const ColourTables& t);

// 5-5-5 words: u & 31, (u >> 5) & 31, (high byte >> 2) & 31, into 5-bit tables.
void Map555ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void Map555ToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
// 5-6-5 words into 6-bit tables: (u & 31) * 2, (u >> 5) & 63, and high byte
// >> 2, which takes the top bit of G along with R.
void Map565ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void Map565ToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);

// 32-bit words of 10-bit channels into 10-bit tables, u the word:
// - D0 = t0[u & 0x1FF], D1 = t1[(u >> 10) & 0x1FF]; D2 and the fourth byte
//   are not written (the third channel is the caller's);
void MapBgr10ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapBgr10ToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
// - D0 = t0[u & 0x3FF], D1 = t1[(u >> 12) & 0x3FF], D2 = t2[(u >> 20) & 0x3FF];
void MapPhoenixToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapPhoenixToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
// - D0 = t0[(u >> 20) & 0x3FF], D1 = t1[(u >> 12) & 0x3FF], D2 = t2[u & 0x3FF];
void MapRgbPhoenixToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapRgbPhoenixToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
// - channel i is byte i + 1 above bits 2i, 2i + 1 of byte 0;
void MapGvspV1ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapGvspV1ToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
// - D0 = t0[(u >> 20) & 0x3FF], D1 = t1[(u >> 10) & 0x3FF], D2 = t2[u & 0x3FF].
void MapGvspV2ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);
void MapGvspV2ToBgr24(const uint8_t* src, uint8_t* dst, uint32_t w, const ColourTables& t);

}  // namespace kestrelink::rows
