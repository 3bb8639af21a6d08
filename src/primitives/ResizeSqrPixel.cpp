// ippiResizeSqrPixel in its 8-bit and 16-bit, one-, three-, four-channel and
// planar forms, and the size of its work buffer.
#include <climits>
#include <cstring>
#include <vector>

#include "primitives/KernelFrame.h"
#include "primitives/Resize.h"
#include "primitives/ResizeEngine.h"
#include "primitives/ResizeUp2.h"

namespace kestrelink::resize {

namespace {

// A source ROI's origin and clipped range on one axis.
AxisMap Axis(int kind, double factor, double shift, int32_t roiStart, int32_t lo, int32_t hi) {
  return {kind, factor, shift, double(roiStart), lo, hi, TapCount(kind, factor)};
}

// Resizes `channels` interleaved samples a pixel; with keepFourth the
// fourth of each destination pixel is left as it was.
template <class Sample>
IppStatus ResizePixels(const Sample* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Sample* pDst, int dstStep,
                       IppiRect dstRoi, double xFactor, double yFactor, double xShift, double yShift, int kind,
                       Ipp8u* pBuffer, int channels, bool keepFourth) {
  if (!pSrc || !pDst || !pBuffer) return ippStsNullPtrErr;
  const IppStatus status = CheckResize(srcSize, srcRoi, {dstRoi.width, dstRoi.height}, xFactor, yFactor, kind);
  if (status != ippStsNoErr) return status;
  int32_t x0, x1, y0, y1;
  ClipRoi(srcSize, srcRoi, x0, x1, y0, y1);
  const int64_t samples = int64_t(dstRoi.width) * channels;
  // The buffer was sized for factors no smaller than the rectangles' ratios.
  const double rectX = double(dstRoi.width) / srcRoi.width, rectY = double(dstRoi.height) / srcRoi.height;
  const size_t needed = ResizeWorkBytes(samples, kind, xFactor, yFactor);
  if (needed == SIZE_MAX) return ippStsSizeErr;
  if (needed > ResizeWorkBytes(samples, kind, rectX, rectY)) return ippStsResizeFactorErr;

  const AxisMap xAxis = Axis(kind, xFactor, xShift, srcRoi.x, x0, x1);
  const AxisMap yAxis = Axis(kind, yFactor, yShift, srcRoi.y, y0, y1);
  const int64_t pixelBytes = int64_t(channels) * int64_t(sizeof(Sample));
  const size_t srcRowBytes = size_t(srcSize.width) * size_t(pixelBytes);
  const RunRows rows{reinterpret_cast<const uint8_t*>(pSrc), srcStep, srcRowBytes,
                     reinterpret_cast<uint8_t*>(pDst) + int64_t(dstRoi.x) * pixelBytes, dstStep,
                     dstRoi.y, dstRoi.height, yAxis, keepFourth};
  if (IsExactUp2(kind, xFactor, yFactor, xShift, yShift, channels)) {
    RunUp2<Sample>(rows, xAxis, dstRoi.x, dstRoi.width);
    return ippStsNoErr;
  }
  Work work = CarveWork(pBuffer, uint32_t(samples), xAxis.taps, yAxis.taps);
  int32_t idx[8];
  double w[8];
  // Area spans of large reductions have more taps than the stack arrays.
  std::vector<int32_t> areaIdx(xAxis.taps > 8 ? size_t(xAxis.taps) : 0);
  std::vector<double> areaW(areaIdx.size());
  int32_t* tapIdx = xAxis.taps <= 8 ? idx : areaIdx.data();
  double* tapW = xAxis.taps <= 8 ? w : areaW.data();
  for (int32_t i = 0; i < dstRoi.width; ++i) {
    AxisTaps(xAxis, int64_t(dstRoi.x) + i, tapIdx, tapW);
    for (int c = 0; c < channels; ++c)
      SetTaps(work.x, uint32_t(i * channels + c), tapIdx, tapW, pixelBytes, c * int64_t(sizeof(Sample)));
  }
  if (sizeof(Sample) == 1 && kind != IPPI_INTER_NN) DropSilentTaps(work.x);
  FindVectorEnd(work.x, srcRowBytes);
  if (sizeof(Sample) == 1 && channels == 1) FoldWindows(work.x, srcRowBytes);
  if (sizeof(Sample) == 1 && channels > 1) GatherPixels(work.x, channels, srcRowBytes);
  if (sizeof(Sample) == 2 && channels == 1) FoldWindows16(work.x, srcRowBytes);

  if (kind == IPPI_INTER_NN) {
    // One offset a pixel: tap 0 of the pixel's first sample.
    for (int32_t i = 0; i < dstRoi.width; ++i) work.x.off[i] = work.x.off[size_t(i) * channels];
    RowTables pixels = work.x;
    pixels.n = uint32_t(dstRoi.width);
    const int copy = int(keepFourth ? pixelBytes / 4 * 3 : pixelBytes);
    RunNearest(rows, pixels, copy, int(pixelBytes));
  } else {
    RunFiltered<Sample>(rows, work);
  }
  return ippStsNoErr;
}

template <class Sample>
IppStatus ResizePlanes(const Sample* const pSrc[3], IppiSize srcSize, int srcStep, IppiRect srcRoi,
                       Sample* const pDst[3], int dstStep, IppiRect dstRoi, double xFactor, double yFactor,
                       double xShift, double yShift, int kind, Ipp8u* pBuffer) {
  if (prim::PlanesNull(pSrc) || prim::PlanesNull(pDst)) return ippStsNullPtrErr;
  for (int p = 0; p < 3; ++p) {
    const IppStatus status = ResizePixels(pSrc[p], srcSize, srcStep, srcRoi, pDst[p], dstStep, dstRoi, xFactor,
                                          yFactor, xShift, yShift, kind, pBuffer, 1, false);
    if (status != ippStsNoErr) return status;
  }
  return ippStsNoErr;
}

}  // namespace

}  // namespace kestrelink::resize

using kestrelink::resize::ResizePixels;
using kestrelink::resize::ResizePlanes;

IppStatus ippiResizeGetBufSize(IppiRect srcRoi, IppiRect dstRoi, int nChannel, int interpolation, int* pSize) {
  if (!pSize) return ippStsNullPtrErr;
  if (srcRoi.width < 1 || srcRoi.height < 1 || dstRoi.width < 1 || dstRoi.height < 1) return ippStsSizeErr;
  if (nChannel != 1 && nChannel != 3 && nChannel != 4) return ippStsSizeErr;
  if (!kestrelink::resize::KnownInterpolation(interpolation)) return ippStsInterpolationErr;
  const size_t bytes =
      kestrelink::resize::ResizeWorkBytes(int64_t(dstRoi.width) * nChannel, interpolation,
                                          double(dstRoi.width) / srcRoi.width, double(dstRoi.height) / srcRoi.height);
  if (bytes == SIZE_MAX) return ippStsSizeErr;
  *pSize = int(bytes);
  return ippStsNoErr;
}

#define KESTRELINK_RESIZE_ARGS                                                                                   \
  pSrc, srcSize, srcStep, srcRoi, pDst, dstStep, dstRoi, xFactor, yFactor, xShift, yShift, interpolation, pBuffer
#define KESTRELINK_RESIZE_PARAMS(T)                                                                              \
  const T *pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, T *pDst, int dstStep, IppiRect dstRoi,          \
      double xFactor, double yFactor, double xShift, double yShift, int interpolation, Ipp8u *pBuffer
#define KESTRELINK_RESIZE_PLANES(T)                                                                              \
  const T *const pSrc[3], IppiSize srcSize, int srcStep, IppiRect srcRoi, T *const pDst[3], int dstStep,         \
      IppiRect dstRoi, double xFactor, double yFactor, double xShift, double yShift, int interpolation,           \
      Ipp8u *pBuffer

IppStatus ippiResizeSqrPixel_8u_C1R(KESTRELINK_RESIZE_PARAMS(Ipp8u)) {
  return ResizePixels(KESTRELINK_RESIZE_ARGS, 1, false);
}
IppStatus ippiResizeSqrPixel_8u_C3R(KESTRELINK_RESIZE_PARAMS(Ipp8u)) {
  return ResizePixels(KESTRELINK_RESIZE_ARGS, 3, false);
}
IppStatus ippiResizeSqrPixel_8u_AC4R(KESTRELINK_RESIZE_PARAMS(Ipp8u)) {
  return ResizePixels(KESTRELINK_RESIZE_ARGS, 4, true);
}
IppStatus ippiResizeSqrPixel_8u_P3R(KESTRELINK_RESIZE_PLANES(Ipp8u)) { return ResizePlanes(KESTRELINK_RESIZE_ARGS); }
IppStatus ippiResizeSqrPixel_16u_C1R(KESTRELINK_RESIZE_PARAMS(Ipp16u)) {
  return ResizePixels(KESTRELINK_RESIZE_ARGS, 1, false);
}
IppStatus ippiResizeSqrPixel_16u_C3R(KESTRELINK_RESIZE_PARAMS(Ipp16u)) {
  return ResizePixels(KESTRELINK_RESIZE_ARGS, 3, false);
}
IppStatus ippiResizeSqrPixel_16u_AC4R(KESTRELINK_RESIZE_PARAMS(Ipp16u)) {
  return ResizePixels(KESTRELINK_RESIZE_ARGS, 4, true);
}
IppStatus ippiResizeSqrPixel_16u_P3R(KESTRELINK_RESIZE_PLANES(Ipp16u)) {
  return ResizePlanes(KESTRELINK_RESIZE_ARGS);
}
