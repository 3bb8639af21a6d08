// The colour-map engine seen through the converter: settings, table rules
// and LUT files, with expectations worked out from the rules by hand.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "support/TestSupport.h"

namespace {

// One BGRx pixel per sample of a Mono16 frame through the colour map.
struct Bgrx {
  uint8_t b, g, r, x;
  bool operator==(const Bgrx&) const = default;
};
std::ostream& operator<<(std::ostream& os, const Bgrx& p) {
  return os << "(" << int(p.b) << "," << int(p.g) << "," << int(p.r) << "," << int(p.x) << ")";
}

std::vector<Bgrx> Map16(CIppImageConverter& conv, uint32_t d, std::vector<uint16_t> samples) {
  std::vector<Bgrx> out(samples.size());
  EXPECT_TRUE(conv.Mono16ToBGRx(uint32_t(samples.size()), 1, d, samples.data(), out.data(), false));
  return out;
}

Bgrx Map8(CIppImageConverter& conv, uint8_t sample) {
  Bgrx out{};
  EXPECT_TRUE(conv.Mono8ToBGRx(1, 1, &sample, &out, false));
  return out;
}

uint8_t Mono8(CIppImageConverter& conv, uint32_t d, uint16_t sample) {
  uint8_t out = 0;
  EXPECT_TRUE(conv.Mono16ToMono8(1, 1, d, &sample, &out, false));
  return out;
}

uint16_t Mono16(CIppImageConverter& conv, uint32_t d, uint16_t sample) {
  uint16_t out = 0;
  EXPECT_TRUE(conv.Mono16ToMono16(1, 1, d, &sample, &out, false));
  return out;
}

Bgrx Grey(uint8_t v) { return {v, v, v, 0}; }

TEST(ColorMapSettings, ANewObjectHasTheMapOff) {
  CIppImageConverter conv;
  EXPECT_FALSE(conv.EnableImageColorMap());
  EXPECT_EQ(conv.GetImageClipLevel(), -1);
  EXPECT_EQ(conv.GetMonoPseudoColorMode(), -1);
  EXPECT_FALSE(conv.GetASCColorMap());
}

TEST(ColorMapSettings, SwitchingOffResetsButTheMapStaysOn) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetASCColorMap(true);
  const double gain[3] = {2, 2, 2}, offset[3] = {0.1, 0.1, 0.1}, gamma[3] = {0.5, 0.5, 0.5};
  ASSERT_TRUE(conv.SetASCColorMapParam(gain, offset, gamma));
  conv.SetImageClipLevel(2);
  conv.SetMonoPseudoColorMode(3);
  conv.SetImageColorMap(false);
  EXPECT_TRUE(conv.EnableImageColorMap());
  EXPECT_FALSE(conv.GetASCColorMap());
  EXPECT_EQ(conv.GetImageClipLevel(), 2);       // kept
  EXPECT_EQ(conv.GetMonoPseudoColorMode(), 3);  // kept
  conv.SetASCColorMap(true);
  double g[3], o[3], y[3];
  ASSERT_TRUE(conv.GetASCColorMapParam(g, o, y));
  for (int c = 0; c < 3; ++c) {
    EXPECT_EQ(g[c], 1.0);
    EXPECT_EQ(o[c], 0.0);
    EXPECT_EQ(y[c], 1.0);
  }
}

TEST(ColorMapSettings, AscParametersNeedAscOnAndKeepAGammaThatIsNotPositive) {
  CIppImageConverter conv;
  const double gain[3] = {2, 3, 4}, offset[3] = {0.5, 0.25, 0}, gamma[3] = {0.0, -1.0, 2.0};
  double g[3], o[3], y[3];
  EXPECT_FALSE(conv.SetASCColorMapParam(gain, offset, gamma));
  EXPECT_FALSE(conv.GetASCColorMapParam(g, o, y));
  conv.SetASCColorMap(true);
  ASSERT_TRUE(conv.SetASCColorMapParam(gain, offset, gamma));
  ASSERT_TRUE(conv.GetASCColorMapParam(g, o, y));
  EXPECT_EQ(g[1], 3.0);
  EXPECT_EQ(o[0], 0.5);
  EXPECT_EQ(y[0], 1.0);  // 0 refused
  EXPECT_EQ(y[1], 1.0);  // -1 refused
  EXPECT_EQ(y[2], 2.0);
}

TEST(ColorMapTables, IdentityTwelveToEightIsAShiftByFour) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  const auto px = Map16(conv, 12, {0, 15, 16, 17, 100, 4095});
  const std::vector<Bgrx> want = {Grey(0), Grey(0), Grey(1), Grey(1), Grey(6), Grey(255)};
  EXPECT_EQ(px, want);
  EXPECT_EQ(Mono8(conv, 12, 4095), 255);
  EXPECT_EQ(Mono16(conv, 12, 1234), 1234);  // mono, 12 to 12: the identity
}

TEST(ColorMapTables, ASampleAboveTheDepthWrapsInsideTheTable) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  EXPECT_EQ(Map16(conv, 12, {0x1000 + 32})[0], Grey(2));
}

TEST(ColorMapTables, DepthsATableCannotHaveAreRefused) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  uint16_t s = 1;
  uint32_t px = 0;
  for (uint32_t d : {0u, 17u, 32u, 0x80000000u}) EXPECT_FALSE(conv.Mono16ToBGRx(1, 1, d, &s, &px, false)) << d;
}

TEST(ColorMapTables, FileEntriesAreInOutputUnitsAndTheRestIsScaled) {
  testsupport::TempFile lut("lut-5-100.txt", "5,100,\n");
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  ASSERT_TRUE(conv.LoadLUTFrom(lut.path()));
  const auto px = Map16(conv, 12, {5, 6, 32});
  EXPECT_EQ(px[0], (Bgrx{100, 0, 0, 0}));  // table 0 from the file, unshifted
  EXPECT_EQ(px[1], Grey(0));               // 6 >> 4
  EXPECT_EQ(px[2], Grey(2));
}

TEST(ColorMapTables, FileValuesAtOrAboveTheTableSizeAreIgnored) {
  testsupport::TempFile lut("lut-big.txt", "40,5000,4095,\n");
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  ASSERT_TRUE(conv.LoadLUTFrom(lut.path()));
  // 5000 is refused for a 4096-entry table; 4095 is taken, its low byte kept.
  EXPECT_EQ(Map16(conv, 12, {40})[0], (Bgrx{40 >> 4, 0xFF, 40 >> 4, 0}));
}

TEST(ColorMapTables, OneFileServesEveryDepth) {
  testsupport::TempFile lut("lut-depths.txt", "[3-5],7,8,9,\n200,3000,\n");
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  ASSERT_TRUE(conv.LoadLUTFrom(lut.path()));
  EXPECT_EQ(Map8(conv, 3), (Bgrx{7, 8, 9, 0}));
  EXPECT_EQ(Map8(conv, 4), (Bgrx{7, 8, 9, 0}));
  EXPECT_EQ(Map8(conv, 5), Grey(5));
  EXPECT_EQ(Map8(conv, 200), Grey(200));           // 3000 is past an 8-bit table
  EXPECT_EQ(Map16(conv, 12, {200})[0], (Bgrx{3000 & 255, 200 >> 4, 200 >> 4, 0}));
}

TEST(ColorMapTables, AMissingFileFailsTheLoadAndStillAppliesLater) {
  const std::string path = ::testing::TempDir() + "lut-appears-later-" + std::to_string(getpid()) + ".txt";
  std::remove(path.c_str());
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  EXPECT_FALSE(conv.LoadLUTFrom(path.c_str()));
  EXPECT_EQ(Map8(conv, 9), Grey(9));  // no file: the tables stand without it
  {
    FILE* f = std::fopen(path.c_str(), "w");
    std::fputs("9,1,2,3\n", f);
    std::fclose(f);
  }
  conv.SetImageClipLevel(-1);  // any setter makes the next conversion rebuild
  EXPECT_EQ(Map8(conv, 9), (Bgrx{1, 2, 3, 0}));
  std::remove(path.c_str());
}

TEST(ColorMapTables, ClipLevelActsAsDigitalGain) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetImageClipLevel(1);
  // in 12, level 1: shift 12 - 1 - 8 = 3, cap 4080, then >> 4: v >> 1 saturated.
  EXPECT_EQ(Map16(conv, 12, {100, 1000, 511, 510}), (std::vector<Bgrx>{Grey(50), Grey(255), Grey(255), Grey(255)}));
  EXPECT_EQ(Mono8(conv, 12, 100), 50);
  EXPECT_EQ(Mono8(conv, 12, 508), 254);
  // Mono 12 to 12: min(v << 3, 4080), no narrowing.
  EXPECT_EQ(Mono16(conv, 12, 100), 800);
  EXPECT_EQ(Mono16(conv, 12, 1000), 4080);
}

TEST(ColorMapTables, ClipLevelCapsByDepth) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetImageClipLevel(2);
  // in 10, level 2: shift 0 -> cap 65535, entry v >> 2.
  EXPECT_EQ(Map16(conv, 10, {1020})[0], Grey(255));
  EXPECT_EQ(Map16(conv, 10, {400})[0], Grey(100));
  // in 14, level 2: shift 4, cap 16320, >> 6: v >> 2 saturated at 255.
  EXPECT_EQ(Map16(conv, 14, {400, 4000})[0], Grey(100));
  EXPECT_EQ(Map16(conv, 14, {4000})[0], Grey(255));
  conv.SetImageClipLevel(1);
  // in 16, level 1: shift 7, cap 65280, >> 8: v >> 1 saturated at 255.
  EXPECT_EQ(Map16(conv, 16, {300})[0], Grey(150));
  EXPECT_EQ(Map16(conv, 16, {60000})[0], Grey(255));
  // in 13 is no listed depth: cap 65280, shift 13-1-8 = 4, >> 5 then the byte
  // wraps: 8000 << 4 = 128000 -> 65280 >> 5 = 2040, low byte 0xF8.
  EXPECT_EQ(Map16(conv, 13, {8000})[0], Grey(0xF8));
}

TEST(ColorMapTables, ClipLevelZeroOnlyLimitsAndLeavesSmallEntriesUnshifted) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetImageClipLevel(0);
  EXPECT_EQ(Map16(conv, 12, {100, 254, 255, 256, 4095}),
            (std::vector<Bgrx>{Grey(100), Grey(254), Grey(255), Grey(255), Grey(255)}));
}

TEST(ColorMapTables, AscCurveReplacesClip) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetImageClipLevel(3);
  conv.SetASCColorMap(true);
  const double gain[3] = {2.0, 1.0, 1.0}, offset[3] = {0.0, 0.0, -0.5}, gamma[3] = {1.0, 0.5, 1.0};
  ASSERT_TRUE(conv.SetASCColorMapParam(gain, offset, gamma));
  for (int v : {0, 1, 64, 100, 127, 128, 200, 255}) {
    const double x = v / 255.0;
    const auto b = uint8_t(std::min(255.0, std::trunc(255.0 * std::min(1.0, 2 * x))));
    const auto g = uint8_t(std::trunc(255.0 * std::pow(x, 0.5)));
    const auto r = uint8_t(std::trunc(255.0 * std::max(0.0, x - 0.5)));
    EXPECT_EQ(Map8(conv, uint8_t(v)), (Bgrx{b, g, r, 0})) << "v=" << v;
  }
  // Mono uses the parameters of table 0.
  EXPECT_EQ(Mono8(conv, 12, 1000), uint8_t(std::trunc(255.0 * (2 * 1000 / 4095.0))));
}

TEST(ColorMapPseudo, HeatForEightBits) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetMonoPseudoColorMode(2);
  // T = 255 / 3 = 85; hot R = 3i - 2, then G = 3i - 257, then B = 3i - 512.
  EXPECT_EQ(Map8(conv, 0), (Bgrx{0, 0, 0, 0}));
  EXPECT_EQ(Map8(conv, 1), (Bgrx{0, 0, 1, 0}));
  EXPECT_EQ(Map8(conv, 85), (Bgrx{0, 0, 253, 0}));
  EXPECT_EQ(Map8(conv, 86), (Bgrx{0, 1, 255, 0}));
  EXPECT_EQ(Map8(conv, 170), (Bgrx{0, 253, 255, 0}));
  EXPECT_EQ(Map8(conv, 171), (Bgrx{1, 255, 255, 0}));
  EXPECT_EQ(Map8(conv, 255), (Bgrx{253, 255, 255, 0}));
  conv.SetMonoPseudoColorMode(3);  // B and R exchanged
  EXPECT_EQ(Map8(conv, 86), (Bgrx{255, 1, 0, 0}));
  EXPECT_EQ(Map8(conv, 171), (Bgrx{255, 255, 1, 0}));
}

TEST(ColorMapPseudo, RainbowForEightBits) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetMonoPseudoColorMode(0);  // red end first; q = 64, M = 255
  EXPECT_EQ(Map8(conv, 0), (Bgrx{0, 0, 0, 0}));
  EXPECT_EQ(Map8(conv, 1), (Bgrx{0, 1, 255, 0}));      // G = 255 * 1 / 128
  EXPECT_EQ(Map8(conv, 64), (Bgrx{0, 127, 255, 0}));   // G = 255 * 64 / 128
  EXPECT_EQ(Map8(conv, 65), (Bgrx{0, 129, 251, 0}));   // R = 63 * 255 / 64
  EXPECT_EQ(Map8(conv, 128), (Bgrx{0, 255, 0, 0}));
  EXPECT_EQ(Map8(conv, 129), (Bgrx{3, 251, 0, 0}));    // G mirrors G[126]; B = 255 / 64
  EXPECT_EQ(Map8(conv, 192), (Bgrx{255, 125, 0, 0}));  // G[63]
  EXPECT_EQ(Map8(conv, 193), (Bgrx{255, 123, 0, 0}));  // G[62]
  EXPECT_EQ(Map8(conv, 255), (Bgrx{255, 255, 255, 0}));
  conv.SetMonoPseudoColorMode(1);  // blue end first
  EXPECT_EQ(Map8(conv, 1), (Bgrx{255, 1, 0, 0}));
  EXPECT_EQ(Map8(conv, 129), (Bgrx{0, 251, 3, 0}));
  conv.SetMonoPseudoColorMode(7);  // anything above 4 is the mode-0 rainbow
  EXPECT_EQ(Map8(conv, 65), (Bgrx{0, 129, 251, 0}));
}

TEST(ColorMapPseudo, NegativeAndTheShiftToOutputUnits) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetMonoPseudoColorMode(4);
  EXPECT_EQ(Map8(conv, 0), Grey(0));
  EXPECT_EQ(Map8(conv, 1), Grey(255));
  EXPECT_EQ(Map8(conv, 255), Grey(1));
  // 12 bits: N - i in input units, shifted by 4 to 8 bits.
  EXPECT_EQ(Map16(conv, 12, {1, 16, 4095}), (std::vector<Bgrx>{Grey(255), Grey(255), Grey(0)}));
  EXPECT_EQ(Map16(conv, 12, {17})[0], Grey((4096 - 17) >> 4));
}

TEST(ColorMapPseudo, NeverReachesTheMonoTable) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetMonoPseudoColorMode(4);
  EXPECT_EQ(Mono8(conv, 12, 1600), 100);
  uint8_t s = 9, out = 0;
  ASSERT_TRUE(conv.Mono8ToMono8(1, 1, &s, &out, false));
  EXPECT_EQ(out, 9);
}

TEST(ColorMapExport, ColourFileReadsBackAsTheSameTables) {
  CIppImageConverter a;
  a.SetImageColorMap(true);
  a.SetMonoPseudoColorMode(1);
  Map16(a, 10, {1});
  testsupport::TempFile file("export-colour.txt");
  ASSERT_TRUE(a.ExportCurrentColorLUT(file.path()));
  const std::string text = testsupport::ReadFile(file.path());
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1024);
  EXPECT_EQ(text.substr(0, 8), "0,0,0,0,");

  CIppImageConverter b;
  b.SetImageColorMap(true);
  ASSERT_TRUE(b.LoadLUTFrom(file.path()));
  std::vector<uint16_t> all(1024);
  for (uint16_t i = 0; i < 1024; ++i) all[i] = i;
  EXPECT_EQ(Map16(a, 10, all), Map16(b, 10, all));
}

TEST(ColorMapExport, MonoFileHasOneLinePerEntryAndNoData) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  Mono8(conv, 10, 3);
  testsupport::TempFile file("export-mono.txt");
  ASSERT_TRUE(conv.ExportCurrentMonoLUT(file.path()));
  const std::string text = testsupport::ReadFile(file.path());
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1024);
  EXPECT_EQ(text.substr(0, 4), "0,0,");
  EXPECT_NE(text.find("\n1023,"), std::string::npos);
}

TEST(ColorMapExport, RefusedWhileDirtyBeforeAnyTableOrIntoAMissingFolder) {
  CIppImageConverter conv;
  testsupport::TempFile file("export-refused.txt");
  EXPECT_FALSE(conv.ExportCurrentColorLUT(file.path()));  // no table built yet
  conv.SetImageColorMap(true);
  Map8(conv, 1);
  conv.SetImageClipLevel(4);
  EXPECT_FALSE(conv.ExportCurrentColorLUT(file.path()));  // dirty
  EXPECT_FALSE(conv.ExportCurrentMonoLUT(file.path()));
  Map8(conv, 1);
  Mono8(conv, 8, 1);
  EXPECT_FALSE(conv.ExportCurrentColorLUT("/nonexistent/dir/lut.txt"));
  EXPECT_FALSE(conv.ExportCurrentMonoLUT("/nonexistent/dir/lut.txt"));
  EXPECT_TRUE(conv.ExportCurrentColorLUT(file.path()));
}

}  // namespace
