#pragma once
// Row kernels of the analysis primitives, one table per processor variant
// (portable, AVX2, AVX-512; the other slots fall back). All variants come
// from one body (AnalysisRowsBody.h) built per instruction set, and every
// variant gives the same values as the portable one. Pointers carry no
// alignment; 16-bit signed rows are byte addresses, read and written
// without alignment, since their callers may step by odd byte counts.
#include <cstddef>
#include <cstdint>

#include "primitives/GreyWeights.h"
#include "primitives/Variant.h"

namespace kestrelink::analysis {

struct AnalysisRowKernels {
  // Grey of n RGB pixels: (4899 R + 9617 G + 1868 B + 8192) >> 14.
  void (*rgbToGray8)(const uint8_t* rgb, uint8_t* dst, uint32_t n);
  void (*rgbToGray16)(const uint16_t* rgb, uint16_t* dst, uint32_t n);
  // Grey of n pixels of 3 or 4 samples by the fixed-point weights, the sum
  // clamped to 255; the 16-bit forms clamp each sample at its weight's clampAt.
  void (*weighGrey8C3)(const uint8_t* src, uint8_t* dst, uint32_t n, const GreyWeights& w);
  void (*weighGrey8C4)(const uint8_t* src, uint8_t* dst, uint32_t n, const GreyWeights& w);
  void (*weighGrey16C3)(const uint16_t* src, uint16_t* dst, uint32_t n, const GreyWeights& w);
  void (*weighGrey16C4)(const uint16_t* src, uint16_t* dst, uint32_t n, const GreyWeights& w);
  // Pixels with lo <= v <= hi.
  uint32_t (*countInRange8)(const uint8_t* row, uint32_t n, uint8_t lo, uint8_t hi);
  uint64_t (*sum8)(const uint8_t* row, uint32_t n);
  uint64_t (*sum16)(const uint16_t* row, uint32_t n);
  // out[i] = max (min) of in[i], in[i + 1], in[i + 2].
  void (*max3Cols8)(const uint8_t* in, uint8_t* out, uint32_t n);
  void (*min3Cols8)(const uint8_t* in, uint8_t* out, uint32_t n);
  void (*min3Cols16)(const uint16_t* in, uint16_t* out, uint32_t n);
  // out[i] = max (min) of a[i], b[i], c[i].
  void (*max3Rows8)(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* out, uint32_t n);
  void (*min3Rows8)(const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* out, uint32_t n);
  void (*min3Rows16)(const uint16_t* a, const uint16_t* b, const uint16_t* c, uint16_t* out, uint32_t n);
  // Column pass of the Sobel filters over rows r[0..k-1] (k 3 or 5): the
  // smoothing 1 2 1 / 1 4 6 4 1 or the derivative -1 0 1 / -1 -2 0 2 1.
  void (*smoothRows3)(const uint8_t* const* r, int16_t* out, uint32_t n);
  void (*diffRows3)(const uint8_t* const* r, int16_t* out, uint32_t n);
  void (*smoothRows5)(const uint8_t* const* r, int16_t* out, uint32_t n);
  void (*diffRows5)(const uint8_t* const* r, int16_t* out, uint32_t n);
  // Row pass: out[i] from s[i .. i + k - 1] with the same weights.
  void (*smoothCols3)(const int16_t* s, uint8_t* out, uint32_t n);
  void (*diffCols3)(const int16_t* s, uint8_t* out, uint32_t n);
  void (*smoothCols5)(const int16_t* s, uint8_t* out, uint32_t n);
  void (*diffCols5)(const int16_t* s, uint8_t* out, uint32_t n);
  // |a - b|.
  void (*absDiff8)(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n);
  void (*absDiff16)(const uint16_t* a, const uint16_t* b, uint16_t* out, uint32_t n);
  // Signed 16-bit rows at byte addresses: saturating |v|, saturating a + b
  // into b, saturating narrowing to 0 .. 255.
  void (*abs16s)(uint8_t* row, uint32_t n);
  void (*addSat16s)(const uint8_t* a, uint8_t* b, uint32_t n);
  void (*convert16s8u)(const uint8_t* src, uint8_t* dst, uint32_t n);
  // v < threshold ? 0 : full.
  void (*threshold8)(const uint8_t* src, uint8_t* dst, uint32_t n, uint8_t threshold, uint8_t full);
  void (*threshold16)(const uint16_t* src, uint16_t* dst, uint32_t n, uint16_t threshold, uint16_t full);
};

extern const AnalysisRowKernels kAnalysisRowsPortable;
extern const AnalysisRowKernels kAnalysisRowsAVX2;
extern const AnalysisRowKernels kAnalysisRowsAVX512;

inline const AnalysisRowKernels& AnalysisRows() {
  static const AnalysisRowKernels* const slots[kVariantCount] = {&kAnalysisRowsPortable, nullptr, nullptr,
                                                                 &kAnalysisRowsAVX2, &kAnalysisRowsAVX512};
  return PickVariant(slots);
}

}  // namespace kestrelink::analysis
