// The encoder's side of the block coder. Each sample has a node, indexed by
// Morton index; a node that begins a block carries the OR of 1 << msb over
// that block, so a significance test is one AND and a walk never scans.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <type_traits>

#include "compress/wavelet/SetPartitionCoder.h"
#include "compress/wavelet/SetPartitionWalk.h"
#include "compress/wavelet/StreamBits.h"
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

template <class Writer>
class BlockEncoder : public Speck2Walk<BlockEncoder<Writer>, EncodeNode> {
  using Walk = Speck2Walk<BlockEncoder<Writer>, EncodeNode>;
  friend Walk;

 public:
  BlockEncoder(Writer& out, EncodeNode* nodes, const Speck2Set* sets, int setCount, const Speck2Params& params)
      : Walk(nodes, sets, setCount), m_out(out), m_params(params) {
    uint32_t rest = 0;
    for (int i = setCount - 1; i >= 1; --i) {
      rest |= nodes[sets[i].start].mask;
      m_restMask[i] = rest;
    }
    m_restMask[setCount] = 0;
  }

 private:
  // Codes and answers bit p of a mask.
  bool Flag(uint32_t mask) {
    const uint32_t bit = (mask >> this->m_p) & 1;
    m_out.EncodeBit(bit);
    return bit != 0;
  }
  bool RestFlag(int from) { return Flag(from < this->m_setCount ? m_restMask[from] : 0); }
  bool SetFlag(uint32_t start) { return Flag(this->m_nodes[start].mask); }
  // The first quadrant shares its node with the enclosing block, whose mask
  // says too much: it needs the exact test.
  bool QuadrantFlag(uint32_t j, int level, bool first) {
    bool flag = (this->m_nodes[j].mask >> this->m_p) & 1;
    if (first && flag) flag = Exact(j, level);
    m_out.EncodeBit(flag);
    return flag;
  }

  bool Exact(uint32_t j, int n) const {
    const EncodeNode* nodes = this->m_nodes;
    if (n == 0) return int(nodes[j].flags & kMsb) == this->m_p;
    if (Exact(j, n - 1)) return true;
    const uint32_t q = 1u << (2 * (n - 1));
    return ((nodes[j + q].mask | nodes[j + 2 * q].mask | nodes[j + 3 * q].mask) >> this->m_p) & 1;
  }

  void Sample(uint32_t n) {
    EncodeNode& node = this->m_nodes[n];
    const int p = this->m_p;
    if (node.flags & kCoded) return;
    if constexpr (std::is_same_v<Writer, StreamBitWriter>) {
      // All planes, and the magnitude's lower bits in one group: the
      // sample's bits as one field, without a branch on its significance.
      if (p <= kFieldPlanes && m_params.lowestPlane == 0 && m_params.extraBits == 0 && (node.flags & kMsb) <= p) {
        const uint32_t significant = uint32_t((node.flags & kMsb) == p) & uint32_t((p | node.magnitude) != 0);
        const uint32_t lower = GroupedBits(node.magnitude & ((1u << p) - 1), p);
        const uint32_t field = ((2u | uint32_t(node.flags >> 7)) << p) | lower;
        // Branch-free: whether a sample turns significant is the least
        // predictable thing in the walk.
        m_out.Put(field & (0u - significant), 1 + significant * (uint32_t(p) + 1));
        node.flags |= uint8_t(significant << 6);
        this->Close(n, significant);
        return;
      }
    }
    const int msb = node.flags & kMsb;
    if (msb > p) {
      platform::OutputDebugString("CSpeck2Coder::SpeckEncodePixel Error");
      return;
    }
    if (msb == p && (p != 0 || node.magnitude != 0)) {
      m_out.EncodeBit(1);
      m_out.EncodeBit(node.flags >> 7);
      node.flags |= kCoded;
      this->Close(n);
      const int s = LowestBit(m_params, m_counter);
      m_out.EncodeBits(node.magnitude >> s, p - s);
    } else {
      m_out.EncodeBit(0);
    }
  }

  Writer& m_out;
  Speck2Params m_params;
  uint32_t m_restMask[kMaxSpeck2Sets + 1];
  int m_counter = 0;
};

// Fills the nodes of one set, then ORs each block's mask into the node that
// begins it, smallest blocks first: a node ends with the OR over the
// largest block of the set that begins there, as marking every non-zero
// sample's ancestors from the set's root down would give. Answers the
// highest msb, -1 when all are zero.
int FillSet(const Speck2Set& set, const MortonPosition* positions, int32_t** rows, EncodeNode* nodes) {
  const uint32_t count = uint32_t(set.width * set.height);
  uint32_t any = 0;
  for (uint32_t m = set.start; m < set.start + count; ++m) {
    const MortonPosition at = positions[m];
    const int32_t v = rows[at.y][at.x];
    const uint32_t magnitude = uint32_t(v < 0 ? -int64_t(v) : v);
    const int msb = 31 - __builtin_clz(magnitude | 1);
    const uint32_t bit = magnitude ? 1u << msb : 0;
    EncodeNode& node = nodes[m];
    node.level = -1;
    node.magnitude = magnitude;
    node.flags = magnitude ? uint8_t((v < 0 ? kSign : 0) | msb) : 0;
    node.mask = bit;
    any |= bit;
  }
  for (int k = 1; k <= set.sideLog; ++k) {
    const uint32_t q = 1u << (2 * (k - 1));
    for (uint32_t b = set.start; b < set.start + count; b += 4 * q)
      nodes[b].mask |= nodes[b + q].mask | nodes[b + 2 * q].mask | nodes[b + 3 * q].mask;
  }
  return any ? 31 - __builtin_clz(any) : -1;
}

template <class Writer>
void EncodeAnyBlock(Writer& writer, int ratio, int levels, const uint32_t* mortonTable, int32_t** rows) {
  Speck2Set sets[kMaxSpeck2Sets];
  const int setCount = BuildSpeck2Sets(Speck2Levels(levels), mortonTable, sets);
  const MortonPosition* positions = PositionTable();
  EncodeNode nodes[1024];
  int top = -1;
  for (int i = 0; i < setCount; ++i) {
    const int t = FillSet(sets[i], positions, rows, nodes);
    if (t > top) top = t;
  }
  // An all-zero block writes top as -1, which reads back as 1023.
  writer.EncodeBits(uint32_t(top), 10);
  if (top < 0) return;
  Speck2Params params = PlaneRange(top, ratio);
  params.setCount = setCount;
  BlockEncoder<Writer> coder(writer, nodes, sets, setCount, params);
  for (int p = top; p >= params.lowestPlane; --p) coder.PlanePass(p);
}

}  // namespace

void EncodeSpeck2Block(StreamBitWriter& writer, int ratio, int levels, const uint32_t* mortonTable,
                       int32_t** rows) {
  EncodeAnyBlock(writer, ratio, levels, mortonTable, rows);
}

}  // namespace kestrelink::wavelet

using namespace kestrelink::wavelet;

int CSpeck2Coder::EncodeBlock(ArithmeticEncoder& writer, int ratio, int, int, int levels, const uint32_t* mortonTable,
                              int32_t** rows) {
  EncodeAnyBlock(writer, ratio, levels, mortonTable, rows);
  return 1;
}
