// The full and rolling averages of CIppAverageImage: each member names its
// samples a row and its model; the YUV and packed forms treat every byte as
// a sample of its own, since averaging needs no knowledge of chroma.
#include <kestrelink/CIppAverageImage.h>

#include "frame/ThreadSetup.h"
#include "geometry/AverageModel.h"
#include "platform/OpenMP.h"

using kestrelink::platform::SetBlockTimeZero;
namespace average = kestrelink::average;

CIppAverageImage::CIppAverageImage() { kestrelink::SetupThreads(); }

bool CIppAverageImage::Mono8Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums,
                                    void* dst) {
  SetBlockTimeZero();
  return average::Full(frameCount, width, height, 1, 255, frames, sums, dst);
}

bool CIppAverageImage::Mono16Average(int frameCount, int32_t width, int32_t height, int bitDepth, void** frames,
                                     int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Full(frameCount, width, height, 2, average::DepthLimit(bitDepth), frames, sums, dst);
}

bool CIppAverageImage::BGR24Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums,
                                    void* dst) {
  SetBlockTimeZero();
  return average::Full(frameCount, 3 * int64_t(width), height, 1, 255, frames, sums, dst);
}

bool CIppAverageImage::BGR48Average(int frameCount, int32_t width, int32_t height, int bitDepth, void** frames,
                                    int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Full(frameCount, 3 * int64_t(width), height, 2, average::DepthLimit(bitDepth), frames, sums, dst);
}

bool CIppAverageImage::YUV444Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums,
                                     void* dst) {
  return BGR24Average(frameCount, width, height, frames, sums, dst);
}

bool CIppAverageImage::YUV422Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums,
                                     void* dst) {
  SetBlockTimeZero();
  return average::Full(frameCount, 2 * int64_t(width), height, 1, 255, frames, sums, dst);
}

bool CIppAverageImage::UVY422Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums,
                                     void* dst) {
  return YUV422Average(frameCount, width, height, frames, sums, dst);
}

bool CIppAverageImage::YUV411Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums,
                                     void* dst) {
  SetBlockTimeZero();
  return average::Full(frameCount, (3 * int64_t(width)) / 2, height, 1, 255, frames, sums, dst);
}

bool CIppAverageImage::BGRx32Average(int frameCount, int32_t width, int32_t height, void** frames, int* sums,
                                     void* dst) {
  SetBlockTimeZero();
  return average::Full4(frameCount, width, height, 1, 255, frames, sums, dst);
}

bool CIppAverageImage::BGRx64Average(int frameCount, int32_t width, int32_t height, int bitDepth, void** frames,
                                     int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Full4(frameCount, width, height, 2, average::DepthLimit(bitDepth), frames, sums, dst);
}

bool CIppAverageImage::BGRP24Average(int frameCount, int32_t width, int32_t height, void** frames0, void** frames1,
                                     void** frames2, int* sums, void* dst0, void* dst1, void* dst2) {
  SetBlockTimeZero();
  void* const* const frames[3] = {frames0, frames1, frames2};
  void* const dst[3] = {dst0, dst1, dst2};
  return average::FullPlanes(frameCount, width, height, 1, 255, frames, sums, dst);
}

bool CIppAverageImage::BGRP48Average(int frameCount, int32_t width, int32_t height, int bitDepth, void** frames0,
                                     void** frames1, void** frames2, int* sums, void* dst0, void* dst1, void* dst2) {
  SetBlockTimeZero();
  void* const* const frames[3] = {frames0, frames1, frames2};
  void* const dst[3] = {dst0, dst1, dst2};
  return average::FullPlanes(frameCount, width, height, 2, average::DepthLimit(bitDepth), frames, sums, dst);
}

bool CIppAverageImage::RollingMono8Average(int frameCount, int32_t width, int32_t height, void* newFrame,
                                           void* oldFrame, int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Rolling(frameCount, width, height, 1, 255, newFrame, oldFrame, sums, dst);
}

bool CIppAverageImage::RollingMono16Average(int frameCount, int32_t width, int32_t height, int bitDepth, void* newFrame,
                                            void* oldFrame, int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Rolling(frameCount, width, height, 2, average::DepthLimit(bitDepth), newFrame, oldFrame, sums, dst);
}

bool CIppAverageImage::RollingBGR24Average(int frameCount, int32_t width, int32_t height, void* newFrame,
                                           void* oldFrame, int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Rolling(frameCount, 3 * int64_t(width), height, 1, 255, newFrame, oldFrame, sums, dst);
}

bool CIppAverageImage::RollingBGR48Average(int frameCount, int32_t width, int32_t height, int bitDepth, void* newFrame,
                                           void* oldFrame, int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Rolling(frameCount, 3 * int64_t(width), height, 2, average::DepthLimit(bitDepth), newFrame, oldFrame,
                          sums, dst);
}

bool CIppAverageImage::RollingYUV444Average(int frameCount, int32_t width, int32_t height, void* newFrame,
                                            void* oldFrame, int* sums, void* dst) {
  return RollingBGR24Average(frameCount, width, height, newFrame, oldFrame, sums, dst);
}

bool CIppAverageImage::RollingYUV422Average(int frameCount, int32_t width, int32_t height, void* newFrame,
                                            void* oldFrame, int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Rolling(frameCount, 2 * int64_t(width), height, 1, 255, newFrame, oldFrame, sums, dst);
}

bool CIppAverageImage::RollingUVY422Average(int frameCount, int32_t width, int32_t height, void* newFrame,
                                            void* oldFrame, int* sums, void* dst) {
  return RollingYUV422Average(frameCount, width, height, newFrame, oldFrame, sums, dst);
}

bool CIppAverageImage::RollingYUV411Average(int frameCount, int32_t width, int32_t height, void* newFrame,
                                            void* oldFrame, int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Rolling(frameCount, (3 * int64_t(width)) / 2, height, 1, 255, newFrame, oldFrame, sums, dst);
}

bool CIppAverageImage::RollingBGRx32Average(int frameCount, int32_t width, int32_t height, void* newFrame,
                                            void* oldFrame, int* sums, void* dst) {
  SetBlockTimeZero();
  return average::Rolling4Bytes(frameCount, width, height, newFrame, oldFrame, sums, dst);
}

bool CIppAverageImage::RollingBGRP24Average(int frameCount, int32_t width, int32_t height, void* new0, void* new1,
                                            void* new2, void* old0, void* old1, void* old2, int* sums, void* dst0,
                                            void* dst1, void* dst2) {
  SetBlockTimeZero();
  const void* const in[3] = {new0, new1, new2};
  const void* const out[3] = {old0, old1, old2};
  void* const dst[3] = {dst0, dst1, dst2};
  return average::RollingPlanes(frameCount, width, height, 1, 255, in, out, sums, dst);
}

bool CIppAverageImage::RollingBGRP48Average(int frameCount, int32_t width, int32_t height, int bitDepth, void* new0,
                                            void* new1, void* new2, void* old0, void* old1, void* old2, int* sums,
                                            void* dst0, void* dst1, void* dst2) {
  SetBlockTimeZero();
  const void* const in[3] = {new0, new1, new2};
  const void* const out[3] = {old0, old1, old2};
  void* const dst[3] = {dst0, dst1, dst2};
  return average::RollingPlanes(frameCount, width, height, 2, average::DepthLimit(bitDepth), in, out, sums, dst);
}
