#pragma once
// Which road a CIppImageRotate call takes: an exact right angle, or the
// general kernel; and the general road itself.
#include <climits>
#include <cstdint>

#include "frame/RowLoop.h"
#include "platform/OpenMP.h"
#include "primitives/RotatePrimitives.h"

namespace kestrelink::geometry {

enum class TurnPath { kGeneral, kClockwise, kAnticlockwise, kHalf };

// Rounds a width up to a multiple of 4 pixels.
inline uint32_t PaddedWidth(uint32_t width) { return (width + 3u) & ~3u; }

// Settled behaviour of the format: only the centre (0, 0) with fitting sizes
// takes a right-angle copy, and the angle is compared exactly, not reduced.
inline TurnPath ChooseTurnPath(uint32_t srcWidth, uint32_t srcHeight, uint32_t dstWidth, uint32_t dstHeight,
                               int centerX, int centerY, double angle) {
  if (centerX != 0 || centerY != 0) return TurnPath::kGeneral;
  if (srcWidth == dstHeight && PaddedWidth(srcHeight) == dstWidth) {
    if (angle == 90.0) return TurnPath::kClockwise;
    if (angle == -90.0) return TurnPath::kAnticlockwise;
    if (angle == 180.0) return TurnPath::kHalf;
  } else if (srcWidth == dstWidth && srcHeight == dstHeight && angle == 180.0) {
    return TurnPath::kHalf;
  }
  return TurnPath::kGeneral;
}

template <class T>
using RotateKernel = IppStatus (*)(const T*, IppiSize, int, IppiRect, T*, int, IppiRect, double, double, double, int);

// The general road: interpolation 0 nearest, 1 bilinear, any other bicubic,
// the smooth-edge flag or-ed in; the shifts that keep the centre fixed; the
// kernel over the thread team in bands of output rows.
template <class T>
bool RotateGeneral(RotateKernel<T> kernel, int bytes, uint32_t srcWidth, uint32_t srcHeight, void* src,
                   uint32_t dstWidth, uint32_t dstHeight, void* dst, int centerX, int centerY, double angle,
                   int interpolation, bool smoothEdge) {
  platform::SetBlockTimeZero();
  int mode = interpolation == 0 ? IPPI_INTER_NN : interpolation == 1 ? IPPI_INTER_LINEAR : IPPI_INTER_CUBIC;
  if (smoothEdge) mode |= IPPI_SMOOTH_EDGE;
  double xShift = 0, yShift = 0;
  ippiGetRotateShift(double(centerX), double(centerY), angle, &xShift, &yShift);
  const uint64_t srcRow = uint64_t(srcWidth) * uint32_t(bytes), dstRow = uint64_t(dstWidth) * uint32_t(bytes);
  if (srcRow > INT_MAX || dstRow > INT_MAX || srcHeight > INT_MAX || dstHeight > INT_MAX) return false;
  const IppiSize srcSize{int(srcWidth), int(srcHeight)};
  const IppiRect srcRect{0, 0, int(srcWidth), int(srcHeight)};
  const auto* from = static_cast<const T*>(src);
  // A null frame or an empty size: the kernel's own answer, in one call.
  if (!src || !dst || srcWidth == 0 || srcHeight == 0 || dstWidth == 0 || dstHeight == 0)
    return kernel(from, srcSize, int(srcRow), srcRect, static_cast<T*>(dst), int(dstRow),
                  {0, 0, int(dstWidth), int(dstHeight)}, angle, xShift, yShift, mode) == ippStsNoErr;
  const int status = ForEachBand(dstHeight, [&](uint32_t first, uint32_t rows) {
    return kernel(from, srcSize, int(srcRow), srcRect, static_cast<T*>(dst), int(dstRow),
                  {0, int(first), int(dstWidth), int(rows)}, angle, xShift, yShift, mode);
  });
  return status == ippStsNoErr;
}

}  // namespace kestrelink::geometry
