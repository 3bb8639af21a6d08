// Colour-filter-array interpolation of 8- and 16-bit mosaics to RGB pixels.
#include "primitives/CfaDemosaic.h"
#include "primitives/KernelFrame.h"
#include "primitives/CfaPack.h"

namespace kestrelink::cfa {

GridColours ColoursOf(IppiBayerGrid grid) {
  switch (grid) {
    case ippiBayerBGGR: return {{2, 1}, {1, 0}};
    case ippiBayerRGGB: return {{0, 1}, {1, 2}};
    case ippiBayerGBRG: return {{1, 2}, {0, 1}};
    default: return {{1, 0}, {2, 1}};  // ippiBayerGRBG
  }
}

}  // namespace kestrelink::cfa

namespace {

using kestrelink::prim::StepRow;

// The region must lie inside the mosaic. A region that starts on an odd row or
// column sees the grid shifted by that much.
template <class Sample>
IppStatus CfaToRgb(const Sample* pSrc, IppiRect roi, IppiSize size, int srcStep, Sample* pDst, int dstStep,
                   IppiBayerGrid grid) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (roi.width < 1 || roi.height < 1 || roi.x < 0 || roi.y < 0 || roi.x > size.width - roi.width ||
      roi.y > size.height - roi.height)
    return ippStsSizeErr;
  if (grid < ippiBayerBGGR || grid > ippiBayerGRBG) grid = ippiBayerBGGR;
  static constexpr IppiBayerGrid kShiftColumn[4] = {ippiBayerGBRG, ippiBayerGRBG, ippiBayerBGGR, ippiBayerRGGB};
  static constexpr IppiBayerGrid kShiftRow[4] = {ippiBayerGRBG, ippiBayerGBRG, ippiBayerRGGB, ippiBayerBGGR};
  if (roi.x & 1) grid = kShiftColumn[grid];
  if (roi.y & 1) grid = kShiftRow[grid];
  const Sample* origin = reinterpret_cast<const Sample*>(StepRow(pSrc, srcStep, roi.y)) + roi.x;
  const uint32_t width = uint32_t(roi.width);
  kestrelink::cfa::Demosaic<Sample>(origin, srcStep, width, uint32_t(roi.height), grid, false,
                                    [&](uint32_t y, const Sample* r, const Sample* g, const Sample* b) {
                                      kestrelink::cfa::PackPlanes(r, g, b, StepRow(pDst, dstStep, int(y)), width);
                                    });
  return ippStsNoErr;
}

}  // namespace

// Any interpolation argument selects the one interpolation there is.
IppStatus ippiCFAToRGB_8u_C1C3R(const Ipp8u* pSrc, IppiRect srcRoi, IppiSize srcSize, int srcStep, Ipp8u* pDst,
                                int dstStep, IppiBayerGrid grid, int /*interpolation*/) {
  return CfaToRgb(pSrc, srcRoi, srcSize, srcStep, pDst, dstStep, grid);
}

IppStatus ippiCFAToRGB_16u_C1C3R(const Ipp16u* pSrc, IppiRect srcRoi, IppiSize srcSize, int srcStep, Ipp16u* pDst,
                                 int dstStep, IppiBayerGrid grid, int /*interpolation*/) {
  return CfaToRgb(pSrc, srcRoi, srcSize, srcStep, pDst, dstStep, grid);
}
