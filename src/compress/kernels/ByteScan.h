#pragma once
// Byte scans of the run-length coder, one table per processor variant.
// Pointers are byte addresses with no alignment assumed.
#include <cstddef>
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::compress {

struct ByteScanKernels {
  // Index of the first byte of p[0 .. n) that equals the byte after it
  // (both inside the range), or n when there is none.
  size_t (*find_equal_pair)(const uint8_t* p, size_t n);
  // Number of leading bytes of p[0 .. n) equal to v.
  size_t (*count_equal)(const uint8_t* p, size_t n, uint8_t v);
};

extern const ByteScanKernels kByteScanPortable;
extern const ByteScanKernels kByteScanSSE2;
extern const ByteScanKernels kByteScanAVX2;
extern const ByteScanKernels kByteScanAVX512;

inline const ByteScanKernels& ByteScan() {
  static const ByteScanKernels* const slots[kVariantCount] = {&kByteScanPortable, &kByteScanSSE2, nullptr,
                                                              &kByteScanAVX2, &kByteScanAVX512};
  return PickVariant(slots);
}

// Portable scans, also the tails of the vector variants.
size_t FindEqualPairPortable(const uint8_t* p, size_t n);
size_t CountEqualPortable(const uint8_t* p, size_t n, uint8_t v);

}  // namespace kestrelink::compress
