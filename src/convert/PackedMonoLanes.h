#pragma once
// Whole frames of the pair-packed layouts, and of MonoPcoPixelPacked to its
// 8-bit targets, through a lane rule: to 16-bit words, to bytes, and to grey
// BGRx and BGR pixels. Rows follow the group rule of PackedMonoFrame.h.
#include <cstdint>

#include "convert/PackedMonoFrame.h"
#include "convert/rows/PackedMonoRows.h"

namespace kestrelink::packedmono {

// A packed source frame and where its rows start.
struct PackedRows {
  const void* frame;
  uint32_t width;
  uint32_t packedBits;  // pair layouts: bits a pixel in the row start
  bool pco;             // MonoPcoPixelPacked: 12-byte groups and their row start

  const Grouping& grouping() const { return pco ? kPcoEight : kPairs; }
  const uint8_t* Row(uint32_t row) const {
    return pco ? PcoRow(frame, row, width) : PairRow(frame, row, width, packedBits);
  }
};

inline PackedRows Pairs(const void* frame, uint32_t width, uint32_t packedBits) {
  return {frame, width, packedBits, false};
}
inline PackedRows Pco(const void* frame, uint32_t width) { return {frame, width, 0, true}; }

// The rule of a 10- or 12-bit pair-packed frame; none for other depths,
// whose pair loop runs idle.
inline const rows::LaneRule* ForDepth(uint32_t d, const rows::LaneRule& tenBits, const rows::LaneRule& twelveBits) {
  return d == 12 ? &twelveBits : d == 10 ? &tenBits : nullptr;
}

// Every row's values by the rule, as 16-bit words (Mono16, Mono16MSB).
void LanesToWords(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, void* dst, bool flip);
// As bytes (Mono8); the rule's values stay below 256.
void LanesToMono8(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, void* dst, bool flip);
// As grey BGRx pixels, fourth byte 0, and as BGR pixels.
void LanesToBgrx(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, void* dst, bool flip);
void LanesToBgr(const PackedRows& src, uint32_t height, const rows::LaneRule& rule, void* dst, bool flip);

}  // namespace kestrelink::packedmono
