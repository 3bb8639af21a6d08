#pragma once
// The analysis kernels: grey conversion, counting and averaging, 3 x 3
// morphology, Sobel filters, the 16-bit signed arithmetic around them,
// absolute difference, and image allocation. Shape as elsewhere: source,
// step in bytes, destination, step, size, then extra arguments. A null
// pointer gives -8 and a size below 1 x 1 gives -6, before any memory is
// touched. Kernels run in the calling thread.
#include <cstddef>

#include "primitives/IppTypes.h"

// Mask sizes of the Sobel filters: 3 x 3 and 5 x 5.
enum IppiMaskSize { ippMskSize3x3 = 33, ippMskSize5x5 = 55 };
// Border of the Sobel filters: pixels outside the region take the nearest
// region pixel (ippBorderRepl) or the border value (ippBorderConst).
enum IppiBorderType { ippBorderConst = 0, ippBorderRepl = 1 };

inline constexpr IppStatus ippStsMaskSizeErr = -33;
inline constexpr IppStatus ippStsBorderErr = -225;
inline constexpr IppStatus ippStsStepErr = -14;

// Grey of RGB pixels (three samples, red first):
// (4899 R + 9617 G + 1868 B + 8192) >> 14, the 0.299, 0.587, 0.114 weights
// in 14 bits, rounded to nearest. The 16-bit form keeps 16 bits.
IppStatus ippiRGBToGray_8u_C3C1R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiRGBToGray_16u_C3C1R(const Ipp16u* pSrc, int srcStep, Ipp16u* pDst, int dstStep, IppiSize roiSize);

// Number of pixels with lowerBound <= v <= upperBound.
IppStatus ippiCountInRange_8u_C1R(const Ipp8u* pSrc, int srcStep, IppiSize roiSize, int* counts, Ipp8u lowerBound,
                                  Ipp8u upperBound);

// Mean of the region's samples: their exact sum over their number.
IppStatus ippiMean_8u_C1R(const Ipp8u* pSrc, int srcStep, IppiSize roiSize, double* pMean);
IppStatus ippiMean_16u_C1R(const Ipp16u* pSrc, int srcStep, IppiSize roiSize, double* pMean);

// 3 x 3 maximum (dilate) or minimum (erode) of the region, in place; pixels
// outside the region take the nearest region pixel, so nothing outside it is
// read or written.
IppStatus ippiDilate3x3_8u_C1IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus ippiErode3x3_8u_C1IR(Ipp8u* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus ippiErode3x3_16u_C1IR(Ipp16u* pSrcDst, int srcDstStep, IppiSize roiSize);

// Sobel filters of an 8-bit region to signed 16 bits. "Vert" responds to
// vertical edges: the derivative along x (right minus left) smoothed down
// the column; "Horiz" to horizontal edges: the derivative along y (below
// minus above) smoothed along the row. 3 x 3 smoothing 1 2 1, derivative
// -1 0 1; 5 x 5 smoothing 1 4 6 4 1, derivative -1 -2 0 2 1. Outside the
// region the border rule holds; nothing outside the region is read. The
// work buffer holds at least the size its query gives.
IppStatus ippiFilterSobelVertGetBufferSize_8u16s_C1R(IppiSize roiSize, IppiMaskSize mask, int* pBufferSize);
IppStatus ippiFilterSobelHorizGetBufferSize_8u16s_C1R(IppiSize roiSize, IppiMaskSize mask, int* pBufferSize);
IppStatus ippiFilterSobelVertBorder_8u16s_C1R(const Ipp8u* pSrc, int srcStep, Ipp16s* pDst, int dstStep,
                                              IppiSize roiSize, IppiMaskSize mask, IppiBorderType borderType,
                                              Ipp8u borderValue, Ipp8u* pBuffer);
IppStatus ippiFilterSobelHorizBorder_8u16s_C1R(const Ipp8u* pSrc, int srcStep, Ipp16s* pDst, int dstStep,
                                               IppiSize roiSize, IppiMaskSize mask, IppiBorderType borderType,
                                               Ipp8u borderValue, Ipp8u* pBuffer);

// Signed 16-bit arithmetic. Steps may be odd: samples are read and written
// without alignment. Abs saturates (-32768 gives 32767). Add gives
// (src + srcDst) scaled by 2^-scaleFactor, rounded to nearest with ties to
// even, saturated; a negative factor scales up. Convert saturates to 0..255.
IppStatus ippiAbs_16s_C1IR(Ipp16s* pSrcDst, int srcDstStep, IppiSize roiSize);
IppStatus ippiAdd_16s_C1IRSfs(const Ipp16s* pSrc, int srcStep, Ipp16s* pSrcDst, int srcDstStep, IppiSize roiSize,
                              int scaleFactor);
IppStatus ippiConvert_16s8u_C1R(const Ipp16s* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);

// |a - b| of two regions into a third.
IppStatus ippiAbsDiff_8u_C1R(const Ipp8u* pSrc1, int src1Step, const Ipp8u* pSrc2, int src2Step, Ipp8u* pDst,
                             int dstStep, IppiSize roiSize);
IppStatus ippiAbsDiff_16u_C1R(const Ipp16u* pSrc1, int src1Step, const Ipp16u* pSrc2, int src2Step, Ipp16u* pDst,
                              int dstStep, IppiSize roiSize);

// An image of width x height samples whose rows start 64 bytes apart at
// least (the step, a multiple of 64, goes to *pStepBytes) and whose start is
// 64-byte aligned; null for a size below 1 x 1 or when memory runs out.
// Released with ippiFree (null is allowed).
Ipp8u* ippiMalloc_8u_C1(int widthPixels, int heightPixels, int* pStepBytes);
Ipp16s* ippiMalloc_16s_C1(int widthPixels, int heightPixels, int* pStepBytes);
Ipp16u* ippiMalloc_16u_C1(int widthPixels, int heightPixels, int* pStepBytes);
void ippiFree(void* ptr);

// Every sample of the region set to value.
IppStatus ippiSet_8u_C1R(Ipp8u value, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiSet_16s_C1R(Ipp16s value, Ipp16s* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiSet_16u_C1R(Ipp16u value, Ipp16u* pDst, int dstStep, IppiSize roiSize);
