// The mirror kernels: whole rows copied in reverse order for the horizontal
// axis, each row's pixels reversed for the vertical axis, both for both.
#include <cstring>

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
  const bool rowsReverse = flip != ippAxsVertical;
  if (flip == ippAxsHorizontal) {
    for (int y = 0; y < h; ++y)
      std::memcpy(prim::StepRow(dst, dstStep, h - 1 - y), prim::StepRow(src, srcStep, y), size_t(w) * bytes);
    return ippStsNoErr;
  }
  const ReverseRow reverse = MirrorRows().ForPixel(bytes);
  for (int y = 0; y < h; ++y)
    reverse(prim::StepRow(src, srcStep, y), prim::StepRow(dst, dstStep, rowsReverse ? h - 1 - y : y), w);
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
