#include <kestrelink/CIppImageMirror.h>

#include "frame/ThreadSetup.h"
#include "geometry/MirrorFrames.h"

using kestrelink::geometry::MirrorFrame;

CIppImageMirror::CIppImageMirror() { kestrelink::SetupThreads(0); }

bool CIppImageMirror::MirrorMono8(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis,
                                  bool bVerticalAxis) {
  return MirrorFrame<Ipp8u>(ippiMirror_8u_C1R, 1, width, height, src, dst, bHorizontalAxis, bVerticalAxis);
}

bool CIppImageMirror::MirrorMono16(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis,
                                   bool bVerticalAxis) {
  return MirrorFrame<Ipp16u>(ippiMirror_16u_C1R, 2, width, height, src, dst, bHorizontalAxis, bVerticalAxis);
}

bool CIppImageMirror::MirrorBGR24(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis,
                                  bool bVerticalAxis) {
  return MirrorFrame<Ipp8u>(ippiMirror_8u_C3R, 3, width, height, src, dst, bHorizontalAxis, bVerticalAxis);
}

bool CIppImageMirror::MirrorBGR48(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis,
                                  bool bVerticalAxis) {
  return MirrorFrame<Ipp16u>(ippiMirror_16u_C3R, 6, width, height, src, dst, bHorizontalAxis, bVerticalAxis);
}

bool CIppImageMirror::MirrorBGRx(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis,
                                 bool bVerticalAxis) {
  return MirrorFrame<Ipp8u>(ippiMirror_8u_C4R, 4, width, height, src, dst, bHorizontalAxis, bVerticalAxis);
}

bool CIppImageMirror::MirrorBGR64(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis,
                                  bool bVerticalAxis) {
  return MirrorFrame<Ipp16u>(ippiMirror_16u_C4R, 8, width, height, src, dst, bHorizontalAxis, bVerticalAxis);
}

bool CIppImageMirror::MirrorBGRPlanner24(uint32_t width, uint32_t height, void* src0, void* src1, void* src2,
                                         void* dst0, void* dst1, void* dst2, bool bHorizontalAxis, bool bVerticalAxis) {
  return MirrorMono8(width, height, src0, dst0, bHorizontalAxis, bVerticalAxis) &&
         MirrorMono8(width, height, src1, dst1, bHorizontalAxis, bVerticalAxis) &&
         MirrorMono8(width, height, src2, dst2, bHorizontalAxis, bVerticalAxis);
}

bool CIppImageMirror::MirrorBGRPlanner48(uint32_t width, uint32_t height, void* src0, void* src1, void* src2,
                                         void* dst0, void* dst1, void* dst2, bool bHorizontalAxis, bool bVerticalAxis) {
  return MirrorMono16(width, height, src0, dst0, bHorizontalAxis, bVerticalAxis) &&
         MirrorMono16(width, height, src1, dst1, bHorizontalAxis, bVerticalAxis) &&
         MirrorMono16(width, height, src2, dst2, bHorizontalAxis, bVerticalAxis);
}
