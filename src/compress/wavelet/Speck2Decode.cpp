// The decoder's side of the block coder: the encoder's walk with each flag
// read instead of written. A node is only the coded bit and the level.
#include "compress/wavelet/Speck2Coder.h"

namespace kestrelink::wavelet {

namespace {

constexpr uint8_t kCoded = 0x40;

struct DecodeNode {
  uint8_t flags;
  int8_t level;
};

class BlockDecoder {
 public:
  BlockDecoder(ArithmeticDecoder& in, DecodeNode* nodes, const Speck2Set* sets, int setCount,
               const Speck2Params& params, const MortonPosition* positions, int32_t** rows)
      : m_in(in), m_nodes(nodes), m_sets(sets), m_setCount(setCount), m_params(params), m_positions(positions),
        m_rows(rows) {}

  void PlanePass(int p) {
    m_p = p;
    m_params.threshold = 1 << p;
    DecodeSet(m_sets[0]);
    if (!m_in.DecodeBit()) return;
    for (int t = 1;; t += 3) {
      for (int i = t; i < t + 3 && i < m_setCount; ++i) DecodeSet(m_sets[i]);
      if (!m_in.DecodeBit() || t + 3 >= m_setCount) return;
    }
  }

 private:
  void DecodeSet(const Speck2Set& set) {
    if (set.sideLog == 0) {
      DecodeSample(set.start);
      return;
    }
    if (!m_in.DecodeBit()) return;
    const uint32_t end = set.start + uint32_t(set.width * set.height);
    for (uint32_t i = set.start; i < end;) i += DecodeBlock(i, set.sideLog);
  }

  uint32_t DecodeBlock(uint32_t i, int defaultLevel) {
    const int lv = m_nodes[i].level >= 0 ? m_nodes[i].level : defaultLevel;
    if (lv < 2) {
      for (uint32_t k = 0; k < 4; ++k) DecodeSample(i + k);
      return 4;
    }
    const int nl = lv - 1;
    const uint32_t q = 1u << (2 * nl);
    for (uint32_t c = 0; c < 4; ++c) {
      const uint32_t j = i + c * q;
      m_nodes[j].level = int8_t(nl);
      if (m_in.DecodeBit()) DecodeBlock(j, nl);
    }
    return 4 * q;
  }

  void DecodeSample(uint32_t n) {
    DecodeNode& node = m_nodes[n];
    if (node.flags & kCoded) return;
    if (!m_in.DecodeBit()) return;
    const uint32_t sign = m_in.DecodeBit();
    int s = m_params.lowestPlane;
    if (m_params.extraBits > 0) {
      if (m_params.extraBits >= m_counter) {
        ++m_counter;
      } else {
        m_counter = 0;
        ++s;
      }
    }
    const int32_t value = int32_t((m_in.DecodeBits(m_p - s) << s) | uint32_t(m_params.threshold));
    const MortonPosition at = m_positions[n];
    m_rows[at.y][at.x] = sign ? -value : value;
    node.flags |= kCoded;
  }

  ArithmeticDecoder& m_in;
  DecodeNode* m_nodes;
  const Speck2Set* m_sets;
  int m_setCount;
  Speck2Params m_params;
  const MortonPosition* m_positions;
  int32_t** m_rows;
  int m_p = 0;
  int m_counter = 0;
};

}  // namespace

}  // namespace kestrelink::wavelet

using namespace kestrelink::wavelet;

int CSpeck2Coder::DecodeBlock(ArithmeticDecoder& reader, int ratio, int, int, int levels,
                              const uint32_t* mortonTable, const MortonPosition* positionTable, int32_t** rows) {
  Speck2Set sets[kMaxSpeck2Sets];
  const int setCount = BuildSpeck2Sets(Speck2Levels(levels), mortonTable, sets);
  DecodeNode nodes[1024];
  for (auto& node : nodes) node = {0, -1};
  const uint32_t top = reader.DecodeBits(10);
  // 1023 is the all-zero block: nothing follows. A top past what samples can
  // reach only comes from a damaged block, which stays zero too.
  if (top == kSpeck2EmptyTop || top > uint32_t(kSpeck2TopLimit)) return 1;
  Speck2Params params = PlaneRange(int(top), ratio);
  params.setCount = setCount;
  BlockDecoder coder(reader, nodes, sets, setCount, params, positionTable, rows);
  for (int p = int(top); p >= params.lowestPlane; --p) coder.PlanePass(p);
  return 1;
}
