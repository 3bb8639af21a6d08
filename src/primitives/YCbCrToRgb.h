#pragma once
// Studio-range YCbCr to RGB. In 4096ths, with the sums rounded half up and
// each channel limited to 0 .. 255:
//   R = (4767 (Y - 16) + 6537 (Cr - 128)                   + 2048) >> 12
//   G = (4767 (Y - 16) - 3330 (Cr - 128) - 1605 (Cb - 128) + 2048) >> 12
//   B = (4767 (Y - 16)                   + 8261 (Cb - 128) + 2048) >> 12
// Packed 4:2:2 is Y0 Cb Y1 Cr for a pair of pixels. Subsampled sources are
// converted in whole groups: an odd last column of a 4:2:2 or 4:2:0 frame,
// the last width % 4 columns of a 4:1:1 frame and an odd last row of a 4:2:0
// frame are left unwritten, since their chroma is not in the planes. Chroma
// planes have width / 2 (4:1:1: width / 4) columns; 4:2:0 ones height / 2
// rows. The four-channel forms put `aval` in the fourth byte.
// Status: -8 for a null pointer or step array, -6 for a width below the
// group (2, or 4 for 4:1:1) or a height below 1 (2 for 4:2:0).
#include "primitives/IppTypes.h"

IppStatus ippiYCbCr422ToBGR_8u_C2C4R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                     Ipp8u aval);
IppStatus ippiYCbCr422ToBGR_8u_C2C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiYCbCr422ToRGB_8u_C2C3R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);

// Planar 4:1:1, a step for each plane.
IppStatus ippiYCbCr411ToBGR_8u_P3C4R(const Ipp8u* const pSrc[3], const int srcStep[3], Ipp8u* pDst, int dstStep,
                                     IppiSize roiSize, Ipp8u aval);
IppStatus ippiYCbCr411ToBGR_8u_P3C3R(const Ipp8u* const pSrc[3], const int srcStep[3], Ipp8u* pDst, int dstStep,
                                     IppiSize roiSize);

// Planar 4:4:4, one step for the three planes.
IppStatus ippiYCbCrToBGR_8u_P3C4R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize,
                                  Ipp8u aval);
IppStatus ippiYCbCrToBGR_8u_P3C3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiYCbCrToRGB_8u_P3C3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);

// Planar 4:2:0, a step for each plane.
IppStatus ippiYCbCr420ToBGR_8u_P3C3R(const Ipp8u* const pSrc[3], const int srcStep[3], Ipp8u* pDst, int dstStep,
                                     IppiSize roiSize);
