// The list set-partition coder: hand-worked blocks, blocks coded and decoded
// exactly at every level, and frames through the codec's flow, which must
// decode to what the factory's coder gives (both code every bit).
#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "compress/wavelet/ArithmeticCoder.h"
#include "compress/wavelet/ListPartitionCoder.h"
#include "compress/wavelet/WaveletCompression.h"
#include "WaveletTestFrames.h"

namespace {

using namespace kestrelink::wavelet;
using namespace kestrelink::wavelet::testframes;

Bytes Encode(TestBlock& block, int levels) {
  Speck1Scratch scratch;
  Bytes buffer(Speck1BlockBound());
  ArithmeticEncoder encoder(buffer.data(), 2050, uint32_t(buffer.size()));
  EncodeSpeck1Block(encoder, levels, block.rows, scratch);
  encoder.FinishEncoder();
  buffer.resize(encoder.Length());
  return buffer;
}

TestBlock Decode(const Bytes& data, int levels) {
  Speck1Scratch scratch;
  TestBlock out;
  ArithmeticDecoder decoder(data.data(), uint32_t(data.size()));
  DecodeSpeck1Block(decoder, levels, out.rows, scratch);
  return out;
}

TEST(WaveletListCoder, HandWorkedBlocks) {
  // Every sample 0: 1023 as ten bits (FF, then 11), the end adds 0 and 1.
  TestBlock flat;
  EXPECT_EQ(Encode(flat, 3), (Bytes{0xFF, 0xD0}));
  // The single sample 5 at (0, 0), levels 3: top 2 (0000001000); at length
  // 3 the low band (1), its top-left quarter (1), the sample (1, sign 0, low
  // bits 01), the other three samples (000), quarters (000), the remainder
  // (0); at lengths 2 and 1 the low band and the remainder, 0 each; the end.
  TestBlock one;
  one.samples[0] = 5;
  EXPECT_EQ(Encode(one, 3), (Bytes{0x02, 0x39, 0x00, 0x08}));
  // -6 alone in the diagonal band of the finest level (16, 16) at levels 1:
  // the low band (0), the remainder (1), then bands 3, 2, 1 of level 1.
  TestBlock negative;
  negative.samples[16 * 32 + 16] = -6;
  const TestBlock back = Decode(Encode(negative, 1), 1);
  EXPECT_EQ(back.samples[16 * 32 + 16], -6);
}

TEST(WaveletListCoder, RandomBlocksComeBackExactly) {
  std::mt19937 rng(11);
  for (int levels = 1; levels <= 5; ++levels)
    for (int round = 0; round < 8; ++round) {
      SCOPED_TRACE(testing::Message() << "levels " << levels << " round " << round);
      TestBlock in;
      const int32_t spread = round < 4 ? 60 : (1 << 20);
      for (int32_t& s : in.samples) {
        const uint32_t r = rng() % 10;
        s = r < 4 ? 0 : int32_t(rng() % uint32_t(2 * spread + 1)) - spread;
      }
      if (round == 7) in.samples[1023] = -(1 << 30);  // the longest magnitude the top field carries
      const Bytes data = Encode(in, levels);
      ASSERT_LE(data.size(), Speck1BlockBound());
      const TestBlock out = Decode(data, levels);
      for (int i = 0; i < 1024; ++i) ASSERT_EQ(out.samples[i], in.samples[i]) << "at " << i;
    }
}

TEST(WaveletListCoder, FramesDecodeAsTheFactoryCoderDoes) {
  for (const FrameCase& c : kFrameCases)
    for (int levels = 1; levels <= 4; ++levels) {
      SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " bits " << c.bits << " levels " << levels);
      CMonoWaveletCpmpression list, quad;
      ASSERT_TRUE(list.Setup(100, c.w, c.h, c.bits, c.bits, levels, 1, MakeCoder(CoderKind::Speck)));
      ASSERT_TRUE(quad.Setup(100, c.w, c.h, c.bits, c.bits, levels, 1, MakeCoder(CoderKind::Speck2)));
      const Bytes frame = SceneFrame(c.w, c.h, c.bits, uint32_t(7 * levels));
      Bytes a(list.MaxFrameBytes()), b(quad.MaxFrameBytes()), backA(frame.size()), backB(frame.size());
      ASSERT_TRUE(list.EncodeFrame(frame.data(), a.data()));
      ASSERT_TRUE(quad.EncodeFrame(frame.data(), b.data()));
      ASSERT_TRUE(list.DecodeFrame(a.data(), Total(a), backA.data()));
      ASSERT_TRUE(quad.DecodeFrame(b.data(), Total(b), backB.data()));
      EXPECT_EQ(backA, backB);
      RecordProperty("largest_difference", LargestDifference(frame, backA, c.bits));
      EXPECT_FALSE(list.DecodeFrame(a.data(), Total(a) - 1, backA.data()));
    }
  std::unique_ptr<CCompressor> coder = MakeCoder(CoderKind::Speck);
  EXPECT_FALSE(coder->SetInteger(false));
}

}  // namespace
