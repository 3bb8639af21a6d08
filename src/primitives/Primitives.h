#pragma once
// The whole-image kernels the converters call. Each checks its pointers (-8)
// and size (-6) before touching memory; steps may be negative, which lets a
// caller write a frame bottom-up without a scratch copy.
#include "primitives/IppTypes.h"
#include "primitives/Cfa.h"
#include "primitives/CopyPrimitives.h"
#include "primitives/CpuDispatch.h"
#include "primitives/RgbToYCbCr.h"
#include "primitives/YCbCrToRgb.h"

// Left shift of each 16-bit sample by a constant; 16 or more gives 0.
IppStatus ippiLShiftC_16u_C1R(const Ipp16u* pSrc, int srcStep, Ipp32u value, Ipp16u* pDst, int dstStep,
                              IppiSize roiSize);
