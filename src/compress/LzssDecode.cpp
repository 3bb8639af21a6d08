// LZSS decoding. Whole tokens are read straight from the input while eight
// bytes of it and a longest match of room are left; the last tokens of a
// round go one at a time with every check. Matches copy from the output
// already written, which is the window: it must be one buffer across rounds.
#include <algorithm>
#include <cstring>

#include "compress/CompressStatus.h"
#include "compress/LzssState.h"

using namespace kestrelink::compress;
using namespace kestrelink::compress::lzss;

namespace {

template <size_t n>
inline void CopyBytes(Ipp8u* to, const Ipp8u* from) {
  Ipp8u chunk[n];
  std::memcpy(chunk, from, n);
  std::memcpy(to, chunk, n);
}

// Writes `length` bytes at `out` from `offset` bytes back, byte by byte in
// effect: a match longer than its offset repeats its own output. Nothing
// past out + length is written.
inline void CopyMatch(Ipp8u* out, uint32_t offset, uint32_t length) {
  const Ipp8u* from = out - offset;
  if (offset == 1) {
    std::memset(out, from[0], length);
  } else if (offset < 8 || length < 4) {
    for (uint32_t i = 0; i < length; ++i) out[i] = from[i];
  } else if (length < 8) {
    CopyBytes<4>(out, from);
    CopyBytes<4>(out + length - 4, from + length - 4);
  } else {
    // Each chunk reads bytes at least 8 back, all written by then.
    uint32_t i = 0;
    for (; i + 8 <= length; i += 8) CopyBytes<8>(out + i, from + i);
    if (i < length) CopyBytes<8>(out + length - 8, from + length - 8);
  }
}

}  // namespace

IppStatus ippsDecodeLZSSInitAlloc_8u(IppLZSSState_8u** ppState) {
  if (!ppState) return ippStsNullPtrErr;
  *ppState = new IppLZSSState_8u();
  return ippStsNoErr;
}

IppStatus ippsDecodeLZSS_8u(Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u** ppDst, Ipp32s* pDstLen, IppLZSSState_8u* pState) {
  if (!ppSrc || !*ppSrc || !pSrcLen || !ppDst || !*ppDst || !pDstLen || !pState) return ippStsNullPtrErr;
  if (*pSrcLen < 0 || *pDstLen < 0) return ippStsSizeErr;
  if (!pState->outputBase) pState->outputBase = *ppDst;
  const Ipp8u* in = *ppSrc;
  const size_t size = size_t(*pSrcLen);
  const uint64_t inputBits = 8 * uint64_t(size);
  uint64_t pos = pState->bitOffset;
  Ipp8u* const base = pState->outputBase;
  Ipp8u* out = *ppDst;
  Ipp8u* const outEnd = out + *pDstLen;
  IppStatus status = ippStsNoErr;

  // The rest of a match that the last round had no room for.
  if (pState->matchLeft > 0) {
    const uint32_t n = uint32_t(std::min<size_t>(pState->matchLeft, size_t(outEnd - out)));
    CopyMatch(out, pState->matchOffset, n);
    out += n;
    pState->matchLeft -= n;
    if (pState->matchLeft > 0) status = kStsOutputFull;
  }

  while (status == ippStsNoErr) {
    // Tokens straight from the input: one load holds at least 57 bits.
    while ((pos >> 3) + 8 <= size && size_t(outEnd - out) >= kMaxMatch) {
      const uint64_t bits = LoadBigEndian64(in + (pos >> 3)) << (pos & 7);
      if (IsLiteral(bits)) {
        *out++ = LiteralByte(bits);
        pos += kLiteralBits;
        continue;
      }
      const uint32_t offset = MatchOffset(bits), length = MatchLength(bits);
      if (offset == 0 || offset > size_t(out - base)) break;  // the careful step below reports it
      CopyMatch(out, offset, length);
      out += length;
      pos += kMatchBits;
    }

    // One token with every check.
    const uint64_t left = inputBits - pos;
    if (left == 0) break;
    const uint64_t bits = PeekBits(in, size, pos);
    const bool literal = IsLiteral(bits);
    if (left < (literal ? kLiteralBits : kMatchBits)) break;  // padding, or a cut token
    if (out == outEnd) {
      status = kStsOutputFull;
      break;
    }
    if (literal) {
      *out++ = LiteralByte(bits);
      pos += kLiteralBits;
      continue;
    }
    const uint32_t offset = MatchOffset(bits), length = MatchLength(bits);
    if (offset == 0 || offset > size_t(out - base)) {
      status = kStsBadStream;
      break;
    }
    pos += kMatchBits;
    const uint32_t n = uint32_t(std::min<size_t>(length, size_t(outEnd - out)));
    CopyMatch(out, offset, n);
    out += n;
    if (n < length) {
      pState->matchLeft = length - n;
      pState->matchOffset = offset;
      status = kStsOutputFull;
    }
  }

  const size_t taken = size_t(pos >> 3);
  pState->bitOffset = uint32_t(pos & 7);
  *ppSrc += taken;
  *pSrcLen -= Ipp32s(taken);
  *pDstLen -= Ipp32s(out - *ppDst);
  *ppDst = out;
  return status;
}
