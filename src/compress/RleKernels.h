#pragma once
// Byte run-length kernels of the lossless coder (format in compress/Rle.cpp).
// On the way in *pSrcLen and *pDstLen are the input and the room; on the
// way out *ppSrc has moved past what was taken, *pSrcLen is what is left of
// the input and *pDstLen the bytes written. A length of 0 or below is a
// size error (-6), a null pointer -8. When the room is used up with input
// left the result is kStsOutputFull (33), a warning: the bytes written
// stand, and the decoder fills the room to its last byte.
#include "primitives/IppTypes.h"

IppStatus ippsEncodeRLE_8u(const Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u* pDst, Ipp32s* pDstLen);
IppStatus ippsDecodeRLE_8u(const Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u* pDst, Ipp32s* pDstLen);
