// The encoder's side of the block coder. Each sample has a node, indexed by
// Morton index; a node that begins a block carries the OR of 1 << msb over
// that block, so a significance test is one AND and a walk never scans.
#include <cstdio>
#include <cstdlib>

#include "compress/wavelet/Speck2Coder.h"
#include "platform/DebugSink.h"

namespace kestrelink::wavelet {

namespace {

constexpr uint8_t kSign = 0x80, kCoded = 0x40, kMsb = 0x3F;

struct EncodeNode {
  uint8_t flags;  // sign, coded, msb
  int8_t level;   // split level once visited, else -1
  uint32_t mask;
  uint32_t magnitude;
};

class BlockEncoder {
 public:
  BlockEncoder(ArithmeticEncoder& out, EncodeNode* nodes, const Speck2Set* sets, int setCount,
               const Speck2Params& params)
      : m_out(out), m_nodes(nodes), m_sets(sets), m_setCount(setCount), m_params(params) {
    uint32_t rest = 0;
    for (int i = setCount - 1; i >= 1; --i) {
      rest |= nodes[sets[i].start].mask;
      m_restMask[i] = rest;
    }
    m_restMask[setCount] = 0;
  }

  void PlanePass(int p) {
    m_p = p;
    CodeSet(m_sets[0]);
    if (!Flag(m_restMask[1])) return;
    for (int t = 1;; t += 3) {
      for (int i = t; i < t + 3 && i < m_setCount; ++i) CodeSet(m_sets[i]);
      // The flag for the sets that remain is written even when none does.
      const uint32_t rest = t + 3 < m_setCount ? m_restMask[t + 3] : 0;
      if (!Flag(rest) || t + 3 >= m_setCount) return;
    }
  }

 private:
  // Codes and answers bit p of a mask.
  bool Flag(uint32_t mask) {
    const uint32_t bit = (mask >> m_p) & 1;
    m_out.EncodeBit(bit);
    return bit != 0;
  }

  void CodeSet(const Speck2Set& set) {
    if (set.sideLog == 0) {
      CodeSample(set.start);
      return;
    }
    if (!Flag(m_nodes[set.start].mask)) return;
    const uint32_t end = set.start + uint32_t(set.width * set.height);
    for (uint32_t i = set.start; i < end;) i += CodeBlock(i, set.sideLog);
  }

  // Codes the block at i; answers the samples that the step covered.
  uint32_t CodeBlock(uint32_t i, int defaultLevel) {
    const int lv = m_nodes[i].level >= 0 ? m_nodes[i].level : defaultLevel;
    if (lv < 2) {
      for (uint32_t k = 0; k < 4; ++k) CodeSample(i + k);
      return 4;
    }
    const int nl = lv - 1;
    const uint32_t q = 1u << (2 * nl);
    for (uint32_t c = 0; c < 4; ++c) {
      const uint32_t j = i + c * q;
      m_nodes[j].level = int8_t(nl);
      // The first quadrant shares its node with the enclosing block, whose
      // mask says too much: it needs the exact test.
      bool flag = (m_nodes[j].mask >> m_p) & 1;
      if (c == 0 && flag) flag = Exact(j, nl);
      m_out.EncodeBit(flag);
      if (flag) CodeBlock(j, nl);
    }
    return 4 * q;
  }

  bool Exact(uint32_t j, int n) const {
    if (n == 0) return int(m_nodes[j].flags & kMsb) == m_p;
    if (Exact(j, n - 1)) return true;
    const uint32_t q = 1u << (2 * (n - 1));
    return ((m_nodes[j + q].mask | m_nodes[j + 2 * q].mask | m_nodes[j + 3 * q].mask) >> m_p) & 1;
  }

  void CodeSample(uint32_t n) {
    EncodeNode& node = m_nodes[n];
    if (node.flags & kCoded) return;
    const int msb = node.flags & kMsb;
    if (msb > m_p) {
      platform::OutputDebugString("CSpeck2Coder::SpeckEncodePixel Error");
      return;
    }
    if (msb == m_p && (m_p != 0 || node.magnitude != 0)) {
      m_out.EncodeBit(1);
      m_out.EncodeBit(node.flags >> 7);
      node.flags |= kCoded;
      int s = m_params.lowestPlane;
      if (m_params.extraBits > 0) {
        if (m_params.extraBits >= m_counter) {
          ++m_counter;
        } else {
          m_counter = 0;
          ++s;
        }
      }
      m_out.EncodeBits(node.magnitude >> s, m_p - s);
    } else {
      m_out.EncodeBit(0);
    }
  }

  ArithmeticEncoder& m_out;
  EncodeNode* m_nodes;
  const Speck2Set* m_sets;
  int m_setCount;
  Speck2Params m_params;
  uint32_t m_restMask[kMaxSpeck2Sets + 1];
  int m_p = 0;
  int m_counter = 0;
};

// Fills the nodes of one set and marks each non-zero sample's ancestors;
// answers the highest msb, -1 when all are zero.
int FillSet(const Speck2Set& set, const uint32_t* morton, int32_t** rows, EncodeNode* nodes) {
  int top = -1;
  for (int y = set.y; y < set.y + set.height; ++y) {
    for (int x = set.x; x < set.x + set.width; ++x) {
      const int32_t v = rows[y][x];
      const uint32_t m = morton[y * 32 + x];
      EncodeNode& node = nodes[m];
      const uint32_t magnitude = uint32_t(v < 0 ? -int64_t(v) : v);
      node.level = -1;
      node.magnitude = magnitude;
      if (magnitude == 0) {
        node.flags = 0;
        node.mask = 0;
        continue;
      }
      const int msb = 31 - __builtin_clz(magnitude);
      const uint32_t bit = 1u << msb;
      node.flags = uint8_t((v < 0 ? kSign : 0) | msb);
      node.mask = bit;
      if (msb > top) top = msb;
      uint32_t at = set.start;
      for (int k = set.sideLog; k > 0;) {
        nodes[at].mask |= bit;
        const uint32_t q = 1u << (2 * (k - 1));
        at += (m - at) / q * q;
        --k;
        if (at == m) break;
      }
    }
  }
  return top;
}

}  // namespace

}  // namespace kestrelink::wavelet

using namespace kestrelink::wavelet;

int CSpeck2Coder::EncodeBlock(ArithmeticEncoder& writer, int ratio, int, int, int levels, const uint32_t* mortonTable,
                              int32_t** rows) {
  Speck2Set sets[kMaxSpeck2Sets];
  const int setCount = BuildSpeck2Sets(Speck2Levels(levels), mortonTable, sets);
  EncodeNode nodes[1024];
  int top = -1;
  for (int i = 0; i < setCount; ++i) {
    const int t = FillSet(sets[i], mortonTable, rows, nodes);
    if (t > top) top = t;
  }
  // An all-zero block writes top as -1, which reads back as 1023.
  writer.EncodeBits(uint32_t(top), 10);
  if (top < 0) return 1;
  Speck2Params params = PlaneRange(top, ratio);
  params.setCount = setCount;
  BlockEncoder coder(writer, nodes, sets, setCount, params);
  for (int p = top; p >= params.lowestPlane; --p) coder.PlanePass(p);
  return 1;
}
