// The library's integer YUV formula, its worked examples, and the 10- and
// 20-bit 4:2:2 layouts that use it, at every processor variant: row steps,
// partial groups, flips, and the bytes a BGRx row keeps.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <array>
#include <cstring>

#include "convert/YuvFormula.h"
#include "convert/rows/YuvRows.h"
#include "support/TestSupport.h"

namespace {

using testsupport::RandomBytes;

// The formula as the format states it, one step a line.
std::array<int, 3> FormulaBgr(int y, int u, int v) {
  const int t = (u - 128) * 12727 + (v - 128) * 33384;
  int g;
  if (t > 0)
    g = (t + 32768) >> 16;
  else
    g = (t - 32768) >> 16;
  auto limit = [](int x) { return x < 0 ? 0 : x > 255 ? 255 : x; };
  return {limit(y + u - 128), limit(y - g), limit(y + v - 128)};
}

TEST(YuvFormula, WorkedExamples) {
  struct Case {
    int y, u, v, b, g, r;
  } cases[] = {
      {100, 128, 128, 100, 101, 100},  // grey: G one above Y
      {128, 255, 128, 255, 103, 128},  // t = 1616329, g = 25
      {0, 128, 128, 0, 1, 0},
      {255, 128, 128, 255, 255, 255},  // G limited
      {128, 0, 0, 0, 219, 0},      // t = -5902208, g = -91
  };
  for (const Case& c : cases) {
    const auto p = kestrelink::yuv::Pixel(c.y, c.u, c.v);
    EXPECT_EQ(int(p.b), c.b) << c.y << " " << c.u << " " << c.v;
    EXPECT_EQ(int(p.g), c.g) << c.y << " " << c.u << " " << c.v;
    EXPECT_EQ(int(p.r), c.r) << c.y << " " << c.u << " " << c.v;
  }
}

TEST(YuvFormula, EveryChromaPairAtSeveralLumas) {
  for (int y : {0, 1, 77, 128, 200, 255})
    for (int u = 0; u < 256; ++u)
      for (int v = 0; v < 256; ++v) {
        const auto p = kestrelink::yuv::Pixel(y, u, v);
        const auto e = FormulaBgr(y, u, v);
        ASSERT_TRUE(p.b == e[0] && p.g == e[1] && p.r == e[2]) << y << " " << u << " " << v;
      }
}

// A 10-bit packed row from samples Y, U, V per group of six pixels.
struct Packed10Frame {
  uint32_t w, h;
  size_t step;
  std::vector<uint16_t> y, u, v;  // y: w per row (padded to groups of 6); u, v: 3 per group
  std::vector<uint8_t> bytes;
};

Packed10Frame MakePacked10(uint32_t w, uint32_t h, uint32_t seed) {
  Packed10Frame f{w, h, ((size_t(w) + 47) / 48) * 128, {}, {}, {}, {}};
  const uint32_t groups = (w + 5) / 6;
  const auto r = RandomBytes(size_t(groups) * 12 * h * 2, seed);
  f.bytes.assign(f.step * h, 0xEE);
  for (uint32_t row = 0; row < h; ++row)
    for (uint32_t g = 0; g < groups; ++g) {
      uint16_t s[12];
      for (int i = 0; i < 12; ++i) {
        const size_t k = (size_t(row) * groups + g) * 12 + i;
        s[i] = uint16_t((r[2 * k] | r[2 * k + 1] << 8) & 0x3FF);
      }
      // Words: U0 Y0 V0 | Y1 U1 Y2 | V1 Y3 U2 | Y4 V2 Y5, samples at bits 0, 10, 20.
      const uint16_t ys[6] = {s[0], s[1], s[2], s[3], s[4], s[5]}, us[3] = {s[6], s[7], s[8]},
                     vs[3] = {s[9], s[10], s[11]};
      const uint32_t words[4] = {us[0] | uint32_t(ys[0]) << 10 | uint32_t(vs[0]) << 20,
                                 ys[1] | uint32_t(us[1]) << 10 | uint32_t(ys[2]) << 20,
                                 vs[1] | uint32_t(ys[3]) << 10 | uint32_t(us[2]) << 20,
                                 ys[4] | uint32_t(vs[2]) << 10 | uint32_t(ys[5]) << 20 | 0xC0000000u};
      std::memcpy(&f.bytes[row * f.step + 16 * size_t(g)], words, 16);
      for (int i = 0; i < 6; ++i) f.y.push_back(ys[i]);
      for (int i = 0; i < 3; ++i) f.u.push_back(us[i]), f.v.push_back(vs[i]);
    }
  return f;
}

// Expected BGR of pixel x in row `row`: top 8 bits of each sample.
std::array<int, 3> Packed10Expected(const Packed10Frame& f, uint32_t row, uint32_t x) {
  const uint32_t groups = (f.w + 5) / 6;
  const size_t g = size_t(row) * groups + x / 6, c = g * 3 + (x % 6) / 2;
  return FormulaBgr(f.y[g * 6 + x % 6] >> 2, f.u[c] >> 2, f.v[c] >> 2);
}

TEST(YuvDeep, Packed10RowStep) {
  EXPECT_EQ(MakePacked10(1920, 1, 1).step, 5120u);
  EXPECT_EQ(MakePacked10(1280, 1, 1).step, 3456u);  // 27 blocks of 128 bytes
}

TEST(YuvDeep, Packed10ToBgr24AndBgrx) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant sv(variant);
    for (uint32_t w : {1280u, 1920u, 7u, 48u, 101u})
      for (bool flip : {false, true})
        for (uint32_t px : {3u, 4u}) {
          const uint32_t h = 3;
          Packed10Frame f = MakePacked10(w, h, w + px);
          std::vector<uint8_t> dst(size_t(w) * h * px + 16, 0x5A);
          CIppImageConverter conv;
          const bool ok = px == 3 ? conv.YUV422_10BitPPToBGR24(w, h, f.bytes.data(), dst.data(), flip)
                                  : conv.YUV422_10BitPPToBGRx(w, h, f.bytes.data(), dst.data(), flip);
          ASSERT_TRUE(ok);
          for (uint32_t row = 0; row < h; ++row)
            for (uint32_t x = 0; x < w; ++x) {
              const uint8_t* d = &dst[(size_t(flip ? h - 1 - row : row) * w + x) * px];
              const auto e = Packed10Expected(f, row, x);
              ASSERT_TRUE(d[0] == e[0] && d[1] == e[1] && d[2] == e[2])
                  << kestrelink::VariantName(variant) << " w " << w << " px " << px << " flip " << flip << " row "
                  << row << " x " << x;
              if (px == 4) {
                ASSERT_EQ(d[3], 0x5A);  // the fourth byte stays
              }
            }
          EXPECT_EQ(dst[size_t(w) * h * px], 0x5A) << "written past the frame, w " << w;
        }
  }
}

TEST(YuvDeep, Words20ToBgr24AndBgrx) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant sv(variant);
    for (uint32_t w : {2u, 6u, 130u, 1155u})
      for (bool flip : {false, true})
        for (uint32_t px : {3u, 4u}) {
          const uint32_t h = 2;
          const auto src = testsupport::RandomWords(size_t(w) * h * 2, 1024, w * 7 + px);
          std::vector<uint8_t> dst(size_t(w) * h * px, 0x3C);
          CIppImageConverter conv;
          const bool ok = px == 3 ? conv.YUV422_20BitToBGR24(w, h, (void*)src.data(), dst.data(), flip)
                                  : conv.YUV422_20BitToBGRx(w, h, (void*)src.data(), dst.data(), flip);
          ASSERT_TRUE(ok);
          for (uint32_t row = 0; row < h; ++row)
            for (uint32_t x = 0; x < w; ++x) {
              // Rows of 2w words, pairs Y0 U Y1 V from the row's start; the V of
              // an odd width's last pixel lies past the row and counts as 0.
              const size_t pair = size_t(row) * 2 * w + x / 2 * 4;
              const auto word = [&](size_t i) { return testsupport::Word(src, i) >> 2; };
              const int v = (x | 1) < w ? word(pair + 3) : 0;
              const auto e = FormulaBgr(word(pair + 2 * (x & 1)), word(pair + 1), v);
              const uint8_t* d = &dst[(size_t(flip ? h - 1 - row : row) * w + x) * px];
              ASSERT_TRUE(d[0] == e[0] && d[1] == e[1] && d[2] == e[2])
                  << kestrelink::VariantName(variant) << " w " << w << " px " << px << " row " << row << " x " << x;
              if (px == 4) {
                ASSERT_EQ(d[3], 0x3C);
              }
            }
        }
  }
}

TEST(YuvDeep, VectorRowsMatchPortable) {
  namespace rows = kestrelink::rows;
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant sv(variant);
    for (uint32_t w : {1u, 5u, 6u, 11u, 12u, 13u, 47u, 48u, 577u, 1283u}) {
      const uint32_t covered = (w + 5) / 6 * 6;
      const auto src = RandomBytes(size_t(covered) / 6 * 16 + 64, w);
      std::vector<uint16_t> want(3 * (covered + rows::kPlanePadding)), got(want.size());
      uint16_t* p = want.data();
      uint16_t* q = got.data();
      const size_t n = covered + rows::kPlanePadding;
      rows::Packed10ToPlanesPortable(src.data(), p, p + n, p + 2 * n, w);
      rows::YuvRows().p10_to_planes(src.data(), q, q + n, q + 2 * n, w);
      for (int c = 0; c < 3; ++c)
        for (uint32_t x = 0; x < covered; ++x)
          ASSERT_EQ(got[c * n + x], want[c * n + x]) << kestrelink::VariantName(variant) << " w " << w << " x " << x;
      const auto words = RandomBytes(4 * size_t(w), w + 1);
      std::vector<uint16_t> a(3 * size_t(w)), b(a.size());
      rows::Words20ToPlanesPortable(words.data(), a.data(), a.data() + w, a.data() + 2 * w, w);
      rows::YuvRows().w20_to_planes(words.data(), b.data(), b.data() + w, b.data() + 2 * w, w);
      ASSERT_EQ(a, b) << kestrelink::VariantName(variant) << " 20-bit w " << w;
    }
  }
}

TEST(YuvDeep, NullFramesAreRefused) {
  CIppImageConverter conv;
  uint8_t buf[64] = {};
  EXPECT_FALSE(conv.YUV422_10BitPPToBGR24(6, 1, nullptr, buf, false));
  EXPECT_FALSE(conv.YUV422_20BitToBGRx(2, 1, buf, nullptr, false));
}

}  // namespace
