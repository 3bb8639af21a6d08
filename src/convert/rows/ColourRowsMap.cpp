// Colour-map rows of the colour sources: one generic row over a pixel source
// (what each layout makes of a pixel as three table indices) and a
// destination (which bytes or words it writes).
#include "convert/rows/ColourRowsMap.h"

#include <algorithm>
#include <cstring>

namespace kestrelink::rows {
namespace {

struct Indices {
  uint32_t i[3];
};

uint32_t Load16(const uint8_t* p) { return uint32_t(p[0] | p[1] << 8); }
uint32_t Load32(const uint8_t* p) {
  uint32_t u;
  std::memcpy(&u, p, 4);
  return u;
}

// Sources: the three table indices of pixel x.
template <uint32_t stride, uint32_t c0, uint32_t c1, uint32_t c2>
struct Bytes {
  const uint8_t* p;
  Indices operator()(uint32_t x, uint32_t) const {
    const uint8_t* px = p + stride * size_t(x);
    return {{px[c0], px[c1], px[c2]}};
  }
};
template <uint32_t stride, uint32_t c0, uint32_t c1, uint32_t c2>
struct Words {  // stride and channels in 16-bit words; the sample masked to the table
  const uint8_t* p;
  Indices operator()(uint32_t x, uint32_t mask) const {
    const uint8_t* px = p + 2 * stride * size_t(x);
    return {{Load16(px + 2 * c0) & mask, Load16(px + 2 * c1) & mask, Load16(px + 2 * c2) & mask}};
  }
};
template <uint32_t stride>
struct WordsLimited {  // min(s, mask): the index stops at the table's last entry
  const uint8_t* p;
  Indices operator()(uint32_t x, uint32_t mask) const {
    const uint8_t* px = p + 2 * stride * size_t(x);
    return {{std::min(Load16(px), mask), std::min(Load16(px + 2), mask), std::min(Load16(px + 4), mask)}};
  }
};
struct PlaneBytes {
  const uint8_t* p[3];
  Indices operator()(uint32_t x, uint32_t) const { return {{p[0][x], p[1][x], p[2][x]}}; }
};
struct PlaneWords {
  const uint8_t* p[3];
  Indices operator()(uint32_t x, uint32_t mask) const {
    const size_t at = 2 * size_t(x);
    return {{Load16(p[0] + at) & mask, Load16(p[1] + at) & mask, Load16(p[2] + at) & mask}};
  }
};
template <Indices (*rule)(uint32_t)>
struct Packed16 {
  const uint8_t* p;
  Indices operator()(uint32_t x, uint32_t) const { return rule(Load16(p + 2 * size_t(x))); }
};
template <Indices (*rule)(uint32_t)>
struct Packed32 {
  const uint8_t* p;
  Indices operator()(uint32_t x, uint32_t) const { return rule(Load32(p + 4 * size_t(x))); }
};

Indices Rule555(uint32_t u) { return {{u & 31, u >> 5 & 31, (u >> 8) >> 2 & 31}}; }
Indices Rule565(uint32_t u) { return {{(u & 31) * 2, u >> 5 & 63, (u >> 8) >> 2}}; }
Indices RuleBgr10(uint32_t u) { return {{u & 0x1FF, u >> 10 & 0x1FF, 0}}; }  // nine-bit masks on a ten-bit table
Indices RulePhoenix(uint32_t u) { return {{u & 0x3FF, u >> 12 & 0x3FF, u >> 20 & 0x3FF}}; }  // bits 20-29, not 22-31
Indices RuleRgbPhoenix(uint32_t u) { return {{u >> 20 & 0x3FF, u >> 12 & 0x3FF, u & 0x3FF}}; }
Indices RuleGvspV1(uint32_t u) {
  return {{(u & 3) | (u >> 8 & 0xFF) << 2, (u >> 2 & 3) | (u >> 16 & 0xFF) << 2, (u >> 4 & 3) | (u >> 24) << 2}};
}
Indices RuleGvspV2(uint32_t u) { return {{u >> 20 & 0x3FF, u >> 10 & 0x3FF, u & 0x3FF}}; }

// Destinations.
struct ToBgrx {  // the fourth byte kept
  static void Put(uint8_t* dst, uint32_t x, uint32_t b0, uint32_t b1, uint32_t b2, bool) {
    uint8_t* p = dst + 4 * size_t(x);
    uint32_t px;
    std::memcpy(&px, p, 4);
    px = (px & 0xFF000000u) | (b0 & 0xFF) | (b1 & 0xFF) << 8 | (b2 & 0xFF) << 16;
    std::memcpy(p, &px, 4);
  }
};
struct ToBgr24 {  // all but a row's last pixel store four bytes, the fourth where the next pixel goes
  static void Put(uint8_t* dst, uint32_t x, uint32_t b0, uint32_t b1, uint32_t b2, bool last) {
    const uint32_t px = (b0 & 0xFF) | (b1 & 0xFF) << 8 | (b2 & 0xFF) << 16;
    if (last)
      std::memcpy(dst + 3 * size_t(x), &px, 3);
    else
      std::memcpy(dst + 3 * size_t(x), &px, 4);
  }
};
template <uint32_t stride>
struct FirstTwoBytes {  // D0 and D1 only
  static void Put(uint8_t* dst, uint32_t x, uint32_t b0, uint32_t b1, uint32_t, bool) {
    dst[stride * size_t(x)] = uint8_t(b0);
    dst[stride * size_t(x) + 1] = uint8_t(b1);
  }
};
struct ToWords3 {
  static void Put(uint8_t* dst, uint32_t x, uint32_t v0, uint32_t v1, uint32_t v2, bool) {
    const uint16_t words[3] = {uint16_t(v0), uint16_t(v1), uint16_t(v2)};
    std::memcpy(dst + 6 * size_t(x), words, 6);
  }
};

template <class To, class Source>
void MapRow(Source source, uint8_t* dst, uint32_t w, const ColourTables& t) {
  const uint16_t *t0 = t.t[0], *t1 = t.t[1], *t2 = t.t[2];  // held in registers across the stores
  const uint32_t mask = t.mask;
  for (uint32_t x = 0; x < w; ++x) {
    const Indices i = source(x, mask);
    To::Put(dst, x, t0[i.i[0]], t1[i.i[1]], t2[i.i[2]], x + 1 == w);
  }
}

}  // namespace

void MapBgr24ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Bytes<3, 0, 1, 2>{s}, d, w, t); }
void MapBgr24ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Bytes<3, 0, 1, 2>{s}, d, w, t); }
void MapBgrxToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Bytes<4, 0, 1, 2>{s}, d, w, t); }
void MapBgrxToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Bytes<4, 0, 1, 2>{s}, d, w, t); }
void MapRgb24ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Bytes<3, 2, 1, 0>{s}, d, w, t); }
void MapRgb24ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Bytes<3, 2, 1, 0>{s}, d, w, t); }

void MapBgr48ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Words<3, 0, 1, 2>{s}, d, w, t); }
void MapBgr48ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Words<3, 0, 1, 2>{s}, d, w, t); }
void MapRgb48ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Words<3, 2, 1, 0>{s}, d, w, t); }
void MapRgb48ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Words<3, 2, 1, 0>{s}, d, w, t); }
void MapBgr64ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Words<4, 0, 1, 2>{s}, d, w, t); }
void MapBgr48ToBgr48(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToWords3>(WordsLimited<3>{s}, d, w, t); }
void MapBgr64ToBgr48(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToWords3>(WordsLimited<4>{s}, d, w, t); }

void MapPlanes8ToBgrx(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                      const ColourTables& t) {
  MapRow<ToBgrx>(PlaneBytes{{d0, d1, d2}}, dst, w, t);
}
void MapPlanes8ToBgr24(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                       const ColourTables& t) {
  MapRow<ToBgr24>(PlaneBytes{{d0, d1, d2}}, dst, w, t);
}
void MapPlanes16ToBgrx(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                       const ColourTables& t) {
  MapRow<ToBgrx>(PlaneWords{{d0, d1, d2}}, dst, w, t);
}
void MapPlanes16ToBgr24(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                        const ColourTables& t) {
  MapRow<ToBgr24>(PlaneWords{{d0, d1, d2}}, dst, w, t);
}

void Map555ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Packed16<Rule555>{s}, d, w, t); }
void Map555ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Packed16<Rule555>{s}, d, w, t); }
void Map565ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Packed16<Rule565>{s}, d, w, t); }
void Map565ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Packed16<Rule565>{s}, d, w, t); }

void MapBgr10ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) {
  MapRow<FirstTwoBytes<4>>(Packed32<RuleBgr10>{s}, d, w, t);
}
void MapBgr10ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) {
  MapRow<FirstTwoBytes<3>>(Packed32<RuleBgr10>{s}, d, w, t);
}
void MapPhoenixToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Packed32<RulePhoenix>{s}, d, w, t); }
void MapPhoenixToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Packed32<RulePhoenix>{s}, d, w, t); }
void MapRgbPhoenixToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) {
  MapRow<ToBgrx>(Packed32<RuleRgbPhoenix>{s}, d, w, t);
}
void MapRgbPhoenixToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) {
  MapRow<ToBgr24>(Packed32<RuleRgbPhoenix>{s}, d, w, t);
}
void MapGvspV1ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Packed32<RuleGvspV1>{s}, d, w, t); }
void MapGvspV1ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Packed32<RuleGvspV1>{s}, d, w, t); }
void MapGvspV2ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgrx>(Packed32<RuleGvspV2>{s}, d, w, t); }
void MapGvspV2ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w, const ColourTables& t) { MapRow<ToBgr24>(Packed32<RuleGvspV2>{s}, d, w, t); }

}  // namespace kestrelink::rows
