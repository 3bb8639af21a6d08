// ippiResizeYUV422_8u_C2R: packed 4:2:2 resized as three planes in place.
// Luma is a plane of whole pixels; Cb and Cr are planes of pixel pairs, half
// as wide, each pair's centre between its two pixels. The output row is
// written interleaved again (Y0 Cb Y1 Cr); an odd width ends with a Y and a Cb.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <vector>

#include "primitives/Resize.h"
#include "primitives/ResizeEngine.h"

namespace kestrelink::prim {

IppStatus ResizeYUV422Region(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                             int dstStep, IppiRect dstRoi, double xFactor, double yFactor, int kind) {
  using namespace kestrelink::resize;
  if (!pSrc || !pDst) return ippStsNullPtrErr;
  if (srcSize.width < 2 || dstRoi.width < 2) return ippStsSizeErr;
  const IppStatus status = CheckResize(srcSize, srcRoi, {dstRoi.width, dstRoi.height}, xFactor, yFactor, kind);
  if (status != ippStsNoErr) return status;
  int32_t x0, x1, y0, y1;
  ClipRoi(srcSize, srcRoi, x0, x1, y0, y1);
  // Chroma pairs that lie wholly inside the source row; a clipped ROI of
  // one pixel still reads a pair.
  const int32_t pairs = srcSize.width / 2;
  const int32_t c0 = std::min(x0 / 2, pairs - 1), c1 = std::max(c0 + 1, std::min((x1 + 1) / 2, pairs));

  const int tx = TapCount(kind, xFactor), ty = TapCount(kind, yFactor);
  const int64_t samples = 2 * int64_t(dstRoi.width);
  const size_t bytes = ResizeWorkBytes(samples, kind, xFactor, yFactor);
  if (bytes == SIZE_MAX) return ippStsSizeErr;
  const std::unique_ptr<uint8_t[]> buffer(new (std::nothrow) uint8_t[bytes]);
  if (!buffer) return ippStsNoMemErr;
  Work work = CarveWork(buffer.get(), uint32_t(samples), tx, ty);

  const AxisMap luma{kind, xFactor, 0.0, double(srcRoi.x), x0, x1, tx};
  const AxisMap chroma{kind, xFactor, 0.0, srcRoi.x / 2.0, c0, c1, tx};
  std::vector<int32_t> idx(static_cast<size_t>(tx));
  std::vector<double> w(idx.size());
  for (int32_t i = 0; i < dstRoi.width; ++i) {
    AxisTaps(luma, int64_t(dstRoi.x) + i, idx.data(), w.data());
    SetTaps(work.x, uint32_t(2 * i), idx.data(), w.data(), 2, 0);
  }
  for (int32_t p = 0; 2 * p < dstRoi.width; ++p) {
    AxisTaps(chroma, int64_t(dstRoi.x) / 2 + p, idx.data(), w.data());
    SetTaps(work.x, uint32_t(4 * p + 1), idx.data(), w.data(), 4, 1);
    if (4 * int64_t(p) + 3 < samples) SetTaps(work.x, uint32_t(4 * p + 3), idx.data(), w.data(), 4, 3);
  }
  const size_t srcRowBytes = size_t(srcSize.width) * 2;
  if (kind != IPPI_INTER_NN) DropSilentTaps(work.x);
  FindVectorEnd(work.x, srcRowBytes);
  const RunRows rows{pSrc, srcStep, srcRowBytes, pDst + int64_t(dstRoi.x) * 2, dstStep, dstRoi.y, dstRoi.height,
                     AxisMap{kind, yFactor, 0.0, double(srcRoi.y), y0, y1, ty}, false};
  if (kind == IPPI_INTER_NN)
    RunNearest(rows, work.x, 1, 1);  // tap 0 of each sample is its offset
  else
    RunFiltered<uint8_t>(rows, work);
  return ippStsNoErr;
}

}  // namespace kestrelink::prim

IppStatus ippiResizeYUV422_8u_C2R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                  int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor,
                                  int interpolation) {
  return kestrelink::prim::ResizeYUV422Region(pSrc, srcSize, srcStep, srcRoi, pDst, dstStep,
                                              {0, 0, dstRoiSize.width, dstRoiSize.height}, xFactor, yFactor,
                                              interpolation);
}
