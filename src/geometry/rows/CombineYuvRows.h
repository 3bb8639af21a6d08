#pragma once
// Row kernels of the YUV combines: whole four-pixel steps of the 8-bit YUV
// layouts to BGR24 through the library's integer formula
// (convert/YuvFormula.h), one table per processor variant; every variant
// gives the bytes of the portable one. A step reads `kYuvStepBytes` of its
// layout and writes 12 bytes. Pointers are byte addresses, no alignment
// assumed.
//   YUV422  Y0 U Y1 V, a pair        UVY422  U Y0 V Y1, a pair
//   UVY411  U Y0 Y1 V Y2 Y3          UVY444  U Y V, a pixel
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rows {

using YuvStepsRow = void (*)(const uint8_t* src, uint8_t* dst, uint32_t steps);

enum YuvStepLayout : int { kStepYuv422 = 0, kStepUvy422 = 1, kStepUvy411 = 2, kStepUvy444 = 3 };
inline constexpr uint32_t kYuvStepBytes[4] = {8, 8, 6, 12};

struct CombineYuvKernels {
  YuvStepsRow steps[4];  // by YuvStepLayout
};

extern const CombineYuvKernels kCombineYuvPortable;
extern const CombineYuvKernels kCombineYuvAVX2;
extern const CombineYuvKernels kCombineYuvAVX512;

inline const CombineYuvKernels& CombineYuvRows() {
  static const CombineYuvKernels* const slots[kVariantCount] = {&kCombineYuvPortable, nullptr, nullptr,
                                                                &kCombineYuvAVX2, &kCombineYuvAVX512};
  return PickVariant(slots);
}

}  // namespace kestrelink::rows
