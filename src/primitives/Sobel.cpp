// Sobel filters, separable: for each output row a column pass over the k
// source rows around it (k 3 or 5) gives one signed 16-bit sum a column in
// the work buffer, padded by k / 2 columns each side by the border rule, and
// a row pass over that buffer gives the output row.
//
// Work buffer: 64 bytes of alignment slack, the padded column sums
// (width + 4 samples), then one row of the border value (width bytes).
#include <algorithm>
#include <cstring>

#include "primitives/AnalysisPrimitives.h"
#include "primitives/AnalysisRows.h"
#include "primitives/KernelFrame.h"
#include "primitives/SobelRows.h"

namespace kestrelink::analysis {
namespace {

using ColumnPass = void (*)(const uint8_t* const* rows, int16_t* out, uint32_t n);
using RowPass = void (*)(const int16_t* sums, uint8_t* out, uint32_t n);

IppStatus BufferSize(IppiSize size, IppiMaskSize mask, int* bytes) {
  if (!bytes) return ippStsNullPtrErr;
  if (const IppStatus s = prim::CheckSize(size, 1, 1)) return s;
  if (mask != ippMskSize3x3 && mask != ippMskSize5x5) return ippStsMaskSizeErr;
  const int64_t need = 64 + 2 * (int64_t(size.width) + 4) + size.width;
  if (need > INT32_MAX) return ippStsSizeErr;
  *bytes = int(need);
  return ippStsNoErr;
}

}  // namespace

// smoothDown: the column pass smooths and the row pass differentiates (the
// vertical-edge filter); otherwise the reverse.
IppStatus SobelRows(const uint8_t* src, int srcStep, int16_t* dst, int dstStep, IppiSize size, IppiMaskSize mask,
                    IppiBorderType border, uint8_t value, uint8_t* buffer, bool smoothDown, int first, int count) {
  if (!src || !dst || !buffer) return ippStsNullPtrErr;
  if (const IppStatus s = prim::CheckSize(size, 1, 1)) return s;
  if (first < 0 || count < 1 || first + count > size.height) return ippStsSizeErr;
  if (mask != ippMskSize3x3 && mask != ippMskSize5x5) return ippStsMaskSizeErr;
  if (border != ippBorderConst && border != ippBorderRepl) return ippStsBorderErr;
  const AnalysisRowKernels& k = AnalysisRows();
  const bool five = mask == ippMskSize5x5;
  const int half = five ? 2 : 1;
  const ColumnPass columns = smoothDown ? (five ? k.smoothRows5 : k.smoothRows3) : (five ? k.diffRows5 : k.diffRows3);
  const RowPass across = smoothDown ? (five ? k.diffCols5 : k.diffCols3) : (five ? k.smoothCols5 : k.smoothCols3);
  // A constant column outside the region sums to the value times the
  // column weights: 4 or 16 when smoothing, 0 when differentiating.
  const int16_t constantSum = int16_t(smoothDown ? value * (five ? 16 : 4) : 0);

  const uint32_t w = uint32_t(size.width);
  const int h = size.height;
  uint8_t* base = buffer + (64 - reinterpret_cast<uintptr_t>(buffer) % 64) % 64;
  int16_t* sums = reinterpret_cast<int16_t*>(base);  // sums[2 + i] is column i
  uint8_t* constantRow = base + 2 * (size_t(w) + 4);
  if (border == ippBorderConst) std::memset(constantRow, value, w);

  const uint8_t* rows[5];
  for (int y = first; y < first + count; ++y) {
    for (int j = 0; j < 2 * half + 1; ++j) {
      const int r = y + j - half;
      if (border == ippBorderRepl)
        rows[j] = prim::StepRow(src, srcStep, std::clamp(r, 0, h - 1));
      else
        rows[j] = r < 0 || r >= h ? constantRow : prim::StepRow(src, srcStep, r);
    }
    columns(rows, sums + 2, w);
    const int16_t left = border == ippBorderRepl ? sums[2] : constantSum;
    const int16_t right = border == ippBorderRepl ? sums[2 + w - 1] : constantSum;
    sums[0] = sums[1] = left;
    sums[2 + w] = sums[3 + w] = right;
    across(sums + 2 - half, prim::StepRow(dst, dstStep, y - first), w);
  }
  return ippStsNoErr;
}

}  // namespace kestrelink::analysis

using kestrelink::analysis::BufferSize;

namespace {

IppStatus Sobel(const uint8_t* src, int srcStep, int16_t* dst, int dstStep, IppiSize size, IppiMaskSize mask,
                IppiBorderType border, uint8_t value, uint8_t* buffer, bool smoothDown) {
  return kestrelink::analysis::SobelRows(src, srcStep, dst, dstStep, size, mask, border, value, buffer, smoothDown, 0,
                                         size.height);
}

}  // namespace

IppStatus ippiFilterSobelVertGetBufferSize_8u16s_C1R(IppiSize roiSize, IppiMaskSize mask, int* pBufferSize) {
  return BufferSize(roiSize, mask, pBufferSize);
}

IppStatus ippiFilterSobelHorizGetBufferSize_8u16s_C1R(IppiSize roiSize, IppiMaskSize mask, int* pBufferSize) {
  return BufferSize(roiSize, mask, pBufferSize);
}

IppStatus ippiFilterSobelVertBorder_8u16s_C1R(const Ipp8u* pSrc, int srcStep, Ipp16s* pDst, int dstStep,
                                              IppiSize roiSize, IppiMaskSize mask, IppiBorderType borderType,
                                              Ipp8u borderValue, Ipp8u* pBuffer) {
  return Sobel(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer, true);
}

IppStatus ippiFilterSobelHorizBorder_8u16s_C1R(const Ipp8u* pSrc, int srcStep, Ipp16s* pDst, int dstStep,
                                               IppiSize roiSize, IppiMaskSize mask, IppiBorderType borderType,
                                               Ipp8u borderValue, Ipp8u* pBuffer) {
  return Sobel(pSrc, srcStep, pDst, dstStep, roiSize, mask, borderType, borderValue, pBuffer, false);
}
