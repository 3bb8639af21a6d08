#pragma once
// LZSS kernels of the lossless coder (token format in compress/LzssTokens.h).
// Both directions work in rounds: on the way in *pSrcLen and *pDstLen are
// the input and the room; on the way out *ppSrc and *ppDst have moved past
// what was taken and written, and *pSrcLen and *pDstLen say what is left of
// each. kStsOutputFull (33) asks for another round with fresh room. The
// rounds of one state continue one input buffer and one output buffer:
// the encoder matches against the input before *ppSrc, the decoder copies
// from the output before *ppDst.
#include "primitives/IppTypes.h"

struct IppLZSSState_8u;

IppStatus ippsEncodeLZSSInitAlloc_8u(IppLZSSState_8u** ppState);
// Codes the input to its end; the last bits wait for the flush.
IppStatus ippsEncodeLZSS_8u(Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u** ppDst, Ipp32s* pDstLen, IppLZSSState_8u* pState);
// Writes the bits that wait, padded with zero bits to a whole byte.
IppStatus ippsEncodeLZSSFlush_8u(Ipp8u** ppDst, Ipp32s* pDstLen, IppLZSSState_8u* pState);

IppStatus ippsDecodeLZSSInitAlloc_8u(IppLZSSState_8u** ppState);
// Decodes until the input holds no whole token; a match that reaches back
// before the first byte written, or has offset 0, is an error (-5).
IppStatus ippsDecodeLZSS_8u(Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u** ppDst, Ipp32s* pDstLen, IppLZSSState_8u* pState);

void ippsLZSSFree_8u(IppLZSSState_8u* pState);
