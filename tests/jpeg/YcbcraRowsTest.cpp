// The RGBA to YCbCrA rows of the general JPEG library's four-component
// form, in every variant the machine runs, against the JFIF transform in
// 16-bit fixed point worked out here with real division and floor.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "jpeg/front/YcbcraRows.h"
#include "support/TestSupport.h"

using kestrelink::jpegfront::RgbaRowToYcbcra;
using testsupport::RunnableVariants;
using testsupport::ScopedVariant;

namespace {

// floor((weighted sum + 32768) / 65536), plus the chroma offset, limited to 0 .. 255.
int Fixed(int wr, int wg, int wb, int r, int g, int b, int offset) {
  const double sum = double(wr) * r + double(wg) * g + double(wb) * b + 32768.0;
  return std::clamp(int(std::floor(sum / 65536.0)) + offset, 0, 255);
}

std::vector<uint8_t> Expected(const std::vector<uint8_t>& rgba) {
  std::vector<uint8_t> out(rgba.size());
  for (size_t i = 0; i < rgba.size(); i += 4) {
    const int r = rgba[i], g = rgba[i + 1], b = rgba[i + 2];
    out[i] = uint8_t(Fixed(19595, 38470, 7471, r, g, b, 0));
    out[i + 1] = uint8_t(Fixed(-11059, -21709, 32768, r, g, b, 128));
    out[i + 2] = uint8_t(Fixed(32768, -27439, -5329, r, g, b, 128));
    out[i + 3] = rgba[i + 3];
  }
  return out;
}

TEST(YcbcraRows, KnownColours) {
  struct Case {
    uint8_t rgba[4], ycbcra[4];
  };
  // Pure blue's Cb and pure red's Cr come to 256 and stop at 255.
  const Case cases[] = {
      {{0, 0, 0, 7}, {0, 128, 128, 7}},       {{255, 255, 255, 255}, {255, 128, 128, 255}},
      {{255, 0, 0, 0}, {76, 85, 255, 0}},     {{0, 255, 0, 1}, {150, 44, 21, 1}},
      {{0, 0, 255, 128}, {29, 255, 107, 128}}, {{128, 128, 128, 9}, {128, 128, 128, 9}},
  };
  // Each colour four times over in one row of 24 pixels, then alone (a row of one).
  std::vector<uint8_t> row, expected;
  for (const Case& c : cases)
    for (int i = 0; i < 4; ++i) {
      row.insert(row.end(), c.rgba, c.rgba + 4);
      expected.insert(expected.end(), c.ycbcra, c.ycbcra + 4);
    }
  for (kestrelink::CpuVariant v : RunnableVariants()) {
    ScopedVariant scoped(v);
    std::vector<uint8_t> out(row.size());
    RgbaRowToYcbcra(row.data(), out.data(), int(row.size() / 4));
    EXPECT_EQ(out, expected) << kestrelink::VariantName(v);
    for (const Case& c : cases) {
      uint8_t one[4] = {};
      RgbaRowToYcbcra(c.rgba, one, 1);
      EXPECT_EQ(std::vector<uint8_t>(one, one + 4), std::vector<uint8_t>(c.ycbcra, c.ycbcra + 4))
          << kestrelink::VariantName(v) << " rgb " << int(c.rgba[0]) << " " << int(c.rgba[1]) << " " << int(c.rgba[2]);
    }
  }
}

// Every red level against a grid of green and blue with both ends, in rows of
// an odd length, so that whole registers and the tail are both checked.
TEST(YcbcraRows, SweepMatchesFixedPoint) {
  std::vector<int> levels;
  for (int v = 0; v < 255; v += 5) levels.push_back(v);
  levels.push_back(254);
  levels.push_back(255);
  std::vector<uint8_t> rgba;
  for (int r = 0; r < 256; ++r)
    for (int g : levels)
      for (int b : levels) rgba.insert(rgba.end(), {uint8_t(r), uint8_t(g), uint8_t(b), uint8_t(r ^ g ^ b)});
  rgba.insert(rgba.end(), {255, 0, 254, 1});  // one more: not a multiple of four pixels
  const std::vector<uint8_t> expected = Expected(rgba);
  const int width = int(rgba.size() / 4);
  for (kestrelink::CpuVariant v : RunnableVariants()) {
    ScopedVariant scoped(v);
    std::vector<uint8_t> out(rgba.size() + 4, 0xEE);
    RgbaRowToYcbcra(rgba.data(), out.data(), width);
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), out.begin())) << kestrelink::VariantName(v);
    EXPECT_EQ(out[rgba.size()], 0xEE) << "wrote past the row, " << kestrelink::VariantName(v);
  }
}

}  // namespace
