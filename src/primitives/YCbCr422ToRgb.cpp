// Packed 4:2:2 (Y0 Cb Y1 Cr) to BGRx, BGR and RGB, a row kernel per row.
#include "primitives/KernelFrame.h"
#include "primitives/YCbCrToRgb.h"
#include "primitives/YccRows.h"

namespace {

using kestrelink::prim::StepRow;

template <class Row>
IppStatus DecodePairFrame(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roi, Row row) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roi, 2, 1)) return s;
  for (int y = 0; y < roi.height; ++y) row(StepRow(pSrc, srcStep, y), StepRow(pDst, dstStep, y), uint32_t(roi.width) / 2);
  return ippStsNoErr;
}

}  // namespace

IppStatus ippiYCbCr422ToBGR_8u_C2C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                     Ipp8u aval) {
  const auto row = kestrelink::ycc::YccRows().pairs_to_bgrx;
  return DecodePairFrame(pSrc, srcStep, pDst, dstStep, roiSize,
                         [&](const uint8_t* s, uint8_t* d, uint32_t pairs) { row(s, d, pairs, aval); });
}

IppStatus ippiYCbCr422ToBGR_8u_C2C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  const auto row = kestrelink::ycc::YccRows().pairs_to_c3;
  return DecodePairFrame(pSrc, srcStep, pDst, dstStep, roiSize, [&](const uint8_t* s, uint8_t* d, uint32_t pairs) {
    row(s, d, pairs, kestrelink::ycc::kOrderBGR);
  });
}

IppStatus ippiYCbCr422ToRGB_8u_C2C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  const auto row = kestrelink::ycc::YccRows().pairs_to_c3;
  return DecodePairFrame(pSrc, srcStep, pDst, dstStep, roiSize, [&](const uint8_t* s, uint8_t* d, uint32_t pairs) {
    row(s, d, pairs, kestrelink::ycc::kOrderRGB);
  });
}
