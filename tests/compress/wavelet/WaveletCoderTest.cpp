// The wavelet coder's building blocks: the arithmetic coder's bytes, the
// frequency model, the lifting steps with negative values, and the block
// coder's bytes for hand-worked blocks.
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "compress/wavelet/ArithmeticCoder.h"
#include "compress/wavelet/FrequencyModel.h"
#include "compress/wavelet/LiftingFilter.h"
#include "compress/wavelet/SetPartitionCoder.h"
#include "compress/wavelet/StreamBits.h"

namespace {

using namespace kestrelink::wavelet;
using Bytes = std::vector<uint8_t>;

template <class Body>
Bytes Encoded(Body&& body) {
  Bytes buffer(4096);
  ArithmeticEncoder encoder(buffer.data(), 2050, uint32_t(buffer.size()));
  body(encoder);
  encoder.FinishEncoder();
  buffer.resize(encoder.Length());
  return buffer;
}

TEST(WaveletArithmetic, TenOnesGiveFFD0) {
  EXPECT_EQ(Encoded([](ArithmeticEncoder& e) { for (int i = 0; i < 10; ++i) e.EncodeBit(1); }),
            (Bytes{0xFF, 0xD0}));
  EXPECT_EQ(Encoded([](ArithmeticEncoder& e) { e.EncodeBits(1023, 10); }), (Bytes{0xFF, 0xD0}));
}

TEST(WaveletArithmetic, BitsGoLowestByteFirst) {
  // 0x2A5 in 10 bits: 0xA5 as one 256-ary symbol, then 2 in two bits, then
  // the end bits 0 1.
  EXPECT_EQ(Encoded([](ArithmeticEncoder& e) { e.EncodeBits(0x2A5, 10); }), (Bytes{0xA5, 0x90}));
}

TEST(WaveletArithmetic, RandomBitsRoundTripThroughBothRoads) {
  // Mixed bits, groups and adaptive symbols: the adaptive ones leave the
  // interval unsettled, so both roads of the equal-probability calls run.
  std::mt19937 rng(5);
  for (int trial = 0; trial < 20; ++trial) {
    SCOPED_TRACE(trial);
    struct Op {
      int kind;
      uint32_t value;
      int bits;
    };
    std::vector<Op> ops;
    for (int i = 0; i < 300; ++i) {
      const int kind = int(rng() % 3);
      const int bits = 1 + int(rng() % 20);
      ops.push_back({kind, uint32_t(kind == 2 ? rng() % 4 : rng() & ((1u << bits) - 1)), bits});
    }
    AdaptiveModel encodeModel(4, 64), decodeModel(4, 64);
    const Bytes stream = Encoded([&](ArithmeticEncoder& e) {
      for (const Op& op : ops) {
        if (op.kind == 0) e.EncodeBit(op.value & 1);
        if (op.kind == 1) e.EncodeBits(op.value, op.bits);
        if (op.kind == 2) e.EncodeSymbol(encodeModel, op.value);
      }
      // The decoder's renormalisation pauses where the stream ends, which
      // rounds an adaptive interval differently there: keep the checked
      // symbols clear of the last bytes.
      for (int i = 0; i < 32; ++i) e.EncodeBit(0);
    });
    ArithmeticDecoder d(stream.data(), uint32_t(stream.size()));
    for (size_t i = 0; i < ops.size(); ++i) {
      const Op& op = ops[i];
      const uint32_t got = op.kind == 0 ? d.DecodeBit() : op.kind == 1 ? d.DecodeBits(op.bits) : d.DecodeSymbol(decodeModel, true);
      ASSERT_EQ(got, op.kind == 0 ? (op.value & 1) : op.value) << "operation " << i;
    }
  }
}

TEST(WaveletArithmetic, EqualProbabilityDecodingReadsTheBitsAsTheyStand) {
  // Any stream of 3 bytes or more, damaged or not, and reads running past its
  // end: the arithmetic decoder and the plain bit reader agree.
  std::mt19937 rng(21);
  for (int trial = 0; trial < 400; ++trial) {
    const Bytes stream = [&] {
      Bytes b(3 + rng() % 40);
      for (auto& x : b) x = uint8_t(rng());
      return b;
    }();
    ArithmeticDecoder arithmetic(stream.data(), uint32_t(stream.size()));
    StreamBitReader plain(stream.data(), uint32_t(stream.size()));
    for (int op = 0; op < 120; ++op) {
      const int n = int(rng() % 14);  // 0: one bit, else a field of n bits
      const uint32_t a = n == 0 ? arithmetic.DecodeBit() : arithmetic.DecodeBits(n);
      const uint32_t b = n == 0 ? plain.DecodeBit() : plain.DecodeBits(n);
      ASSERT_EQ(a, b) << "trial " << trial << " (" << stream.size() << " bytes), read " << op << " of " << n << " bits";
    }
  }
}

TEST(WaveletFrequency, HalvingAndMovedFrequency) {
  AdaptiveModel m(4, 6);
  m.Add(2);
  m.Add(2);  // frequencies 1 1 3 1, total 6: not above the limit
  EXPECT_EQ(m.Frequency(2), 3u);
  m.Add(1);  // total 7 after: 1 2 3 1
  m.Add(0);  // total 7 > 6: halve first (1 1 2 1), then count: 2 1 2 1
  EXPECT_EQ(m.Frequency(0), 2u);
  EXPECT_EQ(m.Frequency(1), 1u);
  EXPECT_EQ(m.Frequency(2), 2u);
  EXPECT_EQ(m.Frequency(3), 1u);
  EXPECT_EQ(m.Total(), 6u);
  m.MoveFrequency(3, 0);
  EXPECT_EQ(m.Frequency(0), 3u);
  EXPECT_EQ(m.Frequency(3), 0u);
  // Find: targets 0..2 are symbol 0, 3 is 1, 4..5 are 2.
  const uint32_t expected[] = {0, 0, 0, 1, 2, 2};
  for (uint32_t t = 0; t < 6; ++t) EXPECT_EQ(m.Find(t), expected[t]) << "target " << t;
}

// Truncating division written out as the formula, for expected values.
int32_t Div(int32_t a, int32_t b) {
  const int32_t q = (a < 0 ? -a : a) / b;
  return a < 0 ? -q : q;
}

TEST(WaveletLifting, FourSamplesByHand) {
  struct Case {
    const char* name;
    int32_t x[4];
  } cases[] = {{"positive", {10, 20, 30, 5}}, {"negative", {-1, -2, -3, -7}}, {"mixed", {5, -9, 0, 3}}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const int32_t* x = c.x;
    const int32_t d0 = x[1] - Div(x[0] + x[2] + 1, 2);
    const int32_t d1 = x[3] - Div(2 * x[2] + 1, 2);
    const int32_t s0 = x[0] + Div(2 * d0 + 2, 4);
    const int32_t s1 = x[2] + Div(2 * d0 + 2, 4);  // x[3] only enters d1
    int32_t work[4] = {x[0], x[1], x[2], x[3]}, out[4];
    LiftForward(work, 4, out);
    EXPECT_EQ(out[0], s0);
    EXPECT_EQ(out[1], s1);
    EXPECT_EQ(out[2], d0);
    EXPECT_EQ(out[3], d1);
    int32_t back[4];
    LiftInverse(out, 4, back);
    for (int i = 0; i < 4; ++i) EXPECT_EQ(back[i], x[i]) << "sample " << i;
  }
}

TEST(WaveletLifting, TruncationNotFloor) {
  // -1, -1, -1, -1: d0 = -1 - (-1 + -1 + 1) / 2 = -1 - 0 = -1 (a floor gives -1 - -1 = 0);
  // s0 = -1 + (2 * -1 + 2) / 4 = -1.
  int32_t work[4] = {-1, -1, -1, -1}, out[4];
  LiftForward(work, 4, out);
  EXPECT_EQ(out[2], -1);
  EXPECT_EQ(out[3], -1 - Div(-1, 2));  // (2 * -1 + 1) / 2 is 0, not -1
  EXPECT_EQ(out[3], -1);
  EXPECT_EQ(Div(-1 + -2 + 2, 4), 0);
}

TEST(WaveletLifting, OneRowUndoesExactly) {
  std::mt19937 rng(11);
  for (int n : {4, 8, 16, 32}) {
    for (int trial = 0; trial < 50; ++trial) {
      int32_t x[32], work[32], out[32], back[32];
      for (int i = 0; i < n; ++i) x[i] = int32_t(rng() % 131072) - 65536;
      std::copy(x, x + n, work);
      LiftForward(work, n, out);
      LiftInverse(out, n, back);
      for (int i = 0; i < n; ++i) ASSERT_EQ(back[i], x[i]) << "n " << n << " sample " << i;
    }
  }
}

struct Block {
  int32_t samples[32][32] = {};
  int32_t* rows[32];
  Block() {
    for (int r = 0; r < 32; ++r) rows[r] = samples[r];
  }
};

Bytes CodeBlock(Block& block, int levels) {
  uint32_t morton[1024];
  BuildMortonTable(morton);
  CSpeck2Coder coder;
  return Encoded([&](ArithmeticEncoder& e) { coder.EncodeBlock(e, 100, 32, 32, levels, morton, block.rows); });
}

TEST(WaveletSpeck2, HandWorkedBlocks) {
  Block empty;
  EXPECT_EQ(CodeBlock(empty, 3), (Bytes{0xFF, 0xD0}));
  Block five;
  five.samples[0][0] = 5;
  EXPECT_EQ(CodeBlock(five, 3), (Bytes{0x02, 0x39, 0x00, 0x08}));
  // -6 at levels 3: top 2; set flag, quadrant flag, then 1, sign 1 and the
  // bits 10 of the magnitude; three zero samples, three zero quadrants, no
  // later set; planes 1 and 0 write two zeros each; end bits 0 1.
  Block minusSix;
  minusSix.samples[0][0] = -6;
  // 00000010 00 | 1 1 1 1 10 000 000 0 | 00 | 00 | 01
  EXPECT_EQ(CodeBlock(minusSix, 3), (Bytes{0x02, 0x3E, 0x00, 0x08}));
  // A one at plane 0: 1, the sign, nothing more. Levels 4: set 0 is 2 x 2
  // and its samples follow its flag at once: 1 | 1 0 | 0 0 0, later sets 0.
  Block one;
  one.samples[0][0] = 1;
  // 00000000 00 | 1 10 000 0 | 01, then zero padding
  EXPECT_EQ(CodeBlock(one, 4), (Bytes{0x00, 0x30, 0x20}));
}

TEST(WaveletSpeck2, SetGeometry) {
  uint32_t morton[1024];
  BuildMortonTable(morton);
  Speck2Set sets[kMaxSpeck2Sets];
  ASSERT_EQ(BuildSpeck2Sets(1, morton, sets), 4);
  EXPECT_EQ(sets[0].width, 16);
  EXPECT_EQ(sets[1].y, 16);
  EXPECT_EQ(sets[1].x, 0);
  EXPECT_EQ(sets[2].x, 16);
  EXPECT_EQ(sets[3].start, 3u * 256);
  ASSERT_EQ(BuildSpeck2Sets(4, morton, sets), 13);
  EXPECT_EQ(sets[0].width, 2);
  EXPECT_EQ(sets[12].width, 16);
  EXPECT_EQ(sets[12].start, 3u * 256);
  // Morton order inside a 2 x 2 group: (0,0), (1,0), (0,1), (1,1) as (x, y).
  EXPECT_EQ(morton[0 * 32 + 1], 1u);
  EXPECT_EQ(morton[1 * 32 + 0], 2u);
  EXPECT_EQ(morton[1 * 32 + 1], 3u);
}

TEST(WaveletSpeck2, RandomBlocksRoundTrip) {
  std::mt19937 rng(3);
  uint32_t morton[1024];
  MortonPosition positions[1024];
  BuildMortonTable(morton);
  BuildPositionTable(positions);
  CSpeck2Coder coder;
  for (int levels = 1; levels <= 4; ++levels) {
    for (int trial = 0; trial < 23; ++trial) {  // magnitudes up to 2^25, past the one-field planes
      Block in, out;
      const int32_t range = 1 << (trial + 3);
      for (auto& row : in.samples)
        for (auto& v : row) v = (rng() % 4 == 0) ? int32_t(rng() % uint32_t(2 * range)) - range : 0;
      const Bytes stream = CodeBlock(in, levels);
      // The direct bit writer gives the same bytes.
      Bytes direct(Speck2BlockBound());
      StreamBitWriter writer(direct.data(), uint32_t(direct.size()));
      EncodeSpeck2Block(writer, 100, levels, morton, in.rows);
      writer.FinishEncoder();
      direct.resize(writer.Length());
      ASSERT_EQ(direct, stream) << "levels " << levels << " trial " << trial;
      ArithmeticDecoder d(stream.data(), uint32_t(stream.size()));
      coder.DecodeBlock(d, 100, 32, 32, levels, morton, positions, out.rows);
      Block viaReader;
      StreamBitReader reader(stream.data(), uint32_t(stream.size()));
      DecodeSpeck2Block(reader, 100, levels, morton, positions, viaReader.rows);
      for (int y = 0; y < 32; ++y)
        for (int x = 0; x < 32; ++x) {
          ASSERT_EQ(out.samples[y][x], in.samples[y][x]) << "levels " << levels << " trial " << trial << " at " << x << "," << y;
          ASSERT_EQ(viaReader.samples[y][x], in.samples[y][x]) << "levels " << levels << " trial " << trial;
        }
    }
  }
}

}  // namespace
