// Huffman encoding kernels: the coder from counts, its lengths, and the code
// bits. The bits of each source byte's code go out most significant first,
// packed from the top of each byte (compress/BitIo.h). The stream is cut in
// whole 32-bit words here; the bits short of a word wait in the state for
// the final flush.
#include <new>

#include "compress/CompressStatus.h"
#include "compress/HuffmanState.h"

using namespace kestrelink::compress;

namespace {

struct CodeEntry {
  uint32_t code;
  uint32_t length;
};

// Symbols coded by one 8-byte store: as many as surely fit in the 57 bits
// that a store can take beyond the up to 7 bits left from the one before.
int GroupFor(uint32_t maxLength) {
  if (maxLength <= 14) return 4;
  if (maxLength <= 18) return 3;
  if (maxLength <= 28) return 2;
  return 1;
}

// Codes groups of kGroup symbols while the group leaves at least 64 source
// bytes behind it (so the stream still runs 8 bytes past each store) and the
// output has 8 bytes of room.
template <int kGroup>
void EncodeGroups(const Ipp8u*& in, const Ipp8u* inEnd, Ipp8u*& out, const Ipp8u* outEnd, PendingBits& bits,
                  const CodeEntry* table) {
  if (inEnd - in < kGroup + 64 || outEnd - out < 8) return;
  const Ipp8u* inStop = inEnd - (kGroup + 64);
  const Ipp8u* outStop = outEnd - 8;
  uint64_t acc = bits.acc;
  uint32_t count = bits.count;
  while (in <= inStop && out <= outStop) {
    for (int g = 0; g < kGroup; ++g) {
      const CodeEntry e = table[in[g]];
      count += e.length;
      acc |= uint64_t(e.code) << (64 - count);
    }
    in += kGroup;
    StoreBigEndian64(out, acc);
    out += count >> 3;
    acc <<= count & 56;
    count &= 7;
  }
  bits.acc = acc;
  bits.count = count;
}

}  // namespace

IppStatus ippsEncodeHuffInitAlloc_8u(const Ipp32s freqTable[256], IppHuffState_8u** ppState) {
  if (!freqTable || !ppState) return ippStsNullPtrErr;
  *ppState = nullptr;
  Ipp32s lengths[256];
  if (const IppStatus status = BuildCodeLengths(freqTable, lengths); status != ippStsNoErr) return status;
  auto* state = new IppHuffState_8u();
  if (const IppStatus status = AssignCodes(lengths, state->code); status != ippStsNoErr) {
    delete state;
    return status;
  }
  *ppState = state;
  return ippStsNoErr;
}

IppStatus ippsHuffGetLenCodeTable_8u(Ipp32s codeLenTable[256], const IppHuffState_8u* pState) {
  if (!codeLenTable || !pState) return ippStsNullPtrErr;
  for (int s = 0; s < 256; ++s) codeLenTable[s] = pState->code.lengths[s];
  return ippStsNoErr;
}

IppStatus ippsEncodeHuff_8u(const Ipp8u* pSrc, Ipp32s srcLen, Ipp8u* pDst, Ipp32s* pDstLen, IppHuffState_8u* pState) {
  if (!pSrc || !pDst || !pDstLen || !pState) return ippStsNullPtrErr;
  if (srcLen <= 0 || *pDstLen <= 0) return ippStsSizeErr;
  CodeEntry table[256];
  for (int s = 0; s < 256; ++s) table[s] = {pState->code.codes[s], uint32_t(pState->code.lengths[s])};

  const Ipp8u* in = pSrc;
  const Ipp8u* const inEnd = pSrc + srcLen;
  Ipp8u* out = pDst;
  Ipp8u* const outEnd = pDst + *pDstLen;
  // Bits left by an earlier call go first. Past the room only the number of
  // bits is kept: it says whether the words would have fitted.
  PendingBits bits = pState->pending;
  uint64_t bitsPastRoom = 0;
  out += bits.WriteWholeBytes(out, size_t(outEnd - out));
  if (bits.count >= 8) {
    bitsPastRoom = bits.count;
    bits = PendingBits();
  } else {
    switch (GroupFor(pState->code.maxLength)) {
      case 4: EncodeGroups<4>(in, inEnd, out, outEnd, bits, table); break;
      case 3: EncodeGroups<3>(in, inEnd, out, outEnd, bits, table); break;
      case 2: EncodeGroups<2>(in, inEnd, out, outEnd, bits, table); break;
      default: EncodeGroups<1>(in, inEnd, out, outEnd, bits, table); break;
    }
  }

  // The last bytes one code at a time, writing only whole bytes that fit.
  for (; in < inEnd; ++in) {
    const CodeEntry e = table[*in];
    if (bitsPastRoom > 0) {
      bitsPastRoom += e.length;
      continue;
    }
    bits.Put(e.code, e.length);
    out += bits.WriteWholeBytes(out, size_t(outEnd - out));
    if (bits.count >= 8) {
      bitsPastRoom = bits.count;
      bits = PendingBits();
    }
  }

  const uint64_t written = uint64_t(out - pDst);
  const uint64_t totalBits = 8 * written + (bitsPastRoom > 0 ? bitsPastRoom : bits.count);
  const uint64_t wordBytes = totalBits / 32 * 4;
  if (wordBytes > uint64_t(*pDstLen)) return ippStsSizeErr;

  // Bytes written past the last whole word go back into the pending bits.
  PendingBits rest;
  rest.count = uint32_t(totalBits - 8 * wordBytes);
  if (bitsPastRoom == 0) {
    for (uint64_t i = wordBytes; i < written; ++i) rest.acc |= uint64_t(pDst[i]) << (56 - 8 * (i - wordBytes));
    rest.acc |= bits.acc >> (8 * (written - wordBytes));
  }  // else the final flush can't fit, as the whole stream does not: only the count matters
  pState->pending = rest;
  *pDstLen = Ipp32s(wordBytes);
  return ippStsNoErr;
}

IppStatus ippsEncodeHuffFinal_8u(Ipp8u* pDst, Ipp32s* pDstLen, IppHuffState_8u* pState) {
  if (!pDst || !pDstLen || !pState) return ippStsNullPtrErr;
  const Ipp32s bytes = Ipp32s(pState->pending.PaddedBytes());
  if (bytes > *pDstLen) return ippStsSizeErr;
  pState->pending.WritePadded(pDst);
  *pDstLen = bytes;
  return ippStsNoErr;
}

void ippsHuffFree_8u(IppHuffState_8u* pState) { delete pState; }
