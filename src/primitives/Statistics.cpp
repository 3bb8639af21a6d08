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

namespace {

// The exact sum of the region's samples over their number.
template <class T, class Row>
IppStatus Mean(const T* src, int step, IppiSize size, double* mean, Row row) {
  if (!src || !mean) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(size, 1, 1)) return s;
  uint64_t sum = 0;
  for (int y = 0; y < size.height; ++y)
    sum += row(reinterpret_cast<const T*>(StepRow(src, step, y)), uint32_t(size.width));
  *mean = double(sum) / (double(size.width) * size.height);
  return ippStsNoErr;
}

}  // namespace

IppStatus ippiMean_8u_C1R(const Ipp8u* pSrc, int srcStep, IppiSize roiSize, double* pMean) {
  return Mean(pSrc, srcStep, roiSize, pMean, AnalysisRows().sum8);
}

IppStatus ippiMean_16u_C1R(const Ipp16u* pSrc, int srcStep, IppiSize roiSize, double* pMean) {
  return Mean(pSrc, srcStep, roiSize, pMean, AnalysisRows().sum16);
}
