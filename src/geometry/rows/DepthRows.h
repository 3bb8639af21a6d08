#pragma once
// Row kernels of the combine's depth changes, one table per processor
// variant; the body (DepthRowsBody.h) is written once and compiled per
// instruction set. Each 16-bit sample s becomes
//   mask & (right ? s >> n : s << n)   in 32 bits, a count of 32 or more giving 0,
// stored as its low 16 bits. Words are little-endian, no alignment assumed.
#include <cstddef>
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

struct DepthChange {
  uint32_t n;
  bool right;
  uint32_t mask;
};

struct DepthRowKernels {
  // `count` contiguous samples.
  void (*words)(const uint8_t* src, uint8_t* dst, size_t count, const DepthChange& change);
  // `pixels` four-word pixels: the first three words changed, the fourth of
  // the destination left as it was.
  void (*words3of4)(const uint8_t* src, uint8_t* dst, size_t pixels, const DepthChange& change);
};

extern const DepthRowKernels kDepthRowsPortable;
extern const DepthRowKernels kDepthRowsAVX2;

inline const DepthRowKernels& DepthRows() {
  static const DepthRowKernels* const slots[kVariantCount] = {&kDepthRowsPortable, nullptr, nullptr, &kDepthRowsAVX2,
                                                              nullptr};
  return PickVariant(slots);
}

}  // namespace kestrelink::rows
