// Look files: the size and data grammar, refused sizes, the cache by path
// and the reload by file time.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include <kestrelink/CIppBayerCorrector.h>

#include "LookTestSupport.h"
#include "colour/LookFile.h"

namespace {

using namespace looktest;
using kestrelink::colour::ParseLookSize;
using kestrelink::colour::ReadLookFloats;

TEST(LookFile, SizeTextTakesTheDecimalBetweenTheOuterQuotes) {
  struct Case {
    const char* text;
    int32_t size;
  } cases[] = {
      {"\"32\"", 32},       {"32", 0},           {"\"32", 0},          {"\"\"", 0},
      {"", 0},              {" \" 16\" ", 16},   {"\"8\" x \"", 8},    {"x\"64\"y", 64},
      {"\"-4\"", 0},        {"\"12abc\"", 12},   {"\"00000000000000000000000000000016\"", 1},
  };
  for (const Case& c : cases) EXPECT_EQ(ParseLookSize(c.text), c.size) << c.text;
}

TEST(LookFile, DataTextIsLittleEndianHexWithSkippedCharactersAnywhere) {
  struct Case {
    const char* text;
    std::vector<float> values;
  } cases[] = {
      {"0000803F", {1.0f}},
      {"0000803f0000003F", {1.0f, 0.5f}},
      {"0\n0 0\t0\"8\r0\v3F", {1.0f}},  // skipped even between the digits of a byte
      {"0000803F000000", {1.0f}},       // a partial value is dropped
      {"000080BF00000000", {-1.0f, 0.0f}},
      {"", {}},
  };
  for (const Case& c : cases) {
    float out[4] = {};
    ASSERT_EQ(ReadLookFloats(c.text, out, 4), c.values.size()) << c.text;
    for (size_t i = 0; i < c.values.size(); ++i) EXPECT_EQ(out[i], c.values[i]) << c.text;
  }
  // Reading stops at the capacity, whatever the text holds beyond it.
  float two[3] = {7, 7, 7};
  EXPECT_EQ(ReadLookFloats("0000803F0000803F0000803F", two, 2), 2u);
  EXPECT_EQ(two[2], 7.0f);
}

TEST(LookFile, RefusedFilesLeaveTheFlagsAndDropTheLook) {
  const std::string curve = Lut1DElement(4, [](int i, int) { return float(i) / 4; });
  const struct Case {
    const char* name;
    std::string document;
  } cases[] = {
      {"quoteless", "<look><LUT1D><size>4</size><data>0000803F</data></LUT1D></look>"},
      {"no-data", "<look><LUT1D><size>\"4\"</size><data></data></LUT1D></look>"},
      {"not-a-power", "<look><LUT><size>\"3\"</size><data>0000803F</data></LUT></look>"},
      {"too-large", "<look><LUT><size>\"512\"</size><data>0000803F</data></LUT></look>"},
      {"one-node", "<look><LUT><size>\"1\"</size><data>0000803F</data></LUT></look>"},
      {"other-root", "<grade>" + curve + "</grade>"},
      {"not-xml", "<look><LUT1D>"},
  };
  const std::string good = KeptLookFile("refusals-good", LookDocument(curve));
  for (const Case& c : cases) {
    CIppBayerCorrector corrector;
    bool has3D = true, has1D = false;
    ASSERT_TRUE(corrector.LoadIridasLookLUT(good.c_str(), has3D, has1D));
    EXPECT_FALSE(has3D);
    EXPECT_TRUE(has1D);
    const std::string path = KeptLookFile(std::string("refused-") + c.name, c.document);
    has3D = has1D = true;
    EXPECT_FALSE(corrector.LoadIridasLookLUT(path.c_str(), has3D, has1D)) << c.name;
    EXPECT_TRUE(has3D && has1D) << c.name;
    // The previous look is gone: the 1D stage has nothing to apply.
    corrector.SetColorCorrectionMode(CORRECTION_LOOK);
    corrector.SetCBAlgorithm(CB_ALG_LOOK_1D);
    ASSERT_TRUE(corrector.SetImageInfo4CB(1, 1, 24, 8, 200, true));
    uint8_t pixel[3] = {1, 2, 3};
    EXPECT_FALSE(corrector.BGRApplyColorBalance(pixel, false)) << c.name;
  }
  bool has3D, has1D;
  CIppBayerCorrector corrector;
  EXPECT_FALSE(corrector.LoadIridasLookLUT((::testing::TempDir() + "no-such.look").c_str(), has3D, has1D));
}

// One BGR pixel through the 1D stage of a fresh corrector with this look.
std::vector<int> Graded(const std::string& path, std::vector<uint8_t> bgr) {
  CIppBayerCorrector c;
  bool has3D, has1D;
  if (!c.LoadIridasLookLUT(path.c_str(), has3D, has1D)) return {};
  c.SetColorCorrectionMode(CORRECTION_AUTO);
  c.SetCBAlgorithm(CB_ALG_LOOK_1D);
  c.SetImageInfo4CB(1, 1, 24, 8, 200, true);
  if (!c.BGRApplyColorBalance(bgr.data(), false)) return {};
  return {bgr[0], bgr[1], bgr[2]};
}

// A 256-entry curve that gives every sample `level` / 256 of full scale.
std::string FlatCurve(int level) {
  return LookDocument(Lut1DElement(256, [level](int, int) { return float(level) / 256; }));
}

TEST(LookFile, CachedPathIsNotReadAgainUntilAForcedRecalcFindsItNewer) {
  const std::string path = KeptLookFile("reload", FlatCurve(128));
  // 128/256 of 255 is 127.5: 127 after truncation.
  EXPECT_EQ(Graded(path, {10, 20, 30}), (std::vector<int>{127, 127, 127}));

  Rewrite(path, FlatCurve(64), -3600);  // changed but not newer
  EXPECT_EQ(Graded(path, {10, 20, 30}), (std::vector<int>{127, 127, 127}));

  CIppBayerCorrector c;
  bool has3D, has1D;
  ASSERT_TRUE(c.LoadIridasLookLUT(path.c_str(), has3D, has1D));
  c.SetColorCorrectionMode(CORRECTION_AUTO);
  EXPECT_TRUE(c.ForceRecalcAutoLUT());  // the file is older than the look: nothing read
  EXPECT_EQ(Graded(path, {10, 20, 30}), (std::vector<int>{127, 127, 127}));

  Rewrite(path, FlatCurve(64), 3600);
  c.SetColorCorrectionMode(CORRECTION_MANUAL);
  EXPECT_FALSE(c.ForceRecalcAutoLUT());  // only in automatic mode
  EXPECT_EQ(Graded(path, {10, 20, 30}), (std::vector<int>{127, 127, 127}));
  c.SetColorCorrectionMode(CORRECTION_AUTO);
  EXPECT_TRUE(c.ForceRecalcAutoLUT());
  // Every corrector shares the reloaded look: 64/256 of 255 is 63.75.
  EXPECT_EQ(Graded(path, {10, 20, 30}), (std::vector<int>{63, 63, 63}));
}

TEST(LookFile, LongerDataStopsAtTheSizeAndShorterDataLeavesZeros) {
  // Three triples where the size says two: the third is not read.
  std::string data;
  for (float v : {0.5f, 0.25f, 1.0f, 0.5f, 0.25f, 1.0f, 9.0f, 9.0f, 9.0f}) data += Hex(v);
  const std::string longer =
      KeptLookFile("longer", LookDocument("<LUT1D><size>\"2\"</size><data>" + data + "</data></LUT1D>"));
  // Two entries (log2 1, shift -7): every sample reads entry 0 or 1.
  EXPECT_EQ(Graded(longer, {255, 255, 255}), (std::vector<int>{255, 63, 127}));
  EXPECT_EQ(Graded(longer, {0, 0, 0}), (std::vector<int>{255, 63, 127}));
  const std::string shorter = KeptLookFile(
      "shorter", LookDocument("<LUT1D><size>\"256\"</size><data>" + Hex(1.0f) + Hex(1.0f) + "</data></LUT1D>"));
  EXPECT_EQ(Graded(shorter, {0, 0, 0}), (std::vector<int>{0, 255, 255}));
  EXPECT_EQ(Graded(shorter, {1, 1, 1}), (std::vector<int>{0, 0, 0}));
}

}  // namespace
