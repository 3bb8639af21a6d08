// The exact right-angle family: whole pixels moved by the tiled turns.
#include <kestrelink/CIppImageRotate.h>

#include "geometry/QuarterTurns.h"
#include "geometry/RotatePath.h"

using kestrelink::geometry::PaddedWidth;
using kestrelink::geometry::TurnAnticlockwise;
using kestrelink::geometry::TurnClockwise;
using kestrelink::geometry::TurnHalf;

bool CIppImageRotate::Mono8Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnClockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 1);
  return true;
}
bool CIppImageRotate::Mono8Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnHalf(srcWidth, srcHeight, src, dst, 1);
  return true;
}
bool CIppImageRotate::Mono8Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnAnticlockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 1);
  return true;
}

bool CIppImageRotate::BGR8Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnClockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 3);
  return true;
}
bool CIppImageRotate::BGR8Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnHalf(srcWidth, srcHeight, src, dst, 3);
  return true;
}
bool CIppImageRotate::BGR8Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnAnticlockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 3);
  return true;
}

bool CIppImageRotate::BGRx8Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnClockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 4);
  return true;
}
bool CIppImageRotate::BGRx8Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnHalf(srcWidth, srcHeight, src, dst, 4);
  return true;
}
bool CIppImageRotate::BGRx8Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnAnticlockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 4);
  return true;
}

bool CIppImageRotate::Mono16Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnClockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 2);
  return true;
}
bool CIppImageRotate::Mono16Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnHalf(srcWidth, srcHeight, src, dst, 2);
  return true;
}
bool CIppImageRotate::Mono16Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnAnticlockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 2);
  return true;
}

bool CIppImageRotate::BGR16Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnClockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 6);
  return true;
}
bool CIppImageRotate::BGR16Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnHalf(srcWidth, srcHeight, src, dst, 6);
  return true;
}
bool CIppImageRotate::BGR16Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnAnticlockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 6);
  return true;
}

bool CIppImageRotate::BGRx16Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnClockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 8);
  return true;
}
bool CIppImageRotate::BGRx16Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnHalf(srcWidth, srcHeight, src, dst, 8);
  return true;
}
bool CIppImageRotate::BGRx16Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst) {
  TurnAnticlockwise(srcWidth, srcHeight, src, dst, PaddedWidth(srcHeight), 8);
  return true;
}
