#pragma once
#include <cstdint>

#include <kestrelink/Export.h>

// Mirrors packed frames (rows of width pixels, no padding, top row first)
// about either axis or both. bHorizontalAxis mirrors about the horizontal
// axis: the rows come out bottom to top. bVerticalAxis mirrors about the
// vertical axis: each row's pixels come out right to left. Both flags do
// both (a half turn). Pixels move whole, the fourth sample of BGRx and
// BGR64 too.
//
//   CIppImageMirror mirror;
//   mirror.MirrorBGR24(1920, 1080, frame, out, false, true);  // left-right
//
// With both flags false nothing is done: the answer is true and dst is not
// written, not even as a copy of src. Otherwise the answer is false for a
// null frame or a zero size, true when the frame was mirrored. src and dst
// must be distinct frames.
class KESTRELINK_API CIppImageMirror {
 public:
  // Sets up the thread team.
  CIppImageMirror();

  bool MirrorMono8(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis, bool bVerticalAxis);
  // 16-bit samples, 2 bytes a pixel.
  bool MirrorMono16(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis, bool bVerticalAxis);
  bool MirrorBGR24(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis, bool bVerticalAxis);
  // Three 16-bit samples, 6 bytes a pixel.
  bool MirrorBGR48(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis, bool bVerticalAxis);
  bool MirrorBGRx(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis, bool bVerticalAxis);
  // Four 16-bit samples, 8 bytes a pixel.
  bool MirrorBGR64(uint32_t width, uint32_t height, void* src, void* dst, bool bHorizontalAxis, bool bVerticalAxis);

  // Three planes of 8-bit (24) or 16-bit (48) samples, each mirrored as a
  // mono frame in turn; the first plane that fails stops the call.
  bool MirrorBGRPlanner24(uint32_t width, uint32_t height, void* src0, void* src1, void* src2, void* dst0, void* dst1,
                          void* dst2, bool bHorizontalAxis, bool bVerticalAxis);
  bool MirrorBGRPlanner48(uint32_t width, uint32_t height, void* src0, void* src1, void* src2, void* dst0, void* dst1,
                          void* dst2, bool bHorizontalAxis, bool bVerticalAxis);
};
