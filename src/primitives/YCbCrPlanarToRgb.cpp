// Planar 4:1:1, 4:4:4 and 4:2:0 YCbCr to BGRx, BGR and RGB.
#include "primitives/KernelFrame.h"
#include "primitives/YCbCrToRgb.h"
#include "primitives/YccPixels.h"

namespace {

using kestrelink::prim::StepRow;
namespace ycc = kestrelink::ycc;

// How a planar source is subsampled: 2^shiftX columns and 2^shiftY rows of
// luma to a chroma sample.
struct Subsampling {
  uint32_t shiftX, shiftY;
};

// Converts the whole groups of the region; makeStore(dstRow) gives the
// pixel store of a destination row.
template <class MakeStore>
IppStatus DecodePlanarFrame(const Ipp8u* const pSrc[3], const int* srcStep, Subsampling sub, Ipp8u* pDst,
                            int dstStep, IppiSize roi, MakeStore makeStore) {
  if (kestrelink::prim::PlanesNull(pSrc) || !srcStep || !pDst) return ippStsNullPtrErr;
  const int groupW = 1 << sub.shiftX, groupH = 1 << sub.shiftY;
  if (const IppStatus s = kestrelink::prim::CheckSize(roi, groupW, groupH)) return s;
  const uint32_t w = uint32_t(roi.width) & ~uint32_t(groupW - 1);
  const int h = roi.height & ~(groupH - 1);
  for (int y = 0; y < h; ++y) {
    const int c = y >> sub.shiftY;
    ycc::DecodePlanarRow(StepRow(pSrc[0], srcStep[0], y), StepRow(pSrc[1], srcStep[1], c),
                         StepRow(pSrc[2], srcStep[2], c), sub.shiftX, w, makeStore(StepRow(pDst, dstStep, y)));
  }
  return ippStsNoErr;
}

constexpr Subsampling k411{2, 0}, k444{0, 0}, k420{1, 1};

auto Bgrx(Ipp8u alpha) {
  return [alpha](uint8_t* row) { return ycc::StoreBgrx{row, alpha}; };
}
auto Bgr() {
  return [](uint8_t* row) { return ycc::StoreC3<ycc::kOrderBGR>{row}; };
}
auto Rgb() {
  return [](uint8_t* row) { return ycc::StoreC3<ycc::kOrderRGB>{row}; };
}

}  // namespace

IppStatus ippiYCbCr411ToBGR_8u_P3C4R(const Ipp8u* const pSrc[3], const int srcStep[3], Ipp8u* pDst, int dstStep,
                                     IppiSize roiSize, Ipp8u aval) {
  return DecodePlanarFrame(pSrc, srcStep, k411, pDst, dstStep, roiSize, Bgrx(aval));
}

IppStatus ippiYCbCr411ToBGR_8u_P3C3R(const Ipp8u* const pSrc[3], const int srcStep[3], Ipp8u* pDst, int dstStep,
                                     IppiSize roiSize) {
  return DecodePlanarFrame(pSrc, srcStep, k411, pDst, dstStep, roiSize, Bgr());
}

IppStatus ippiYCbCrToBGR_8u_P3C4R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                  Ipp8u aval) {
  const int steps[3] = {srcStep, srcStep, srcStep};
  return DecodePlanarFrame(pSrc, steps, k444, pDst, dstStep, roiSize, Bgrx(aval));
}

IppStatus ippiYCbCrToBGR_8u_P3C3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  const int steps[3] = {srcStep, srcStep, srcStep};
  return DecodePlanarFrame(pSrc, steps, k444, pDst, dstStep, roiSize, Bgr());
}

IppStatus ippiYCbCrToRGB_8u_P3C3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize) {
  const int steps[3] = {srcStep, srcStep, srcStep};
  return DecodePlanarFrame(pSrc, steps, k444, pDst, dstStep, roiSize, Rgb());
}

IppStatus ippiYCbCr420ToBGR_8u_P3C3R(const Ipp8u* const pSrc[3], const int srcStep[3], Ipp8u* pDst, int dstStep,
                                     IppiSize roiSize) {
  return DecodePlanarFrame(pSrc, srcStep, k420, pDst, dstStep, roiSize, Bgr());
}
