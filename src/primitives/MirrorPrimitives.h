#pragma once
// The mirror kernels: a region copied with its rows, its columns or both in
// reverse order. Shape: source, its row step in bytes, destination, its
// step, the size, the axis. ippAxsHorizontal reverses the rows (top to
// bottom), ippAxsVertical the columns, ippAxsBoth both. Pixels move whole,
// the fourth sample of the four-channel forms too. A null pointer gives -8,
// a size below 1 x 1 gives -6, an axis other than 0, 1, 2 gives -21; nothing
// is touched then. Source and destination must not overlap. Kernels run in
// the calling thread.
#include "primitives/GeometryTypes.h"

IppStatus ippiMirror_8u_C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize, IppiAxis flip);
IppStatus ippiMirror_8u_C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize, IppiAxis flip);
IppStatus ippiMirror_8u_C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize, IppiAxis flip);
IppStatus ippiMirror_16u_C1R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize,
                             IppiAxis flip);
IppStatus ippiMirror_16u_C3R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize,
                             IppiAxis flip);
IppStatus ippiMirror_16u_C4R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize,
                             IppiAxis flip);

namespace kestrelink::mirror {

// The kernels' common body on pixels of `bytes` bytes (1, 2, 3, 4, 6, 8).
IppStatus MirrorRegion(const void* src, int srcStep, void* dst, int dstStep, IppiSize size, IppiAxis flip, int bytes);

}  // namespace kestrelink::mirror
