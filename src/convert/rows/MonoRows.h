#pragma once
// Row kernels of the mono conversions, one table per processor variant.
// Pointers are byte addresses with no alignment assumed; 16-bit samples are
// little-endian words. `shift` is a right shift of the 16-bit sample: a count
// of 16 or more gives 0, as a shift of the whole word would.
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

struct MonoRowKernels {
  // Grey BGRx pixel per byte sample, fourth byte 0.
  void (*mono8_to_bgrx)(const uint8_t* src, uint8_t* dst, uint32_t w);
  // The sample in all three bytes of a BGR pixel.
  void (*mono8_to_bgr)(const uint8_t* src, uint8_t* dst, uint32_t w);
  // The sample in the high byte of a 16-bit word.
  void (*mono8_to_mono16msb)(const uint8_t* src, uint8_t* dst, uint32_t w);
  // (s >> shift) & 255 as a grey BGRx pixel, fourth byte 0.
  void (*mono16_to_bgrx)(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
  // (s >> shift) truncated to a byte, in all three bytes.
  void (*mono16_to_bgr)(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
  // (s >> shift) truncated to a byte.
  void (*mono16_to_mono8)(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
  // The two bytes of each 16-bit word exchanged.
  void (*swap_bytes16)(const uint8_t* src, uint8_t* dst, uint32_t w);
  // s << shift, kept to 16 bits; 16 or more gives 0.
  void (*lshift16)(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
};

extern const MonoRowKernels kMonoRowsPortable;
extern const MonoRowKernels kMonoRowsSSE2;
extern const MonoRowKernels kMonoRowsSSSE3;
extern const MonoRowKernels kMonoRowsAVX2;
extern const MonoRowKernels kMonoRowsAVX512;

inline const MonoRowKernels& MonoRows() {
  static const MonoRowKernels* const slots[kVariantCount] = {
      &kMonoRowsPortable, &kMonoRowsSSE2, &kMonoRowsSSSE3, &kMonoRowsAVX2, &kMonoRowsAVX512};
  return PickVariant(slots);
}

// Portable rows, also the tails of the vector variants.
void Mono8ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Mono8ToBgrPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Mono8ToMono16MsbPortable(const uint8_t* src, uint8_t* dst, uint32_t w);
void Mono16ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
void Mono16ToBgrPortable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
void Mono16ToMono8Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);
void SwapBytes16Portable(const uint8_t* src, uint8_t* dst, uint32_t w);
void LShift16Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift);

}  // namespace kestrelink::rows
