#pragma once
// Channel copies, channel reordering and 5-6-5 expansion over whole images.
// Shape of every kernel: source, its row step in bytes, destination, its
// step, the size, then any extra arguments. Steps may be negative or larger
// than a row. A null pointer gives -8, a size below 1 pixel or 1 row gives -6;
// nothing is touched then. Kernels run in the calling thread.
#include "primitives/IppTypes.h"

// A channel order that names a channel other than 0, 1 or 2.
inline constexpr IppStatus ippStsChannelOrderErr = -60;

// Three channels into the first three of four; the fourth destination byte
// stays as it was.
IppStatus ippiCopy_8u_C3AC4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
// The first three of four channels.
IppStatus ippiCopy_8u_AC4C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
// Three interleaved channels into three planes, all planes at one step.
IppStatus ippiCopy_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], int dstStep, IppiSize roiSize);
// Three planes at one step into three interleaved channels.
IppStatus ippiCopy_8u_P3C3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
// Destination channel i takes source channel dstOrder[i] (0, 1 or 2; -60
// otherwise). Source and destination must not overlap.
IppStatus ippiSwapChannels_8u_C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                  const int dstOrder[3]);
IppStatus ippiSwapChannels_16u_C3R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize,
                                   const int dstOrder[3]);
// 5-6-5 words (B bits 0-4, G 5-10, R 11-15) to B, G, R bytes, each channel
// moved to the top of its byte with the low bits 0: no bit replication.
IppStatus ippiBGR565ToBGR_16u8u_C3R(const Ipp16u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
