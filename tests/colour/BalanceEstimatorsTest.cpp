// The automatic estimators on images of known statistics, the cases that
// change nothing and keep earlier tables, 16-bit images (only entries below
// 256 change) and four-byte pixels (the fourth byte untouched).
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "BayerTestSupport.h"

namespace {

using bayertest::Rgb;
using bayertest::SavedTables;

// An 8-pixel BGR24 image: half the pixels `a`, half `b` (red, green, blue).
std::vector<uint8_t> TwoTone(Rgb a, Rgb b) {
  std::vector<uint8_t> v;
  for (int i = 0; i < 8; ++i) {
    const Rgb& p = i % 2 ? b : a;
    v.insert(v.end(), {uint8_t(p[2]), uint8_t(p[1]), uint8_t(p[0])});
  }
  return v;
}

int Clamp255(double v) { return int(std::clamp(std::trunc(v), 0.0, 255.0)); }

// Object set up for 8x1 BGR24 with a manual table of red +7, then switched to
// the algorithm (which invalidates the tables).
void Prepare(CIppBayerCorrector& c, CORRECTIONAL_ALG alg) {
  c.SetColorBalance(7, 0, 0);
  ASSERT_TRUE(c.SetImageInfo4CB(8, 1, 24, 8, 200, true));
  c.SetCBAlgorithm(alg);
}

TEST(BalanceEstimators, KnownStatistics) {
  struct Case {
    const char* name;
    CORRECTIONAL_ALG alg;
    Rgb a, b;
  } cases[] = {
      {"gray offset", CB_ALG_GRAY_OFFSET, {90, 120, 100}, {91, 121, 150}},
      {"gray gain", CB_ALG_GRAY_GAIN, {40, 100, 200}, {60, 120, 220}},
      {"contrast about the mean", CB_ALG_CONTRAST_MEAN, {40, 100, 200}, {60, 130, 210}},
      {"contrast about mid grey", CB_ALG_CONTRAST_MID, {40, 100, 200}, {60, 130, 210}},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.name);
    double mean[3], sigma[3];
    for (int ch = 0; ch < 3; ++ch) {
      mean[ch] = (k.a[ch] + k.b[ch]) / 2.0;
      sigma[ch] = std::abs(k.a[ch] - k.b[ch]) / 2.0;
    }
    auto expected = [&](int i, int ch) -> int {
      switch (k.alg) {
        case CB_ALG_GRAY_OFFSET:
          return ch == 1 ? i : std::clamp(i + int(float(mean[1] - mean[ch])), 0, 255);
        case CB_ALG_GRAY_GAIN:
          return ch == 1 ? i : Clamp255(i * (mean[1] * 8) / (mean[ch] * 8));
        case CB_ALG_CONTRAST_MEAN:
          return Clamp255((i - mean[ch]) * (69.12 / sigma[ch]) + mean[ch]);
        default:
          return Clamp255((i - mean[ch]) * (69.12 / sigma[ch]) + 128);
      }
    };
    CIppBayerCorrector c;
    Prepare(c, k.alg);
    auto image = TwoTone(k.a, k.b);
    const auto before = image;
    ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
    const auto t = SavedTables(c);
    ASSERT_EQ(t.size(), 256u);
    for (int i = 0; i < 256; ++i)
      for (int ch = 0; ch < 3; ++ch) ASSERT_EQ(t[i][ch], expected(i, ch)) << "entry " << i << " channel " << ch;
    for (size_t p = 0; p < image.size(); ++p) EXPECT_EQ(image[p], expected(before[p], 2 - int(p % 3))) << "byte " << p;
  }
}

TEST(BalanceEstimators, NothingToDoKeepsEarlierTablesAndStillSettles) {
  struct Case {
    const char* name;
    CORRECTIONAL_ALG alg;
    Rgb a, b;
  } cases[] = {
      {"grey frame, offset", CB_ALG_GRAY_OFFSET, {80, 80, 80}, {90, 90, 90}},
      {"grey frame, gain", CB_ALG_GRAY_GAIN, {80, 80, 80}, {90, 90, 90}},
      {"black frame, gain", CB_ALG_GRAY_GAIN, {0, 0, 0}, {0, 0, 0}},
      {"flat blue, contrast about the mean", CB_ALG_CONTRAST_MEAN, {10, 20, 30}, {40, 50, 30}},
      {"flat frame, contrast about mid grey", CB_ALG_CONTRAST_MID, {10, 20, 30}, {10, 20, 30}},
      {"look algorithm", CB_ALG_PREDEFINED_FILE, {10, 20, 30}, {40, 50, 60}},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.name);
    CIppBayerCorrector c;
    Prepare(c, k.alg);
    auto image = TwoTone(k.a, k.b);
    ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
    auto t = SavedTables(c);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(t[i], Rgb({std::min(i + 7, 255), i, i})) << "entry " << i;
    EXPECT_EQ(image[2], std::min(k.a[0] + 7, 255));  // through the earlier table
    // The tables are settled: a coloured image is not measured again.
    image = TwoTone({10, 100, 200}, {20, 100, 180});
    ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
    EXPECT_EQ(image[2], 17);
  }
}

TEST(BalanceEstimators, OffsetTruncatesYetRewritesTheTables) {
  CIppBayerCorrector c;
  Prepare(c, CB_ALG_GRAY_OFFSET);
  // Green 101 on seven pixels and 100 on one, red and blue 100: differences of 0.875.
  std::vector<uint8_t> image;
  for (int i = 0; i < 8; ++i) image.insert(image.end(), {100, uint8_t(i == 0 ? 100 : 101), 100});
  ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
  const auto t = SavedTables(c);
  for (int i = 0; i < 256; ++i) ASSERT_EQ(t[i], Rgb({i, i, i})) << "entry " << i;
}

TEST(BalanceEstimators, SixteenBitImagesChangeOnlyTheFirst256Entries) {
  CIppBayerCorrector c;
  ASSERT_TRUE(c.SetImageInfo4CB(4, 1, 48, 12, 200, true));  // manual, no balance: identity over 4096
  c.SetCBAlgorithm(CB_ALG_GRAY_OFFSET);
  // red 100 and 3000, green 110 and 3010, blue 100 and 3000: offsets +10 for red and blue.
  std::vector<uint16_t> image = {100, 110, 100, 3000, 3010, 3000, 100, 110, 100, 3000, 3010, 3000};
  ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
  EXPECT_EQ(image, (std::vector<uint16_t>{110, 110, 110, 3000, 3010, 3000, 110, 110, 110, 3000, 3010, 3000}));
  const auto t = SavedTables(c);
  ASSERT_EQ(t.size(), 4096u);
  EXPECT_EQ(t[255], Rgb({255, 255, 255}));  // clamped to 255
  EXPECT_EQ(t[250], Rgb({255, 250, 255}));
  EXPECT_EQ(t[256], Rgb({256, 256, 256}));
}

TEST(BalanceEstimators, FourBytePixelsKeepTheirFourthByte) {
  CIppBayerCorrector c;
  ASSERT_TRUE(c.SetImageInfo4CB(2, 1, 32, 8, 500, true));
  c.SetCBAlgorithm(CB_ALG_GRAY_GAIN);
  std::vector<uint8_t> image = {50, 100, 25, 0xEE, 50, 100, 25, 0x11};  // gains: red 4, blue 2
  ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), true));
  EXPECT_EQ(image, (std::vector<uint8_t>{100, 100, 100, 0xEE, 100, 100, 100, 0x11}));
}

TEST(BalanceEstimators, RefusedInputs) {
  CIppBayerCorrector c;
  EXPECT_FALSE(c.BGRApplyColorBalance(nullptr, false));
  uint8_t pixel[3] = {1, 2, 3};
  EXPECT_FALSE(c.BGRApplyColorBalance(pixel, false));  // not set up
  ASSERT_TRUE(c.SetImageInfo4CB(1, 1, 24, 8, 200, true));
  c.SetCBAlgorithm(CB_ALG_LOOK_1D);
  EXPECT_FALSE(c.BGRApplyColorBalance(pixel, false));  // no look loaded
  EXPECT_EQ(pixel[0], 1);
}

}  // namespace
