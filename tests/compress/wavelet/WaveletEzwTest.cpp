// The zerotree coder: blocks coded and decoded directly against the
// reconstruction the format promises, hand-worked bytes, the float coder
// against the integer one, budgets, and frames through the codec's flow.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>
#include <vector>

#include "compress/wavelet/ArithmeticCoder.h"
#include "compress/wavelet/EzwCoder.h"
#include "compress/wavelet/WaveletCompression.h"
#include "WaveletTestFrames.h"

namespace {

using namespace kestrelink::wavelet;
using namespace kestrelink::wavelet::testframes;

template <class T>
Bytes EncodeBlock(const CEZWCoder<T>& coder, TestBlock& block, int levels, uint32_t budget = 1024) {
  const EZWShape shape(32, 32, levels);
  typename CEZWCoder<T>::Scratch scratch(shape);
  Bytes buffer(4096);
  ArithmeticEncoder encoder(buffer.data(), 1026, uint32_t(buffer.size()));
  coder.EncodeBlock(encoder, block.rows, scratch, budget, 256);
  encoder.FinishEncoder();
  buffer.resize(encoder.Length());
  return buffer;
}

TestBlock DecodeBlock(const Bytes& data, int levels, uint32_t budget = 1024) {
  const CIntegerEZWCoder coder;
  const EZWShape shape(32, 32, levels);
  CEZWCoder<int32_t>::Scratch scratch(shape);
  TestBlock out;
  ArithmeticDecoder decoder(data.data(), uint32_t(data.size()));
  coder.DecodeBlock(decoder, out.rows, scratch, budget, 256);
  return out;
}

// What a coefficient comes back as when every pass is coded: placed at 1.5 T
// and moved half the refined bit each pass, the last bit is never refined
// (T / 2 is 0 at T = 2), so magnitudes of 2 and more return with bit 0 set;
// a magnitude of 1 becomes significant only at T = 1, where it is placed at 0.
int32_t Reconstructed(int32_t c) {
  const int32_t m = std::abs(c);
  if (m < 2) return 0;
  return c < 0 ? -(m | 1) : (m | 1);
}

// Sparse, mostly small coefficients with a few large ones, as a transformed
// block of camera content has.
TestBlock CoefficientBlock(uint32_t seed, int spread) {
  std::mt19937 rng(seed);
  TestBlock b;
  for (int32_t& s : b.samples) {
    const uint32_t r = rng() % 100;
    if (r < 50) s = 0;
    else if (r < 95) s = int32_t(rng() % 9) - 4;
    else s = int32_t(rng() % uint32_t(2 * spread + 1)) - spread;
  }
  return b;
}

TEST(WaveletEzw, BlocksComeBackAsTheFormatReconstructsThem) {
  const CIntegerEZWCoder coder;
  for (int levels = 1; levels <= 5; ++levels)
    for (uint32_t seed = 1; seed <= 6; ++seed) {
      SCOPED_TRACE(testing::Message() << "levels " << levels << " seed " << seed);
      TestBlock in = CoefficientBlock(seed, seed % 2 ? 300 : 5000);
      in.samples[0] = 900;  // a strong low band, as in real blocks
      const Bytes data = EncodeBlock(coder, in, levels);
      ASSERT_LT(data.size(), 1024u) << "budget reached; the test wants every pass";
      const TestBlock out = DecodeBlock(data, levels);
      for (int i = 0; i < 1024; ++i) ASSERT_EQ(out.samples[i], Reconstructed(in.samples[i])) << "at " << i;
    }
}

TEST(WaveletEzw, FlatBlocksByHand) {
  const CIntegerEZWCoder coder;
  // Levels 4: exponent 0 in ten bits (threshold 1), then the 2 x 2 low band:
  // four zerotree roots with the adaptive model at 1/4, 2/5, 3/6, 4/7 cost
  // 2 + 1 + 1 + 1 zero bits; the end adds 0 and its pending 1. Sixteen zeros
  // and a one.
  TestBlock flat;
  EXPECT_EQ(EncodeBlock(coder, flat, 4), (Bytes{0x00, 0x00, 0x80}));
  // Levels 5: a one-sample low band, one root (2 bits), then 0 and 1.
  EXPECT_EQ(EncodeBlock(coder, flat, 5), (Bytes{0x00, 0x04}));
  // Magnitudes of 1 become significant at threshold 1, where they are placed
  // at 0: a block of them comes back flat.
  TestBlock ones;
  for (int32_t& s : ones.samples) s = (&s - ones.samples) % 3 == 0 ? -1 : 1;
  const TestBlock out = DecodeBlock(EncodeBlock(coder, ones, 3), 3);
  for (int32_t s : out.samples) ASSERT_EQ(s, 0);
}

TEST(WaveletEzw, FloatCoderMatchesTheIntegerOneOnWholeSamples) {
  const CIntegerEZWCoder integer;
  const CFloatEZWCoder floating;
  for (int levels : {2, 4}) {
    TestBlock a = CoefficientBlock(40 + uint32_t(levels), 700), b = a;
    EXPECT_EQ(EncodeBlock(floating, a, levels), EncodeBlock(integer, b, levels));
  }
  struct Probe : CFloatEZWCoder {
    uint32_t Of(float v) const { return Magnitude(v); }
  } probe;
  EXPECT_EQ(probe.Of(2.5f), 3u);  // halves away from zero
  EXPECT_EQ(probe.Of(-2.5f), 3u);
  EXPECT_EQ(probe.Of(2.49f), 2u);
  EXPECT_EQ(probe.Of(-0.4f), 0u);
}

TEST(WaveletEzw, BudgetsBoundTheBlockAndTheDecode) {
  const CIntegerEZWCoder coder;
  std::mt19937 rng(7);
  TestBlock noise;
  for (int32_t& s : noise.samples) s = int32_t(rng() % 8001) - 4000;
  const Bytes data = EncodeBlock(coder, noise, 3);
  // Coding stops once the bits pass 1024 bytes: a symbol and the end later.
  EXPECT_GE(data.size(), 1024u);
  EXPECT_LE(data.size(), 1032u);
  // A decode budget of 0 reads nothing past the exponent.
  const TestBlock none = DecodeBlock(data, 3, 0);
  for (int32_t s : none.samples) ASSERT_EQ(s, 0);
  // A cut budget gives a coarser block: no sample closer than the full one.
  const TestBlock full = DecodeBlock(data, 3), coarse = DecodeBlock(data, 3, 200);
  long fullError = 0, coarseError = 0;
  for (int i = 0; i < 1024; ++i) {
    fullError += std::abs(full.samples[i] - noise.samples[i]);
    coarseError += std::abs(coarse.samples[i] - noise.samples[i]);
  }
  EXPECT_LT(fullError, coarseError);
}

TEST(WaveletEzw, FramesRoundTripThroughTheCodec) {
  for (const FrameCase& c : kFrameCases)
    for (int levels = 1; levels <= 4; ++levels) {
      SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " bits " << c.bits << " levels " << levels);
      CMonoWaveletCpmpression codec;
      ASSERT_TRUE(codec.Setup(100, c.w, c.h, c.bits, c.bits, levels, 1, MakeCoder(CoderKind::Ezw)));
      const Bytes frame = SceneFrame(c.w, c.h, c.bits, uint32_t(levels));
      Bytes stream(codec.MaxFrameBytes()), back(frame.size());
      ASSERT_TRUE(codec.EncodeFrame(frame.data(), stream.data()));
      const uint32_t total = Total(stream);
      ASSERT_LE(total, stream.size());
      ASSERT_TRUE(codec.DecodeFrame(stream.data(), total, back.data()));
      const int worst = LargestDifference(frame, back, c.bits);
      RecordProperty("largest_difference", worst);
      // Each coefficient comes back within 1; the inverse levels spread that.
      EXPECT_LE(worst, 3 + 2 * levels);
      // A decode ratio of 0 leaves every coefficient 0.
      codec.m_decodeRatio = 0;
      ASSERT_TRUE(codec.DecodeFrame(stream.data(), total, back.data()));
      for (uint8_t v : back) ASSERT_EQ(v, 0);
      // Cut short: refused.
      EXPECT_FALSE(codec.DecodeFrame(stream.data(), total - 1, back.data()));
    }
}

TEST(WaveletEzw, FloatCoderThroughTheCodec) {
  CMonoWaveletCpmpression a, b;
  ASSERT_TRUE(a.Setup(100, 64, 40, 8, 8, 3, 1, MakeCoder(CoderKind::Ezw)));
  ASSERT_TRUE(b.Setup(100, 64, 40, 8, 8, 3, 1, MakeCoder(CoderKind::Ezw)));
  ASSERT_TRUE(b.m_compressor->SetInteger(false));
  const Bytes frame = SceneFrame(64, 40, 8, 3);
  Bytes sa(a.MaxFrameBytes()), sb(b.MaxFrameBytes());
  ASSERT_TRUE(a.EncodeFrame(frame.data(), sa.data()));
  ASSERT_TRUE(b.EncodeFrame(frame.data(), sb.data()));
  sa.resize(Total(sa));
  sb.resize(Total(sb));
  EXPECT_EQ(sa, sb);
  Bytes back(frame.size());
  ASSERT_TRUE(b.DecodeFrame(sb.data(), uint32_t(sb.size()), back.data()));
  EXPECT_LE(LargestDifference(frame, back, 8), 9);
}

}  // namespace
