// 5-6-5 words to 24-bit BGR over a whole image.
#include "convert/rows/ColourRowsPacked.h"
#include "primitives/CopyPrimitives.h"
#include "primitives/KernelFrame.h"

using kestrelink::prim::CheckSize;
using kestrelink::prim::StepRow;

IppStatus ippiBGR565ToBGR_16u8u_C3R(const Ipp16u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (const IppStatus status = CheckSize(roiSize, 1, 1)) return status;
  const auto row = kestrelink::rows::PackedRows().bgr565_to_bgr24;
  for (int y = 0; y < roiSize.height; ++y) row(StepRow(pSrc, srcStep, y), StepRow(pDst, dstStep, y), uint32_t(roiSize.width));
  return ippStsNoErr;
}
