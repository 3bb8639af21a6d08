// The 8-bit YUV layouts to BGRx, BGR24 and RGB24 on both paths, at every
// processor variant: the plain path against a double-precision studio-range
// reference within 1, the colour-map path exactly through the library's
// integer formula and the tables of a LUT file the test writes.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <array>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>
#include <sstream>
#include <string>

#include "support/TestSupport.h"

namespace {

struct Yuv {
  int y, u, v;
};

// Where pixel x of a row finds its samples, per layout; rows start at
// (row * w * num) >> 1 bytes.
struct Layout {
  const char* name;
  uint32_t group, num;
  std::function<Yuv(const uint8_t* row, uint32_t x)> sample;
};

const Layout kYuv422{"YUV422", 2, 4, [](const uint8_t* r, uint32_t x) {
                       const uint8_t* g = r + x / 2 * 4;
                       return Yuv{g[x % 2 ? 2 : 0], g[1], g[3]};
                     }};
const Layout kUvy422{"UVY422", 2, 4, [](const uint8_t* r, uint32_t x) {
                       const uint8_t* g = r + x / 2 * 4;
                       return Yuv{g[x % 2 ? 3 : 1], g[0], g[2]};
                     }};
const Layout kUvy411{"UVY411", 4, 3, [](const uint8_t* r, uint32_t x) {
                       const uint8_t* g = r + x / 4 * 6;
                       static constexpr int kY[4] = {1, 2, 4, 5};
                       return Yuv{g[kY[x % 4]], g[0], g[3]};
                     }};
const Layout kUvy444{"UVY444", 1, 6, [](const uint8_t* r, uint32_t x) {
                       const uint8_t* g = r + x * 3;
                       return Yuv{g[1], g[0], g[2]};
                     }};

// Studio-range BT.601 in doubles, rounded and limited: B, G, R.
std::array<int, 3> StudioBgr(Yuv p) {
  const double l = 1.164 * (p.y - 16), cb = p.u - 128, cr = p.v - 128;
  auto limit = [](double x) { return int(std::lround(std::fmin(255.0, std::fmax(0.0, x)))); };
  return {limit(l + 2.017 * cb), limit(l - 0.813 * cr - 0.392 * cb), limit(l + 1.596 * cr)};
}

// The library's integer formula as the format states it: B, G, R.
std::array<int, 3> FormulaBgr(Yuv p) {
  const int t = (p.u - 128) * 12727 + (p.v - 128) * 33384;
  const int g = t > 0 ? (t + 32768) >> 16 : (t - 32768) >> 16;
  auto limit = [](int x) { return x < 0 ? 0 : x > 255 ? 255 : x; };
  return {limit(p.y + p.u - 128), limit(p.y - g), limit(p.y + p.v - 128)};
}

using Call = bool (CIppImageConverter::*)(uint32_t, uint32_t, void*, void*, bool);

struct Case {
  const Layout& layout;
  Call call;
  uint32_t px;      // destination bytes a pixel
  bool rgb;         // channel order R, G, B
  bool colourMap;   // has a colour-map path
};

const Case kCases[] = {
    {kYuv422, &CIppImageConverter::YUV422ToBGRx, 4, false, true},
    {kYuv422, &CIppImageConverter::YUV422ToBGR24, 3, false, true},
    {kYuv422, &CIppImageConverter::YUV422ToRGB24, 3, true, false},
    {kUvy422, &CIppImageConverter::UVY422ToBGRx, 4, false, true},
    {kUvy422, &CIppImageConverter::UVY422ToBGR24, 3, false, true},
    {kUvy422, &CIppImageConverter::UVY422ToRGB24, 3, true, false},
    {kUvy411, &CIppImageConverter::UVY411ToBGRx, 4, false, true},
    {kUvy411, &CIppImageConverter::UVY411ToBGR24, 3, false, true},
    {kUvy411, &CIppImageConverter::UVY411ToRGB24, 3, true, false},
    {kUvy444, &CIppImageConverter::UVY444ToBGRx, 4, false, true},
    {kUvy444, &CIppImageConverter::UVY444ToBGR24, 3, false, true},
    {kUvy444, &CIppImageConverter::UVY444ToRGB24, 3, true, false},
};

const uint8_t* SourceRow(const std::vector<uint8_t>& src, const Layout& l, uint32_t w, uint32_t row) {
  return src.data() + ((size_t(row) * w * l.num) >> 1);
}

std::string Describe(const Case& c, uint32_t w, bool flip, uint32_t row, uint32_t x) {
  std::ostringstream s;
  s << c.layout.name << " px " << c.px << (c.rgb ? " rgb" : "") << " w " << w << (flip ? " flip" : "") << " row "
    << row << " x " << x << " variant " << kestrelink::VariantName(kestrelink::ActiveVariant());
  return s.str();
}

TEST(YuvPacked, PlainPathIsStudioRangeWithinOne) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant sv(variant);
    for (const Case& c : kCases)  // widths: whole groups, pieces of a row with odd tails
      for (uint32_t w : {4u, 12u, 1028u, c.layout.group == 4 ? 1036u : c.layout.group == 2 ? 1030u : 1027u})
        for (bool flip : {false, true}) {
          const uint32_t h = 3;
          const auto src = testsupport::RandomBytes(size_t(w) * h * 3, w + c.px);
          std::vector<uint8_t> dst(size_t(w) * h * c.px, 0x77);
          CIppImageConverter conv;
          ASSERT_TRUE((conv.*c.call)(w, h, (void*)src.data(), dst.data(), flip)) << Describe(c, w, flip, 0, 0);
          for (uint32_t row = 0; row < h; ++row)
            for (uint32_t x = 0; x < w; ++x) {
              auto e = StudioBgr(c.layout.sample(SourceRow(src, c.layout, w, row), x));
              if (c.rgb) std::swap(e[0], e[2]);
              const uint8_t* d = &dst[(size_t(flip ? h - 1 - row : row) * w + x) * c.px];
              for (int k = 0; k < 3; ++k) ASSERT_NEAR(d[k], e[k], 1) << Describe(c, w, flip, row, x) << " byte " << k;
              if (c.px == 4) {
                ASSERT_EQ(d[3], 0) << Describe(c, w, flip, row, x);
              }
            }
        }
  }
}

// A LUT file with a random value in each of the 256 rows of the three tables.
std::string RandomLut(uint32_t seed, std::array<std::array<uint8_t, 256>, 3>& t) {
  std::mt19937 rng(seed);
  std::ostringstream text;
  for (int i = 0; i < 256; ++i) {
    text << i;
    for (auto& table : t) text << ',' << int(table[i] = uint8_t(rng()));
    text << ",\n";
  }
  return text.str();
}

TEST(YuvPacked, ColourMapPathIsTheIntegerFormulaThroughTheTables) {
  std::array<std::array<uint8_t, 256>, 3> t;
  testsupport::TempFile lut("yuv_map.lut", RandomLut(5, t));
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant sv(variant);
    for (const Case& c : kCases) {
      if (!c.colourMap) continue;
      for (uint32_t w : {4u, 12u, 36u, 5u, 6u, 7u, 10u})  // the last four end rows inside a group
        for (bool flip : {false, true}) {
          const uint32_t h = 3;
          // The frame alone, so that a read past its end shows; the reference
          // reads a partial group on into the next row, and zeros past the end.
          const auto src = testsupport::RandomBytes((size_t(w) * h * c.layout.num) >> 1, w * 3 + c.px);
          std::vector<uint8_t> padded(src);
          padded.resize(src.size() + 8, 0);
          std::vector<uint8_t> dst(size_t(w) * h * c.px, 0x77);
          CIppImageConverter conv;
          conv.SetImageColorMap(true);
          ASSERT_TRUE(conv.LoadLUTFrom(lut.path()));
          ASSERT_TRUE((conv.*c.call)(w, h, (void*)src.data(), dst.data(), flip)) << Describe(c, w, flip, 0, 0);
          for (uint32_t row = 0; row < h; ++row)
            for (uint32_t x = 0; x < w; ++x) {
              const auto bgr = FormulaBgr(c.layout.sample(SourceRow(padded, c.layout, w, row), x));
              const uint8_t* d = &dst[(size_t(flip ? h - 1 - row : row) * w + x) * c.px];
              for (int k = 0; k < 3; ++k) ASSERT_EQ(d[k], t[k][bgr[k]]) << Describe(c, w, flip, row, x) << " byte " << k;
              if (c.px == 4) {
                ASSERT_EQ(d[3], 0x77) << Describe(c, w, flip, row, x);  // kept
              }
            }
        }
    }
  }
}

TEST(YuvPacked, PathsDifferOnGreyEvenWithIdentityTables) {
  uint8_t grey[4] = {100, 128, 100, 128};  // Y0 U Y1 V
  uint8_t plain[6], mapped[6];
  CIppImageConverter conv;
  ASSERT_TRUE(conv.YUV422ToBGR24(2, 1, grey, plain, false));
  conv.SetImageColorMap(true);
  ASSERT_TRUE(conv.YUV422ToBGR24(2, 1, grey, mapped, false));
  EXPECT_EQ(plain[0], 98);  // 1.164 * (100 - 16) = 97.8
  EXPECT_EQ(plain[1], 98);
  EXPECT_EQ(mapped[0], 100);
  EXPECT_EQ(mapped[1], 101);  // G one above Y
  EXPECT_EQ(mapped[2], 100);
}

TEST(YuvPacked, ColourMapLastGroupReadsTheNextRowAndZerosOnlyPastTheFrame) {
  // UVY411 at w 6: rows of 9 bytes. Row 0's second group is U Y0 Y1 of row 0
  // and V Y2 Y3 from row 1's first bytes; row 1's reads V past the frame as 0.
  // Only pixels 4 and 5 of each row are written.
  const uint8_t src[18] = {128, 10, 20, 128, 30, 40, 140, 50, 60, 170, 70, 80, 128, 90, 100, 110, 120, 130};
  uint8_t dst[2 * 6 * 3 + 3];
  std::memset(dst, 0xAB, sizeof dst);
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  ASSERT_TRUE(conv.UVY411ToBGR24(6, 2, (void*)src, dst, false));
  const std::array<int, 3> expected[4] = {FormulaBgr({50, 140, 170}), FormulaBgr({60, 140, 170}),
                                          FormulaBgr({120, 110, 0}), FormulaBgr({130, 110, 0})};
  for (int k = 0; k < 3; ++k) {
    EXPECT_EQ(dst[12 + k], expected[0][k]) << k;
    EXPECT_EQ(dst[15 + k], expected[1][k]) << k;
    EXPECT_EQ(dst[18 + 12 + k], expected[2][k]) << k;
    EXPECT_EQ(dst[18 + 15 + k], expected[3][k]) << k;
    EXPECT_EQ(dst[36 + k], 0xAB) << k;
  }
}

TEST(YuvPacked, PlainPathLeavesAPartialLastGroupAndRefusesNarrowFrames) {
  uint8_t src[64] = {};
  uint8_t dst[64];
  std::memset(dst, 0xCD, sizeof dst);
  CIppImageConverter conv;
  ASSERT_TRUE(conv.YUV422ToBGR24(5, 1, src, dst, false));
  EXPECT_EQ(dst[12], 0xCD);  // pixel 4 has no pair
  ASSERT_TRUE(conv.UVY411ToBGR24(6, 1, src, dst, false));
  EXPECT_EQ(dst[12], 0xCD);  // pixels 4, 5 have no whole group
  EXPECT_FALSE(conv.YUV422ToBGRx(1, 1, src, dst, false));
  EXPECT_FALSE(conv.UVY422ToBGR24(1, 1, src, dst, false));
  EXPECT_FALSE(conv.UVY411ToBGRx(3, 1, src, dst, false));
  EXPECT_FALSE(conv.UVY444ToBGR24(4, 0, src, dst, false));
  EXPECT_FALSE(conv.YUV422ToRGB24(2, 1, nullptr, dst, false));
  EXPECT_FALSE(conv.UVY444ToRGB24(2, 1, src, nullptr, false));
}

}  // namespace
