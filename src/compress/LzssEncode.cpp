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
#include <algorithm>
#include <cstring>

#include "compress/CompressStatus.h"
#include "compress/LzssState.h"

using namespace kestrelink::compress;
using namespace kestrelink::compress::lzss;

namespace {

constexpr uint32_t kHashBits = IppLZSSState_8u::kHashBits;
constexpr uint32_t kChainMask = kWindow - 1;

inline uint32_t Key(const Ipp8u* p) { return uint32_t(p[0]) | uint32_t(p[1]) << 8 | uint32_t(p[2]) << 16; }
inline uint32_t Hash(uint32_t key) { return (key * 0x9E3779B1u) >> (32 - kHashBits); }

inline uint64_t Load64(const Ipp8u* p) {
  uint64_t v;
  std::memcpy(&v, p, 8);
  return v;
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

class MatchFinder {
 public:
  MatchFinder(const Ipp8u* data, size_t end, IppLZSSState_8u& state)
      : m_Data(data), m_End(end), m_Head(state.head.get()), m_Chain(state.chain.get()) {}

  // Enters position p (three bytes left at least) in its chain; answers the
  // biased position that was latest before it.
  uint32_t Insert(size_t p, uint32_t key) {
    uint32_t& head = m_Head[Hash(key)];
    const uint32_t before = head;
    m_Chain[p & kChainMask] = before;
    head = uint32_t(p) + kWindow;
    return before;
  }

  // The best match at p, walking from `candidate`; length 2 when none.
  void Search(size_t p, uint32_t key, uint32_t candidate, uint32_t& bestLength, uint32_t& bestOffset) const {
    const uint32_t limit = uint32_t(std::min<size_t>(kMaxMatch, m_End - p));
    const uint32_t biased = uint32_t(p) + kWindow;
    const Ipp8u* here = m_Data + p;
    uint32_t best = kMinMatch - 1, offset = 0, looked = 0;
    while (biased - candidate < kWindow) {
      const Ipp8u* there = m_Data + (candidate - kWindow);
      if (Key(there) == key) {
        // Only a candidate that also matches at `best` can be longer.
        if (there[best] == here[best]) {
          const uint32_t length = CommonLength(there, here, limit);
          if (length > best) {
            best = length;
            offset = biased - candidate;
            if (length == limit) break;
          }
        }
        if (++looked == kMaxCandidates) break;
      }
      candidate = m_Chain[(candidate - kWindow) & kChainMask];
    }
    bestLength = best;
    bestOffset = offset;
  }

 private:
  const Ipp8u* m_Data;
  size_t m_End;
  uint32_t* m_Head;
  uint32_t* m_Chain;
};

}  // namespace

IppStatus ippsEncodeLZSSInitAlloc_8u(IppLZSSState_8u** ppState) {
  if (!ppState) return ippStsNullPtrErr;
  auto* state = new IppLZSSState_8u();
  state->head = std::make_unique<uint32_t[]>(size_t(1) << kHashBits);  // zeroed: no position yet
  state->chain.reset(new uint32_t[kWindow]);  // read only where written
  *ppState = state;
  return ippStsNoErr;
}

IppStatus ippsEncodeLZSS_8u(Ipp8u** ppSrc, Ipp32s* pSrcLen, Ipp8u** ppDst, Ipp32s* pDstLen, IppLZSSState_8u* pState) {
  if (!ppSrc || !*ppSrc || !pSrcLen || !ppDst || !*ppDst || !pDstLen || !pState) return ippStsNullPtrErr;
  if (!pState->head) return ippStsNullPtrErr;  // a decoder's state
  if (*pSrcLen < 0 || *pDstLen < 0) return ippStsSizeErr;
  if (!pState->inputBase) pState->inputBase = *ppSrc;
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
    const uint32_t key = Key(data + p);
    const uint32_t candidate = finder.Insert(p, key);
    uint32_t length, offset;
    finder.Search(p, key, candidate, length, offset);
    if (length >= kMinMatch) {
      bits.Put(MatchToken(offset, length), kMatchBits);
      const size_t covered = std::min(p + length, end - (kMinMatch - 1));
      for (size_t q = p + 1; q < covered; ++q) finder.Insert(q, Key(data + q));
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
