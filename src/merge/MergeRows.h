#pragma once
// Row kernels of the merger's 8-bit overlay, one table per processor
// variant: portable, AVX2 (table look-ups by gathers) and AVX-512 with the
// byte permutes (a 256-entry byte table in four registers), which needs
// VBMI besides BW; a processor with AVX-512 but without VBMI takes AVX2.
// Every variant gives the portable one's bytes.
#include <cstddef>
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::merge {

// A colour for every byte value: the B, G and R planes, and the same packed
// as B | G << 8 | R << 16 for the gathering variant.
struct ColourTable {
  uint8_t plane[3][256];
  uint32_t packed[256];
};

// Fills `packed` from the planes.
void PackColourTable(ColourTable& t);

struct MergeRowKernels {
  // out[i] = ((256 - w) b[i] + w a[i]) >> 8, w within 0 .. 256.
  void (*blend8)(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, uint32_t w);
  // The same through a 256-entry byte table.
  void (*blendLookup8)(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, uint32_t w,
                       const uint8_t* table);
  // out[i] = table[in[i]].
  void (*lookup8)(const uint8_t* in, uint8_t* out, uint32_t n, const uint8_t* table);
  // out[i] = b[i] == 0 ? byValue[a[i]] : byRatio[min(256 a[i] / b[i], 255)].
  void (*ratioLookup8)(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, const uint8_t* byRatio,
                       const uint8_t* byValue);
  // BGR pixels: bgr[3i ..] = colour of in[i].
  void (*colour8)(const uint8_t* in, uint8_t* bgr, uint32_t n, const ColourTable& colour);
  // BGR pixels of the ratio as ratioLookup8 picks it, by byRatio or byValue.
  void (*ratioColour8)(const uint8_t* a, const uint8_t* b, uint8_t* bgr, uint32_t n, const ColourTable& byRatio,
                       const ColourTable& byValue);
  // 16-bit samples held at top: out[i] = ((256 - w) min(b[i], top) + w min(a[i], top)) >> 8, w within 0 .. 256.
  void (*blend16)(const uint16_t* a, const uint16_t* b, uint16_t* out, uint32_t n, uint32_t w, uint32_t top);
  // out[i] = min(in[i], top).
  void (*hold16)(const uint16_t* in, uint16_t* out, uint32_t n, uint32_t top);
  // out[i] = table[min(in[i], top)], the table of top + 1 entries.
  void (*lookup16)(const uint16_t* in, uint16_t* out, uint32_t n, const uint16_t* table, uint32_t top);
  // With a and b held at top: out[i] = b[i] == 0 ? byValue[i] : byRatio[min(256 a[i] / b[i], 255)].
  void (*ratioIndex16)(const uint16_t* a, const uint16_t* b, const uint8_t* byValue, uint8_t* out, uint32_t n,
                       uint32_t top, const uint8_t* byRatio);
};

// Bytes of 16-bit samples of a depth (1 to 16 bits): v >> (depth - 8), or
// v << (8 - depth) below 8 bits, at most 255.
void ToBytes(const uint16_t* in, uint8_t* out, uint32_t n, uint32_t bitDepth);

extern const MergeRowKernels kMergeRowsPortable;
extern const MergeRowKernels kMergeRowsAVX2;
extern const MergeRowKernels kMergeRowsAVX512;

// The active variant's kernels (AVX-512 only with VBMI).
const MergeRowKernels& MergeRows();

}  // namespace kestrelink::merge
