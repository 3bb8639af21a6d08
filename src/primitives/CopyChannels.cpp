// Three channels to four and four to three, a row kernel a row.
#include "convert/rows/ColourRowsCopy.h"
#include "primitives/CopyPrimitives.h"
#include "primitives/KernelFrame.h"

using kestrelink::prim::CheckSize;
using kestrelink::prim::StepRow;

IppStatus ippiCopy_8u_C3AC4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (const IppStatus status = CheckSize(roiSize, 1, 1)) return status;
  const auto row = kestrelink::rows::CopyRows().bytes3_to_4;
  for (int y = 0; y < roiSize.height; ++y)
    row(StepRow(pSrc, srcStep, y), StepRow(pDst, dstStep, y), uint32_t(roiSize.width), kestrelink::rows::kSameOrder, 0);
  return ippStsNoErr;
}

IppStatus ippiCopy_8u_AC4C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (const IppStatus status = CheckSize(roiSize, 1, 1)) return status;
  const auto row = kestrelink::rows::CopyRows().bytes4_to_3;
  for (int y = 0; y < roiSize.height; ++y)
    row(StepRow(pSrc, srcStep, y), StepRow(pDst, dstStep, y), uint32_t(roiSize.width));
  return ippStsNoErr;
}
