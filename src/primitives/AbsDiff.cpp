// Absolute difference of two regions, a row at a time.
#include "primitives/AnalysisPrimitives.h"
#include "primitives/AnalysisRows.h"
#include "primitives/KernelFrame.h"

using kestrelink::analysis::AnalysisRows;
using kestrelink::prim::StepRow;

IppStatus ippiAbsDiff_8u_C1R(const Ipp8u* pSrc1, int src1Step, const Ipp8u* pSrc2, int src2Step, Ipp8u* pDst,
                             int dstStep, IppiSize roiSize) {
  if (!pSrc1 || !pSrc2 || !pDst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const auto row = AnalysisRows().absDiff8;
  for (int y = 0; y < roiSize.height; ++y)
    row(StepRow(pSrc1, src1Step, y), StepRow(pSrc2, src2Step, y), StepRow(pDst, dstStep, y), uint32_t(roiSize.width));
  return ippStsNoErr;
}

IppStatus ippiAbsDiff_16u_C1R(const Ipp16u* pSrc1, int src1Step, const Ipp16u* pSrc2, int src2Step, Ipp16u* pDst,
                              int dstStep, IppiSize roiSize) {
  if (!pSrc1 || !pSrc2 || !pDst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const auto row = AnalysisRows().absDiff16;
  for (int y = 0; y < roiSize.height; ++y)
    row(reinterpret_cast<const uint16_t*>(StepRow(pSrc1, src1Step, y)),
        reinterpret_cast<const uint16_t*>(StepRow(pSrc2, src2Step, y)),
        reinterpret_cast<uint16_t*>(StepRow(pDst, dstStep, y)), uint32_t(roiSize.width));
  return ippStsNoErr;
}
