// The six public forms: the road is chosen, then an exact right angle or
// the general kernel of the pixel type.
#include <kestrelink/CIppImageRotate.h>

#include "frame/ThreadSetup.h"
#include "geometry/RotatePath.h"

using kestrelink::geometry::ChooseTurnPath;
using kestrelink::geometry::RotateGeneral;
using kestrelink::geometry::TurnPath;

CIppImageRotate::CIppImageRotate() { kestrelink::SetupThreads(0); }

int CIppImageRotate::AdjustDestinationWidth(unsigned int width) {
  return int(kestrelink::geometry::PaddedWidth(width));
}

bool CIppImageRotate::Mono8Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth,
                                  uint32_t dstHeight, void* dst, int centerX, int centerY, double angle,
                                  int interpolation, bool bSmoothEdge) {
  if (!src || !dst) return false;
  switch (ChooseTurnPath(srcWidth, srcHeight, dstWidth, dstHeight, centerX, centerY, angle)) {
    case TurnPath::kClockwise:
      return Mono8Rotate90(srcWidth, srcHeight, src, dst);
    case TurnPath::kAnticlockwise:
      return Mono8Rotate270(srcWidth, srcHeight, src, dst);
    case TurnPath::kHalf:
      return Mono8Rotate180(srcWidth, srcHeight, src, dst);
    default:
      return RotateGeneral<Ipp8u>(ippiRotate_8u_C1R, 1, srcWidth, srcHeight, src, dstWidth, dstHeight, dst, centerX,
                                  centerY, angle, interpolation, bSmoothEdge);
  }
}

bool CIppImageRotate::BGR8Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth,
                                 uint32_t dstHeight, void* dst, int centerX, int centerY, double angle,
                                 int interpolation, bool bSmoothEdge) {
  if (!src || !dst) return false;
  switch (ChooseTurnPath(srcWidth, srcHeight, dstWidth, dstHeight, centerX, centerY, angle)) {
    case TurnPath::kClockwise:
      return BGR8Rotate90(srcWidth, srcHeight, src, dst);
    case TurnPath::kAnticlockwise:
      return BGR8Rotate270(srcWidth, srcHeight, src, dst);
    case TurnPath::kHalf:
      return BGR8Rotate180(srcWidth, srcHeight, src, dst);
    default:
      return RotateGeneral<Ipp8u>(ippiRotate_8u_C3R, 3, srcWidth, srcHeight, src, dstWidth, dstHeight, dst, centerX,
                                  centerY, angle, interpolation, bSmoothEdge);
  }
}

bool CIppImageRotate::BGRx8Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth,
                                  uint32_t dstHeight, void* dst, int centerX, int centerY, double angle,
                                  int interpolation, bool bSmoothEdge) {
  if (!src || !dst) return false;
  switch (ChooseTurnPath(srcWidth, srcHeight, dstWidth, dstHeight, centerX, centerY, angle)) {
    case TurnPath::kClockwise:
      return BGRx8Rotate90(srcWidth, srcHeight, src, dst);
    case TurnPath::kAnticlockwise:
      return BGRx8Rotate270(srcWidth, srcHeight, src, dst);
    case TurnPath::kHalf:
      return BGRx8Rotate180(srcWidth, srcHeight, src, dst);
    default:
      return RotateGeneral<Ipp8u>(ippiRotate_8u_AC4R, 4, srcWidth, srcHeight, src, dstWidth, dstHeight, dst, centerX,
                                  centerY, angle, interpolation, bSmoothEdge);
  }
}

bool CIppImageRotate::Mono16Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth,
                                   uint32_t dstHeight, void* dst, int /*unused*/, int centerX, int centerY,
                                   double angle, int interpolation, bool bSmoothEdge) {
  if (!src || !dst) return false;
  switch (ChooseTurnPath(srcWidth, srcHeight, dstWidth, dstHeight, centerX, centerY, angle)) {
    case TurnPath::kClockwise:
      return Mono16Rotate90(srcWidth, srcHeight, src, dst);
    case TurnPath::kAnticlockwise:
      return Mono16Rotate270(srcWidth, srcHeight, src, dst);
    case TurnPath::kHalf:
      return Mono16Rotate180(srcWidth, srcHeight, src, dst);
    default:
      return RotateGeneral<Ipp16u>(ippiRotate_16u_C1R, 2, srcWidth, srcHeight, src, dstWidth, dstHeight, dst, centerX,
                                   centerY, angle, interpolation, bSmoothEdge);
  }
}

bool CIppImageRotate::BGR16Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth,
                                  uint32_t dstHeight, void* dst, int /*unused*/, int centerX, int centerY, double angle,
                                  int interpolation, bool bSmoothEdge) {
  if (!src || !dst) return false;
  switch (ChooseTurnPath(srcWidth, srcHeight, dstWidth, dstHeight, centerX, centerY, angle)) {
    case TurnPath::kClockwise:
      return BGR16Rotate90(srcWidth, srcHeight, src, dst);
    case TurnPath::kAnticlockwise:
      return BGR16Rotate270(srcWidth, srcHeight, src, dst);
    case TurnPath::kHalf:
      return BGR16Rotate180(srcWidth, srcHeight, src, dst);
    default:
      return RotateGeneral<Ipp16u>(ippiRotate_16u_C3R, 6, srcWidth, srcHeight, src, dstWidth, dstHeight, dst, centerX,
                                   centerY, angle, interpolation, bSmoothEdge);
  }
}

bool CIppImageRotate::BGRx16Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth,
                                   uint32_t dstHeight, void* dst, int /*unused*/, int centerX, int centerY,
                                   double angle, int interpolation, bool bSmoothEdge) {
  if (!src || !dst) return false;
  switch (ChooseTurnPath(srcWidth, srcHeight, dstWidth, dstHeight, centerX, centerY, angle)) {
    case TurnPath::kClockwise:
      return BGRx16Rotate90(srcWidth, srcHeight, src, dst);
    case TurnPath::kAnticlockwise:
      return BGRx16Rotate270(srcWidth, srcHeight, src, dst);
    case TurnPath::kHalf:
      return BGRx16Rotate180(srcWidth, srcHeight, src, dst);
    default:
      return RotateGeneral<Ipp16u>(ippiRotate_16u_AC4R, 8, srcWidth, srcHeight, src, dstWidth, dstHeight, dst, centerX,
                                   centerY, angle, interpolation, bSmoothEdge);
  }
}
