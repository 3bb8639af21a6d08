#pragma once
#include <kestrelink/Export.h>

#include <cstdint>

// Puts two tightly packed frames into one destination, side by side (the
// first on the left) or one above the other (the first on top). The frames
// may differ in size: both are aligned to the top left and the rest of the
// destination keeps what the caller left there. The destination is
// GetCombineImageWidth x GetCombineImageHeight pixels of the target layout.
//
//   CImageCombine combine;
//   const uint32_t W = combine.GetCombineImageWidth(w1, w2, true);
//   const uint32_t H = combine.GetCombineImageHeight(h1, h2, true);
//   std::vector<uint8_t> both(size_t(W) * H * 3);
//   combine.YUV422CombineBGR(w1, h1, a, w2, h2, b, both.data(), true);
//
// Copying members copy each row of each frame as one block; converting
// members convert while they place. The YUV ...CombineBGR members go four
// pixels a step, so widths should be multiples of 4: the last step of a row
// reads and writes up to three pixels past it, as rows done in order would,
// but nothing past the last byte of either frame. The 16-bit colour members
// keep rows of four samples a pixel (see each), write three samples of a
// pixel and never the fourth. Methods answer true, but refuse with false,
// writing nothing, a missing pointer of a frame that places pixels, or sizes
// whose sum does not fit 32 bits.
class KESTRELINK_API CImageCombine {
 public:
  // Sets up the thread team.
  CImageCombine();

  // w1 + w2 side by side, else the larger.
  uint32_t GetCombineImageWidth(uint32_t w1, uint32_t w2, bool sideBySide);
  // The larger side by side, else h1 + h2.
  uint32_t GetCombineImageHeight(uint32_t h1, uint32_t h2, bool sideBySide);

  // Copies, one block a row and frame.
  bool Mono8CombineMono8(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                         bool sideBySide);
  bool Mono16CombineMono16(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                           bool sideBySide);
  // Two-byte copies: chroma pairs are not kept apart at odd widths.
  bool YUV422CombineYUV422(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                           bool sideBySide);
  bool UVY422CombineUVY422(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                           bool sideBySide);
  // Rows of (w * 6) >> 2 bytes.
  bool YUV411CombineYUV411(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                           bool sideBySide);
  // Three opaque bytes a pixel.
  bool YUV444CombineYUV444(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                           bool sideBySide);
  bool RGB24CombineToRGB(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                         bool sideBySide);
  bool BGR24CombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                         bool sideBySide);
  bool BGRxCombineToBGRx(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                         bool sideBySide);
  bool BGR555CombineToBGR555(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                             bool sideBySide);
  bool BGR565CombineToBGR565(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                             bool sideBySide);

  // Conversions to BGR24 while placing.
  // 5-5-5 and 5-6-5 words: each channel at the top of its byte, low bits 0.
  bool BGR555CombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                          bool sideBySide);
  bool BGR565CombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                          bool sideBySide);
  // The first three bytes of each pixel.
  bool BGRxCombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                        bool sideBySide);
  // R and B exchanged.
  bool RGB24CombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                         bool sideBySide);
  // The sample in all three bytes.
  bool Mono8CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                       bool sideBySide);
  // s >> (d - 8) of each frame's depth, truncated to a byte, in all three.
  bool Mono16CombineBGR(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2, uint32_t d2,
                        void* src2, void* dst, bool sideBySide);
  // The library's integer YUV formula, four pixels a step.
  bool YUV422CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                        bool sideBySide);
  bool UVY422CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                        bool sideBySide);
  bool YUV411CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                        bool sideBySide);
  bool YUV444CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2, void* dst,
                        bool sideBySide);

  // 16-bit colour. Source rows hold w * 4 words; destination rows W * 4
  // bytes (to BGR) or W * 4 words (to 16 bits). Side by side, the second
  // frame starts at sample w1 * 3 of the destination row and, where it
  // overlaps the first, wins. BGRx64CombineBGR shifts both frames by d1 - 8.
  bool BGRx64CombineBGR(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2, uint32_t d2,
                        void* src2, void* dst, bool sideBySide);
  bool BGR48CombineBGR(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2, uint32_t d2,
                       void* src2, void* dst, bool sideBySide);

  // Depth changes to dOut: sample = mask & (same ? s >> n : s << n), with
  // n = |d - dOut| of the frame, one flag same = (d1 == dOut) for both
  // frames, and mask = 2^dOut - 1.
  bool Mono16CombineMono16(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2, uint32_t d2,
                           void* src2, uint32_t dOut, void* dst, bool sideBySide);
  bool BGRx64CombineBGRx64(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2, uint32_t d2,
                           void* src2, uint32_t dOut, void* dst, bool sideBySide);
  bool BGR48CombineBGR48(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2, uint32_t d2,
                         void* src2, uint32_t dOut, void* dst, bool sideBySide);

  // Planar sources: p1 lands in byte 0 of each BGR pixel, p2 in byte 1, p3
  // in byte 2; the 16-bit planes are shifted by d - 8 of their frame.
  bool BGR24PlannerCombineBGR(uint32_t w1, uint32_t h1, void* p1, void* p2, void* p3, uint32_t w2, uint32_t h2,
                              void* q1, void* q2, void* q3, void* dst, bool sideBySide);
  bool BGR48PlanneCombineBGR(uint32_t w1, uint32_t h1, uint32_t d1, void* p1, void* p2, void* p3, uint32_t w2,
                             uint32_t h2, uint32_t d2, void* q1, void* q2, void* q3, void* dst, bool sideBySide);
  // Plane by plane, in order; false at the first plane that fails.
  bool BGR24PlannerCombineBGRPlanner(uint32_t w1, uint32_t h1, void* p1, void* p2, void* p3, uint32_t w2, uint32_t h2,
                                     void* q1, void* q2, void* q3, void* r1, void* r2, void* r3, bool sideBySide);
  bool BGR48PlanneCombineBGRPlanner48(uint32_t w1, uint32_t h1, uint32_t d1, void* p1, void* p2, void* p3, uint32_t w2,
                                      uint32_t h2, uint32_t d2, void* q1, void* q2, void* q3, uint32_t dOut, void* r1,
                                      void* r2, void* r3, bool sideBySide);
};
