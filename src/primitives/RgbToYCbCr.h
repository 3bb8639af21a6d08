#pragma once
// RGB to studio-range YCbCr, BT.601, in 4096ths (the 8-bit scale of 219 for
// luma and 224 for chroma folded in, each weight rounded; chroma rows sum to 0):
//   Y  = (1052 R + 2065 G +  401 B + 16 * 4096 + 2048) >> 12
//   Cb = (-607 R - 1192 G + 1799 B) / 4096 + 128
//   Cr = (1799 R - 1506 G -  293 B) / 4096 + 128
// Chroma is taken from the sums of the pixels it serves, rounded half up once:
// a pair for 4:2:2 (>> 13), a 2 x 2 block for 4:2:0 (>> 14); that is the mean
// of the pixels' exact chroma. Every result lies in 16 .. 235 (Y) or
// 16 .. 240 (Cb, Cr), so nothing is clipped.
// Sources: BGR and RGB three bytes a pixel; BGRx four (the fourth unread);
// BGR555 and BGR565 little-endian words, widened by a left shift with no bit
// replication (0x7FFF is 248, 248, 248); three planes R, G, B with one step.
// Y is written for every pixel; Cb and Cr for every whole pair (4:2:2) or
// 2 x 2 block (4:2:0): planes of width / 2 columns, and for 4:2:0 height / 2
// rows, so an odd last column or row contributes to Y only. Packed 4:2:2
// output is Y0 Cb Y1 Cr, whole pairs only.
// Status: -8 for a null pointer or step array, -6 for a width below 2 or a
// height below 1.
#include "primitives/IppTypes.h"

IppStatus ippiBGRToYCbCr422_8u_C3C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);
IppStatus ippiBGRToYCbCr422_8u_AC4C2R(const Ipp8u* pSrc, int srcStep, Ipp8u* pDst, int dstStep, IppiSize roiSize);

// To planar 4:2:2: planes Y, Cb, Cr, a step for each.
IppStatus ippiBGRToYCbCr422_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                     IppiSize roiSize);
IppStatus ippiRGBToYCbCr422_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                     IppiSize roiSize);
IppStatus ippiBGRToYCbCr422_8u_AC4P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                      IppiSize roiSize);
IppStatus ippiBGR555ToYCbCr422_16u8u_C3P3R(const Ipp16u* pSrc, int srcStep, Ipp8u* const pDst[3],
                                           const int dstStep[3], IppiSize roiSize);
IppStatus ippiBGR565ToYCbCr422_16u8u_C3P3R(const Ipp16u* pSrc, int srcStep, Ipp8u* const pDst[3],
                                           const int dstStep[3], IppiSize roiSize);
IppStatus ippiRGBToYCbCr422_8u_P3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* const pDst[3],
                                   const int dstStep[3], IppiSize roiSize);

// To planar 4:2:0: planes Y, Cb, Cr, a step for each.
IppStatus ippiBGRToYCbCr420_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                     IppiSize roiSize);
IppStatus ippiRGBToYCbCr420_8u_C3P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                     IppiSize roiSize);
IppStatus ippiBGRToYCbCr420_8u_AC4P3R(const Ipp8u* pSrc, int srcStep, Ipp8u* const pDst[3], const int dstStep[3],
                                      IppiSize roiSize);
IppStatus ippiBGR555ToYCbCr420_16u8u_C3P3R(const Ipp16u* pSrc, int srcStep, Ipp8u* const pDst[3],
                                           const int dstStep[3], IppiSize roiSize);
IppStatus ippiBGR565ToYCbCr420_16u8u_C3P3R(const Ipp16u* pSrc, int srcStep, Ipp8u* const pDst[3],
                                           const int dstStep[3], IppiSize roiSize);
IppStatus ippiRGBToYCbCr420_8u_P3R(const Ipp8u* const pSrc[3], int srcStep, Ipp8u* const pDst[3],
                                   const int dstStep[3], IppiSize roiSize);
