// The decoder's side of the block coder: the encoder's walk with each flag
// read instead of written. A node is only the coded bit and the level.
#include <cstring>
#include <type_traits>

#include "compress/wavelet/SetPartitionCoder.h"
#include "compress/wavelet/SetPartitionWalk.h"
#include "compress/wavelet/StreamBits.h"

namespace kestrelink::wavelet {

namespace {

constexpr uint8_t kCoded = 0x40;

struct DecodeNode {
  uint8_t flags;
  int8_t level;
};

template <class Reader>
class BlockDecoder : public Speck2Walk<BlockDecoder<Reader>, DecodeNode> {
  using Walk = Speck2Walk<BlockDecoder<Reader>, DecodeNode>;
  friend Walk;

 public:
  BlockDecoder(Reader& in, DecodeNode* nodes, const Speck2Set* sets, int setCount, const Speck2Params& params,
               const MortonPosition* positions, int32_t** rows)
      : Walk(nodes, sets, setCount), m_in(in), m_params(params), m_positions(positions), m_rows(rows) {}

 private:
  bool RestFlag(int) { return m_in.DecodeBit() != 0; }
  bool SetFlag(uint32_t) { return m_in.DecodeBit() != 0; }
  bool QuadrantFlag(uint32_t, int, bool) { return m_in.DecodeBit() != 0; }

  void Sample(uint32_t n) {
    DecodeNode& node = this->m_nodes[n];
    if (node.flags & kCoded) return;
    const int p = this->m_p;
    if constexpr (std::is_same_v<Reader, StreamBitReader>) {
      // All planes: the flag, the sign and the lower bits as one field, read
      // without a branch on the flag. A sample not yet coded holds 0, so it
      // is written either way.
      if (p <= kFieldPlanes && m_params.lowestPlane == 0 && m_params.extraBits == 0) {
        const uint32_t field = m_in.Peek(uint32_t(p) + 2);
        const uint32_t significant = field >> (p + 1);
        m_in.Skip(1 + significant * (uint32_t(p) + 1));
        const uint32_t lower = UngroupedBits(field & ((1u << p) - 1), p);
        const int32_t value = int32_t(lower | (1u << p));
        const int32_t signedValue = ((field >> p) & 1) ? -value : value;
        const MortonPosition at = m_positions[n];
        m_rows[at.y][at.x] = signedValue & -int32_t(significant);
        node.flags |= uint8_t(significant << 6);
        this->Close(n, significant);
        return;
      }
    }
    if (!m_in.DecodeBit()) return;
    const uint32_t sign = m_in.DecodeBit();
    const int s = LowestBit(m_params, m_counter);
    const int32_t value = int32_t((m_in.DecodeBits(p - s) << s) | (1u << p));
    const MortonPosition at = m_positions[n];
    m_rows[at.y][at.x] = sign ? -value : value;
    node.flags |= kCoded;
    this->Close(n);
  }

  Reader& m_in;
  Speck2Params m_params;
  const MortonPosition* m_positions;
  int32_t** m_rows;
  int m_counter = 0;
};

}  // namespace

namespace {

template <class Reader>
void DecodeAnyBlock(Reader& reader, int ratio, int levels, const uint32_t* mortonTable,
                    const MortonPosition* positionTable, int32_t** rows) {
  Speck2Set sets[kMaxSpeck2Sets];
  const int setCount = BuildSpeck2Sets(Speck2Levels(levels), mortonTable, sets);
  DecodeNode nodes[1024];
  for (auto& node : nodes) node = {0, -1};
  const uint32_t top = reader.DecodeBits(10);
  // 1023 is the all-zero block: nothing follows. A top past what samples can
  // reach only comes from a damaged block, which stays zero too.
  if (top == kSpeck2EmptyTop || top > uint32_t(kSpeck2TopLimit)) return;
  Speck2Params params = PlaneRange(int(top), ratio);
  params.setCount = setCount;
  BlockDecoder<Reader> coder(reader, nodes, sets, setCount, params, positionTable, rows);
  for (int p = int(top); p >= params.lowestPlane; --p) coder.PlanePass(p);
}

}  // namespace

void DecodeSpeck2Block(StreamBitReader& reader, int ratio, int levels, const uint32_t* mortonTable,
                       const MortonPosition* positionTable, int32_t** rows) {
  DecodeAnyBlock(reader, ratio, levels, mortonTable, positionTable, rows);
}

}  // namespace kestrelink::wavelet

using namespace kestrelink::wavelet;

int CSpeck2Coder::DecodeBlock(ArithmeticDecoder& reader, int ratio, int, int, int levels,
                              const uint32_t* mortonTable, const MortonPosition* positionTable, int32_t** rows) {
  DecodeAnyBlock(reader, ratio, levels, mortonTable, positionTable, rows);
  return 1;
}
