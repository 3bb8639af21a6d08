// The merger's 8-bit overlay rows as plain loops, the reference of every
// other variant, and the choice of variant.
#include "merge/MergeRows.h"
#include "merge/MergeRows16Body.h"

#include "platform/CpuFeatures.h"

namespace kestrelink::merge {
namespace {

void Blend8(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, uint32_t w) {
  for (uint32_t i = 0; i < n; ++i) out[i] = uint8_t(((256 - w) * b[i] + w * a[i]) >> 8);
}

void BlendLookup8(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, uint32_t w, const uint8_t* table) {
  for (uint32_t i = 0; i < n; ++i) out[i] = table[((256 - w) * b[i] + w * a[i]) >> 8];
}

void Lookup8(const uint8_t* in, uint8_t* out, uint32_t n, const uint8_t* table) {
  for (uint32_t i = 0; i < n; ++i) out[i] = table[in[i]];
}

inline uint32_t Ratio(uint32_t a, uint32_t b) {
  const uint32_t q = (a << 8) / b;
  return q < 255 ? q : 255;
}

void RatioLookup8(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, const uint8_t* byRatio,
                  const uint8_t* byValue) {
  for (uint32_t i = 0; i < n; ++i) out[i] = b[i] == 0 ? byValue[a[i]] : byRatio[Ratio(a[i], b[i])];
}

inline void PutColour(uint8_t* p, const ColourTable& t, uint32_t v) {
  p[0] = t.plane[0][v], p[1] = t.plane[1][v], p[2] = t.plane[2][v];
}

void Colour8(const uint8_t* in, uint8_t* bgr, uint32_t n, const ColourTable& colour) {
  for (uint32_t i = 0; i < n; ++i) PutColour(bgr + 3 * size_t(i), colour, in[i]);
}

void RatioColour8(const uint8_t* a, const uint8_t* b, uint8_t* bgr, uint32_t n, const ColourTable& byRatio,
                  const ColourTable& byValue) {
  for (uint32_t i = 0; i < n; ++i) {
    if (b[i] == 0)
      PutColour(bgr + 3 * size_t(i), byValue, a[i]);
    else
      PutColour(bgr + 3 * size_t(i), byRatio, Ratio(a[i], b[i]));
  }
}

void Lookup16(const uint16_t* in, uint16_t* out, uint32_t n, const uint16_t* table, uint32_t top) {
  for (uint32_t i = 0; i < n; ++i) out[i] = table[in[i] < top ? in[i] : top];
}

void RatioIndex16(const uint16_t* a, const uint16_t* b, const uint8_t* byValue, uint8_t* out, uint32_t n,
                  uint32_t top, const uint8_t* byRatio) {
  for (uint32_t i = 0; i < n; ++i) {
    const uint32_t sa = a[i] < top ? a[i] : top, sb = b[i] < top ? b[i] : top;
    out[i] = b[i] == 0 ? byValue[i] : byRatio[Ratio(sa, sb)];
  }
}

}  // namespace

void ToBytes(const uint16_t* in, uint8_t* out, uint32_t n, uint32_t bitDepth) {
  const uint32_t right = bitDepth >= 8 ? bitDepth - 8 : 0, left = bitDepth >= 8 ? 0 : 8 - bitDepth;
  for (uint32_t i = 0; i < n; ++i) {
    const uint32_t v = (uint32_t(in[i]) >> right) << left;
    out[i] = uint8_t(v < 255 ? v : 255);
  }
}

void PackColourTable(ColourTable& t) {
  for (int v = 0; v < 256; ++v)
    t.packed[v] = uint32_t(t.plane[0][v]) | uint32_t(t.plane[1][v]) << 8 | uint32_t(t.plane[2][v]) << 16;
}

const MergeRowKernels kMergeRowsPortable = {Blend8,       BlendLookup8, Lookup8, RatioLookup8, Colour8,
                                            RatioColour8, Blend16,      Hold16,  Lookup16,
                                            RatioIndex16};

const MergeRowKernels& MergeRows() {
  const CpuVariant v = ActiveVariant();
  if (v >= kVariantAVX512 && platform::GetCpuFeatures().avx512vbmi) return kMergeRowsAVX512;
  if (v >= kVariantAVX2) return kMergeRowsAVX2;
  return kMergeRowsPortable;
}

}  // namespace kestrelink::merge
