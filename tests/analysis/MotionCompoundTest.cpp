// The three compound detectors of CIppMotionDetector, step by step: their
// results against the members they are built of, worked from the rules.
#include <gtest/gtest.h>
#include <kestrelink/CIppMotionDetector.h>

#include <cstdlib>
#include <vector>

#include "support/AnalysisReference.h"
#include "support/TestSupport.h"

namespace {

constexpr unsigned W = 20, H = 10;
constexpr int X = 2, Y = 1, RW = 12, RH = 7;

bool Inside(unsigned c, unsigned r, int x, int y, int w, int h) {
  return int(c) >= x && int(c) < x + w && int(r) >= y && int(r) < y + h;
}

TEST(MotionCompound, AbsDiffCountsUpTo255AndAveragesNonzero) {
  CIppMotionDetector motion;
  const auto a = testsupport::RandomBytes(W * H, 81), b = testsupport::RandomBytes(W * H, 82);
  std::vector<uint16_t> a16(W * H), b16(W * H);
  for (size_t i = 0; i < W * H; ++i) a16[i] = uint16_t(a[i] * 3), b16[i] = uint16_t(b[i] * 3);
  for (int low : {0, 30, 200}) {
    int want = 0, want16 = 0, nonzero = 0, nonzero16 = 0;
    double sum = 0, sum16 = 0;
    for (unsigned r = 0; r < H; ++r)
      for (unsigned c = 0; c < W; ++c)
        if (Inside(c, r, X, Y, RW, RH)) {
          const int d = std::abs(a[r * W + c] - b[r * W + c]), d16 = 3 * d;
          want += d >= low, want16 += d16 >= low && d16 <= 255;  // the high bound is 255 for both
          nonzero += d != 0, nonzero16 += d16 != 0, sum += d, sum16 += d16;
        }
    int count = -1, count16 = -1;
    double mean = -1, mean16 = -1;
    ASSERT_TRUE(motion.AbsDiff8GrayPixels(W, H, const_cast<uint8_t*>(a.data()), const_cast<uint8_t*>(b.data()), X, Y,
                                          RW, RH, low, count, mean));
    ASSERT_TRUE(motion.AbsDiff16GrayPixels(W, H, 12, a16.data(), b16.data(), X, Y, RW, RH, low, count16, mean16));
    EXPECT_EQ(count, want) << low;
    EXPECT_EQ(count16, want16) << low;
    EXPECT_DOUBLE_EQ(mean, nonzero ? sum / nonzero : 0.0);
    EXPECT_DOUBLE_EQ(mean16, nonzero16 ? sum16 / nonzero16 : 0.0);
  }
}

TEST(MotionCompound, EdgeDetectFiltersIntoTheEdgeFrameAndCounts) {
  CIppMotionDetector motion;
  const auto src = testsupport::RandomBytes(W * H, 83);
  std::vector<uint8_t> rect(size_t(RW) * RH);
  for (int r = 0; r < RH; ++r)
    for (int c = 0; c < RW; ++c) rect[size_t(r) * RW + c] = src[(Y + r) * W + X + c];
  const auto vert = testsupport::SobelReference(rect, RW, RH, true, false, true, 0);
  std::vector<uint8_t> edge(W * H, 0x77);
  int count = -1, fromScratch = -2;
  ASSERT_TRUE(
      motion.EdgeDetect8GrayPixels(W, H, const_cast<uint8_t*>(src.data()), edge.data(), X, Y, RW, RH, 0, count, 0));
  int want = 0;
  for (unsigned r = 0; r < H; ++r)
    for (unsigned c = 0; c < W; ++c) {
      int v = 0;  // the edge frame is zeroed first
      if (Inside(c, r, X, Y, RW, RH)) v = std::min(std::abs(vert[(r - Y) * RW + (c - X)]), 255);
      want += v >= 1 && Inside(c, r, X, Y, RW, RH);
      ASSERT_EQ(edge[r * W + c], v) << c << "," << r;
    }
  EXPECT_EQ(count, want);
  ASSERT_TRUE(
      motion.EdgeDetect8GrayPixels(W, H, const_cast<uint8_t*>(src.data()), nullptr, X, Y, RW, RH, 0, fromScratch, 0));
  EXPECT_EQ(fromScratch, want);
  EXPECT_FALSE(
      motion.EdgeDetect8GrayPixels(W, H, const_cast<uint8_t*>(src.data()), edge.data(), X, Y, RW, RH, 3, count, 0));
}

// A flat frame of value v filtered with a border of 1: the first pixel of
// each row sees the step from the border, 4v - 4 across the middle rows and
// 3v - 3 on the top and bottom rows; the short 16-bit count adds a row's
// width when that lies strictly between 1 and 255.
TEST(MotionCompound, EdgeDetect16CountsByFirstPixels) {
  CIppMotionDetector motion;
  const struct { int value, count; } cases[] = {{50, RW * RH}, {70, 2 * RW}, {100, 0}};
  for (const auto& c : cases) {
    std::vector<uint16_t> src(W * H, uint16_t(c.value)), edge(W * H, 0x77);
    int count = -1;
    ASSERT_TRUE(motion.EdgeDetect16GrayPixels(W, H, 12, src.data(), edge.data(), X, Y, RW, RH, 0, count, 0));
    EXPECT_EQ(count, c.count) << c.value;
    EXPECT_EQ(edge[Y * W + X], 3 * c.value - 3);
    EXPECT_EQ(edge[(Y + 1) * W + X], 4 * c.value - 4);
  }
}

// The scratch is zeroed before the convolution, so whatever the frames the
// count is 0 and the inner rectangle of edge is 0; the rest of edge stays.
TEST(MotionCompound, EdgeDetectWidthBackgroundSeesNoMask) {
  CIppMotionDetector motion;
  const auto image = testsupport::RandomBytes(W * H, 84), background = testsupport::RandomBytes(W * H, 85);
  std::vector<uint16_t> image16(image.begin(), image.end()), background16(background.begin(), background.end());
  for (int threshold : {0, 10, 300}) {
    std::vector<uint8_t> edge(W * H, 0x77);
    std::vector<uint16_t> edge16(W * H, 0x77);
    int count = -1, count16 = -1, scratchCount = -1;
    ASSERT_TRUE(motion.EdgeDetectWidthBackground8GrayPixels(W, H, const_cast<uint8_t*>(image.data()),
                                                            const_cast<uint8_t*>(background.data()), edge.data(), X, Y,
                                                            RW, RH, threshold, count, 0));
    ASSERT_TRUE(motion.EdgeDetectWidthBackground16GrayPixels(W, H, 8, image16.data(), background16.data(),
                                                             edge16.data(), X, Y, RW, RH, threshold, count16, 0));
    ASSERT_TRUE(motion.EdgeDetectWidthBackground8GrayPixels(W, H, const_cast<uint8_t*>(image.data()),
                                                            const_cast<uint8_t*>(background.data()), nullptr, X, Y, RW,
                                                            RH, threshold, scratchCount, 0));
    EXPECT_EQ(count, 0);
    EXPECT_EQ(count16, 0);
    EXPECT_EQ(scratchCount, 0);
    for (unsigned r = 0; r < H; ++r)
      for (unsigned c = 0; c < W; ++c) {
        const int want = Inside(c, r, X + 1, Y + 1, RW - 2, RH - 2) ? 0 : 0x77;
        ASSERT_EQ(edge[r * W + c], want) << c << "," << r;
        ASSERT_EQ(edge16[r * W + c], want) << c << "," << r;
      }
  }
}

}  // namespace
