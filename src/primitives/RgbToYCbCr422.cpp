// RGB forms to 4:2:2 YCbCr: packed Y0 Cb Y1 Cr, or planes Y, Cb, Cr.
#include "primitives/KernelFrame.h"
#include "primitives/RgbToYCbCr.h"
#include "primitives/YccPixels.h"

namespace {

using kestrelink::prim::StepRow;
namespace ycc = kestrelink::ycc;

// row(y, yRow, cbRow, crRow, width) for every row of the region.
template <class Row>
IppStatus EncodePlanarFrame(Ipp8u* const pDst[3], const int dstStep[3], IppiSize roi, Row row) {
  if (kestrelink::prim::PlanesNull(pDst) || !dstStep) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roi, 2, 1)) return s;
  for (int y = 0; y < roi.height; ++y)
    row(y, StepRow(pDst[0], dstStep[0], y), StepRow(pDst[1], dstStep[1], y), StepRow(pDst[2], dstStep[2], y),
        uint32_t(roi.width));
  return ippStsNoErr;
}

template <class MakePixels>
IppStatus EncodePackedFrame(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roi,
                            MakePixels makePixels) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roi, 2, 1)) return s;
  for (int y = 0; y < roi.height; ++y)
    ycc::EncodePacked422Row(makePixels(StepRow(pSrc, srcStep, y)), StepRow(pDst, dstStep, y), uint32_t(roi.width) / 2);
  return ippStsNoErr;
}

// Planar 4:2:2 from a packed source through the generic row.
template <class Pixels>
IppStatus EncodePlanarFrom(const void* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3], IppiSize roi) {
  if (!pSrc) return ippStsNullPtrErr;
  return EncodePlanarFrame(pDst, dstStep, roi, [&](int y, uint8_t* yr, uint8_t* cb, uint8_t* cr, uint32_t w) {
    ycc::EncodePlanar422Row(Pixels{StepRow(pSrc, srcStep, y)}, yr, cb, cr, w);
  });
}

IppStatus EncodePlanarC3(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3], IppiSize roi,
                         ycc::ChannelOrder order) {
  if (!pSrc) return ippStsNullPtrErr;
  const auto row = ycc::YccRows().c3_to_planar422;
  return EncodePlanarFrame(pDst, dstStep, roi, [&](int y, uint8_t* yr, uint8_t* cb, uint8_t* cr, uint32_t w) {
    row(StepRow(pSrc, srcStep, y), yr, cb, cr, w, order);
  });
}

}  // namespace

IppStatus ippiBGRToYCbCr422_8u_C3C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  return EncodePackedFrame(pSrc, srcStep, pDst, dstStep, roiSize,
                           [](const uint8_t* row) { return ycc::C3Pixels<ycc::kOrderBGR>{row}; });
}

IppStatus ippiBGRToYCbCr422_8u_AC4C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  return EncodePackedFrame(pSrc, srcStep, pDst, dstStep, roiSize,
                           [](const uint8_t* row) { return ycc::BgrxPixels{row}; });
}

IppStatus ippiBGRToYCbCr422_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                     IppiSize roiSize) {
  return EncodePlanarC3(pSrc, srcStep, pDst, dstStep, roiSize, ycc::kOrderBGR);
}

IppStatus ippiRGBToYCbCr422_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                     IppiSize roiSize) {
  return EncodePlanarC3(pSrc, srcStep, pDst, dstStep, roiSize, ycc::kOrderRGB);
}

IppStatus ippiBGRToYCbCr422_8u_AC4P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                      IppiSize roiSize) {
  if (!pSrc) return ippStsNullPtrErr;
  const auto row = ycc::YccRows().bgrx_to_planar422;
  return EncodePlanarFrame(pDst, dstStep, roiSize, [&](int y, uint8_t* yr, uint8_t* cb, uint8_t* cr, uint32_t w) {
    row(StepRow(pSrc, srcStep, y), yr, cb, cr, w);
  });
}

IppStatus ippiBGR555ToYCbCr422_16u8u_C3P3R(const Ipp16u* pSrc, int srcStep, Ipp8u* const pDst[3],
                                           const int dstStep[3], IppiSize roiSize) {
  return EncodePlanarFrom<ycc::Bgr555Pixels>(pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiBGR565ToYCbCr422_16u8u_C3P3R(const Ipp16u* pSrc, int srcStep, Ipp8u* const pDst[3],
                                           const int dstStep[3], IppiSize roiSize) {
  return EncodePlanarFrom<ycc::Bgr565Pixels>(pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiRGBToYCbCr422_8u_P3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* const pDst[3],
                                   const int dstStep[3], IppiSize roiSize) {
  if (kestrelink::prim::PlanesNull(pSrc)) return ippStsNullPtrErr;
  return EncodePlanarFrame(pDst, dstStep, roiSize, [&](int y, uint8_t* yr, uint8_t* cb, uint8_t* cr, uint32_t w) {
    const ycc::PlanarPixels px{StepRow(pSrc[0], srcStep, y), StepRow(pSrc[1], srcStep, y),
                               StepRow(pSrc[2], srcStep, y)};
    ycc::EncodePlanar422Row(px, yr, cb, cr, w);
  });
}
