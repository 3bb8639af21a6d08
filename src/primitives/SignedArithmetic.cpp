// Signed 16-bit region arithmetic: absolute value, scaled saturating sum,
// narrowing to bytes. Rows are byte addresses, so any step works.
#include <algorithm>
#include <cstring>

#include "primitives/AnalysisPrimitives.h"
#include "primitives/AnalysisRows.h"
#include "primitives/KernelFrame.h"

using kestrelink::analysis::AnalysisRows;
using kestrelink::prim::StepRow;

namespace {

// (a + b) * 2^-factor, rounded to nearest with ties to even, saturated.
int16_t ScaledSum(int a, int b, int factor) {
  int64_t v = int64_t(a) + b;
  if (factor > 0) {
    const int s = std::min(factor, 40);
    const int64_t q = v >> s, rest = v - (q << s), half = int64_t(1) << (s - 1);
    v = q + (rest > half || (rest == half && (q & 1)));
  } else if (factor < 0) {
    v = v * (int64_t(1) << std::min(-factor, 20));
  }
  return int16_t(std::clamp<int64_t>(v, -32768, 32767));
}

}  // namespace

IppStatus ippiAbs_16s_C1IR(Ipp16s* pSrcDst, int srcDstStep, IppiSize roiSize) {
  if (!pSrcDst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const auto row = AnalysisRows().abs16s;
  for (int y = 0; y < roiSize.height; ++y) row(StepRow(pSrcDst, srcDstStep, y), uint32_t(roiSize.width));
  return ippStsNoErr;
}

IppStatus ippiAdd_16s_C1IRSfs(const Ipp16s* pSrc, int srcStep, Ipp16s* pSrcDst, int srcDstStep, IppiSize roiSize,
                              int scaleFactor) {
  if (!pSrc || !pSrcDst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const uint32_t w = uint32_t(roiSize.width);
  if (scaleFactor == 0) {
    const auto row = AnalysisRows().addSat16s;
    for (int y = 0; y < roiSize.height; ++y) row(StepRow(pSrc, srcStep, y), StepRow(pSrcDst, srcDstStep, y), w);
    return ippStsNoErr;
  }
  for (int y = 0; y < roiSize.height; ++y) {
    const uint8_t* a = StepRow(pSrc, srcStep, y);
    uint8_t* b = StepRow(pSrcDst, srcDstStep, y);
    for (uint32_t x = 0; x < w; ++x) {
      int16_t u, v;
      std::memcpy(&u, a + 2 * size_t(x), 2);
      std::memcpy(&v, b + 2 * size_t(x), 2);
      v = ScaledSum(u, v, scaleFactor);
      std::memcpy(b + 2 * size_t(x), &v, 2);
    }
  }
  return ippStsNoErr;
}

IppStatus ippiConvert_16s8u_C1R(const Ipp16s* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const auto row = AnalysisRows().convert16s8u;
  for (int y = 0; y < roiSize.height; ++y)
    row(StepRow(pSrc, srcStep, y), StepRow(pDst, dstStep, y), uint32_t(roiSize.width));
  return ippStsNoErr;
}
