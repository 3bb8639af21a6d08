// The mirror kernels: whole rows copied in reverse order for the horizontal
// axis, each row's pixels reversed for the vertical axis, both for both.
#include <cstring>

#include "frame/StreamCopy.h"
#include "primitives/KernelFrame.h"
#include "primitives/MirrorPrimitives.h"
#include "primitives/MirrorRows.h"

namespace kestrelink::mirror {

IppStatus MirrorRegion(const void* src, int srcStep, void* dst, int dstStep, IppiSize size, IppiAxis flip, int bytes) {
  if (!src || !dst) return ippStsNullPtrErr;
  if (const IppStatus s = prim::CheckSize(size, 1, 1)) return s;
  if (flip != ippAxsHorizontal && flip != ippAxsVertical && flip != ippAxsBoth) return ippStsMirrorFlipErr;
  const uint32_t w = uint32_t(size.width);
  const int h = size.height;
  const size_t rowBytes = size_t(w) * bytes;
  const bool rowsReverse = flip != ippAxsVertical;
  // Regions larger than the caches are written around them, as a large
  // memcpy does: ordinary stores would first read every line they fill.
  const bool stream = rowBytes * size_t(h) >= kStreamCopyBytes;
  if (flip == ippAxsHorizontal) {
    for (int y = 0; y < h; ++y) {
      auto* to = static_cast<uint8_t*>(prim::StepRow(dst, dstStep, h - 1 - y));
      const auto* from = static_cast<const uint8_t*>(prim::StepRow(src, srcStep, y));
      if (stream)
        StreamCopy(to, from, rowBytes);
      else
        std::memcpy(to, from, rowBytes);
    }
    if (stream) StreamCopyDone();
    return ippStsNoErr;
  }
  const ReverseRow reverse = MirrorRows().ForPixel(bytes);
  for (int y = 0; y < h; ++y) {
    const auto* from = static_cast<const uint8_t*>(prim::StepRow(src, srcStep, y));
    auto* to = static_cast<uint8_t*>(prim::StepRow(dst, dstStep, rowsReverse ? h - 1 - y : y));
    if (stream)
      ReverseRowStreaming(reverse, from, to, w, bytes);
    else
      reverse(from, to, w);
  }
  if (stream) StreamCopyDone();
  return ippStsNoErr;
}

}  // namespace kestrelink::mirror

using kestrelink::mirror::MirrorRegion;

IppStatus ippiMirror_8u_C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize, IppiAxis flip) {
  return MirrorRegion(pSrc, srcStep, pDst, dstStep, roiSize, flip, 1);
}
IppStatus ippiMirror_8u_C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize, IppiAxis flip) {
  return MirrorRegion(pSrc, srcStep, pDst, dstStep, roiSize, flip, 3);
}
IppStatus ippiMirror_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize, IppiAxis flip) {
  return MirrorRegion(pSrc, srcStep, pDst, dstStep, roiSize, flip, 4);
}
IppStatus ippiMirror_16u_C1R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize,
                             IppiAxis flip) {
  return MirrorRegion(pSrc, srcStep, pDst, dstStep, roiSize, flip, 2);
}
IppStatus ippiMirror_16u_C3R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize,
                             IppiAxis flip) {
  return MirrorRegion(pSrc, srcStep, pDst, dstStep, roiSize, flip, 6);
}
IppStatus ippiMirror_16u_C4R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize,
                             IppiAxis flip) {
  return MirrorRegion(pSrc, srcStep, pDst, dstStep, roiSize, flip, 8);
}
