// CIppWavletCompression: set-up rules, ratios, frames round trip at every
// level on 8- and 12-bit content with the largest difference bounded, the
// frame's layout, clamping, and damaged frames.
#include <gtest/gtest.h>
#include <kestrelink/CIppWavletCompression.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <vector>

#include "WaveletTestFrames.h"

namespace {

using namespace kestrelink::wavelet::testframes;

bool Prepare(CIppWavletCompression& c, int w, int h, int bits, int levels) {
  return c.Initialize(100, w, h, bits, bits, levels, 1, 1, 0);
}

Bytes EncodeFrame(CIppWavletCompression& c, Bytes frame) {
  Bytes out(c.MaxEncodedBytes());
  EXPECT_TRUE(c.Encode(nullptr, nullptr, frame.data(), out.data()));
  out.resize(Total(out));
  return out;
}

TEST(WaveletFront, RoundTripsAtEveryLevel) {
  struct Case {
    int w, h, bits;
  } cases[] = {{64, 64, 8}, {100, 70, 8}, {33, 33, 8}, {96, 40, 12}, {50, 37, 12}, {32, 32, 16}};
  for (const Case& c : cases) {
    for (int levels = 1; levels <= 4; ++levels) {
      SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " at " << c.bits << " bits, levels " << levels);
      CIppWavletCompression codec;
      ASSERT_TRUE(Prepare(codec, c.w, c.h, c.bits, levels));
      const Bytes frame = SceneFrame(c.w, c.h, c.bits, uint32_t(levels));
      const Bytes stream = EncodeFrame(codec, frame);
      Bytes back(frame.size(), 0xEE);
      ASSERT_TRUE(codec.Decode(Bytes(stream).data(), nullptr, nullptr, back.data()));
      const int worst = LargestDifference(frame, back, c.bits);
      // The inverse passes run in the forward order; a few levels of rounding
      // stay, growing with the levels but not with the depth.
      RecordProperty("largest_difference", worst);
      EXPECT_LE(worst, 4 * levels + 4) << "largest difference " << worst;
      // The same stream decodes to the same image through the bounded call.
      Bytes again(frame.size());
      ASSERT_TRUE(codec.Decode(stream.data(), uint32_t(stream.size()), again.data()));
      EXPECT_EQ(again, back);
    }
  }
}

TEST(WaveletFront, FrameLayoutAndEmptyBlocks) {
  // 33 x 33: a grid of 2 x 2 blocks. An all-black frame gives four empty
  // blocks of two bytes each behind their lengths.
  CIppWavletCompression codec;
  ASSERT_TRUE(Prepare(codec, 33, 33, 8, 3));
  const Bytes stream = EncodeFrame(codec, Bytes(33 * 33, 0));
  const Bytes expected = {20, 0, 0, 0, 2, 0, 0xFF, 0xD0, 2, 0, 0xFF, 0xD0, 2, 0, 0xFF, 0xD0, 2, 0, 0xFF, 0xD0};
  EXPECT_EQ(stream, expected);
  Bytes back(33 * 33, 0x55);
  ASSERT_TRUE(codec.Decode(Bytes(stream).data(), nullptr, nullptr, back.data()));
  EXPECT_EQ(back, Bytes(33 * 33, 0));
}

TEST(WaveletFront, DecodedSamplesAreClamped) {
  // A lone white pixel in black makes ringing that goes below 0 and, at the
  // top of the range, above it: every decoded pixel stays in range.
  for (int bits : {8, 12}) {
    SCOPED_TRACE(bits);
    CIppWavletCompression codec;
    ASSERT_TRUE(Prepare(codec, 32, 32, bits, 4));
    const int maxValue = bits == 8 ? 255 : 4095;
    Bytes frame(bits == 8 ? 1024 : 2048, 0);
    for (int i = 0; i < 1024; i += 7) {
      const int v = (i / 7) % 2 ? maxValue : 0;
      frame[bits == 8 ? size_t(i) : size_t(2 * i)] = uint8_t(v);
      if (bits != 8) frame[size_t(2 * i + 1)] = uint8_t(v >> 8);
    }
    const Bytes stream = EncodeFrame(codec, frame);
    Bytes back(frame.size());
    ASSERT_TRUE(codec.Decode(Bytes(stream).data(), nullptr, nullptr, back.data()));
    for (size_t i = 0; i < 1024; ++i) ASSERT_LE(Sample(back, i, bits), maxValue);
    EXPECT_LE(LargestDifference(frame, back, bits), maxValue / 8);
  }
}

TEST(WaveletFront, InitializeRefusals) {
  struct Case {
    const char* name;
    uint32_t kind, filter, coder;
    bool ok;
  } cases[] = {{"kind 100", 100, 1, 1, true},  {"kind 101", 101, 1, 1, true}, {"kind 102", 102, 1, 1, false},
               {"filter 2", 100, 2, 1, false}, {"coder 0", 100, 1, 0, false},  {"coder 2", 100, 1, 2, false}};
  Bytes frame(64 * 64, 9), out(1 << 20);
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    CIppWavletCompression codec;
    EXPECT_FALSE(codec.Encode(nullptr, nullptr, frame.data(), out.data()));  // nothing set up yet
    ASSERT_TRUE(Prepare(codec, 64, 64, 8, 3));
    EXPECT_EQ(codec.Initialize(c.kind, 64, 64, 8, 8, 3, c.filter, c.coder, 0), c.ok);
    // A failed Initialize takes the earlier set-up with it.
    EXPECT_EQ(codec.Encode(nullptr, nullptr, frame.data(), out.data()), c.ok);
    EXPECT_EQ(codec.Decode(out.data(), nullptr, nullptr, frame.data()), c.ok);
  }
}

TEST(WaveletFront, RatiosBeforeAndAfterInitialize) {
  CIppWavletCompression codec;
  EXPECT_EQ(codec.GetEncodeRatio(), 100);
  EXPECT_EQ(codec.GetDecodeRatio(), 100);
  codec.SetEncodeRatio(40);
  codec.SetDecodeRatio(60);
  ASSERT_TRUE(Prepare(codec, 64, 32, 8, 2));
  EXPECT_EQ(codec.GetEncodeRatio(), 40);
  EXPECT_EQ(codec.GetDecodeRatio(), 60);
  // The coder built here codes every plane: the ratios change nothing.
  const Bytes frame = SceneFrame(64, 32, 8, 1);
  const Bytes at40 = EncodeFrame(codec, frame);
  Bytes back40(frame.size()), back100(frame.size());
  ASSERT_TRUE(codec.Decode(Bytes(at40).data(), nullptr, nullptr, back40.data()));
  codec.SetEncodeRatio(100);
  codec.SetDecodeRatio(100);
  EXPECT_EQ(EncodeFrame(codec, frame), at40);
  ASSERT_TRUE(codec.Decode(Bytes(at40).data(), nullptr, nullptr, back100.data()));
  EXPECT_EQ(back40, back100);
}

TEST(WaveletFront, DamagedFramesStayInside) {
  CIppWavletCompression codec;
  ASSERT_TRUE(Prepare(codec, 70, 40, 12, 3));
  const Bytes frame = SceneFrame(70, 40, 12, 4);
  const Bytes stream = EncodeFrame(codec, frame);
  Bytes image(frame.size());
  // Truncated: the blocks do not fit the bytes given, or the total says less.
  for (uint32_t cut : {0u, 3u, 4u, 5u, 9u, uint32_t(stream.size() / 2), uint32_t(stream.size() - 1)}) {
    SCOPED_TRACE(cut);
    Bytes shortFrame(stream.begin(), stream.begin() + cut);
    EXPECT_FALSE(codec.Decode(shortFrame.data(), cut, image.data()));
  }
  Bytes lying = stream;
  lying[0] = uint8_t(lying[0] - 1);  // the total one byte short of the blocks
  EXPECT_FALSE(codec.Decode(lying.data(), nullptr, nullptr, image.data()));
  // Garbage of the right length: decodes to something, within the image.
  std::mt19937 rng(8);
  for (int trial = 0; trial < 20; ++trial) {
    Bytes garbage = stream;
    for (size_t i = 4; i < garbage.size(); ++i)
      if (rng() % 4 == 0) garbage[i] = uint8_t(rng());
    Bytes guarded(image.size() + 64, 0xAB);
    codec.Decode(garbage.data(), uint32_t(garbage.size()), guarded.data());
    for (size_t i = image.size(); i < guarded.size(); ++i) ASSERT_EQ(guarded[i], 0xAB);
  }
}

}  // namespace
