// RGB forms to planar 4:2:0 YCbCr, two source rows to a chroma row.
#include "primitives/KernelFrame.h"
#include "primitives/RgbToYCbCr.h"
#include "primitives/YccPixels.h"

namespace {

using kestrelink::prim::StepRow;
namespace ycc = kestrelink::ycc;

// pairRows(y, y0Row, y1Row, cbRow, crRow, width) for rows y, y + 1 of each
// pair; lumaRow(y, yRow, width) for an odd last row, which has no chroma.
template <class PairRows, class LumaRow>
IppStatus EncodeFrame(Ipp8u* const pDst[3], const int dstStep[3], IppiSize roi, PairRows pairRows, LumaRow lumaRow) {
  if (kestrelink::prim::PlanesNull(pDst) || !dstStep) return ippStsNullPtrErr;
  if (const IppStatus s = kestrelink::prim::CheckSize(roi, 2, 1)) return s;
  const uint32_t w = uint32_t(roi.width);
  int y = 0;
  for (; y + 1 < roi.height; y += 2)
    pairRows(y, StepRow(pDst[0], dstStep[0], y), StepRow(pDst[0], dstStep[0], y + 1),
             StepRow(pDst[1], dstStep[1], y / 2), StepRow(pDst[2], dstStep[2], y / 2), w);
  if (y < roi.height) lumaRow(y, StepRow(pDst[0], dstStep[0], y), w);
  return ippStsNoErr;
}

// Through the generic rows; rowPixels(y) gives the pixel source of row y.
template <class RowPixels>
IppStatus EncodeGeneric(Ipp8u* const pDst[3], const int dstStep[3], IppiSize roi, RowPixels rowPixels) {
  return EncodeFrame(
      pDst, dstStep, roi,
      [&](int y, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr, uint32_t w) {
        ycc::EncodePlanar420Rows(rowPixels(y), rowPixels(y + 1), y0, y1, cb, cr, w);
      },
      [&](int y, uint8_t* yr, uint32_t w) { ycc::EncodeLumaRow(rowPixels(y), yr, w); });
}

template <class Pixels>
IppStatus EncodePackedSource(const void* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3], IppiSize roi) {
  if (!pSrc) return ippStsNullPtrErr;
  return EncodeGeneric(pDst, dstStep, roi, [&](int y) { return Pixels{StepRow(pSrc, srcStep, y)}; });
}

IppStatus EncodeC3(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3], IppiSize roi,
                   ycc::ChannelOrder order) {
  if (!pSrc) return ippStsNullPtrErr;
  const auto row = ycc::YccRows().c3_to_planar420;
  return EncodeFrame(
      pDst, dstStep, roi,
      [&](int y, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr, uint32_t w) {
        row(StepRow(pSrc, srcStep, y), StepRow(pSrc, srcStep, y + 1), y0, y1, cb, cr, w, order);
      },
      [&](int y, uint8_t* yr, uint32_t w) {
        if (order == ycc::kOrderRGB)
          ycc::EncodeLumaRow(ycc::C3Pixels<ycc::kOrderRGB>{StepRow(pSrc, srcStep, y)}, yr, w);
        else
          ycc::EncodeLumaRow(ycc::C3Pixels<ycc::kOrderBGR>{StepRow(pSrc, srcStep, y)}, yr, w);
      });
}

}  // namespace

IppStatus ippiBGRToYCbCr420_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                     IppiSize roiSize) {
  return EncodeC3(pSrc, srcStep, pDst, dstStep, roiSize, ycc::kOrderBGR);
}

IppStatus ippiRGBToYCbCr420_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                     IppiSize roiSize) {
  return EncodeC3(pSrc, srcStep, pDst, dstStep, roiSize, ycc::kOrderRGB);
}

IppStatus ippiBGRToYCbCr420_8u_AC4P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                      IppiSize roiSize) {
  if (!pSrc) return ippStsNullPtrErr;
  const auto row = ycc::YccRows().bgrx_to_planar420;
  return EncodeFrame(
      pDst, dstStep, roiSize,
      [&](int y, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr, uint32_t w) {
        row(StepRow(pSrc, srcStep, y), StepRow(pSrc, srcStep, y + 1), y0, y1, cb, cr, w);
      },
      [&](int y, uint8_t* yr, uint32_t w) { ycc::EncodeLumaRow(ycc::BgrxPixels{StepRow(pSrc, srcStep, y)}, yr, w); });
}

IppStatus ippiBGR555ToYCbCr420_16u8u_C3P3R(const Ipp16u* pSrc, int srcStep, Ipp8u* const pDst[3],
                                           const int dstStep[3], IppiSize roiSize) {
  return EncodePackedSource<ycc::Bgr555Pixels>(pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiBGR565ToYCbCr420_16u8u_C3P3R(const Ipp16u* pSrc, int srcStep, Ipp8u* const pDst[3],
                                           const int dstStep[3], IppiSize roiSize) {
  return EncodePackedSource<ycc::Bgr565Pixels>(pSrc, srcStep, pDst, dstStep, roiSize);
}

IppStatus ippiRGBToYCbCr420_8u_P3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* const pDst[3],
                                   const int dstStep[3], IppiSize roiSize) {
  if (kestrelink::prim::PlanesNull(pSrc)) return ippStsNullPtrErr;
  return EncodeGeneric(pDst, dstStep, roiSize, [&](int y) {
    return ycc::PlanarPixels{StepRow(pSrc[0], srcStep, y), StepRow(pSrc[1], srcStep, y), StepRow(pSrc[2], srcStep, y)};
  });
}
