// The coders that Initialize does not build, reached through the internal
// factory: each round-trips a frame through the codec's own flow.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <vector>

#include "compress/wavelet/UniformQuantizer.h"
#include "compress/wavelet/WaveletCompression.h"

namespace {

using namespace kestrelink::wavelet;
using Bytes = std::vector<uint8_t>;

Bytes Ramp8(int w, int h) {
  Bytes f(size_t(w) * size_t(h));
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) f[size_t(y) * size_t(w) + size_t(x)] = uint8_t((x * 5 + y * 3 + (x * y) % 7) % 256);
  return f;
}

int LargestDifference(const Bytes& a, const Bytes& b) {
  int worst = 0;
  for (size_t i = 0; i < a.size(); ++i) worst = std::max(worst, std::abs(int(a[i]) - int(b[i])));
  return worst;
}

TEST(WaveletSimpleCoder, RoundTripsWithinTheQuantiserStep) {
  struct Case {
    int quantBits;
    int bound;  // the step of the quantiser spread by the inverse levels
  } cases[] = {{16, 8}, {12, 12}, {8, 40}};
  for (const Case& c : cases) {
    SCOPED_TRACE(c.quantBits);
    CMonoWaveletCpmpression codec;
    ASSERT_TRUE(codec.Setup(100, 70, 45, c.quantBits, 8, 2, 1, MakeCoder(CoderKind::Simple)));
    Bytes frame = Ramp8(70, 45), stream(codec.MaxFrameBytes()), back(frame.size());
    ASSERT_TRUE(codec.EncodeFrame(frame.data(), stream.data()));
    const uint32_t total = uint32_t(stream[0] | stream[1] << 8 | stream[2] << 16 | stream[3] << 24);
    ASSERT_LE(total, stream.size());
    ASSERT_TRUE(codec.DecodeFrame(stream.data(), total, back.data()));
    EXPECT_LE(LargestDifference(frame, back), c.bound);
    // Cut short before the ranges: refused.
    EXPECT_FALSE(codec.DecodeFrame(stream.data(), 8, back.data()));
  }
}

TEST(WaveletSimpleCoder, QuantiserByHand) {
  CUniformQuatizer q;
  q.Init(8, 100);  // 255 levels
  EXPECT_EQ(q.m_levels, 255);
  // Span 510 over 255 steps: step 2. (101 - -409) / 2 = 255; 100 - -409 = 509 -> 254.
  EXPECT_EQ(q.Quantize(101, 101.0f, -409.0f), 255u);
  EXPECT_EQ(q.Quantize(100, 101.0f, -409.0f), 254u);
  EXPECT_EQ(q.Quantize(-409, -409.0f, 101.0f), 0u);  // swapped range
  // Back: (254 + 0.5) * 2 - 409 = 100.
  EXPECT_EQ(q.Dequantize(254, 101.0f, -409.0f), 100);
  // A flat plane: every code is 0, and 0 comes back as min + 0.5 * 0.
  EXPECT_EQ(q.Quantize(7, 7.0f, 7.0f), 0u);
  EXPECT_EQ(q.Dequantize(0, 7.0f, 7.0f), 7);
  q.Init(8, 50);
  EXPECT_EQ(q.m_levels, 127);
}

}  // namespace
