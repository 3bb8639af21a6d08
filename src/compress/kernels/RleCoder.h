#pragma once
// The run-length coder's loops, one table per processor variant (stream
// format in compress/Rle.cpp). Each takes n input bytes and at most `room`
// output bytes, answers the bytes written and gives the input taken in
// *taken; *taken < n says that the room ran out first. The decoder then
// fills the room to its last byte.
#include <cstddef>
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::compress {

struct RleCoderKernels {
  size_t (*encode)(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken);
  size_t (*decode)(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken);
};

extern const RleCoderKernels kRleCoderPortable;
extern const RleCoderKernels kRleCoderSSE2;
extern const RleCoderKernels kRleCoderAVX2;
extern const RleCoderKernels kRleCoderAVX512;

// Portable loops, also the last bytes of the vector variants.
size_t RleEncodePortable(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken);
size_t RleDecodePortable(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken);

inline const RleCoderKernels& RleCoder() {
  static const RleCoderKernels* const slots[kVariantCount] = {&kRleCoderPortable, &kRleCoderSSE2, nullptr,
                                                              &kRleCoderAVX2, &kRleCoderAVX512};
  return PickVariant(slots);
}

}  // namespace kestrelink::compress
