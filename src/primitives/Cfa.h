#pragma once
// Colour-filter-array (Bayer) interpolation to three-channel RGB. Declared
// here for the demosaic code; defined with it. `srcRoi` is the region of the
// mosaic to convert, `srcSize` the whole mosaic; steps are in bytes; `grid`
// names the colours of the mosaic's first two rows; the library always passes
// interpolation 0. The output is in R, G, B order.
#include "primitives/IppTypes.h"

enum IppiBayerGrid { ippiBayerBGGR = 0, ippiBayerRGGB = 1, ippiBayerGBRG = 2, ippiBayerGRBG = 3 };

IppStatus ippiCFAToRGB_8u_C1C3R(const Ipp8u* pSrc, IppiRect srcRoi, IppiSize srcSize, int srcStep, Ipp8u* pDst,
                                int dstStep, IppiBayerGrid grid, int interpolation);
IppStatus ippiCFAToRGB_16u_C1C3R(const Ipp16u* pSrc, IppiRect srcRoi, IppiSize srcSize, int srcStep, Ipp16u* pDst,
                                 int dstStep, IppiBayerGrid grid, int interpolation);
