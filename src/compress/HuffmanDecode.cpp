// Huffman decoding kernels. The fast table reads 14 bits at a time and gives
// every whole code in them, up to three; longer codes and the last bits of
// the input go by the per-length ranges. Decoded bytes gather in a small
// stage and go out in whole runs, so nothing past the decoded count is
// ever written.
#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "compress/CompressStatus.h"
#include "compress/HuffmanState.h"

using namespace kestrelink::compress;

namespace {

constexpr uint32_t kFastBits = HuffmanDecodeTables::kFastBits;
constexpr uint32_t kFastMask = (1u << kFastBits) - 1;

void BuildRanges(const HuffmanCode& code, HuffmanDecodeTables& t) {
  t.lengthCount = 0;
  uint32_t next = 0;
  for (uint32_t length = 1; length <= kMaxCodeLength; ++length) {
    HuffmanDecodeTables::Length range{length, 0, 0, 0, next};
    for (uint32_t s = 256; s-- > 0;) {
      if (uint32_t(code.lengths[s]) != length) continue;
      if (range.count == 0) range.first = code.codes[s];
      t.symbols[next++] = uint8_t(s);
      ++range.count;
    }
    if (range.count == 0) continue;
    range.floor = uint32_t(uint64_t(range.first) << (32 - length));
    t.lengths[t.lengthCount++] = range;
  }
}

void BuildFastTable(const HuffmanCode& code, HuffmanDecodeTables& t) {
  // One code per entry first: its symbol and length, 0 where no code of
  // kFastBits bits or fewer begins.
  struct One {
    uint8_t symbol;
    uint8_t length;
  };
  static_assert(4 * kFastBits <= 57, "four lookups take the bits of one load");
  const auto one = std::make_unique<One[]>(size_t(1) << kFastBits);  // zeroed; too large for a caller's stack
  for (uint32_t s = 0; s < 256; ++s) {
    const uint32_t length = uint32_t(code.lengths[s]);
    if (length == 0 || length > kFastBits) continue;
    const uint32_t lo = code.codes[s] << (kFastBits - length), hi = (code.codes[s] + 1) << (kFastBits - length);
    for (uint32_t v = lo; v < hi; ++v) one[v] = One{uint8_t(s), uint8_t(length)};
  }
  // Then as many codes as lie whole in those bits. A code found in the
  // known top bits is the code whatever follows, since no code begins another.
  for (uint32_t v = 0; v <= kFastMask; ++v) {
    uint32_t symbols = 0, taken = 0, count = 0;
    while (count < 3) {
      const One e = one[(v << taken) & kFastMask];
      if (e.length == 0 || e.length > kFastBits - taken) break;
      symbols |= uint32_t(e.symbol) << (8 * count);
      taken += e.length;
      ++count;
    }
    t.fast[v] = taken | count << 6 | symbols << 8;
  }
}

enum class Outcome { kSymbol, kEnd, kBad };

struct OneCode {
  Outcome outcome;
  uint8_t symbol;
  uint32_t length;
};

// One code at bit `pos` by the per-length ranges.
OneCode DecodeOne(const IppHuffState_8u& state, const Ipp8u* src, size_t size, uint64_t pos) {
  const uint64_t left = 8 * uint64_t(size) - pos;
  if (left == 0) return {Outcome::kEnd, 0, 0};
  const HuffmanDecodeTables& t = *state.decode;
  const uint32_t w = uint32_t(PeekBits(src, size, pos) >> 32);
  for (uint32_t i = 0; i < t.lengthCount; ++i) {
    const HuffmanDecodeTables::Length& r = t.lengths[i];
    if (w < r.floor) continue;
    const uint32_t index = (w >> (32 - r.length)) - r.first;
    if (index >= r.count) break;
    if (r.length > left) return {Outcome::kEnd, 0, 0};  // the code runs past the input
    return {Outcome::kSymbol, t.symbols[r.symbolIndex + index], r.length};
  }
  // No code begins here. Near the end the zeros read past it may be the cause.
  return {left < state.code.maxLength ? Outcome::kEnd : Outcome::kBad, 0, 0};
}

}  // namespace

IppStatus ippsDecodeHuffInitAlloc_8u(const Ipp32s codeLenTable[256], IppHuffState_8u** ppState) {
  if (!codeLenTable || !ppState) return ippStsNullPtrErr;
  *ppState = nullptr;
  auto* state = new IppHuffState_8u();
  if (const IppStatus status = AssignCodes(codeLenTable, state->code); status != ippStsNoErr) {
    delete state;
    return status;
  }
  state->decode = std::make_unique<HuffmanDecodeTables>();
  BuildRanges(state->code, *state->decode);
  BuildFastTable(state->code, *state->decode);
  *ppState = state;
  return ippStsNoErr;
}

IppStatus ippsDecodeHuff_8u(const Ipp8u* pSrc, Ipp32s srcLen, Ipp8u* pDst, Ipp32s* pDstLen, IppHuffState_8u* pState) {
  if (!pSrc || !pDst || !pDstLen || !pState) return ippStsNullPtrErr;
  if (!pState->decode) return ippStsNullPtrErr;  // an encoder's state
  if (srcLen <= 0 || *pDstLen <= 0) return ippStsSizeErr;
  const size_t size = size_t(srcLen);
  const uint32_t capacity = uint32_t(*pDstLen);
  const uint32_t* fast = pState->decode->fast;

  constexpr uint32_t kStage = 256;
  Ipp8u stage[kStage + 16];
  uint64_t pos = 0;
  uint32_t produced = 0;
  IppStatus status = ippStsNoErr;
  bool stop = false;
  while (!stop && produced < capacity) {
    const uint32_t limit = std::min(kStage, capacity - produced);
    uint32_t n = 0;
    // One lookup: false when the next code is not in the fast table.
    auto step = [&](uint64_t& bits) {
      const uint32_t e = fast[bits >> (64 - kFastBits)];
      const uint32_t count = (e >> 6) & 3, symbols = e >> 8;
      if (count == 0) return false;
      std::memcpy(stage + n, &symbols, 4);  // first symbol at the lowest address
      n += count;
      pos += e & 63;
      bits <<= e & 63;
      return true;
    };
    while (n < limit) {
      // Four lookups take at most 56 of the 57 bits that one load gives.
      while (n + 12 <= limit && (pos >> 3) + 8 <= size) {
        uint64_t bits = LoadBigEndian64(pSrc + (pos >> 3)) << (pos & 7);
        if (!step(bits) || !step(bits) || !step(bits) || !step(bits)) break;
      }
      if (n >= limit) break;
      const OneCode one = DecodeOne(*pState, pSrc, size, pos);
      if (one.outcome != Outcome::kSymbol) {
        if (one.outcome == Outcome::kBad) status = kestrelink::compress::kStsBadStream;
        stop = true;
        break;
      }
      stage[n++] = one.symbol;
      pos += one.length;
    }
    std::memcpy(pDst + produced, stage, n);
    produced += n;
  }
  *pDstLen = Ipp32s(produced);
  return status;
}
