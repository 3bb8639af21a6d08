// The general rotation kernels: the call's checks, the inverse turn as a
// Warp, and the row of the pixel type, interpolation and edge rule asked for.
#include <cmath>

#include "primitives/RotatePrimitives.h"
#include "primitives/RotateSampling.h"

namespace kestrelink::rotate {

void TurnCosSin(double degrees, double& cosine, double& sine) {
  const double turns = degrees / 90.0;
  if (std::isfinite(turns) && turns == std::floor(turns)) {
    static constexpr double kCos[4] = {1, 0, -1, 0}, kSin[4] = {0, 1, 0, -1};
    const int quarter = int(std::fmod(std::fabs(turns), 4.0));
    const int q = turns < 0 ? (4 - quarter) % 4 : quarter;
    cosine = kCos[q];
    sine = kSin[q];
    return;
  }
  const double radians = degrees * (M_PI / 180.0);
  cosine = std::cos(radians);
  sine = std::sin(radians);
}

namespace {

template <class T, int C, int W>
using RowFn = void (*)(const Warp&, int, int, int, T*);

template <class T, int C, int W, bool Smooth>
RowFn<T, C, W> RowFor(Kind kind) {
  switch (kind) {
    case Kind::kNearest:
      return RotateRow<T, C, W, Kind::kNearest, Smooth>;
    case Kind::kLinear:
      return RotateRow<T, C, W, Kind::kLinear, Smooth>;
    default:
      return RotateRow<T, C, W, Kind::kCubic, Smooth>;
  }
}

template <class T, int C, int W>
IppStatus RotateRegion(const T* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, T* pDst, int dstStep,
                       IppiRect dstROI, double angle, double xShift, double yShift, int interpolation) {
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (srcSize.width < 1 || srcSize.height < 1 || srcROI.width < 1 || srcROI.height < 1 || dstROI.width < 1 ||
      dstROI.height < 1 || dstROI.x < 0 || dstROI.y < 0)
    return ippStsSizeErr;
  // The source region, clipped to the image, in 64 bits so that no corner wraps.
  const int64_t x0 = std::max<int64_t>(srcROI.x, 0), y0 = std::max<int64_t>(srcROI.y, 0);
  const int64_t x1 = std::min<int64_t>(int64_t(srcROI.x) + srcROI.width, srcSize.width);
  const int64_t y1 = std::min<int64_t>(int64_t(srcROI.y) + srcROI.height, srcSize.height);
  if (x0 >= x1 || y0 >= y1) return ippStsWrongIntersectROI;
  const bool smooth = (interpolation & IPPI_SMOOTH_EDGE) != 0;
  Kind kind;
  switch (interpolation & ~IPPI_SMOOTH_EDGE) {
    case IPPI_INTER_NN:
      kind = Kind::kNearest;
      break;
    case IPPI_INTER_LINEAR:
      kind = Kind::kLinear;
      break;
    case IPPI_INTER_CUBIC:
      kind = Kind::kCubic;
      break;
    default:
      return ippStsInterpolationErr;
  }
  double c, s;
  TurnCosSin(angle, c, s);
  // u = c (X - xShift) + s (Y - yShift),  v = -s (X - xShift) + c (Y - yShift).
  // Vector runs gather at 32-bit byte offsets from the image's first row.
  const bool wordOffsets = srcStep > 0 && int64_t(y1) * srcStep + int64_t(x1) * C * int64_t(sizeof(T)) < INT32_MAX;
  const Warp w{reinterpret_cast<const uint8_t*>(pSrc),
               srcStep,
               int(x0),
               int(y0),
               int(x1),
               int(y1),
               c,
               s,
               -c * xShift - s * yShift,
               -s,
               c,
               s * xShift - c * yShift,
               wordOffsets ? &RotateRuns() : &kRotateRunsPortable};
  // A turn that is not a number covers nothing.
  for (double k : {w.ux, w.uy, w.u0, w.vx, w.vy, w.v0})
    if (!std::isfinite(k)) return ippStsNoErr;
  const RowFn<T, C, W> row = smooth ? RowFor<T, C, W, true>(kind) : RowFor<T, C, W, false>(kind);
  const int dx0 = dstROI.x, dx1 = int(std::min<int64_t>(int64_t(dstROI.x) + dstROI.width, INT32_MAX));
  const int dy1 = int(std::min<int64_t>(int64_t(dstROI.y) + dstROI.height, INT32_MAX));
  // Blocks of destination pixels draw on a compact patch of the source: a
  // whole destination row would cross hundreds of source rows at a slant.
  // Wide and shallow, so that the per-row spans are found once per 512
  // pixels; the patch of a block (512 pixels at a slant, 16 rows) stays
  // within the second-level cache even for four-sample 16-bit pixels.
  constexpr int kBlockWidth = 512, kBlockHeight = 16;
  for (int Y0 = dstROI.y; Y0 < dy1; Y0 += kBlockHeight) {
    const int Y1 = int(std::min<int64_t>(int64_t(Y0) + kBlockHeight, dy1));
    for (int X0 = dx0; X0 < dx1; X0 += kBlockWidth) {
      const int X1 = int(std::min<int64_t>(int64_t(X0) + kBlockWidth, dx1));
      for (int Y = Y0; Y < Y1; ++Y) {
        T* out = reinterpret_cast<T*>(reinterpret_cast<uint8_t*>(pDst) + ptrdiff_t(Y) * dstStep) + ptrdiff_t(X0) * C;
        row(w, Y, X0, X1, out);
      }
    }
  }
  return ippStsNoErr;
}

}  // namespace
}  // namespace kestrelink::rotate

using kestrelink::rotate::RotateRegion;

IppStatus ippiGetRotateShift(double xCenter, double yCenter, double angle, double* xShift, double* yShift) {
  if (!xShift || !yShift) return ippStsNullPtrErr;
  double c, s;
  kestrelink::rotate::TurnCosSin(angle, c, s);
  *xShift = xCenter - (c * xCenter - s * yCenter);
  *yShift = yCenter - (s * xCenter + c * yCenter);
  return ippStsNoErr;
}

IppStatus ippiRotate_8u_C1R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp8u* pDst, int dstStep,
                            IppiRect dstROI, double angle, double xShift, double yShift, int interpolation) {
  return RotateRegion<Ipp8u, 1, 1>(pSrc, srcSize, srcStep, srcROI, pDst, dstStep, dstROI, angle, xShift, yShift,
                                   interpolation);
}
IppStatus ippiRotate_8u_C3R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp8u* pDst, int dstStep,
                            IppiRect dstROI, double angle, double xShift, double yShift, int interpolation) {
  return RotateRegion<Ipp8u, 3, 3>(pSrc, srcSize, srcStep, srcROI, pDst, dstStep, dstROI, angle, xShift, yShift,
                                   interpolation);
}
IppStatus ippiRotate_8u_AC4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp8u* pDst,
                             int dstStep, IppiRect dstROI, double angle, double xShift, double yShift,
                             int interpolation) {
  return RotateRegion<Ipp8u, 4, 3>(pSrc, srcSize, srcStep, srcROI, pDst, dstStep, dstROI, angle, xShift, yShift,
                                   interpolation);
}
IppStatus ippiRotate_16u_C1R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp16u* pDst,
                             int dstStep, IppiRect dstROI, double angle, double xShift, double yShift,
                             int interpolation) {
  return RotateRegion<Ipp16u, 1, 1>(pSrc, srcSize, srcStep, srcROI, pDst, dstStep, dstROI, angle, xShift, yShift,
                                    interpolation);
}
IppStatus ippiRotate_16u_C3R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp16u* pDst,
                             int dstStep, IppiRect dstROI, double angle, double xShift, double yShift,
                             int interpolation) {
  return RotateRegion<Ipp16u, 3, 3>(pSrc, srcSize, srcStep, srcROI, pDst, dstStep, dstROI, angle, xShift, yShift,
                                    interpolation);
}
IppStatus ippiRotate_16u_AC4R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp16u* pDst,
                              int dstStep, IppiRect dstROI, double angle, double xShift, double yShift,
                              int interpolation) {
  return RotateRegion<Ipp16u, 4, 3>(pSrc, srcSize, srcStep, srcROI, pDst, dstStep, dstROI, angle, xShift, yShift,
                                    interpolation);
}
