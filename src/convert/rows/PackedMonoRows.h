#pragma once
// Row kernels of the packed and swapped mono sources, one table per
// processor variant. Pointers are byte addresses with no alignment assumed;
// 16-bit values are little-endian words.
//
// The pair-packed layouts and the 8-bit targets of the 12-byte PCO groups
// share one decoder: every 12 bytes hold eight pixels, and pixel j of a block
// is computed from the little-endian word x of two of the block's bytes,
// (lo[j], hi[j]), as
//
//   (x shifted by a) & maskA  |  (x shifted by b) & maskB
//
// with both shifts left or both right and the masks alternating between even
// and odd pixels. A LaneRule holds one such recipe; the rules below are the
// layouts' bit tables written in that form.
#include <cstddef>
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

// Byte offsets in a 12-byte block of the two bytes of each pixel's word.
struct Lanes {
  uint8_t lo[8], hi[8];
};

struct LaneRule {
  Lanes lanes;
  bool left;                    // shifts are left shifts, kept to 16 bits
  uint8_t a, b;                 // shift counts, below 16
  uint16_t maskA[2], maskB[2];  // [even pixel, odd pixel]
};

// Mono16PixelPacked: pixel 0 from u16(b0, b1), pixel 1 from u16(b1, b2).
inline constexpr Lanes kPackedLanes = {{0, 1, 3, 4, 6, 7, 9, 10}, {1, 2, 4, 5, 7, 8, 10, 11}};
// Mono16PixelPacked8448: pixel 0 from u16(b1, b0), pixel 1 from u16(b1, b2).
inline constexpr Lanes k8448Lanes = {{1, 1, 4, 4, 7, 7, 10, 10}, {0, 2, 3, 5, 6, 8, 9, 11}};
// MonoPcoPixelPacked, bytes c0..c11: p0 from u16(c0, c1), p1 u16(c3, c0),
// p2 u16(c5, c2), p3 u16(c4, c5), and p4 to p7 likewise from c6..c11.
inline constexpr Lanes kPcoLanes = {{0, 3, 5, 4, 6, 9, 11, 10}, {1, 0, 2, 5, 7, 6, 8, 11}};

// Mono16PixelPacked, 12 bits: u16(b0,b1) & 0xFFF, u16(b1,b2) >> 4.
inline constexpr LaneRule kPacked12ToMono16 = {kPackedLanes, false, 0, 4, {0xFFF, 0}, {0, 0xFFF}};
// 10 bits: u16(b0,b1) & 1023, (u16(b1,b2) >> 4) & 1023.
inline constexpr LaneRule kPacked10ToMono16 = {kPackedLanes, false, 0, 4, {0x3FF, 0}, {0, 0x3FF}};
// 12 bits: u16(b0,b1) << 4, u16(b1,b2) & 0xFFF0.
inline constexpr LaneRule kPacked12ToMono16Msb = {kPackedLanes, true, 4, 0, {0xFFF0, 0}, {0, 0xFFF0}};
// 10 bits: u16(b0,b1) << 6, (u16(b1,b2) & 0xFFF0) << 2.
inline constexpr LaneRule kPacked10ToMono16Msb = {kPackedLanes, true, 6, 2, {0xFFC0, 0}, {0, 0xFFC0}};
// 12 bits: (u16(b0,b1) >> 4) & 255, b2.
inline constexpr LaneRule kPacked12ToMono8 = {kPackedLanes, false, 4, 8, {0xFF, 0}, {0, 0xFF}};
// 10 bits: (u16(b0,b1) >> 2) & 255, (u16(b1,b2) >> 6) & 255.
inline constexpr LaneRule kPacked10ToMono8 = {kPackedLanes, false, 2, 6, {0xFF, 0}, {0, 0xFF}};

// Mono16PixelPacked8448, 12 bits: b0 << 4 | (b1 & 15), b2 << 4 | b1 >> 4.
inline constexpr LaneRule k8448To12 = {k8448Lanes, false, 4, 0, {0xFF0, 0xFFF}, {0xF, 0}};
// 10 bits: b0 << 2 | ((b1 >> 2) & 3), b2 << 2 | b1 >> 6.
inline constexpr LaneRule k8448To10 = {k8448Lanes, false, 6, 2, {0x3FC, 0x3FF}, {0x3, 0}};
// 12 bits, left-justified: b0 << 8 | (b1 & 15) << 4, b2 << 8 | (b1 & 0xF0).
inline constexpr LaneRule k8448To12Msb = {k8448Lanes, true, 0, 4, {0xFF00, 0xFFF0}, {0xF0, 0}};
// 10 bits, left-justified: b0 << 8 | ((b1 >> 2) & 3) << 6, b2 << 8 | (b1 & 0xC0).
inline constexpr LaneRule k8448To10Msb = {k8448Lanes, true, 0, 4, {0xFF00, 0xFFC0}, {0xC0, 0}};
// 8-bit targets, any depth: b0, b2.
inline constexpr LaneRule k8448ToMono8 = {k8448Lanes, false, 8, 0, {0xFF, 0xFF}, {0, 0}};

// MonoPcoPixelPacked to 8 bits, the top 8 of each 12-bit pixel: even pixels
// are x >> 4, so x >> 8; odd pixels are x & 0xFFF, so (x >> 4) & 255.
inline constexpr LaneRule kPcoToMono8 = {kPcoLanes, false, 8, 4, {0xFF, 0}, {0, 0xFF}};

struct PackedMonoRowKernels {
  // `pixels` pixels from 12-byte blocks by a lane rule, as 16-bit words.
  // Reads no byte past the group of the last pixel (a pair's 3 bytes when
  // `pixels` is even, a block's 12 when it is a multiple of 8).
  void (*lanes_to_words)(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule);
  // The same as bytes: the low byte of each value.
  void (*lanes_to_bytes)(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule);
  // MonoPcoPixelPacked to sixteen bits: nine slots per 12-byte group, p0, p1,
  // p2 & 0xFF0, p2, p3, p4, p5, p6 & 0xFF0, p7, each shifted left by `shift`
  // (0 or 4).
  void (*pco_nine_slots)(const uint8_t* src, uint8_t* dst, uint32_t groups, uint32_t shift);
  // s >> shift on 16-bit words; a count of 16 or more gives 0.
  void (*rshift16)(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
  // The two bytes of each word exchanged, then >> shift as above.
  void (*swap_rshift16)(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
};

extern const PackedMonoRowKernels kPackedMonoRowsPortable;
extern const PackedMonoRowKernels kPackedMonoRowsSSE2;
extern const PackedMonoRowKernels kPackedMonoRowsSSSE3;
extern const PackedMonoRowKernels kPackedMonoRowsAVX2;
extern const PackedMonoRowKernels kPackedMonoRowsAVX512;

inline const PackedMonoRowKernels& PackedMonoRows() {
  static const PackedMonoRowKernels* const slots[kVariantCount] = {&kPackedMonoRowsPortable, &kPackedMonoRowsSSE2,
                                                                   &kPackedMonoRowsSSSE3, &kPackedMonoRowsAVX2,
                                                                   &kPackedMonoRowsAVX512};
  return PickVariant(slots);
}

// Portable rows, also the tails of the vector variants.
void LanesToWordsPortable(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule);
void LanesToBytesPortable(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule);
void PcoNineSlotsPortable(const uint8_t* src, uint8_t* dst, uint32_t groups, uint32_t shift);
void RShift16Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
void SwapRShift16Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);

}  // namespace kestrelink::rows
