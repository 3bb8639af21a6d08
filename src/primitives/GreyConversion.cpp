// Grey of RGB regions, a row at a time through the variant's row kernel.
#include "primitives/AnalysisPrimitives.h"
#include "primitives/AnalysisRows.h"
#include "primitives/KernelFrame.h"

using kestrelink::analysis::AnalysisRows;
using kestrelink::prim::StepRow;

IppStatus ippiRGBToGray_8u_C3C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const auto row = AnalysisRows().rgbToGray8;
  for (int y = 0; y < roiSize.height; ++y) row(StepRow(pSrc, srcStep, y), StepRow(pDst, dstStep, y), roiSize.width);
  return ippStsNoErr;
}

IppStatus ippiRGBToGray_16u_C3C1R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const auto row = AnalysisRows().rgbToGray16;
  for (int y = 0; y < roiSize.height; ++y)
    row(reinterpret_cast<const uint16_t*>(StepRow(pSrc, srcStep, y)),
        reinterpret_cast<uint16_t*>(StepRow(pDst, dstStep, y)), roiSize.width);
  return ippStsNoErr;
}
