// LZSS encoding: greedy parsing with hash chains over a 32 KiB window.
//
// At each position the position is entered in its chain, then the chain is
// walked from the most recent earlier position: at most 16 candidates, none
// 32768 or more bytes back, stopping early at a match of the permitted
// maximum (258, or what is left of the input). A candidate replaces the
// best only when strictly longer, so of equal lengths the nearest wins; the
// best starts at 2, so only matches of 3 or more count. A match is taken at
// once (no lazy evaluation), every position it covers is entered in its
// chain, and the search goes on behind it; else a literal goes out. The
// last two bytes are literals, since no three-byte key is formed there.
//
// The chain is that of the three bytes themselves: earlier positions whose
// hash collides but whose bytes differ are stepped over and not counted, so
// the tokens are those of a hash that never collides.
//
// The walk itself takes a shorter road to the same result. The most recent
// candidate gives a match of 3 or more, so only a candidate that matches 4
// bytes can beat it: those stand on a second chain, of the next four bytes.
// Each position also carries its number among the positions of its three
// bytes, so a candidate on the four-byte chain is known to be the k-th of
// the three-byte walk and is looked at only for k up to 16. Both chains run
// from the most recent position back, so the first of the longest is the
// nearest, as in the plain walk.
#include <algorithm>
#include <cstring>

#include "compress/CompressStatus.h"
#include "compress/LzssState.h"

using namespace kestrelink::compress;
using namespace kestrelink::compress::lzss;

namespace {

constexpr uint32_t kRingMask = kWindow - 1;

inline uint32_t Load32(const Ipp8u* p) {
  uint32_t v;
  std::memcpy(&v, p, 4);
  return v;
}
inline uint64_t Load64(const Ipp8u* p) {
  uint64_t v;
  std::memcpy(&v, p, 8);
  return v;
}
// Table sizes follow the input, up to 2^18 entries: collisions cost a walk
// past other keys' positions, and a table larger than the input buys nothing.
uint32_t HashBitsFor(size_t size) {
  uint32_t bits = 10;
  while (bits < 18 && (size_t(1) << bits) < size) ++bits;
  return bits;
}

// Length of the common run of a and b, known to be at least 3, at most `limit`.
inline uint32_t CommonLength(const Ipp8u* a, const Ipp8u* b, uint32_t limit) {
  uint32_t k = kMinMatch;
  for (; k + 8 <= limit; k += 8) {
    const uint64_t differ = Load64(a + k) ^ Load64(b + k);
    if (differ) return k + uint32_t(__builtin_ctzll(differ)) / 8;
  }
  while (k < limit && a[k] == b[k]) ++k;
  return k;
}

// Positions are biased by the window (0: none), so one distance test ends
// every walk at the window's edge or at the start of the input. Every
// position is entered once, in order, which lets each entry fetch the table
// lines of a position a little ahead.
class MatchFinder {
 public:
  MatchFinder(const Ipp8u* data, size_t end, IppLZSSState_8u& s)
      : m_Data(data), m_End(end), m_Shift(32 - s.hashBits), m_Head3(s.head3.get()), m_Head4(s.head4.get()),
        m_Prev3(s.prev3.get()), m_Links(s.links.get()) {}

  // Enters position p (three bytes left at least) in its chains. Answers
  // the biased position of the latest earlier one with the same three
  // bytes inside the window, or 0.
  uint32_t Insert(size_t p) {
    if (m_End - p >= kAhead + 4) {
      const uint32_t ahead = Load32(m_Data + p + kAhead);
      __builtin_prefetch(&m_Head3[Hash3(ahead & 0xFFFFFF)], 1);
      __builtin_prefetch(&m_Head4[Hash4(ahead)], 1);
    }
    const uint32_t biased = uint32_t(p) + kWindow;
    const uint32_t key = Key3(p);
    IppLZSSState_8u::Head& head = m_Head3[Hash3(key)];
    // The head is mostly of these bytes; a collision walks its chain.
    uint32_t same = head.position, number = head.number + 1;
    if (biased - same < kWindow && (Load32(m_Data + same - kWindow) & 0xFFFFFF) != key) {
      do same = m_Prev3[(same - kWindow) & kRingMask];
      while (biased - same < kWindow && (Load32(m_Data + same - kWindow) & 0xFFFFFF) != key);
      number = m_Links[(same - kWindow) & kRingMask].number + 1;
    }
    if (biased - same >= kWindow) {
      same = 0;
      number = 0;
    }
    IppLZSSState_8u::Link& link = m_Links[p & kRingMask];
    link.number = number;
    m_Prev3[p & kRingMask] = head.position;
    head = {biased, number};
    if (m_End - p >= 4) {
      uint32_t& head4 = m_Head4[Hash4(Load32(m_Data + p))];
      link.prev4 = head4;
      head4 = biased;
    }
    return same;
  }

  // The best match at p, whose latest candidate is `same` (from Insert);
  // length 2 when there is none.
  void Search(size_t p, uint32_t same, uint32_t& bestLength, uint32_t& bestOffset) const {
    bestLength = kMinMatch - 1;
    bestOffset = 0;
    if (!same) return;
    const uint32_t limit = uint32_t(std::min<size_t>(kMaxMatch, m_End - p));
    const uint32_t biased = uint32_t(p) + kWindow;
    const Ipp8u* here = m_Data + p;
    uint32_t best = CommonLength(m_Data + (same - kWindow), here, limit);
    uint32_t offset = biased - same;
    if (best < limit) {  // then four bytes are left, and a longer match starts with them
      const uint32_t key = Load32(here), number = m_Links[p & kRingMask].number;
      for (uint32_t c = m_Links[p & kRingMask].prev4; biased - c < kWindow;) {
        const Ipp8u* there = m_Data + (c - kWindow);
        const IppLZSSState_8u::Link link = m_Links[(c - kWindow) & kRingMask];
        c = link.prev4;
        if (Load32(there) != key) continue;
        if (number - link.number > kMaxCandidates) break;
        if (there[best] != here[best]) continue;  // only a match at `best` can be longer
        const uint32_t length = CommonLength(there, here, limit);
        if (length > best) {
          best = length;
          offset = uint32_t(here - there);
          if (length == limit) break;
        }
      }
    }
    bestLength = best;
    bestOffset = offset;
  }

 private:
  uint32_t Hash3(uint32_t key) const { return (key * 0x9E3779B1u) >> m_Shift; }
  uint32_t Hash4(uint32_t key) const { return (key * 0x85EBCA77u) >> m_Shift; }
  uint32_t Key3(size_t p) const {
    if (m_End - p >= 4) return Load32(m_Data + p) & 0xFFFFFF;
    return uint32_t(m_Data[p]) | uint32_t(m_Data[p + 1]) << 8 | uint32_t(m_Data[p + 2]) << 16;
  }

  static constexpr size_t kAhead = 16;  // positions between a fetch and its use

  const Ipp8u* m_Data;
  size_t m_End;
  uint32_t m_Shift;                // 32 - hash bits
  IppLZSSState_8u::Head* m_Head3;  // [hash of three bytes]: latest position and its number
  uint32_t* m_Head4;               // [hash of four bytes]: latest position
  uint32_t* m_Prev3;               // [position % window]: the biased position before it on its three-byte chain
  IppLZSSState_8u::Link* m_Links;  // [position % window]: its four-byte chain and number
};

}  // namespace

IppStatus ippsEncodeLZSSInitAlloc_8u(IppLZSSState_8u** ppState) {
  if (!ppState) return ippStsNullPtrErr;
  auto* state = new IppLZSSState_8u();
  state->encoder = true;  // the tables follow the first round's input
  *ppState = state;
  return ippStsNoErr;
}

IppStatus ippsEncodeLZSS_8u(Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u** ppDst, Ipp32s* pDstLen, IppLZSSState_8u* pState) {
  if (!ppSrc || !*ppSrc || !pSrcLen || !ppDst || !*ppDst || !pDstLen || !pState) return ippStsNullPtrErr;
  if (!pState->encoder) return ippStsNullPtrErr;  // a decoder's state
  if (*pSrcLen < 0 || *pDstLen < 0) return ippStsSizeErr;
  if (!pState->inputBase) {
    pState->inputBase = *ppSrc;
    pState->hashBits = HashBitsFor(size_t(*pSrcLen));
    pState->head3 = std::make_unique<IppLZSSState_8u::Head[]>(size_t(1) << pState->hashBits);  // zeroed: none yet
    pState->head4 = std::make_unique<uint32_t[]>(size_t(1) << pState->hashBits);
    pState->prev3.reset(new uint32_t[kWindow]);  // rings, read only where written
    pState->links.reset(new IppLZSSState_8u::Link[kWindow]);
  }
  const Ipp8u* data = pState->inputBase;
  size_t p = size_t(*ppSrc - data);
  const size_t end = p + size_t(*pSrcLen);
  Ipp8u* out = *ppDst;
  Ipp8u* const outEnd = out + *pDstLen;
  PendingBits bits = pState->bits;
  MatchFinder finder(data, end, *pState);
  IppStatus status = ippStsNoErr;

  while (p < end) {
    if (outEnd - out < 4) {  // room for one token and the word it may complete
      status = kStsOutputFull;
      break;
    }
    if (end - p < kMinMatch) {
      bits.Put(LiteralToken(data[p]), kLiteralBits);
      bits.StoreWord(out);
      ++p;
      continue;
    }
    const uint32_t same = finder.Insert(p);
    uint32_t length, offset;
    finder.Search(p, same, length, offset);
    if (length >= kMinMatch) {
      bits.Put(MatchToken(offset, length), kMatchBits);
      const size_t covered = std::min(p + length, end - (kMinMatch - 1));
      for (size_t q = p + 1; q < covered; ++q) finder.Insert(q);
      p += length;
    } else {
      bits.Put(LiteralToken(data[p]), kLiteralBits);
      ++p;
    }
    bits.StoreWord(out);
  }

  pState->bits = bits;
  const Ipp32s taken = Ipp32s(p - size_t(*ppSrc - data));
  *ppSrc += taken;
  *pSrcLen -= taken;
  *pDstLen -= Ipp32s(out - *ppDst);
  *ppDst = out;
  return status;
}

IppStatus ippsEncodeLZSSFlush_8u(Ipp8u** ppDst, Ipp32s* pDstLen, IppLZSSState_8u* pState) {
  if (!ppDst || !*ppDst || !pDstLen || !pState) return ippStsNullPtrErr;
  const uint32_t bytes = pState->bits.PaddedBytes();
  if (*pDstLen < Ipp32s(bytes)) return ippStsSizeErr;
  pState->bits.WritePadded(*ppDst);
  *ppDst += bytes;
  *pDstLen -= Ipp32s(bytes);
  return ippStsNoErr;
}

void ippsLZSSFree_8u(IppLZSSState_8u* pState) { delete pState; }
