// The merger's tables at their corners, each value worked out from the
// table's rule by hand or by the formula written out here.
#include <gtest/gtest.h>

#include <kestrelink/CIppImageMerger.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "merge/MergerColour.h"

namespace {

using kestrelink::merge::HueToRGB;

TEST(MergerTables, ConstructorBuildsIdentityGammaRampAndTangentSlope) {
  CIppImageMerger m;
  ASSERT_EQ(m.gammaTable.size(), 256u);
  for (int i = 0; i < 256; ++i) EXPECT_EQ(m.gammaTable[i], i);
  // Mode 0, slope 1.0 radian: trunc(tan(1) * i / 65535 * 255 + 0.5).
  for (int i : {0, 1000, 30000, 65534})
    EXPECT_EQ(m.slopeTable[i], std::min(255, int(std::tan(1.0f) * (float(i) / 65535.0f) * 255.0f + 0.5f))) << i;
  EXPECT_EQ(m.slopeTable.size(), 65535u);
}

TEST(MergerTables, GammaZeroAndNegativeActAsOneAndOtherValuesFollowTheCurve) {
  CIppImageMerger m;
  std::vector<uint8_t> a(9, 0), b(9, 0), out(9);
  for (double g : {0.0, -2.0, 1.0}) {
    m.MergeMono8ToMono8(3, 3, a.data(), 0.5f, 3, 3, b.data(), out.data(), 0, 0, 0, 0, 2.2, 0.0, 0, 0, false);
    m.MergeMono8ToMono8(3, 3, a.data(), 0.5f, 3, 3, b.data(), out.data(), 0, 0, 0, 0, g, 0.0, 0, 0, false);
    for (int i = 0; i < 256; ++i) ASSERT_EQ(m.gammaTable[i], i) << g;
  }
  // Gamma 2: inverse 0.5; base below 0.081 is base * 0.5, else
  // base^0.5 * 1.099 - 0.099; entry trunc(256 v + 0.5), within 0..255.
  m.MergeMono8ToMono8(3, 3, a.data(), 0.5f, 3, 3, b.data(), out.data(), 0, 0, 0, 0, 2.0, 0.0, 0, 0, false);
  for (int i = 0; i < 256; ++i) {
    const double base = i / 256.0;
    const double v = base < 0.081 ? base * 0.5 : std::sqrt(base) * 1.099 - 0.099;
    EXPECT_EQ(m.gammaTable[i], std::clamp(int(std::trunc(256 * v + 0.5)), 0, 255)) << i;
  }
  // Each side of the foot: 20 / 256 * 0.5 * 256 = 10; sqrt(21 / 256) * 1.099
  // - 0.099 = 0.2158, * 256 = 55.2; the top: 0.9979 * 256 = 255.5, truncated.
  EXPECT_EQ(m.gammaTable[20], 10);
  EXPECT_EQ(m.gammaTable[21], 55);
  EXPECT_EQ(m.gammaTable[255], 255);
}

TEST(MergerTables, SlopeModesOffsetsAndUnknownMode) {
  CIppImageMerger m;
  m.RebuildSlopeLUT(0, 2.0f, 1);  // t^2 * 255, 0 at i 0
  EXPECT_EQ(m.slopeTable[0], 0);
  EXPECT_EQ(m.slopeTable[32767], 64);  // 0.49999^2 * 255 = 63.75 -> 64.25 -> 64
  EXPECT_EQ(m.slopeTable[65534], 255);
  m.RebuildSlopeLUT(-10, 1.0f, 2);  // log(t + 1) * 255 - 10
  EXPECT_EQ(m.slopeTable[0], 0);    // 0.5 -> 0, -10 clamps to 0
  EXPECT_EQ(m.slopeTable[65534], 167);  // log(2) * 255 = 176.75 -> 177 - 10
  const std::vector<uint8_t> before = m.slopeTable;
  m.RebuildSlopeLUT(5, 3.0f, 3);
  EXPECT_EQ(m.slopeTable, before);
  m.RebuildSlopeLUT(300, 0.0f, 0);  // 0 + 300 clamps to 255
  EXPECT_EQ(m.slopeTable[123], 255);
}

TEST(MergerTables, PseudoColourRampAtItsCorners) {
  CIppImageMerger m;
  const struct {
    int v, red, green, blue;
  } rows[] = {
      {0, 0, 0, 0},       {1, 255, 1, 0},     {64, 255, 127, 0},  {65, 251, 129, 0},  {128, 0, 255, 0},
      {129, 0, 253, 3},   {196, 0, 119, 255}, {197, 0, 117, 255}, {254, 0, 3, 255},   {255, 255, 255, 255},
  };
  for (auto r : rows) {
    EXPECT_EQ(m.pseudoRed[r.v], r.red) << r.v;
    EXPECT_EQ(m.pseudoGreen[r.v], r.green) << r.v;
    EXPECT_EQ(m.pseudoBlue[r.v], r.blue) << r.v;
  }
  m.RebuildPseudoColorLUT(1);
  for (auto r : rows) {
    EXPECT_EQ(m.pseudoRed[r.v], r.blue) << r.v;
    EXPECT_EQ(m.pseudoBlue[r.v], r.red) << r.v;
  }
}

TEST(MergerColour, HueToRgbBranchesAndWraps) {
  const struct {
    uint16_t hue, want;
  } rows[] = {
      {0, 10},        // n1 + (190 * 0 + 21) / 42
      {20, 100},      // 10 + (3800 + 21) / 42
      {41, 195},      // 10 + (7790 + 21) / 42
      {42, 200},      {126, 200},
      {127, 205},     // 10 + (190 * 43 + 21) / 42: past n2, as the formula gives
      {150, 100},     // 10 + (190 * 20 + 21) / 42
      {170, 10},      {255, 10},
      {300, 200},     // acts as 45
      {uint16_t(-5), 10},  // a negative hue wraps and gives n1
  };
  for (auto r : rows) EXPECT_EQ(HueToRGB(10, 200, r.hue), r.want) << r.hue;
  EXPECT_EQ(HueToRGB(10, 200, 300), HueToRGB(10, 200, 45));
}

TEST(MergerColour, HlsAndRgbAtPrimariesAndGrey) {
  uint16_t r, g, b;
  kestrelink::merge::HLStoRGB(0, 128, 255, r, g, b);
  EXPECT_EQ(r, 255); EXPECT_EQ(g, 1); EXPECT_EQ(b, 1);  // m2 = 383 - 128, m1 = 1
  kestrelink::merge::HLStoRGB(85, 64, 255, r, g, b);    // m2 = (64 * 510 + 127) / 255 = 128, m1 = 0
  EXPECT_EQ(r, 0); EXPECT_EQ(g, 128); EXPECT_EQ(b, 0);
  kestrelink::merge::HLStoRGB(33, 77, 0, r, g, b);
  EXPECT_EQ(r, 77); EXPECT_EQ(g, 77); EXPECT_EQ(b, 77);

  uint16_t hue, sat, light;
  kestrelink::merge::RGBtoHLS(255, 0, 0, hue, sat, light);
  EXPECT_EQ(hue, 0); EXPECT_EQ(sat, 255); EXPECT_EQ(light, 128);
  kestrelink::merge::RGBtoHLS(0, 0, 255, hue, sat, light);
  EXPECT_EQ(hue, 170);
  kestrelink::merge::RGBtoHLS(0, 100, 0, hue, sat, light);  // l = 101 * 255 / 510 = 50; s = (25500 + 50) / 100
  EXPECT_EQ(hue, 85); EXPECT_EQ(sat, 255); EXPECT_EQ(light, 50);
  kestrelink::merge::RGBtoHLS(255, 0, 10, hue, sat, light);  // dB - dG = 40 - 42 = -2 -> 253
  EXPECT_EQ(hue, 253);
  kestrelink::merge::RGBtoHLS(0x190, 0x190, 0x190, hue, sat, light);  // low 8 bits: grey 0x90
  EXPECT_EQ(hue, 170); EXPECT_EQ(sat, 0); EXPECT_EQ(light, (0x90 * 2 + 1) * 255 / 510);
}

}  // namespace
