// Set-up of the Bayer corrector: the formats SetImageInfo4CB and
// CheckFormat4CB take, each branch of CheckFormat4CB seen through the tables
// it builds or keeps, and what ReleaseCBResources resets and keeps.
#include <gtest/gtest.h>

#include <algorithm>

#include "BayerTestSupport.h"

namespace {

using bayertest::Rgb;
using bayertest::SavedTables;

Rgb ManualEntry(int i, Rgb offsets, int depth) {
  const int top = (1 << depth) - 1;
  return {std::clamp(i + offsets[0], 0, top), std::clamp(i + offsets[1], 0, top), std::clamp(i + offsets[2], 0, top)};
}

// The whole saved table equals the manual table of those offsets.
void ExpectManual(CIppBayerCorrector& c, Rgb offsets, int depth) {
  const auto t = SavedTables(c);
  ASSERT_EQ(t.size(), size_t(1) << depth);
  for (int i = 0; i < int(t.size()); ++i) ASSERT_EQ(t[i], ManualEntry(i, offsets, depth)) << "entry " << i;
}

TEST(BayerState, FormatsAcceptedAndRefused) {
  struct Case {
    uint32_t bpp, depth, code;
    bool bgr, accepted;
  } cases[] = {
      {8, 8, 100, false, true},   {16, 12, 101, false, true},  {12, 12, 100, false, true},
      {16, 12, 200, false, false}, {8, 8, 100, true, false},    {24, 8, 200, true, true},
      {24, 12, 200, true, false},  {48, 12, 200, true, true},   {48, 16, 200, true, true},
      {32, 8, 500, true, true},    {24, 8, 500, true, false},   {24, 8, 400, true, false},
      {32, 8, 100000, true, false}, {32, 8, 200, true, false},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE("bpp " + std::to_string(k.bpp) + " depth " + std::to_string(k.depth) + " code " +
                 std::to_string(k.code) + (k.bgr ? " bgr" : " raw"));
    CIppBayerCorrector c;
    EXPECT_EQ(c.SetImageInfo4CB(64, 8, k.bpp, k.depth, k.code, k.bgr), k.accepted);
    EXPECT_EQ(c.IsInitCBImageInfo(), k.accepted);
    CIppBayerCorrector d;
    ASSERT_TRUE(d.SetImageInfo4CB(64, 8, k.bgr ? 24 : 8, 8, k.bgr ? 200 : 100, k.bgr));
    EXPECT_EQ(d.CheckFormat4CB(64, 8, k.bpp, k.depth, k.code, k.bgr), k.accepted);
  }
}

TEST(BayerState, ImageInfoOnceUntilReleased) {
  CIppBayerCorrector c;
  EXPECT_FALSE(c.CheckFormat4CB(8, 8, 8, 8, 100, false));  // not set up yet
  ASSERT_TRUE(c.SetImageInfo4CB(8, 8, 8, 8, 100, false));
  EXPECT_FALSE(c.SetImageInfo4CB(8, 8, 8, 8, 100, false));
  c.ReleaseCBResources();
  EXPECT_FALSE(c.IsInitCBImageInfo());
  EXPECT_TRUE(c.SetImageInfo4CB(16, 8, 16, 12, 100, false));
}

TEST(BayerState, ConstructionAndReleaseValues) {
  CIppBayerCorrector c;
  int r, g, b;
  EXPECT_EQ(c.GetColorCorrectionMode(), CORRECTION_MANUAL);
  EXPECT_EQ(c.GetBayerPattern(), BAYER_GBRG);
  EXPECT_EQ(c.GetCBAlgorithm(), CB_ALG_GRAY_OFFSET);
  c.SetBayerPattern(BAYER_RGGB);
  c.SetColorCorrectionMode(CORRECTION_NONE);
  c.SetCBAlgorithm(CB_ALG_CONTRAST_MID);
  c.SetColorBalance(5, 6, 7);
  c.GetColorBalance(r, g, b);
  EXPECT_EQ(Rgb({r, g, b}), Rgb({5, 6, 7}));
  c.SetColorCorrectionMode(CORRECTION_MANUAL);
  ASSERT_TRUE(c.SetImageInfo4CB(8, 8, 24, 8, 200, true));
  ExpectManual(c, {5, 6, 7}, 8);
  c.ReleaseCBResources();
  c.GetColorBalance(r, g, b);
  EXPECT_EQ(Rgb({r, g, b}), Rgb({0, 0, 0}));
  EXPECT_EQ(c.GetColorCorrectionMode(), CORRECTION_MANUAL);
  EXPECT_EQ(c.GetBayerPattern(), BAYER_GBRG);
  EXPECT_EQ(c.GetCBAlgorithm(), CB_ALG_GRAY_OFFSET);
  ExpectManual(c, {5, 6, 7}, 8);  // the tables and the depth stay
}

TEST(BayerState, ForceRecalcOnlyInAutomaticMode) {
  CIppBayerCorrector c;
  EXPECT_FALSE(c.ForceRecalcAutoLUT());
  c.SetColorCorrectionMode(CORRECTION_AUTO);
  EXPECT_TRUE(c.ForceRecalcAutoLUT());
}

// A BGR24 image of one colour: after the estimator of gray offset runs on it,
// red and blue tables are moved by green minus each.
std::vector<uint8_t> Bgr24(int pixels, Rgb rgb) {
  std::vector<uint8_t> v;
  for (int i = 0; i < pixels; ++i) v.insert(v.end(), {uint8_t(rgb[2]), uint8_t(rgb[1]), uint8_t(rgb[0])});
  return v;
}

TEST(BayerState, CheckFormatBranches) {
  struct Case {
    const char* name;
    uint32_t w, bpp, depth, code;
    bool bgr;
    Rgb tablesAfterCheck;  // offsets of the manual table the check leaves
    int depthAfter;
    bool estimatesNext;  // the next correction measures the image
  } cases[] = {
      // Same arguments, tables invalid: rebuilt from the new balance.
      {"unchanged", 8, 24, 8, 200, true, {9, 0, -4}, 8, false},
      // Size or format changes only: stored, nothing rebuilt, still invalid.
      {"new width", 16, 24, 8, 200, true, {1, 2, 3}, 8, true},
      {"new layout", 8, 32, 8, 500, true, {1, 2, 3}, 8, true},
      // Depth changes: rebuilt for the new depth, validity as it was.
      {"new depth", 8, 48, 12, 200, true, {9, 0, -4}, 12, true},
      // Raw frame on a BGR object, same depth: stored.
      {"raw on bgr", 8, 8, 8, 100, false, {1, 2, 3}, 8, true},
      // Raw frame, other depth: as a depth change.
      {"raw on bgr, new depth", 8, 16, 12, 100, false, {9, 0, -4}, 12, true},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.name);
    CIppBayerCorrector c;
    c.SetColorBalance(1, 2, 3);
    ASSERT_TRUE(c.SetImageInfo4CB(8, 4, 24, 8, 200, true));
    c.SetColorBalance(9, 0, -4);  // tables now invalid
    ASSERT_TRUE(c.CheckFormat4CB(k.w, 4, k.bpp, k.depth, k.code, k.bgr));
    ExpectManual(c, k.tablesAfterCheck, k.depthAfter);
    if (k.code != 200 || k.bpp != 24) continue;
    // An invalid table makes the gray-offset estimator measure the next image
    // (red 100, green 120, blue 130): red +20, blue -10.
    auto image = Bgr24(int(k.w) * 4, {100, 120, 130});
    ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
    const auto t = SavedTables(c);
    EXPECT_EQ(t[100][0] == 120 && t[130][2] == 120, k.estimatesNext);
  }
}

TEST(BayerState, CheckFormatKeepsValidTablesAndRebuildsInvalidOnes) {
  CIppBayerCorrector c;
  c.SetColorBalance(3, 0, 0);
  ASSERT_TRUE(c.SetImageInfo4CB(8, 4, 24, 8, 200, true));
  auto image = Bgr24(32, {10, 20, 30});
  ASSERT_TRUE(c.CheckFormat4CB(8, 4, 24, 8, 200, true));
  ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
  EXPECT_EQ(image[2], 13);  // red through the manual table
  // Without CheckFormat4CB a new balance leaves the tables invalid, and the
  // next image runs the algorithm's estimator (gray offset) instead.
  c.SetColorBalance(50, 0, 0);
  image = Bgr24(32, {10, 20, 30});
  ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
  EXPECT_EQ(Rgb({image[2], image[1], image[0]}), Rgb({20, 20, 20}));
  // With it, the manual table is rebuilt.
  c.SetColorBalance(50, 0, 0);
  ASSERT_TRUE(c.CheckFormat4CB(8, 4, 24, 8, 200, true));
  image = Bgr24(32, {10, 20, 30});
  ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
  EXPECT_EQ(Rgb({image[2], image[1], image[0]}), Rgb({60, 20, 30}));
}

TEST(BayerState, AutomaticModeDepthChangeInvalidatesTheTables) {
  CIppBayerCorrector c;
  c.SetColorCorrectionMode(CORRECTION_AUTO);
  ASSERT_TRUE(c.SetImageInfo4CB(8, 4, 24, 8, 200, true));
  auto image = Bgr24(32, {100, 120, 130});
  ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));  // estimates: red +20, blue -10
  EXPECT_EQ(Rgb({image[2], image[1], image[0]}), Rgb({120, 120, 120}));
  image = Bgr24(32, {60, 120, 130});
  ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));  // reuses the tables
  EXPECT_EQ(image[2], 80);
  ASSERT_TRUE(c.CheckFormat4CB(8, 4, 48, 16, 200, true));
  ASSERT_TRUE(c.CheckFormat4CB(8, 4, 24, 8, 200, true));  // depth back: invalid again
  image = Bgr24(32, {60, 120, 130});
  ASSERT_TRUE(c.BGRApplyColorBalance(image.data(), false));
  EXPECT_EQ(Rgb({image[2], image[1], image[0]}), Rgb({120, 120, 120}));
}

}  // namespace
