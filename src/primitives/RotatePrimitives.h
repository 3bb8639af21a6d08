#pragma once
// The general rotation kernels and the shift query.
//
// Angles are in degrees; a positive angle turns the picture clockwise as it
// is shown, top row first (x to the right, y down). That is the turn of the
// exact quarter-turn path: a source pixel at (x, y) lands at
//   x' = x cos a - y sin a + xShift,   y' = x sin a + y cos a + yShift,
// pixel centres at whole coordinates. Each destination pixel of dstROI is
// mapped back through the inverse turn and sampled from the source:
// nearest neighbour, bilinear, or bicubic (Catmull-Rom, a = -0.5), with
// samples beyond srcROI's edge taken from its edge pixels. A destination
// pixel is written when its source point falls inside srcROI, i.e. within
// [x0 - 0.5, x0 + w - 0.5) and likewise for y; every other pixel keeps what
// it held. With IPPI_SMOOTH_EDGE or-ed into `interpolation` the edge is
// blended instead of cut: a pixel takes coverage * sample + (1 - coverage) *
// its old value, where coverage is, on each axis, the part of a one-pixel
// span around the source point that lies within srcROI, the two multiplied.
// Inside the picture this is 1 and the result is that of the plain kernel.
//
// An angle or shift that is not a finite number covers nothing (status 0).
// Quarter turns use exact sines and cosines, so a turn by a multiple of 90
// degrees about a pixel centre moves whole pixels. The four-channel forms
// (AC4) write the first three samples of a pixel and leave the fourth.
// Status: -8 for a null pointer, -6 for a source size or a region below
// 1 x 1 or a destination region with a negative corner, -37 for a source
// region outside the image, -22 for another interpolation; nothing is
// touched then. Source and destination must not overlap. Kernels run in the
// calling thread.
#include "primitives/GeometryTypes.h"

// The shifts that keep (xCenter, yCenter) where it is under a turn by `angle`.
IppStatus ippiGetRotateShift(double xCenter, double yCenter, double angle, double* xShift, double* yShift);

IppStatus ippiRotate_8u_C1R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp8u* pDst, int dstStep,
                            IppiRect dstROI, double angle, double xShift, double yShift, int interpolation);
IppStatus ippiRotate_8u_C3R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp8u* pDst, int dstStep,
                            IppiRect dstROI, double angle, double xShift, double yShift, int interpolation);
IppStatus ippiRotate_8u_AC4R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp8u* pDst,
                             int dstStep, IppiRect dstROI, double angle, double xShift, double yShift,
                             int interpolation);
IppStatus ippiRotate_16u_C1R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp16u* pDst,
                             int dstStep, IppiRect dstROI, double angle, double xShift, double yShift,
                             int interpolation);
IppStatus ippiRotate_16u_C3R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp16u* pDst,
                             int dstStep, IppiRect dstROI, double angle, double xShift, double yShift,
                             int interpolation);
IppStatus ippiRotate_16u_AC4R(const Ipp16u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcROI, Ipp16u* pDst,
                              int dstStep, IppiRect dstROI, double angle, double xShift, double yShift,
                              int interpolation);

namespace kestrelink::rotate {

// Cosine and sine of `degrees`, exact (0, 1, -1) at multiples of 90.
void TurnCosSin(double degrees, double& cosine, double& sine);

}  // namespace kestrelink::rotate
