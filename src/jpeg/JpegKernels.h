#pragma once
// Block and row kernels of the JPEG codec (8-bit samples, and 12-bit ones in `twelve`), one table per processor variant
// (portable, AVX2, AVX-512; all compiled from JpegKernelBody.h, so every
// variant gives the same bytes as the portable one).
//
// The forward transform gives its coefficients in zigzag order; the inverse
// takes them in natural order (row v, column u). Both run their two passes
// over eight lanes with one transpose between them; the inverse goes down
// the columns first, as the reference order of the standard does, so that
// its samples are those of the common integer decoders.
#include <cstddef>
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::jpeg {

// Quantiser of one table, in the transposed order: `scale` is 1 / (8 x entry),
// nudged up so that exact quotients floor correctly; `half` is 4 x entry.
struct ForwardQuant {
  alignas(64) float scale[64];
  alignas(64) int32_t half[64];
};

// The same kernels on 12-bit samples held in 16-bit words (steps in samples).
struct JpegKernels12 {
  void (*fdct_quant)(const uint16_t* src, intptr_t step, const ForwardQuant& quant, int16_t* zigzag);
  void (*idct_store)(const int16_t* coef, const int32_t* dequant, uint16_t* dst, intptr_t step);
  void (*pixels_to_ycc)(const uint16_t* src, uint32_t channels, uint32_t red, uint16_t* y, uint16_t* cb,
                        uint16_t* cr, uint32_t w);
  void (*ycc_to_pixels)(const uint16_t* y, const uint16_t* cb, const uint16_t* cr, uint16_t* dst, uint32_t channels,
                        uint32_t red, uint32_t w);
  void (*down_h2v1)(const uint16_t* src, uint16_t* dst, uint32_t w);
  void (*down_h2v2)(const uint16_t* src0, const uint16_t* src1, uint16_t* dst, uint32_t w);
  void (*up_h2)(const uint16_t* near, const uint16_t* far, uint16_t* dst, uint32_t w);
};

struct JpegKernels {
  // 8 x 8 samples (8-bit, `step` bytes apart) to quantised coefficients in
  // zigzag order, rounded half away from zero.
  void (*fdct_quant)(const uint8_t* src, intptr_t step, const ForwardQuant& quant, int16_t* zigzag);
  // Coefficients times the dequantisation table (both in natural order), to
  // 8 x 8 samples clamped to 0 .. 255.
  void (*idct_store)(const int16_t* coef, const int32_t* dequant, uint8_t* dst, intptr_t step);
  // `w` pixels of `bytes` (3 or 4) bytes, red at `red` and blue at 2 - `red`,
  // to full-range Y, Cb, Cr rows.
  void (*pixels_to_ycc)(const uint8_t* src, uint32_t bytes, uint32_t red, uint8_t* y, uint8_t* cb, uint8_t* cr,
                        uint32_t w);
  // Full-range Y, Cb, Cr rows to `w` pixels of `bytes` (3 or 4) bytes, red at
  // `red`; a fourth byte is set to 255.
  void (*ycc_to_pixels)(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, uint32_t bytes,
                        uint32_t red, uint32_t w);
  // Halves a row (`w` output samples): (a + b + bias) >> 1, bias 0, 1, 0, 1 ...
  void (*down_h2v1)(const uint8_t* src, uint8_t* dst, uint32_t w);
  // Halves two rows both ways: (a + b + c + d + bias) >> 2, bias 1, 2, 1, 2 ...
  void (*down_h2v2)(const uint8_t* src0, const uint8_t* src1, uint8_t* dst, uint32_t w);
  // Doubles `w` input samples across with the triangle filter; `near`, `far`
  // give 3 x near + far per column first when `far` is not null (the vertical
  // step of 2 x 2 sampling), else the row itself.
  void (*up_h2)(const uint8_t* near, const uint8_t* far, uint8_t* dst, uint32_t w);
  // 12-bit precision: samples 0 .. 4095, centred on 2048, with one guard
  // bit between the transform's passes where 8-bit samples keep two.
  JpegKernels12 twelve;
};

extern const JpegKernels kJpegKernelsPortable;
extern const JpegKernels kJpegKernelsAVX2;
extern const JpegKernels kJpegKernelsAVX512;

// The table of the active variant.
const JpegKernels& Kernels();

// Builds the quantiser of a table given in zigzag order.
void MakeForwardQuant(const uint16_t zigzagTable[64], ForwardQuant& quant);
// Builds the natural-order dequantisation table of a table in zigzag order.
void MakeDequant(const uint16_t zigzagTable[64], int32_t dequant[64]);

// kZigzagToTransposed[k]: index u * 8 + v (u horizontal, v vertical
// frequency) of the k-th zigzag coefficient, the forward transform's own
// order; 16 extra entries past 63 point at 63.
extern const uint8_t kZigzagToTransposed[64 + 16];

// kDctBasis[k * 8 + n]: the orthonormal transform's basis, c(k) cos((2n + 1)
// k pi / 16), c(0) = sqrt(1/8), else 1/2.
extern const float kDctBasis[64];

}  // namespace kestrelink::jpeg
