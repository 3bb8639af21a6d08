#pragma once
// The Huffman kernels of the lossless coder, in the order a coder calls them.
// Lengths are signed 32-bit, as the other kernels take them: 0 or below is a
// size error (-6), a null pointer -8. Every Ipp32s* length is in/out: the
// room or input on the way in, the bytes written or read on the way out.
#include "primitives/IppTypes.h"

// Coder state: the code of each byte value; for encoding, the bits not yet
// written; for decoding, the lookup tables. Made by an ...InitAlloc kernel,
// released by ippsHuffFree_8u.
struct IppHuffState_8u;

// Builds an encoder from the counts of the 256 byte values (code lengths
// of compress/HuffmanCode.h).
IppStatus ippsEncodeHuffInitAlloc_8u(const Ipp32s freqTable[256], IppHuffState_8u** ppState);

// The 256 code lengths of an encoder.
IppStatus ippsHuffGetLenCodeTable_8u(Ipp32s codeLenTable[256], const IppHuffState_8u* pState);

// Writes the packed code-length table; fails with -6 when it needs more
// than *pDstLen bytes.
IppStatus ippsHuffLenCodeTablePack_8u(const Ipp32s codeLenTable[256], Ipp8u* pDst, Ipp32s* pDstLen);

// Writes the codes of srcLen bytes as whole 32-bit words, most significant
// byte first; the bits that do not fill a word stay in the state for
// ippsEncodeHuffFinal_8u. Fails with -6 when the words need more than
// *pDstLen bytes.
IppStatus ippsEncodeHuff_8u(const Ipp8u* pSrc, Ipp32s srcLen, Ipp8u* pDst, Ipp32s* pDstLen, IppHuffState_8u* pState);

// Writes the bits left in the state, (bits + 7) / 8 bytes, the last one
// padded with zero bits; fails with -6 when they need more than *pDstLen.
IppStatus ippsEncodeHuffFinal_8u(Ipp8u* pDst, Ipp32s* pDstLen, IppHuffState_8u* pState);

// Reads a packed code-length table from at most *pSrcLen bytes and gives
// the bytes it took up; -6 when the input ends first.
IppStatus ippsHuffLenCodeTableUnpack_8u(const Ipp8u* pSrc, Ipp32s* pSrcLen, Ipp32s codeLenTable[256]);

// Builds a decoder from 256 code lengths; they must make a prefix code.
IppStatus ippsDecodeHuffInitAlloc_8u(const Ipp32s codeLenTable[256], IppHuffState_8u** ppState);

// Decodes srcLen bytes of code bits into at most *pDstLen bytes and gives
// the number decoded. Decoding ends when the room is full or when the next
// code is longer than the bits left; a bit pattern that is no code is an
// error (-5), with the bytes before it decoded.
IppStatus ippsDecodeHuff_8u(const Ipp8u* pSrc, Ipp32s srcLen, Ipp8u* pDst, Ipp32s* pDstLen, IppHuffState_8u* pState);

void ippsHuffFree_8u(IppHuffState_8u* pState);
