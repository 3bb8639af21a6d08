// The interpolated members of CIppImageResize: each names its kernel, its
// pixel size and its channel count for the work-buffer query.
#include <kestrelink/CIppImageResize.h>

#include "frame/ThreadSetup.h"
#include "geometry/ResizeFrame.h"

namespace {

using kestrelink::geometry::PlanResize;
using kestrelink::geometry::ResizeJob;
using kestrelink::geometry::Roi;
using kestrelink::geometry::RunResize;

template <class Sample>
using PixelKernel = IppStatus (*)(const Sample*, IppiSize, int, IppiRect, Sample*, int, IppiRect, double, double,
                                  double, double, int, Ipp8u*);
template <class Sample>
using PlaneKernel = IppStatus (*)(const Sample* const[3], IppiSize, int, IppiRect, Sample* const[3], int, IppiRect,
                                  double, double, double, double, int, Ipp8u*);

// One interleaved frame through `kernel`; dst rows dstPitchPixels apart.
template <class Sample>
bool ResizePixels(PixelKernel<Sample> kernel, int nChannel, uint32_t pixelBytes, int mode, uint32_t srcWidth,
                  uint32_t srcHeight, const Roi* roi, void* src, int64_t dstPitchPixels, uint32_t dstWidth,
                  uint32_t dstHeight, void* dst) {
  ResizeJob job;
  if (!PlanResize(mode, srcWidth, srcHeight, roi, dstWidth, dstHeight, dstPitchPixels, pixelBytes, true, job))
    return false;
  return RunResize(job, nChannel, [&](IppiRect band, Ipp8u* buffer) {
    return kernel(static_cast<const Sample*>(src), job.srcSize, job.srcStep, job.srcRoi, static_cast<Sample*>(dst),
                  job.dstStep, band, job.xFactor, job.yFactor, 0.0, 0.0, job.interpolation, buffer);
  });
}

// Three planes through `kernel`; the query is asked for four channels.
template <class Sample>
bool ResizePlanes(PlaneKernel<Sample> kernel, int mode, uint32_t srcWidth, uint32_t srcHeight, const Roi& roi,
                  void* const src[3], uint32_t dstWidth, uint32_t dstHeight, void* const dst[3]) {
  ResizeJob job;
  if (!PlanResize(mode, srcWidth, srcHeight, &roi, dstWidth, dstHeight, dstWidth, sizeof(Sample), true, job))
    return false;
  const Sample* const in[3] = {static_cast<const Sample*>(src[0]), static_cast<const Sample*>(src[1]),
                               static_cast<const Sample*>(src[2])};
  Sample* const out[3] = {static_cast<Sample*>(dst[0]), static_cast<Sample*>(dst[1]), static_cast<Sample*>(dst[2])};
  return RunResize(job, 4, [&](IppiRect band, Ipp8u* buffer) {
    return kernel(in, job.srcSize, job.srcStep, job.srcRoi, out, job.dstStep, band, job.xFactor, job.yFactor, 0.0,
                  0.0, job.interpolation, buffer);
  });
}

}  // namespace

CIppImageResize::CIppImageResize() { kestrelink::SetupThreads(0); }

bool CIppImageResize::BGR24ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, void* src, int dstPitchPixels,
                                      uint32_t dstWidth, uint32_t dstHeight, void* dst) {
  return ResizePixels<Ipp8u>(ippiResizeSqrPixel_8u_C3R, 3, 3, mode, srcWidth, srcHeight, nullptr, src, dstPitchPixels,
                             dstWidth, dstHeight, dst);
}

bool CIppImageResize::Mono8ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, void* src, int dstPitchPixels,
                                      uint32_t dstWidth, uint32_t dstHeight, void* dst) {
  return ResizePixels<Ipp8u>(ippiResizeSqrPixel_8u_C1R, 1, 1, mode, srcWidth, srcHeight, nullptr, src, dstPitchPixels,
                             dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGRx32ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, void* src,
                                       int dstPitchPixels, uint32_t dstWidth, uint32_t dstHeight, void* dst) {
  return ResizePixels<Ipp8u>(ippiResizeSqrPixel_8u_AC4R, 4, 4, mode, srcWidth, srcHeight, nullptr, src,
                             dstPitchPixels, dstWidth, dstHeight, dst);
}

bool CIppImageResize::Mono8ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY,
                                      int roiWidth, int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight,
                                      void* dst) {
  const Roi roi{roiX, roiY, roiWidth, roiHeight};
  return ResizePixels<Ipp8u>(ippiResizeSqrPixel_8u_C1R, 1, 1, mode, srcWidth, srcHeight, &roi, src, dstWidth,
                             dstWidth, dstHeight, dst);
}

bool CIppImageResize::Mono16ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY,
                                       int roiWidth, int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight,
                                       void* dst) {
  const Roi roi{roiX, roiY, roiWidth, roiHeight};
  return ResizePixels<Ipp16u>(ippiResizeSqrPixel_16u_C1R, 1, 2, mode, srcWidth, srcHeight, &roi, src, dstWidth,
                              dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGR24ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY,
                                      int roiWidth, int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight,
                                      void* dst) {
  const Roi roi{roiX, roiY, roiWidth, roiHeight};
  return ResizePixels<Ipp8u>(ippiResizeSqrPixel_8u_C3R, 3, 3, mode, srcWidth, srcHeight, &roi, src, dstWidth,
                             dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGR48ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY,
                                      int roiWidth, int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight,
                                      void* dst) {
  const Roi roi{roiX, roiY, roiWidth, roiHeight};
  return ResizePixels<Ipp16u>(ippiResizeSqrPixel_16u_C3R, 3, 6, mode, srcWidth, srcHeight, &roi, src, dstWidth,
                              dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGRx32ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY,
                                       int roiWidth, int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight,
                                       void* dst) {
  const Roi roi{roiX, roiY, roiWidth, roiHeight};
  return ResizePixels<Ipp8u>(ippiResizeSqrPixel_8u_AC4R, 4, 4, mode, srcWidth, srcHeight, &roi, src, dstWidth,
                             dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGRx64ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY,
                                       int roiWidth, int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight,
                                       void* dst) {
  const Roi roi{roiX, roiY, roiWidth, roiHeight};
  return ResizePixels<Ipp16u>(ippiResizeSqrPixel_16u_AC4R, 4, 8, mode, srcWidth, srcHeight, &roi, src, dstWidth,
                              dstWidth, dstHeight, dst);
}

bool CIppImageResize::YUV422ippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY,
                                       int roiWidth, int roiHeight, void* src, uint32_t dstWidth, uint32_t dstHeight,
                                       void* dst) {
  const Roi roi{roiX, roiY, roiWidth, roiHeight};
  ResizeJob job;
  // No supersampling fallback here: the 4:2:2 kernel averages areas on
  // growing axes too, a settled behaviour of the format's path.
  if (!PlanResize(mode, srcWidth, srcHeight, &roi, dstWidth, dstHeight, dstWidth, 2, false, job)) return false;
  if (dstWidth == 0 || dstHeight == 0) return false;  // the kernel's answer for an empty output
  return kestrelink::ForEachBand(dstHeight, [&](uint32_t first, uint32_t count) {
           const IppiRect band{0, int32_t(first), job.dstRect.width, int32_t(count)};
           return kestrelink::prim::ResizeYUV422Region(static_cast<const Ipp8u*>(src), job.srcSize, job.srcStep,
                                                       job.srcRoi, static_cast<Ipp8u*>(dst), job.dstStep, band,
                                                       job.xFactor, job.yFactor, job.interpolation);
         }) == ippStsNoErr;
}

bool CIppImageResize::BGR24PlannerippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY,
                                             int roiWidth, int roiHeight, void* src0, void* src1, void* src2,
                                             uint32_t dstWidth, uint32_t dstHeight, void* dst0, void* dst1,
                                             void* dst2) {
  void* const src[3] = {src0, src1, src2};
  void* const dst[3] = {dst0, dst1, dst2};
  return ResizePlanes<Ipp8u>(ippiResizeSqrPixel_8u_P3R, mode, srcWidth, srcHeight, {roiX, roiY, roiWidth, roiHeight},
                             src, dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGR48PlannerippiResize(int mode, uint32_t srcWidth, uint32_t srcHeight, int roiX, int roiY,
                                             int roiWidth, int roiHeight, void* src0, void* src1, void* src2,
                                             uint32_t dstWidth, uint32_t dstHeight, void* dst0, void* dst1,
                                             void* dst2) {
  void* const src[3] = {src0, src1, src2};
  void* const dst[3] = {dst0, dst1, dst2};
  return ResizePlanes<Ipp16u>(ippiResizeSqrPixel_16u_P3R, mode, srcWidth, srcHeight,
                              {roiX, roiY, roiWidth, roiHeight}, src, dstWidth, dstHeight, dst);
}
