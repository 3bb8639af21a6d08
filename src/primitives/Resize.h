#pragma once
// Resize kernels: a region of the source scaled by separate x and y factors
// with a shift, into a region of the destination.
//
// Coordinates are those of pixel centres. Destination pixel (x, y) of the
// destination image samples the source at
//   sx = srcRoi.x + (x + 0.5 - xShift) / xFactor - 0.5
//   sy = srcRoi.y + (y + 0.5 - yShift) / yFactor - 0.5
// so the ROI's own origin maps onto the destination's origin, and only the
// pixels of dstRoi are written. Samples are taken from the part of srcRoi
// that lies inside the image; beyond its edges the edge pixels repeat.
//
// Interpolation (GeometryTypes.h):
//   IPPI_INTER_NN       the nearest pixel centre
//   IPPI_INTER_LINEAR   bilinear between the two nearest centres on each axis
//   IPPI_INTER_CUBIC    Catmull-Rom (a = -0.5), four taps an axis
//   IPPI_INTER_LANCZOS  Lanczos with three lobes, six taps an axis
//   IPPI_INTER_SUPER    the exact area average of the source pixels that a
//                       destination pixel covers, partial pixels weighted by
//                       the part covered
//
// 8-bit forms filter in fixed point (weights in 1/16384, the horizontal pass
// kept with 6 fraction bits); 16-bit forms filter in single precision. Both
// round to the nearest sample and saturate.
//
// Status: -8 a null pointer; -6 a source or destination region with no
// pixel; -23 a factor that is not a positive finite number; -22 an unknown
// interpolation; -37 a source ROI that has no pixel inside the image; -9
// scratch memory that could not be had.
#include "primitives/GeometryTypes.h"
#include "primitives/IppTypes.h"

inline constexpr IppStatus ippStsNoMemErr = -9;

// Bytes of the work buffer that ippiResizeSqrPixel needs for these
// rectangles (factors dstRoi / srcRoi), nChannel samples a pixel (1, 3 or
// 4; 4 serves the planar forms too) and this interpolation.
IppStatus ippiResizeGetBufSize(IppiRect srcRoi, IppiRect dstRoi, int nChannel, int interpolation, int* pSize);

#define KESTRELINK_RESIZE_SQR_PIXEL(NAME, T)                                                                \
  IppStatus NAME(const T* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, T* pDst, int dstStep,      \
                 IppiRect dstRoi, double xFactor, double yFactor, double xShift, double yShift, int interpolation, \
                 Ipp8u* pBuffer)
#define KESTRELINK_RESIZE_SQR_PIXEL_P3(NAME, T)                                                              \
  IppStatus NAME(const T* const pSrc[3], IppiSize srcSize, int srcStep, IppiRect srcRoi, T* const pDst[3],     \
                 int dstStep, IppiRect dstRoi, double xFactor, double yFactor, double xShift, double yShift,     \
                 int interpolation, Ipp8u* pBuffer)

// One channel, three channels, four channels of which the fourth of the
// destination is left as it was (AC4), and three planes with one step.
KESTRELINK_RESIZE_SQR_PIXEL(ippiResizeSqrPixel_8u_C1R, Ipp8u);
KESTRELINK_RESIZE_SQR_PIXEL(ippiResizeSqrPixel_8u_C3R, Ipp8u);
KESTRELINK_RESIZE_SQR_PIXEL(ippiResizeSqrPixel_8u_AC4R, Ipp8u);
KESTRELINK_RESIZE_SQR_PIXEL_P3(ippiResizeSqrPixel_8u_P3R, Ipp8u);
KESTRELINK_RESIZE_SQR_PIXEL(ippiResizeSqrPixel_16u_C1R, Ipp16u);
KESTRELINK_RESIZE_SQR_PIXEL(ippiResizeSqrPixel_16u_C3R, Ipp16u);
KESTRELINK_RESIZE_SQR_PIXEL(ippiResizeSqrPixel_16u_AC4R, Ipp16u);
KESTRELINK_RESIZE_SQR_PIXEL_P3(ippiResizeSqrPixel_16u_P3R, Ipp16u);

#undef KESTRELINK_RESIZE_SQR_PIXEL
#undef KESTRELINK_RESIZE_SQR_PIXEL_P3

// Packed 4:2:2 (Y0 Cb Y1 Cr a pair of pixels): luma and chroma resized as
// their own planes, chroma at half the width, by the same rules as above
// with the destination region {0, 0, dstRoiSize} at pDst. Widths below 2
// give -6. Needs no work buffer.
IppStatus ippiResizeYUV422_8u_C2R(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                                  int dstStep, IppiSize dstRoiSize, double xFactor, double yFactor,
                                  int interpolation);

namespace kestrelink::prim {

// The same for the rows dstRoi.y .. of a destination whose origin is pDst,
// so that a caller can give each thread a band of rows.
IppStatus ResizeYUV422Region(const Ipp8u* pSrc, IppiSize srcSize, int srcStep, IppiRect srcRoi, Ipp8u* pDst,
                             int dstStep, IppiRect dstRoi, double xFactor, double yFactor, int interpolation);

}  // namespace kestrelink::prim
