// Counting in a range and the mean of a region, summed row by row.
#include "primitives/AnalysisPrimitives.h"
#include "primitives/AnalysisRows.h"
#include "primitives/KernelFrame.h"

using kestrelink::analysis::AnalysisRows;
using kestrelink::prim::StepRow;

IppStatus ippiCountInRange_8u_C1R(const Ipp8u* pSrc, int srcStep, IppiSize roiSize, int* counts, Ipp8u lowerBound,
                                  Ipp8u upperBound) {
  if (!pSrc || !counts) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const auto row = AnalysisRows().countInRange8;
  int64_t total = 0;
  for (int y = 0; y < roiSize.height; ++y)
    total += row(StepRow(pSrc, srcStep, y), uint32_t(roiSize.width), lowerBound, upperBound);
  *counts = int(total);
  return ippStsNoErr;
}

IppStatus ippiMean_8u_C1R(const Ipp8u* pSrc, int srcStep, IppiSize roiSize, double* pMean) {
  if (!pSrc || !pMean) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const auto row = AnalysisRows().sum8;
  uint64_t sum = 0;
  for (int y = 0; y < roiSize.height; ++y) sum += row(StepRow(pSrc, srcStep, y), uint32_t(roiSize.width));
  *pMean = double(sum) / (double(roiSize.width) * roiSize.height);
  return ippStsNoErr;
}

IppStatus ippiMean_16u_C1R(const Ipp16u* pSrc, int srcStep, IppiSize roiSize, double* pMean) {
  if (!pSrc || !pMean) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roiSize, 1, 1)) return s;
  const auto row = AnalysisRows().sum16;
  uint64_t sum = 0;
  for (int y = 0; y < roiSize.height; ++y)
    sum += row(reinterpret_cast<const uint16_t*>(StepRow(pSrc, srcStep, y)), uint32_t(roiSize.width));
  *pMean = double(sum) / (double(roiSize.width) * roiSize.height);
  return ippStsNoErr;
}
