// Interleaved three-channel rows to three planes and back.
#include "convert/rows/ColourRowsCopy.h"
#include "primitives/CopyPrimitives.h"
#include "primitives/KernelFrame.h"

using kestrelink::prim::CheckSize;
using kestrelink::prim::PlanesNull;
using kestrelink::prim::StepRow;

IppStatus ippiCopy_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], int dstStep, IppiSize roiSize) {
  if (!pSrc || PlanesNull(pDst)) return ippStsNullPtrErr;
  if (const IppStatus status = CheckSize(roiSize, 1, 1)) return status;
  const auto row = kestrelink::rows::CopyRows().split3;
  for (int y = 0; y < roiSize.height; ++y)
    row(StepRow(pSrc, srcStep, y), StepRow(pDst[0], dstStep, y), StepRow(pDst[1], dstStep, y),
        StepRow(pDst[2], dstStep, y), uint32_t(roiSize.width));
  return ippStsNoErr;
}

IppStatus ippiCopy_8u_P3C3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  if (PlanesNull(pSrc) || !pDst) return ippStsNullPtrErr;
  if (const IppStatus status = CheckSize(roiSize, 1, 1)) return status;
  const auto row = kestrelink::rows::CopyRows().merge3;
  for (int y = 0; y < roiSize.height; ++y)
    row(StepRow(pSrc[0], srcStep, y), StepRow(pSrc[1], srcStep, y), StepRow(pSrc[2], srcStep, y),
        StepRow(pDst, dstStep, y), uint32_t(roiSize.width));
  return ippStsNoErr;
}
