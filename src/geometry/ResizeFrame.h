#pragma once
// The steps every interpolated resize of CIppImageResize takes: the mode
// table, the ROI tests, the factors and the supersampling fallback, then the
// kernel over the team in bands of output rows, each band with a work
// buffer of the size the kernel's query gives.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "frame/RowLoop.h"
#include "primitives/Resize.h"

namespace kestrelink::geometry {

// mode 1 bilinear, 2 bicubic, 3 Lanczos, 4 supersampling, any other nearest.
int InterpolationOfMode(int mode);

// The source region of a second-form or planar call.
struct Roi {
  int x, y, width, height;
};

// What the kernel is asked to do for the whole output.
struct ResizeJob {
  int interpolation;
  IppiSize srcSize;
  IppiRect srcRoi;
  IppiRect dstRect;
  int srcStep;
  int dstStep;
  double xFactor, yFactor;
};

// Steps 2 to 6 for pixels of `pixelBytes`: false for a bad ROI, or for a
// frame whose row bytes do not fit the kernels' steps. `roi` is null in the
// first form; dstPitchPixels is the output's row pitch (dstWidth where the
// form has none). Supersampling falls back to nearest neighbour when an axis
// grows, if `superFallback`.
bool PlanResize(int mode, uint32_t srcWidth, uint32_t srcHeight, const Roi* roi, uint32_t dstWidth,
                uint32_t dstHeight, int64_t dstPitchPixels, uint32_t pixelBytes, bool superFallback, ResizeJob& job);

// Steps 7 to 9: kernel(bandRect, buffer) for each thread's band of output
// rows; true when the query and every band answered 0.
template <class Kernel>
bool RunResize(const ResizeJob& job, int nChannel, Kernel kernel) {
  int bytes = 0;
  if (ippiResizeGetBufSize(job.srcRoi, job.dstRect, nChannel, job.interpolation, &bytes) != ippStsNoErr) return false;
  return ForEachBand(uint32_t(job.dstRect.height), [&](uint32_t first, uint32_t count) {
           // A buffer that cannot be had fails the band, not the process.
           const std::unique_ptr<Ipp8u[]> buffer(new (std::nothrow) Ipp8u[size_t(bytes)]);
           if (!buffer) return int(ippStsNoMemErr);
           const IppiRect band{0, int32_t(first), job.dstRect.width, int32_t(count)};
           return kernel(band, buffer.get());
         }) == ippStsNoErr;
}

}  // namespace kestrelink::geometry
