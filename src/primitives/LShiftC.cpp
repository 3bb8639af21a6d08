#include <cstddef>

#include "convert/rows/MonoRows.h"
#include "primitives/Primitives.h"

IppStatus ippiLShiftC_16u_C1R(const Ipp16u* pSrc, int srcStep, Ipp32u value, Ipp16u* pDst, int dstStep,
                              IppiSize roiSize) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (roiSize.width < 1 || roiSize.height < 1) return ippStsSizeErr;
  const auto row = kestrelink::rows::MonoRows().lshift16;
  const auto* src = reinterpret_cast<const uint8_t*>(pSrc);
  auto* dst = reinterpret_cast<uint8_t*>(pDst);
  for (int y = 0; y < roiSize.height; ++y)
    row(src + std::ptrdiff_t(srcStep) * y, dst + std::ptrdiff_t(dstStep) * y, uint32_t(roiSize.width), value);
  return ippStsNoErr;
}
