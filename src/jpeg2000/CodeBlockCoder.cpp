#include "jpeg2000/CodeBlockCoder.h"

#include <array>
#include <cstddef>
#include <cstring>

namespace kestrelink::j2k {
namespace {

constexpr ptrdiff_t kStride = kMaxBlockSide + 2;

// Per-coefficient flags: significance of the eight neighbours, sign of the
// four direct ones, then the coefficient's own state.
constexpr uint32_t kNW = 1u << 0, kN = 1u << 1, kNE = 1u << 2, kW = 1u << 3, kE = 1u << 4, kSW = 1u << 5, kS = 1u << 6,
                   kSE = 1u << 7;
constexpr uint32_t kNegN = 1u << 8, kNegS = 1u << 9, kNegW = 1u << 10, kNegE = 1u << 11;
constexpr uint32_t kSig = 1u << 12, kVisit = 1u << 13, kRefined = 1u << 14;
constexpr uint32_t kNeighbours = 0xFF;
constexpr uint32_t kSignBits = 0xFFF;  // the neighbour bits that the sign context reads

constexpr int kContextSign = 9;
constexpr int kContextRefine = 14;

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

constexpr std::array<uint8_t, 4 * 256> BuildZeroContexts() {
  std::array<uint8_t, 4 * 256> t{};
  for (int band = 0; band < 4; ++band)
    for (int f = 0; f < 256; ++f) {
      const int h = !!(f & kW) + !!(f & kE), v = !!(f & kN) + !!(f & kS);
      const int d = !!(f & kNW) + !!(f & kNE) + !!(f & kSW) + !!(f & kSE);
      uint8_t cx = 0;
      if (band == kBandHH)
        cx = ZeroContextDiagonal(h + v, d);
      else if (band == kBandHL)
        cx = ZeroContextHV(v, h, d);
      else
        cx = ZeroContextHV(h, v, d);
      t[band * 256 + f] = cx;
    }
  return t;
}

// Sign context (low bits) and the bit it is coded against (bit 7), from
// the direct neighbours' significance and signs.
constexpr std::array<uint8_t, 4096> BuildSignContexts() {
  std::array<uint8_t, 4096> t{};
  for (int f = 0; f < 4096; ++f) {
    auto contribution = [&](uint32_t sig, uint32_t neg) { return (f & sig) ? ((f & neg) ? -1 : 1) : 0; };
    int h = contribution(kW, kNegW) + contribution(kE, kNegE);
    int v = contribution(kN, kNegN) + contribution(kS, kNegS);
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

constexpr std::array<uint8_t, 4 * 256> kZeroContexts = BuildZeroContexts();
constexpr std::array<uint8_t, 4096> kSignContexts = BuildSignContexts();

}  // namespace

// Codes the sign of a coefficient that has just turned significant and
// tells its eight neighbours.
__attribute__((always_inline)) inline void CodeSign(MqEncoder& mq, MqContext* contexts, uint32_t* f,
                                                    uint32_t negative) {
  const uint8_t sc = kSignContexts[*f & kSignBits];
  mq.Encode(contexts, sc & 0x1F, negative ^ (sc >> 7));
  *f |= kSig;
  f[-kStride - 1] |= kSE;
  f[-kStride] |= kS | (negative ? kNegS : 0);
  f[-kStride + 1] |= kSW;
  f[-1] |= kE | (negative ? kNegE : 0);
  f[1] |= kW | (negative ? kNegW : 0);
  f[kStride - 1] |= kNE;
  f[kStride] |= kN | (negative ? kNegN : 0);
  f[kStride + 1] |= kNW;
}

// Codes whether an insignificant coefficient turns significant in this
// plane, by its neighbours' zero-coding context, and its sign if it does.
__attribute__((always_inline)) inline void CodeZero(MqEncoder& mq, MqContext* contexts, const uint8_t* zero,
                                                    uint32_t* f, uint32_t magnitude, uint32_t plane) {
  const uint32_t bit = (magnitude >> plane) & 1;
  mq.Encode(contexts, zero[*f & kNeighbours], bit);
  if (bit) CodeSign(mq, contexts, f, magnitude >> 31);
}

// A stripe column of four flags, or fewer at the block's foot.
inline uint32_t ColumnUnion(const uint32_t* f, uint32_t rows) {
  uint32_t u = f[0];
  for (uint32_t r = 1; r < rows; ++r) u |= f[r * kStride];
  return u;
}

// Calls body(flags, magnitudes, rows) for each stripe column, the top
// stripe first and left to right within it; rows is 4 but at the foot.
template <class Body>
__attribute__((always_inline)) inline void ForEachStripeColumn(uint32_t* flags, const uint32_t* magnitudes, uint32_t w,
                                                               uint32_t h, Body&& body) {
  for (uint32_t y0 = 0; y0 < h; y0 += 4) {
    const uint32_t rows = y0 + 4 < h ? 4 : h - y0;
    uint32_t* column = &flags[(y0 + 1) * kStride + 1];
    const uint32_t* mags = &magnitudes[y0 * kMaxBlockSide];
    for (uint32_t x = 0; x < w; ++x) body(column + x, mags + x, rows);
  }
}

void CodeBlockCoder::SignificancePass(uint32_t plane) {
  MqEncoder mq = m_mq;
  MqContext* const contexts = m_contexts;
  const uint8_t* const zero = m_zeroContexts;
  const auto code = [&](uint32_t* column, const uint32_t* mags, uint32_t rows) {
    // Nothing to code where no coefficient of the column has a significant neighbour.
    if (!(ColumnUnion(column, rows) & kNeighbours)) return;
    for (uint32_t r = 0; r < rows; ++r) {
      uint32_t* f = column + r * kStride;
      if ((*f & kSig) || !(*f & kNeighbours)) continue;
      CodeZero(mq, contexts, zero, f, mags[r * kMaxBlockSide], plane);
      *f |= kVisit;
    }
  };
  ForEachStripeColumn(m_flags, m_magnitudes, m_width, m_height, code);
  m_mq = mq;
}

void CodeBlockCoder::RefinementPass(uint32_t plane) {
  MqEncoder mq = m_mq;
  MqContext* const contexts = m_contexts;
  const auto code = [&](uint32_t* column, const uint32_t* mags, uint32_t rows) {
    if (!(ColumnUnion(column, rows) & kSig)) return;
    for (uint32_t r = 0; r < rows; ++r) {
      uint32_t* f = column + r * kStride;
      if ((*f & (kSig | kVisit)) != kSig) continue;
      const int cx = (*f & kRefined) ? kContextRefine + 2 : (*f & kNeighbours) ? kContextRefine + 1 : kContextRefine;
      mq.Encode(contexts, cx, (mags[r * kMaxBlockSide] >> plane) & 1);
      *f |= kRefined;
    }
  };
  ForEachStripeColumn(m_flags, m_magnitudes, m_width, m_height, code);
  m_mq = mq;
}

void CodeBlockCoder::CleanupPass(uint32_t plane) {
  MqEncoder mq = m_mq;
  MqContext* const contexts = m_contexts;
  const uint8_t* const zero = m_zeroContexts;
  constexpr uint32_t kBusy = kNeighbours | kSig | kVisit;
  const auto code = [&](uint32_t* column, const uint32_t* mags, uint32_t rows) {
    uint32_t r = 0;
    if (rows == 4 && !(ColumnUnion(column, 4) & kBusy)) {
      // Run mode: one symbol says whether any of the four turns significant.
      while (r < 4 && !((mags[r * kMaxBlockSide] >> plane) & 1)) ++r;
      if (r == 4) {
        mq.Encode(contexts, kContextRunLength, 0);
        return;
      }
      mq.Encode(contexts, kContextRunLength, 1);
      mq.Encode(contexts, kContextUniform, r >> 1);
      mq.Encode(contexts, kContextUniform, r & 1);
      CodeSign(mq, contexts, column + r * kStride, mags[r * kMaxBlockSide] >> 31);
      ++r;
    }
    for (; r < rows; ++r) {
      uint32_t* f = column + r * kStride;
      if (!(*f & (kSig | kVisit))) CodeZero(mq, contexts, zero, f, mags[r * kMaxBlockSide], plane);
      *f &= ~kVisit;
    }
  };
  ForEachStripeColumn(m_flags, m_magnitudes, m_width, m_height, code);
  m_mq = mq;
}

CodedBlock CodeBlockCoder::Encode(const int32_t* coefficients, size_t stride, uint32_t w, uint32_t h,
                                  BandOrientation band, uint8_t* out) {
  m_width = w;
  m_height = h;
  m_zeroContexts = &kZeroContexts[band * 256];
  // Sign in bit 31, magnitude below; the largest magnitude sets the planes.
  uint32_t all = 0;
  for (uint32_t y = 0; y < h; ++y) {
    const int32_t* row = coefficients + y * stride;
    uint32_t* mags = &m_magnitudes[y * kMaxBlockSide];
    for (uint32_t x = 0; x < w; ++x) {
      const int32_t v = row[x];
      const uint32_t m = uint32_t(v < 0 ? -int64_t(v) : v);
      all |= m;
      mags[x] = m | (uint32_t(v) & 0x80000000u);
    }
  }
  CodedBlock result;
  all &= 0x7FFFFFFFu;
  if (all == 0) return result;
  result.planes = 32 - __builtin_clz(all);
  std::memset(m_flags, 0, sizeof(uint32_t) * size_t(kStride) * (h + 2));
  m_mq.Start(out);
  ResetMqContexts(m_contexts);
  int plane = int(result.planes) - 1;
  CleanupPass(uint32_t(plane));
  result.passes = 1;
  for (--plane; plane >= 0; --plane) {
    SignificancePass(uint32_t(plane));
    RefinementPass(uint32_t(plane));
    CleanupPass(uint32_t(plane));
    result.passes += 3;
  }
  result.bytes = m_mq.Finish();
  return result;
}

}  // namespace kestrelink::j2k
