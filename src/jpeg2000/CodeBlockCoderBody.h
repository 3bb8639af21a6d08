#pragma once
// Body of the code-block coder, built by each variant's unit with its own
// instruction set (the wider units get shifts by a register amount that
// leave the count register free, and bit scans without flags). Everything
// stays in an anonymous namespace, and the MQ coder's steps are always
// inlined, so that no variant's code is shared with another's.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "jpeg2000/CodeBlockCoder.h"

namespace kestrelink::j2k {
namespace {

// A stripe column word. Significance sits at bit 3 * i + c for the six rows
// i = 0 (the row above the stripe) to 5 (the row below it) and the columns
// c = 0 (left), 1 (the column itself), 2 (right), so that the neighbourhood
// of stripe row r is the nine bits at 3 * r:
//   bit 0 NW, 1 N, 2 NE, 3 W, 4 the coefficient, 5 E, 6 SW, 7 S, 8 SE.
// Bits 18-21 mark the four rows visited by this plane's significance pass,
// bits 22-25 the rows refined before, bits 26-31 the signs of the column's
// six rows (set with the significance).
constexpr uint32_t kSigAll = 0x3FFFF;
constexpr uint32_t kNeighbours = 0x1EF;  // the nine bits without the coefficient
constexpr int kVisitShift = 18, kRefinedShift = 22, kSignShift = 26;
constexpr uint32_t kVisitAll = 0xFu << kVisitShift;

constexpr uint32_t OwnSig(uint32_t r) { return 1u << (4 + 3 * r); }

constexpr int kContextRefine = 14;

// The column's own significance as four bits, row r at bit r.
inline uint32_t OwnSigRows(uint32_t word) {
  return ((word >> 4) & 1) | ((word >> 6) & 2) | ((word >> 8) & 4) | ((word >> 10) & 8);
}

// The rows with a significant coefficient among their nine (the row's own
// included), row r at bit r.
inline uint32_t BusyRows(uint32_t word) {
  uint32_t any = word | word >> 1 | word >> 2;  // bit 3i: any of row i's three
  any |= any >> 3 | any >> 6;                   // bit 3r: any of rows r .. r + 2
  return (any & 1) | ((any >> 2) & 2) | ((any >> 4) & 4) | ((any >> 6) & 8);
}

inline uint32_t VisitedRows(uint32_t word) { return (word >> kVisitShift) & 0xF; }

// Zero-coding context from h, v and d (significant horizontal, vertical and
// diagonal neighbours) for the LL and LH bands; HL exchanges h and v.
constexpr uint8_t ZeroContextHV(int h, int v, int d) {
  if (h == 2) return 8;
  if (h == 1) return v >= 1 ? 7 : d >= 1 ? 6 : 5;
  if (v == 2) return 4;
  if (v == 1) return 3;
  return d >= 2 ? 2 : d == 1 ? 1 : 0;
}

constexpr uint8_t ZeroContextDiagonal(int hv, int d) {
  if (d >= 3) return 8;
  if (d == 2) return hv >= 1 ? 7 : 6;
  if (d == 1) return hv >= 2 ? 5 : hv == 1 ? 4 : 3;
  return hv >= 2 ? 2 : hv == 1 ? 1 : 0;
}

// Per band, by the nine neighbourhood bits (the coefficient's own is ignored).
constexpr std::array<uint8_t, 4 * 512> BuildZeroContexts() {
  std::array<uint8_t, 4 * 512> t{};
  for (int band = 0; band < 4; ++band)
    for (int f = 0; f < 512; ++f) {
      auto bit = [f](int i) { return (f >> i) & 1; };
      const int h = bit(3) + bit(5), v = bit(1) + bit(7), d = bit(0) + bit(2) + bit(6) + bit(8);
      uint8_t cx = 0;
      if (band == kBandHH)
        cx = ZeroContextDiagonal(h + v, d);
      else if (band == kBandHL)
        cx = ZeroContextHV(v, h, d);
      else
        cx = ZeroContextHV(h, v, d);
      t[band * 512 + f] = cx;
    }
  return t;
}

// Sign context (low bits) and the bit it is coded against (bit 7), from the
// significance of the direct neighbours where the neighbourhood bits hold
// it (1 north, 3 west, 5 east, 7 south) and their signs in bits 8 (north),
// 9 (west), 10 (south) and 11 (east).
constexpr std::array<uint8_t, 4096> BuildSignContexts() {
  std::array<uint8_t, 4096> t{};
  for (int f = 0; f < 4096; ++f) {
    auto contribution = [f](int sig, int neg) { return (f >> sig) & 1 ? ((f >> neg) & 1 ? -1 : 1) : 0; };
    int v = contribution(1, 8) + contribution(7, 10);
    int h = contribution(3, 9) + contribution(5, 11);
    h = h > 1 ? 1 : h < -1 ? -1 : h;
    v = v > 1 ? 1 : v < -1 ? -1 : v;
    uint8_t flip = 0;
    if (h < 0 || (h == 0 && v < 0)) {
      flip = 1;
      h = -h;
      v = -v;
    }
    // h = 1: v 1, 0, -1 give 13, 12, 11; h = 0: v 1, 0 give 10, 9.
    const int cx = h == 1 ? 12 + v : 9 + v;
    t[f] = uint8_t(cx | (flip << 7));
  }
  return t;
}

constexpr std::array<uint8_t, 4 * 512> kZeroContexts = BuildZeroContexts();
constexpr std::array<uint8_t, 4096> kSignContexts = BuildSignContexts();

// Codes the sign of stripe row r of the column at `p` (whose word is in
// `word`), which has just turned significant, and tells the neighbours:
// the columns either side, and the stripes above and below for the
// stripe's first and last rows.
__attribute__((always_inline)) inline void CodeSign(MqEncoder& mq, MqContext* contexts, uint32_t* p,
                                                    uint32_t& word, uint32_t r, uint32_t negative) {
  const uint32_t n = word >> (3 * r);
  const uint32_t index = (n & 0xAA) | ((word >> (kSignShift + r)) & 5) << 8 |
                         ((p[-1] >> (kSignShift + 1 + r)) & 1) << 9 | ((p[1] >> (kSignShift + 1 + r)) & 1) << 11;
  const uint8_t sc = kSignContexts[index];
  mq.Encode(contexts, sc & 0x1F, negative ^ (sc >> 7));
  word |= OwnSig(r) | negative << (kSignShift + 1 + r);
  p[-1] |= 1u << (5 + 3 * r);
  p[1] |= 1u << (3 + 3 * r);
  if (r == 0) {
    uint32_t* up = p - kColumnWords;
    up[-1] |= 1u << 17;
    up[0] |= 1u << 16 | negative << 31;
    up[1] |= 1u << 15;
  } else if (r == 3) {
    uint32_t* down = p + kColumnWords;
    down[-1] |= 1u << 2;
    down[0] |= 1u << 1 | negative << kSignShift;
    down[1] |= 1u << 0;
  }
}

// Codes whether insignificant stripe row r turns significant in this plane,
// by its neighbours' zero-coding context, and its sign if it does;
// answers whether it did.
__attribute__((always_inline)) inline uint32_t CodeZero(MqEncoder& mq, MqContext* contexts, const uint8_t* zero,
                                                    uint32_t* p, uint32_t& word, uint32_t r, uint32_t magnitude,
                                                    uint32_t plane) {
  const uint32_t bit = (magnitude >> plane) & 1;
  mq.Encode(contexts, zero[(word >> (3 * r)) & 0x1FF], bit);
  if (bit) CodeSign(mq, contexts, p, word, r, magnitude >> 31);
  return bit;
}

// Calls body(column, magnitudes, rowMask) for each stripe column, the top
// stripe first and left to right within it: column points at its word,
// magnitudes at its four, and rowMask has a bit for each of its rows (four
// but at the foot).
template <class Body>
__attribute__((always_inline)) inline void ForEachColumn(BlockCoderState& b, Body&& body) {
  const uint32_t w = b.width, h = b.height;  // in registers: the column words could alias them
  for (uint32_t y0 = 0, s = 0; y0 < h; y0 += 4, ++s) {
    const uint32_t rowMask = y0 + 4 < h ? 0xF : (1u << (h - y0)) - 1;
    uint32_t* p = b.columns + (s + 1) * kColumnWords + 1;
    const uint32_t* mags = b.magnitudes + s * kMaxBlockSide * 4;
    for (uint32_t x = 0; x < w; ++x, ++p, mags += 4) body(p, mags, rowMask);
  }
}

void SignificancePass(BlockCoderState& b, uint32_t plane) {
  MqEncoder mq = b.mq;
  MqContext* const contexts = b.contexts;
  const uint8_t* const zero = b.zeroContexts;
  ForEachColumn(b, [&](uint32_t* p, const uint32_t* mags, uint32_t rowMask) {
    uint32_t word = *p;
    // Nothing to code where no coefficient of the column or its
    // neighbourhood is significant.
    if (!(word & kSigAll)) return;
    // Insignificant rows with a significant neighbour; a row that turns
    // significant gives the row below one.
    uint32_t todo = BusyRows(word) & ~OwnSigRows(word) & rowMask;
    while (todo) {
      const uint32_t r = uint32_t(__builtin_ctz(todo));
      todo &= todo - 1;
      const uint32_t turned = CodeZero(mq, contexts, zero, p, word, r, mags[r], plane);
      word |= 1u << (kVisitShift + r);
      if (turned) todo |= (2u << r) & rowMask & ~OwnSigRows(word);
    }
    *p = word;
  });
  b.mq = mq;
}

void RefinementPass(BlockCoderState& b, uint32_t plane) {
  MqEncoder mq = b.mq;
  MqContext* const contexts = b.contexts;
  ForEachColumn(b, [&](uint32_t* p, const uint32_t* mags, uint32_t) {
    uint32_t word = *p;
    // Significant before this plane: significant and not just visited.
    uint32_t todo = OwnSigRows(word) & ~VisitedRows(word);
    if (!todo) return;
    do {
      const uint32_t r = uint32_t(__builtin_ctz(todo));
      todo &= todo - 1;
      // Refined before: the third context; else the second where a
      // neighbour is significant.
      const uint32_t refined = (word >> (kRefinedShift + r)) & 1;
      const uint32_t busy = ((word >> (3 * r)) & kNeighbours) != 0;
      mq.Encode(contexts, int(kContextRefine + 2 * refined + (busy & (refined ^ 1))), (mags[r] >> plane) & 1);
      word |= 1u << (kRefinedShift + r);
    } while (todo);
    *p = word;
  });
  b.mq = mq;
}

void CleanupPass(BlockCoderState& b, uint32_t plane) {
  MqEncoder mq = b.mq;
  MqContext* const contexts = b.contexts;
  const uint8_t* const zero = b.zeroContexts;
  ForEachColumn(b, [&](uint32_t* p, const uint32_t* mags, uint32_t rowMask) {
    uint32_t word = *p;
    uint32_t r = 0;
    if (rowMask == 0xF && !(word & (kSigAll | kVisitAll))) {
      // Run mode: one symbol says whether any of the four turns significant.
      if (!(((mags[0] | mags[1] | mags[2] | mags[3]) >> plane) & 1)) {
        mq.Encode(contexts, kContextRunLength, 0);
        return;
      }
      while (!((mags[r] >> plane) & 1)) ++r;
      mq.Encode(contexts, kContextRunLength, 1);
      mq.Encode(contexts, kContextUniform, r >> 1);
      mq.Encode(contexts, kContextUniform, r & 1);
      CodeSign(mq, contexts, p, word, r, mags[r] >> 31);
      ++r;
    }
    for (uint32_t todo = ~(OwnSigRows(word) | VisitedRows(word)) & rowMask & (0xFu << r); todo; todo &= todo - 1) {
      const uint32_t row = uint32_t(__builtin_ctz(todo));
      CodeZero(mq, contexts, zero, p, word, row, mags[row], plane);
    }
    *p = word & ~kVisitAll;
  });
  b.mq = mq;
}

CodedBlock EncodeBlock(BlockCoderState& b, const int32_t* coefficients, size_t stride, uint32_t w, uint32_t h,
                       BandOrientation band, uint8_t* out) {
  b.width = w;
  b.height = h;
  b.zeroContexts = &kZeroContexts[band * 512];
  const uint32_t stripes = (h + 3) / 4;
  // Rows past the foot of a short last stripe stay 0.
  if (h % 4) std::memset(&b.magnitudes[(stripes - 1) * kMaxBlockSide * 4], 0, sizeof(uint32_t) * kMaxBlockSide * 4);
  // Sign in bit 31, magnitude below; the largest magnitude sets the planes.
  uint32_t all = 0;
  for (uint32_t y = 0; y < h; ++y) {
    const int32_t* row = coefficients + y * stride;
    uint32_t* mags = &b.magnitudes[(y / 4) * kMaxBlockSide * 4 + y % 4];
    for (uint32_t x = 0; x < w; ++x) {
      const int32_t v = row[x];
      const uint32_t m = uint32_t(v < 0 ? -int64_t(v) : v);
      all |= m;
      mags[4 * x] = m | (uint32_t(v) & 0x80000000u);
    }
  }
  CodedBlock result;
  all &= 0x7FFFFFFFu;
  if (all == 0) return result;
  result.planes = 32 - __builtin_clz(all);
  std::memset(b.columns, 0, sizeof(uint32_t) * kColumnWords * (stripes + 2));
  b.mq.Start(out);
  ResetMqContexts(b.contexts);
  int plane = int(result.planes) - 1;
  CleanupPass(b, uint32_t(plane));
  result.passes = 1;
  for (--plane; plane >= 0; --plane) {
    SignificancePass(b, uint32_t(plane));
    RefinementPass(b, uint32_t(plane));
    CleanupPass(b, uint32_t(plane));
    result.passes += 3;
  }
  result.bytes = b.mq.Finish();
  return result;
}

}  // namespace
}  // namespace kestrelink::j2k
