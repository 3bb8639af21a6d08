#pragma once
// Vector kernels of looks, one table per processor variant (portable, AVX2,
// AVX-512), all compiled from one body (LookKernelsBody.h). Every variant
// gives the same bytes as the portable one: the arithmetic is the same
// single-precision sums in the same order, and no variant contracts them.
#include <cstdint>

#include "primitives/Variant.h"

struct LookLut;

namespace kestrelink::colour {

struct LookKernels {
  // Plane o of the table (c = o): entries (m * 256 + i) * 3 of `plane` for
  // a = i, b = m hold components 2, 1, 0.
  void (*fillPlane)(const LookLut& look, uint32_t o, uint8_t* plane);
};

extern const LookKernels kLookKernelsPortable;
extern const LookKernels kLookKernelsAVX2;
extern const LookKernels kLookKernelsAVX512;

inline const LookKernels& TheLookKernels() {
  static const LookKernels* const slots[kVariantCount] = {&kLookKernelsPortable, nullptr, nullptr, &kLookKernelsAVX2,
                                                          &kLookKernelsAVX512};
  return PickVariant(slots);
}

}  // namespace kestrelink::colour
