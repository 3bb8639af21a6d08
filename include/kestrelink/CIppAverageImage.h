#pragma once
#include <kestrelink/Export.h>

#include <cstdint>

// Pixelwise mean of a run of frames. A full average reads every frame once
// and leaves the per-sample sums (signed 32-bit, caller-owned) behind; a
// rolling average then moves the span on by one frame, the caller saying
// which frame enters and which leaves, at the cost of one add and subtract
// a sample however long the span is.
//
//   CIppAverageImage avg;
//   std::vector<int> sums(size_t(w) * h);
//   avg.Mono16Average(n, w, h, 12, frames, sums.data(), out);          // frames[0 .. n-1]
//   avg.RollingMono16Average(n, w, h, 12, next, frames[0], sums.data(), out);
//
// dst = clamp(sum / frameCount, 0, max), truncating division, max 255 or
// 2^bitDepth - 1; sums keep the full values. frameCount is the divisor in
// every form and must be at least 1. Sums hold one integer a sample, four a
// pixel for the BGRx forms (the fourth unused; their fourth sample is never
// read or written), and three planes of w * h for the planar forms. Every
// method answers true, but refuses with false, writing nothing, a frame
// count below 1 or a missing frame, sums or destination pointer.
class KESTRELINK_API CIppAverageImage {
 public:
  // Sets up the thread team.
  CIppAverageImage();

  bool Mono8Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums, void* dst);
  bool Mono16Average(int frameCount, int32_t width, int32_t height, int bitDepth, void** frames, int* sums, void* dst);
  bool BGR24Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums, void* dst);
  bool BGR48Average(int frameCount, int32_t width, int32_t height, int bitDepth, void** frames, int* sums, void* dst);
  bool YUV444Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums, void* dst);
  bool YUV422Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums, void* dst);
  bool UVY422Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums, void* dst);
  // (3 * width) / 2 samples a row.
  bool YUV411Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums, void* dst);
  bool BGRx32Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums, void* dst);
  bool BGRx64Average(int frameCount, int32_t width, int32_t height, int bitDepth, void** frames, int* sums, void* dst);
  bool BGRP24Average(int frameCount, int32_t width, int32_t height, void** frames0, void** frames1, void** frames2,
                     int* sums, void* dst0, void* dst1, void* dst2);
  bool BGRP48Average(int frameCount, int32_t width, int32_t height, int bitDepth, void** frames0, void** frames1,
                     void** frames2, int* sums, void* dst0, void* dst1, void* dst2);

  // sum = sums + newFrame - oldFrame, then as above.
  bool RollingMono8Average(int frameCount, int32_t width, int32_t height, void* newFrame, void* oldFrame, int* sums,
                           void* dst);
  bool RollingMono16Average(int frameCount, int32_t width, int32_t height, int bitDepth, void* newFrame, void* oldFrame,
                            int* sums, void* dst);
  bool RollingBGR24Average(int frameCount, int32_t width, int32_t height, void* newFrame, void* oldFrame, int* sums,
                           void* dst);
  bool RollingBGR48Average(int frameCount, int32_t width, int32_t height, int bitDepth, void* newFrame, void* oldFrame,
                           int* sums, void* dst);
  bool RollingYUV444Average(int frameCount, int32_t width, int32_t height, void* newFrame, void* oldFrame, int* sums,
                            void* dst);
  bool RollingYUV422Average(int frameCount, int32_t width, int32_t height, void* newFrame, void* oldFrame, int* sums,
                            void* dst);
  bool RollingUVY422Average(int frameCount, int32_t width, int32_t height, void* newFrame, void* oldFrame, int* sums,
                            void* dst);
  bool RollingYUV411Average(int frameCount, int32_t width, int32_t height, void* newFrame, void* oldFrame, int* sums,
                            void* dst);
  bool RollingBGRx32Average(int frameCount, int32_t width, int32_t height, void* newFrame, void* oldFrame, int* sums,
                            void* dst);
  // Steps of its own, kept so: within a row oldFrame and dst go four samples
  // a pixel, newFrame three and sums three integers; rows of oldFrame, dst
  // and sums start at four samples a pixel, and so does newFrame's first row
  // of each worker thread, each later row of that worker a further width
  // samples on. It agrees with BGRx64Average only on a row's first pixel.
  bool RollingBGRx64Average(int frameCount, int32_t width, int32_t height, int bitDepth, void* newFrame, void* oldFrame,
                            int* sums, void* dst);
  bool RollingBGRP24Average(int frameCount, int32_t width, int32_t height, void* new0, void* new1, void* new2,
                            void* old0, void* old1, void* old2, int* sums, void* dst0, void* dst1, void* dst2);
  bool RollingBGRP48Average(int frameCount, int32_t width, int32_t height, int bitDepth, void* new0, void* new1,
                            void* new2, void* old0, void* old1, void* old2, int* sums, void* dst0, void* dst1,
                            void* dst2);
};
