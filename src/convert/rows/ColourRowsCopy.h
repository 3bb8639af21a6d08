#pragma once
// Row kernels of the channel copies: three-byte pixels to four-byte ones and
// back, interleaved channels to planes and back, channels reordered in place
// of each other, and four-word pixels cut to three words or bytes. Pointers are byte addresses with no alignment
// assumed; a source row and its destination row must not overlap.
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

// Destination channel i takes source channel c[i]; each entry is 0, 1 or 2.
struct ChannelOrder {
  uint8_t c[3];
};
inline constexpr ChannelOrder kSameOrder{{0, 1, 2}};
inline constexpr ChannelOrder kReversedOrder{{2, 1, 0}};

struct CopyRowKernels {
  // Byte i of each four-byte pixel takes source byte order.c[i] shifted
  // right by `shift` (8 or more gives 0); the fourth byte stays as it was.
  void (*bytes3_to_4)(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift);
  // The first three bytes of each four-byte pixel.
  void (*bytes4_to_3)(const uint8_t* src, uint8_t* dst, uint32_t w);
  // Interleaved three-byte pixels to three planes, and back.
  void (*split3)(const uint8_t* src, uint8_t* d0, uint8_t* d1, uint8_t* d2, uint32_t w);
  void (*merge3)(const uint8_t* s0, const uint8_t* s1, const uint8_t* s2, uint8_t* dst, uint32_t w);
  // Channel i of each pixel takes channel order.c[i]: pixels of three bytes,
  // and of three little-endian 16-bit words.
  void (*reorder3x8)(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order);
  void (*reorder3x16)(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order);
  // Three 16-bit words a pixel, each shifted right by `shift` (16 or more
  // gives 0) and truncated to a byte, byte i from word order.c[i]: into the
  // first three bytes of four-byte pixels, whose fourth byte stays as it
  // was, and into three-byte pixels.
  void (*words3_to_bytes3of4)(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift);
  void (*words3_to_bytes3)(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift);
  // The first three 16-bit words of each four-word pixel.
  void (*words4_to_3)(const uint8_t* src, uint8_t* dst, uint32_t w);
  // The first three words of each four-word pixel shifted right by `shift`
  // (16 or more gives 0) and truncated to bytes, into the first three bytes
  // of four-byte pixels; the fourth byte stays as it was.
  void (*words4_to_bytes3of4)(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
  // The same into three-byte pixels.
  void (*words4_to_bytes3)(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
};

extern const CopyRowKernels kCopyRowsPortable;
extern const CopyRowKernels kCopyRowsAVX2;
extern const CopyRowKernels kCopyRowsAVX512;

inline const CopyRowKernels& CopyRows() {
  static const CopyRowKernels* const slots[kVariantCount] = {&kCopyRowsPortable, nullptr, nullptr, &kCopyRowsAVX2,
                                                             &kCopyRowsAVX512};
  return PickVariant(slots);
}

// Portable rows, also the tails of the vector variants.
void Bytes3To4Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift);
void Bytes4To3Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Split3Portable(const uint8_t* src, uint8_t* d0, uint8_t* d1, uint8_t* d2, uint32_t w);
void Merge3Portable(const uint8_t* s0, const uint8_t* s1, const uint8_t* s2, uint8_t* dst, uint32_t w);
void Reorder3x8Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order);
void Reorder3x16Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order);
void Words3ToBytes3Of4Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift);
void Words3ToBytes3Portable(const uint8_t* src, uint8_t* dst, uint32_t w, ChannelOrder order, uint32_t shift);
void Words4To3Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Words4ToBytes3Of4Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
void Words4ToBytes3Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);

}  // namespace kestrelink::rows
