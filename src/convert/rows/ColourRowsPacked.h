#pragma once
// Row kernels of the packed colour layouts: 5-5-5 and 5-6-5 words, and 32-bit
// words of three 10-bit channels. Each narrows a pixel to bytes D0, D1, D2 in
// memory order; what happens to the other bytes of the destination pixel is
// part of each kernel's contract below. Pointers are byte addresses with no
// alignment assumed; words are little-endian.
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

using PackedRow = void (*)(const uint8_t* src, uint8_t* dst, uint32_t w);

struct PackedRowKernels {
  // 5-5-5 (B bits 0-4, G 5-9, R 10-14) and 5-6-5 (B 0-4, G 5-10, R 11-15)
  // words: each channel moved to the top of its byte, low bits 0. BGRx keeps
  // the fourth byte; RGB24 writes R, G, B.
  PackedRow bgr555_to_bgrx, bgr555_to_bgr24, bgr555_to_rgb24;
  PackedRow bgr565_to_bgrx, bgr565_to_bgr24, bgr565_to_rgb24;
  // Three 10-bit channels in a 32-bit word u:
  // - first two channels only, D0 = u >> 2, D1 = u >> 12 (bytes); D2 and the
  //   fourth byte keep what they held;
  PackedRow bgr10_to_bgrx, bgr10_to_bgr24;
  // - D0 = u >> 2, D1 = u >> 14, D2 = u >> 24; the fourth byte kept;
  PackedRow phoenix_to_bgrx, phoenix_to_bgr24;
  // - D0 = u >> 24, D1 = u >> 14, D2 = u >> 2; the fourth byte kept;
  PackedRow rgb_phoenix_to_bgrx, rgb_phoenix_to_bgr24;
  // - bytes 1, 2, 3 of the word; the fourth byte written 0;
  PackedRow gvsp_v1_to_bgrx, gvsp_v1_to_bgr24;
  // - D0 = u >> 22, D1 = u >> 12, D2 = u >> 2; the fourth byte written 0.
  PackedRow gvsp_v2_to_bgrx, gvsp_v2_to_bgr24;
};

extern const PackedRowKernels kPackedRowsPortable;
extern const PackedRowKernels kPackedRowsAVX2;
extern const PackedRowKernels kPackedRowsAVX512;

inline const PackedRowKernels& PackedRows() {
  static const PackedRowKernels* const slots[kVariantCount] = {&kPackedRowsPortable, nullptr, nullptr,
                                                               &kPackedRowsAVX2, &kPackedRowsAVX512};
  return PickVariant(slots);
}

// Portable rows, also the tails of the vector variants.
void Bgr555ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Bgr555ToBgr24Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Bgr555ToRgb24Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Bgr565ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Bgr565ToBgr24Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Bgr565ToRgb24Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Bgr10ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Bgr10ToBgr24Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void PhoenixToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void PhoenixToBgr24Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void RgbPhoenixToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void RgbPhoenixToBgr24Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void GvspV1ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void GvspV1ToBgr24Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void GvspV2ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void GvspV2ToBgr24Portable(const uint8_t* src, uint8_t* dst, uint32_t w);

}  // namespace kestrelink::rows
