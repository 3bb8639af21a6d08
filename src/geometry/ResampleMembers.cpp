// The decimating members of CIppImageResize: source rows 0, step, 2 * step,
// ... to successive output rows over the team, each row by DecimateRow.
#include <kestrelink/CIppImageResize.h>

#include <algorithm>

#include "frame/RowLoop.h"
#include "geometry/ResampleRows.h"
#include "platform/OpenMP.h"

namespace {

using kestrelink::geometry::DecimateRow;

// Output rows and pixels a row that the walk reaches: the source rows or
// columns at multiples of step, limited by the output size.
inline uint32_t Reached(uint32_t source, uint32_t step, uint32_t output) {
  return std::min<uint32_t>(output, uint32_t((uint64_t(source) + step - 1) / step));
}

template <size_t Bytes>
bool ResamplePlanes(uint32_t srcWidth, uint32_t srcHeight, int step, void* const src[], void* const dst[],
                    int planes, uint32_t dstWidth, uint32_t dstHeight) {
  if (step < 1) return false;
  kestrelink::platform::SetBlockTimeZero();
  const uint32_t s = uint32_t(step);
  const uint32_t rows = Reached(srcHeight, s, dstHeight), count = Reached(srcWidth, s, dstWidth);
  const size_t srcRow = size_t(srcWidth) * Bytes, dstRow = size_t(dstWidth) * Bytes;
  kestrelink::ForEachRow(rows, false, [&](uint32_t out, uint32_t) {
    for (int p = 0; p < planes; ++p)
      DecimateRow<Bytes>(kestrelink::RowAt(src[p], srcRow, out * s), s, count, kestrelink::RowAt(dst[p], dstRow, out));
  });
  return true;
}

template <size_t Bytes>
bool Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth, uint32_t dstHeight,
              void* dst) {
  void* const in[1] = {src};
  void* const out[1] = {dst};
  return ResamplePlanes<Bytes>(srcWidth, srcHeight, step, in, out, 1, dstWidth, dstHeight);
}

}  // namespace

bool CIppImageResize::Mono8Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                                    uint32_t dstHeight, void* dst) {
  return Resample<1>(srcWidth, srcHeight, step, src, dstWidth, dstHeight, dst);
}

// Mono16, BGR555 and BGR565 are one routine: nothing inside a pixel is read.
bool CIppImageResize::Mono16Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                                     uint32_t dstHeight, void* dst) {
  return Resample<2>(srcWidth, srcHeight, step, src, dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGR555Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                                     uint32_t dstHeight, void* dst) {
  return Mono16Resample(srcWidth, srcHeight, step, src, dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGR565Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                                     uint32_t dstHeight, void* dst) {
  return Mono16Resample(srcWidth, srcHeight, step, src, dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGR24Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                                    uint32_t dstHeight, void* dst) {
  return Resample<3>(srcWidth, srcHeight, step, src, dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGR48Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                                    uint32_t dstHeight, void* dst) {
  return Resample<6>(srcWidth, srcHeight, step, src, dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGRx32Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                                     uint32_t dstHeight, void* dst) {
  return Resample<4>(srcWidth, srcHeight, step, src, dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGRx64Resample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src, uint32_t dstWidth,
                                     uint32_t dstHeight, void* dst) {
  return Resample<8>(srcWidth, srcHeight, step, src, dstWidth, dstHeight, dst);
}

bool CIppImageResize::BGR24PlannerResample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src0, void* src1,
                                           void* src2, uint32_t dstWidth, uint32_t dstHeight, void* dst0, void* dst1,
                                           void* dst2) {
  void* const src[3] = {src0, src1, src2};
  void* const dst[3] = {dst0, dst1, dst2};
  return ResamplePlanes<1>(srcWidth, srcHeight, step, src, dst, 3, dstWidth, dstHeight);
}

bool CIppImageResize::BGR48PlannerResample(uint32_t srcWidth, uint32_t srcHeight, int step, void* src0, void* src1,
                                           void* src2, uint32_t dstWidth, uint32_t dstHeight, void* dst0, void* dst1,
                                           void* dst2) {
  void* const src[3] = {src0, src1, src2};
  void* const dst[3] = {dst0, dst1, dst2};
  return ResamplePlanes<2>(srcWidth, srcHeight, step, src, dst, 3, dstWidth, dstHeight);
}
