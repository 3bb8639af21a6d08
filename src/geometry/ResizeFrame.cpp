#include "geometry/ResizeFrame.h"

#include <climits>

#include "platform/OpenMP.h"

namespace kestrelink::geometry {

int InterpolationOfMode(int mode) {
  switch (mode) {
    case 1: return IPPI_INTER_LINEAR;
    case 2: return IPPI_INTER_CUBIC;
    case 3: return IPPI_INTER_LANCZOS;
    case 4: return IPPI_INTER_SUPER;
    default: return IPPI_INTER_NN;
  }
}

bool PlanResize(int mode, uint32_t srcWidth, uint32_t srcHeight, const Roi* roi, uint32_t dstWidth,
                uint32_t dstHeight, int64_t dstPitchPixels, uint32_t pixelBytes, bool superFallback, ResizeJob& job) {
  platform::SetBlockTimeZero();
  job.interpolation = InterpolationOfMode(mode);
  if (roi) {
    // Each value is compared alone and as an unsigned number, so a negative
    // one fails too; x + width is left to the kernel, which clips.
    if (roi->width == 0 || roi->height == 0) return false;
    if (uint32_t(roi->width) > srcWidth || uint32_t(roi->x) > srcWidth) return false;
    if (uint32_t(roi->height) > srcHeight || uint32_t(roi->y) > srcHeight) return false;
  }
  const Roi source = roi ? *roi : Roi{0, 0, int(srcWidth), int(srcHeight)};
  job.xFactor = double(dstWidth) / double(uint32_t(source.width));
  job.yFactor = double(dstHeight) / double(uint32_t(source.height));
  if (superFallback && job.interpolation == IPPI_INTER_SUPER && (job.xFactor > 1.0 || job.yFactor > 1.0))
    job.interpolation = IPPI_INTER_NN;
  const int64_t srcStep = int64_t(srcWidth) * pixelBytes, dstStep = dstPitchPixels * pixelBytes;
  if (srcWidth > uint32_t(INT_MAX) || srcHeight > uint32_t(INT_MAX) || dstWidth > uint32_t(INT_MAX) ||
      dstHeight > uint32_t(INT_MAX) || srcStep > INT_MAX || dstStep > INT_MAX || dstStep < INT_MIN)
    return false;
  job.srcSize = {int32_t(srcWidth), int32_t(srcHeight)};
  job.srcRoi = {source.x, source.y, source.width, source.height};
  job.dstRect = {0, 0, int32_t(dstWidth), int32_t(dstHeight)};
  job.srcStep = int(srcStep);
  job.dstStep = int(dstStep);
  return true;
}

}  // namespace kestrelink::geometry
