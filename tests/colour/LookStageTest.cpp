// The look stage: the table, exact 8-bit, exact 16-bit and 1D paths on every
// format, the red-blue exchange of the table path, the top cell, flips and
// the fourth byte. Expected values come from the interpolation written out
// on tables whose values are exact in binary.
#include <gtest/gtest.h>

#include <kestrelink/CIppBayerCorrector.h>

#include "BayerTestSupport.h"
#include "LookTestSupport.h"
#include "colour/BayerCorrectorImpl.h"
#include "colour/LookEvaluate.h"
#include "colour/LookLutCache.h"
#include "colour/LookPrepare.h"
#include "colour/LookStage.h"

namespace {

using namespace looktest;
using namespace kestrelink::colour;

const std::string& IdentityPath() {
  static const std::string path = KeptLookFile("identity32", LookDocument(IdentityLut32()));
  return path;
}

// Red results at half the identity's, so red and blue are told apart.
const std::string& HalfRedPath() {
  static const std::string path = KeptLookFile(
      "halfred32", LookDocument(Lut3DElement(32, [](int a, int b, int c, int comp) {
                     return comp == 0 ? float(c) / 64 : float(comp == 1 ? b : a) / 32;
                   })));
  return path;
}

// The linear 32-node table at 8 bits: v / 256 of full scale, 255 / 256 of
// it after truncation; the top cell (v >= 248) interpolates nodes 30 and 31,
// eight samples lower.
int Identity8(int v) { return v >= 248 ? v - 9 : v > 0 ? v - 1 : 0; }
// The same at 12 bits: 128 samples a cell, the top cell from 3968.
int Identity12(int v) { return v >= 3968 ? v - 129 : v > 0 ? v - 1 : 0; }

const int kSamples[] = {0, 1, 2, 100, 128, 200, 247, 248, 250, 255};
constexpr int kCount = int(sizeof kSamples / sizeof kSamples[0]);

// Pixel k as (blue, green, red): three different samples.
int Blue(int k) { return kSamples[k]; }
int Green(int k) { return kSamples[(k + 3) % kCount]; }
int Red(int k) { return kSamples[(k + 6) % kCount]; }

TEST(LookStage, Identity8BitThroughTableAndExactOnEveryFormat) {
  struct Case {
    uint32_t format, bitsPerPixel;
    bool rgbIn;
  } cases[] = {{200, 24, false}, {500, 32, false}, {400, 24, true}, {100000, 32, true}};
  for (CORRECTIONAL_ALG alg : {CB_ALG_LOOK_3D_TABLE, CB_ALG_LOOK_3D_EXACT})
    for (const Case& c : cases) {
      const int step = int(c.bitsPerPixel / 8);
      std::vector<uint8_t> image(size_t(step) * kCount, 0xA5);
      for (int k = 0; k < kCount; ++k) {
        image[step * k + (c.rgbIn ? 2 : 0)] = uint8_t(Blue(k));
        image[step * k + 1] = uint8_t(Green(k));
        image[step * k + (c.rgbIn ? 0 : 2)] = uint8_t(Red(k));
      }
      ASSERT_TRUE(Stage(IdentityPath(), alg, c.format, c.bitsPerPixel, 8, kCount, 1, image.data()));
      for (int k = 0; k < kCount; ++k) {
        SCOPED_TRACE(testing::Message() << "alg " << alg << " format " << c.format << " pixel " << k);
        EXPECT_EQ(image[step * k], Identity8(Blue(k)));
        EXPECT_EQ(image[step * k + 1], Identity8(Green(k)));
        EXPECT_EQ(image[step * k + 2], Identity8(Red(k)));
        if (step == 4) {
          EXPECT_EQ(image[step * k + 3], 0xA5);
        }
      }
    }
}

TEST(LookStage, TableExchangesRedAndBlueAgainstExact) {
  // Exact: red out halves red (floor(R * 255 / 512)), blue out follows blue.
  // Table: the table is filled with red on the axis of blue, and its
  // components swapped back, so the halving lands on blue.
  uint8_t exact[3] = {200, 100, 60}, table[3] = {200, 100, 60};
  ASSERT_TRUE(Stage(HalfRedPath(), CB_ALG_LOOK_3D_EXACT, 200, 24, 8, 1, 1, exact));
  ASSERT_TRUE(Stage(HalfRedPath(), CB_ALG_LOOK_3D_TABLE, 200, 24, 8, 1, 1, table));
  EXPECT_EQ(std::vector<int>(exact, exact + 3), (std::vector<int>{199, 99, 60 * 255 / 512}));
  EXPECT_EQ(std::vector<int>(table, table + 3), (std::vector<int>{200 * 255 / 512, 99, 59}));
}

TEST(LookStage, Size256PicksNodesAndSample255ReturnsNode254) {
  // s = 1: every remainder is 0 and weight array 0 is 1, so a sample picks
  // its node; the top cell starts at node 254. Only the nodes read are set.
  LookLut look;
  look.size = 256;
  look.lut3D.reset(new float[size_t(256) * 256 * 256 * 3]);
  auto node = [](int v) { return float(v) / 256; };
  for (int v : {0, 100, 254}) {
    for (int a = v; a <= v + 1; ++a)
      for (int b = v; b <= v + 1; ++b)
        for (int c = v; c <= v + 1; ++c)
          for (int comp = 0; comp < 3; ++comp)
            look.lut3D[3 * ((size_t(a) * 256 + b) * 256 + c) + comp] = node(comp == 0 ? c : comp == 1 ? b : a);
  }
  BuildCornerWeights(look);
  EXPECT_EQ(look.cornerWeights[0][0], 1.0f);
  for (auto [sample, picked] : {std::pair{0, 0}, {100, 100}, {254, 254}, {255, 254}}) {
    uint8_t out[3];
    Evaluate8(look, uint32_t(sample), uint32_t(sample), uint32_t(sample), out);
    const int expected = int(double(node(picked)) * 255.0);
    EXPECT_EQ(out[0], expected) << sample;
    EXPECT_EQ(out[2], expected) << sample;
  }
}

TEST(LookStage, Exact16BitOnBothFormatsAtEveryPathChoice) {
  const int samples[] = {0, 1, 127, 128, 2000, 3967, 3968, 4000, 4095};
  const int n = int(sizeof samples / sizeof samples[0]);
  for (CORRECTIONAL_ALG alg : {CB_ALG_LOOK_3D_TABLE, CB_ALG_LOOK_3D_EXACT})
    for (bool rgbIn : {false, true}) {
      std::vector<uint16_t> image(3 * n);
      for (int k = 0; k < n; ++k) {
        image[3 * k + (rgbIn ? 2 : 0)] = uint16_t(samples[k]);
        image[3 * k + 1] = uint16_t(samples[(k + 2) % n]);
        image[3 * k + (rgbIn ? 0 : 2)] = uint16_t(samples[(k + 5) % n]);
      }
      ASSERT_TRUE(Stage(IdentityPath(), alg, rgbIn ? 400 : 200, 48, 12, n, 1, image.data()));
      for (int k = 0; k < n; ++k) {
        SCOPED_TRACE(testing::Message() << "alg " << alg << " rgb " << rgbIn << " pixel " << k);
        EXPECT_EQ(image[3 * k], Identity12(samples[k]));
        EXPECT_EQ(image[3 * k + 1], Identity12(samples[(k + 2) % n]));
        EXPECT_EQ(image[3 * k + 2], Identity12(samples[(k + 5) % n]));
      }
    }
}

TEST(LookStage, SixteenBitDepthNeedsEightNodesAndReachesTheTopCell) {
  // N 8 at 16 bits: a step of 8192 samples, within the fraction tables.
  // Node (a, b, c) holds (c / 8, b / 8, a / 8), so below the top cell a
  // sample v gives floor(v * 65535 / 65536) = v - 1; at the top (v >= 57344)
  // nodes 6 and 7 are used, 8192 samples lower.
  static const std::string path = KeptLookFile(
      "identity8", LookDocument(Lut3DElement(8, [](int a, int b, int c, int comp) {
                     return float(comp == 0 ? c : comp == 1 ? b : a) / 8;
                   })));
  const int samples[] = {1, 1000, 57343, 57344, 65535};
  for (int v : samples) {
    uint16_t pixel[3] = {uint16_t(v), uint16_t(v), uint16_t(v)};
    ASSERT_TRUE(Stage(path, CB_ALG_LOOK_3D_EXACT, 200, 48, 16, 1, 1, pixel));
    const int expected = v >= 57344 ? v - 8193 : v - 1;
    EXPECT_EQ(pixel[0], expected) << v;
    EXPECT_EQ(pixel[2], expected) << v;
  }
  // With 4 nodes the step passes the fraction tables: the stage stays inside them.
  static const std::string four = KeptLookFile(
      "identity4", LookDocument(Lut3DElement(4, [](int, int, int, int) { return 0.5f; })));
  uint16_t pixel[3] = {65535, 30000, 100};
  EXPECT_TRUE(Stage(four, CB_ALG_LOOK_3D_EXACT, 200, 48, 16, 1, 1, pixel));
}

// A 1D look of n entries; curve k (0 red, 1 green, 2 blue) given by f.
std::string Curves(const char* name, int n, const CurveValue& f) {
  return KeptLookFile(name, LookDocument(Lut1DElement(n, f)));
}

TEST(LookStage, OneDimensionalShiftsByCurveLengthAndDepth) {
  // 256 entries on 8 bits: shift 0. Red i/256, green i/512, blue (255-i)/256.
  static const std::string c256 = Curves("curve256", 256, [](int i, int k) {
    return k == 0 ? float(i) / 256 : k == 1 ? float(i) / 512 : float(255 - i) / 256;
  });
  // 1,024 entries: shift 2, sample 255 reads entry 1,020 (blue is full only there).
  static const std::string c1024 = Curves("curve1024", 1024, [](int i, int k) {
    return k == 0 ? float(i % 4) / 4 : k == 1 ? float(i) / 1024 : float(i == 1020);
  });
  for (int v : {0, 1, 2, 128, 254, 255}) {
    uint8_t a[3] = {uint8_t(v), uint8_t(v), uint8_t(v)}, b[3] = {uint8_t(v), uint8_t(v), uint8_t(v)};
    ASSERT_TRUE(Stage(c256, CB_ALG_LOOK_1D, 200, 24, 8, 1, 1, a));
    EXPECT_EQ(std::vector<int>(a, a + 3), (std::vector<int>{(255 - v) * 255 / 256, v * 255 / 512, v * 255 / 256}))
        << v;
    ASSERT_TRUE(Stage(c1024, CB_ALG_LOOK_1D, 200, 24, 8, 1, 1, b));
    EXPECT_EQ(std::vector<int>(b, b + 3), (std::vector<int>{v == 255 ? 255 : 0, 4 * v * 255 / 1024, 0})) << v;
  }
  // 256 entries on 12-bit samples: shift -4, entry v >> 4, times 4095.
  for (int v : {0, 15, 16, 4095}) {
    uint16_t p[3] = {uint16_t(v), uint16_t(v), uint16_t(v)};
    ASSERT_TRUE(Stage(c256, CB_ALG_LOOK_1D, 200, 48, 12, 1, 1, p));
    const int e = v >> 4;
    EXPECT_EQ(p[0], (255 - e) * 4095 / 256) << v;
    EXPECT_EQ(p[1], e * 4095 / 512) << v;
    EXPECT_EQ(p[2], e * 4095 / 256) << v;
  }
}

TEST(LookStage, MissingPartOrFormatYieldsFalse) {
  static const std::string onlyCurve = Curves("onlycurve", 256, [](int i, int) { return float(i) / 256; });
  uint8_t pixel[4] = {1, 2, 3, 4};
  EXPECT_FALSE(Stage(onlyCurve, CB_ALG_LOOK_3D_EXACT, 200, 24, 8, 1, 1, pixel));
  EXPECT_FALSE(Stage(onlyCurve, CB_ALG_LOOK_3D_TABLE, 200, 24, 8, 1, 1, pixel));
  EXPECT_FALSE(Stage(IdentityPath(), CB_ALG_LOOK_1D, 200, 24, 8, 1, 1, pixel));
  EXPECT_FALSE(Stage(IdentityPath(), CB_ALG_LOOK_3D_EXACT, 500, 24, 8, 1, 1, pixel));
  EXPECT_FALSE(Stage(IdentityPath(), CB_ALG_LOOK_3D_EXACT, 100000, 48, 8, 1, 1, pixel));
  EXPECT_EQ(std::vector<int>(pixel, pixel + 4), (std::vector<int>{1, 2, 3, 4}));
}

TEST(LookStage, FlipReversesRowsThroughACopy) {
  // Two rows of BGRx through the identity's exact path, flipped.
  uint8_t image[2][4] = {{10, 20, 30, 1}, {100, 110, 120, 2}};
  ASSERT_TRUE(Stage(IdentityPath(), CB_ALG_LOOK_3D_EXACT, 500, 32, 8, 1, 2, image, true));
  EXPECT_EQ(std::vector<int>(image[0], image[0] + 4), (std::vector<int>{99, 109, 119, 1}));
  EXPECT_EQ(std::vector<int>(image[1], image[1] + 4), (std::vector<int>{9, 19, 29, 2}));
}

TEST(LookStage, RawFramesReachTheStageInRgbOrder) {
  // A uniform 8-bit mosaic demosaics to one colour; the look frame hands it
  // to the stage as RGB and gets BGR back.
  CIppBayerCorrector c;
  bool has3D = false, has1D = true;
  ASSERT_TRUE(c.LoadIridasLookLUT(HalfRedPath().c_str(), has3D, has1D));
  EXPECT_TRUE(has3D);
  EXPECT_FALSE(has1D);
  c.SetBayerPattern(BAYER_RGGB);
  c.SetColorCorrectionMode(CORRECTION_LOOK);
  c.SetCBAlgorithm(CB_ALG_LOOK_3D_EXACT);
  ASSERT_TRUE(c.SetImageInfo4CB(8, 8, 8, 8, 100, false));
  auto mosaic = bayertest::UniformMosaic<uint8_t>(BAYER_RGGB, 8, 8, {200, 100, 60});
  std::vector<uint8_t> out(3 * 64);
  ASSERT_TRUE(c.RawConvertToBGR24(mosaic.data(), out.data(), false));
  EXPECT_EQ(std::vector<int>(out.begin() + 3 * 27, out.begin() + 3 * 28), (std::vector<int>{59, 99, 200 * 255 / 512}));
}

}  // namespace
