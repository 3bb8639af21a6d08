// Colour-filter-array interpolation of 8- and 16-bit mosaics: every grid at
// every variant against the published 5x5 gradient-corrected kernels applied
// plainly with mirrored borders, flat fields, uniform colours, regions that
// start on odd rows and columns, and the refusals.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "support/TestSupport.h"
#include "primitives/Cfa.h"

namespace {

using testsupport::RunnableVariants;
using testsupport::ScopedVariant;

// Weights in sixteenths, rows top to bottom.
using Kernel = int[5][5];
const Kernel kGreenAtRedOrBlue = {{0, 0, -2, 0, 0}, {0, 0, 4, 0, 0}, {-2, 4, 8, 4, -2}, {0, 0, 4, 0, 0}, {0, 0, -2, 0, 0}};
const Kernel kFromLeftAndRight = {{0, 0, 1, 0, 0}, {0, -2, 0, -2, 0}, {-2, 8, 10, 8, -2}, {0, -2, 0, -2, 0}, {0, 0, 1, 0, 0}};
const Kernel kFromAboveAndBelow = {{0, 0, -2, 0, 0}, {0, -2, 8, -2, 0}, {1, 0, 10, 0, 1}, {0, -2, 8, -2, 0}, {0, 0, -2, 0, 0}};
const Kernel kFromDiagonals = {{0, 0, -3, 0, 0}, {0, 4, 0, 4, 0}, {-3, 0, 12, 0, -3}, {0, 4, 0, 4, 0}, {0, 0, -3, 0, 0}};

const char* const kGridNames[4] = {"BGGR", "RGGB", "GBRG", "GRBG"};

// Colour of site (x, y): 0 red, 1 green, 2 blue.
int ColourAt(IppiBayerGrid grid, int x, int y) {
  const char c = kGridNames[grid][2 * (y & 1) + (x & 1)];
  return c == 'R' ? 0 : c == 'G' ? 1 : 2;
}

int Mirror(int i, int n) {
  if (i < 0) i = -i;
  if (i >= n) i = 2 * (n - 1) - i;
  return i < 0 ? 0 : i >= n ? n - 1 : i;
}

template <class Sample>
std::vector<Sample> Reference(const std::vector<Sample>& m, int w, int h, IppiBayerGrid grid) {
  std::vector<Sample> out(size_t(w) * h * 3);
  auto at = [&](int x, int y) { return int(m[size_t(Mirror(y, h)) * w + Mirror(x, w)]); };
  for (int y = 0; y < h; ++y) {
    int top = 255;
    if (sizeof(Sample) == 2) {
      int largest = 0;
      for (int r = y - 2; r <= y + 2; ++r)
        for (int x = 0; x < w; ++x) largest = std::max(largest, at(x, r));
      for (top = 0; top < largest; top = 2 * top + 1) {
      }
    }
    for (int x = 0; x < w; ++x) {
      auto apply = [&](const Kernel& k) {
        int sum = 0;
        for (int j = 0; j < 5; ++j)
          for (int i = 0; i < 5; ++i) sum += k[j][i] * at(x + i - 2, y + j - 2);
        return std::clamp((sum + 8) >> 4, 0, top);
      };
      const int site = ColourAt(grid, x, y);
      int rgb[3];
      rgb[site] = at(x, y);
      if (site == 1) {
        const int beside = ColourAt(grid, x + 1, y);  // the colour left and right
        rgb[beside] = apply(kFromLeftAndRight);
        rgb[2 - beside] = apply(kFromAboveAndBelow);
      } else {
        rgb[1] = apply(kGreenAtRedOrBlue);
        rgb[2 - site] = apply(kFromDiagonals);
      }
      for (int c = 0; c < 3; ++c) out[(size_t(y) * w + x) * 3 + c] = Sample(rgb[c]);
    }
  }
  return out;
}

template <class Sample>
IppStatus Interpolate(const std::vector<Sample>& m, int w, int h, IppiBayerGrid grid, std::vector<Sample>& out,
              IppiRect roi = {0, 0, 0, 0}) {
  if (roi.width == 0) roi = {0, 0, w, h};
  out.assign(size_t(roi.width) * roi.height * 3, Sample(0x5A));
  const int dstStep = roi.width * 3 * int(sizeof(Sample));
  if constexpr (sizeof(Sample) == 1)
    return ippiCFAToRGB_8u_C1C3R(m.data(), roi, {w, h}, w, out.data(), dstStep, grid, 0);
  else
    return ippiCFAToRGB_16u_C1C3R(m.data(), roi, {w, h}, 2 * w, out.data(), dstStep, grid, 0);
}

template <class Sample>
std::vector<Sample> RandomMosaic(int w, int h, uint32_t limit, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<Sample> m(size_t(w) * h);
  for (auto& s : m) s = Sample(rng() % limit);
  return m;
}

TEST(CfaToRgb, MatchesTheGradientCorrectedKernelsEverywhere) {
  const int sizes[][2] = {{1, 1}, {2, 3}, {3, 2}, {4, 4}, {5, 5}, {7, 6}, {37, 9}, {67, 8}, {133, 7}};
  for (const auto variant : RunnableVariants()) {
    ScopedVariant scoped(variant);
    for (int g = 0; g < 4; ++g) {
      const auto grid = IppiBayerGrid(g);
      for (const auto& size : sizes) {
        const int w = size[0], h = size[1];
        SCOPED_TRACE(std::string(kestrelink::VariantName(variant)) + " " + kGridNames[g] + " " + std::to_string(w) +
                     "x" + std::to_string(h));
        const auto m8 = RandomMosaic<uint8_t>(w, h, 256, uint32_t(w * 31 + h + g));
        std::vector<uint8_t> out8;
        ASSERT_EQ(Interpolate(m8, w, h, grid, out8), ippStsNoErr);
        EXPECT_EQ(out8, Reference(m8, w, h, grid));
        for (const uint32_t limit : {4096u, 65536u}) {
          SCOPED_TRACE("16-bit below " + std::to_string(limit));
          const auto m16 = RandomMosaic<uint16_t>(w, h, limit, uint32_t(w * 17 + h + g + limit));
          std::vector<uint16_t> out16;
          ASSERT_EQ(Interpolate(m16, w, h, grid, out16), ippStsNoErr);
          EXPECT_EQ(out16, Reference(m16, w, h, grid));
        }
      }
    }
  }
}

// A mosaic taken of a uniform colour, each site holding its own channel.
template <class Sample>
std::vector<Sample> UniformMosaic(int w, int h, IppiBayerGrid grid, const int rgb[3]) {
  std::vector<Sample> m(size_t(w) * h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) m[size_t(y) * w + x] = Sample(rgb[ColourAt(grid, x, y)]);
  return m;
}

TEST(CfaToRgb, FlatFieldsAndUniformColoursComeBackExactly) {
  struct Case {
    const char* name;
    int rgb8[3];
    int rgb16[3];
  } cases[] = {
      {"grey", {100, 100, 100}, {2000, 2000, 2000}},
      {"orange", {250, 120, 10}, {4095, 1800, 30}},
      {"blue", {0, 40, 255}, {0, 700, 65535}},
  };
  const int w = 21, h = 12;
  for (const auto variant : RunnableVariants()) {
    ScopedVariant scoped(variant);
    for (int g = 0; g < 4; ++g)
      for (const auto& c : cases) {
        SCOPED_TRACE(std::string(kestrelink::VariantName(variant)) + " " + kGridNames[g] + " " + c.name);
        std::vector<uint8_t> out8;
        ASSERT_EQ(Interpolate(UniformMosaic<uint8_t>(w, h, IppiBayerGrid(g), c.rgb8), w, h, IppiBayerGrid(g), out8), 0);
        std::vector<uint16_t> out16;
        ASSERT_EQ(Interpolate(UniformMosaic<uint16_t>(w, h, IppiBayerGrid(g), c.rgb16), w, h, IppiBayerGrid(g), out16), 0);
        for (size_t p = 0; p < size_t(w) * h; ++p)
          for (int ch = 0; ch < 3; ++ch) {
            ASSERT_EQ(out8[3 * p + ch], c.rgb8[ch]) << "pixel " << p << " channel " << ch;
            ASSERT_EQ(out16[3 * p + ch], c.rgb16[ch]) << "pixel " << p << " channel " << ch;
          }
      }
  }
}

TEST(CfaToRgb, RegionOnOddRowsAndColumnsSeesTheGridShifted) {
  const int w = 16, h = 10, rgb[3] = {200, 90, 30};
  for (int g = 0; g < 4; ++g) {
    const auto m = UniformMosaic<uint8_t>(w, h, IppiBayerGrid(g), rgb);
    for (const IppiRect roi : {IppiRect{1, 0, 9, 6}, IppiRect{0, 1, 9, 6}, IppiRect{3, 3, 8, 5}}) {
      SCOPED_TRACE(std::string(kGridNames[g]) + " region at " + std::to_string(roi.x) + "," + std::to_string(roi.y));
      std::vector<uint8_t> out;
      ASSERT_EQ(Interpolate(m, w, h, IppiBayerGrid(g), out, roi), ippStsNoErr);
      for (size_t p = 0; p < out.size(); ++p) ASSERT_EQ(out[p], rgb[p % 3]) << "value " << p;
    }
  }
}

TEST(CfaToRgb, RefusesNullsEmptySizesAndRegionsOutsideTheMosaic) {
  std::vector<uint8_t> m(64, 9), out(64 * 3, 0x5A);
  std::vector<uint16_t> m16(64, 9), out16(64 * 3, 0x5A);
  const IppiSize size{8, 8};
  struct Case {
    const char* name;
    IppiRect roi;
    bool nullSource;
    IppStatus expected;
  } cases[] = {
      {"null source", {0, 0, 8, 8}, true, ippStsNullPtrErr},   {"zero width", {0, 0, 0, 8}, false, ippStsSizeErr},
      {"zero height", {0, 0, 8, 0}, false, ippStsSizeErr},     {"past the right", {1, 0, 8, 8}, false, ippStsSizeErr},
      {"past the bottom", {0, 4, 8, 5}, false, ippStsSizeErr}, {"negative corner", {-1, 0, 4, 4}, false, ippStsSizeErr},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(ippiCFAToRGB_8u_C1C3R(c.nullSource ? nullptr : m.data(), c.roi, size, 8, out.data(), 24, ippiBayerRGGB, 0),
              c.expected);
    EXPECT_EQ(ippiCFAToRGB_16u_C1C3R(c.nullSource ? nullptr : m16.data(), c.roi, size, 16, out16.data(), 48,
                                     ippiBayerRGGB, 0),
              c.expected);
  }
  EXPECT_EQ(ippiCFAToRGB_8u_C1C3R(m.data(), {0, 0, 8, 8}, size, 8, nullptr, 24, ippiBayerRGGB, 0), ippStsNullPtrErr);
  EXPECT_EQ(out, std::vector<uint8_t>(64 * 3, 0x5A));
  EXPECT_EQ(out16, std::vector<uint16_t>(64 * 3, 0x5A));
}

}  // namespace
