// Plain path of the mono conversions, at every processor variant, against
// per-pixel expectations written from the layout rules.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <cstring>
#include <functional>

#include "support/TestSupport.h"

namespace {

using testsupport::Word;

struct MonoCase {
  const char* name;
  int srcBytes, dstBytes, depth;
  std::function<bool(CIppImageConverter&, uint32_t, uint32_t, void*, void*, bool)> call;
  // Expected output bytes of one pixel from its source sample.
  std::function<std::vector<uint8_t>(uint32_t sample)> pixel;
};

std::vector<uint8_t> Grey4(uint32_t v) { return {uint8_t(v), uint8_t(v), uint8_t(v), 0}; }
std::vector<uint8_t> Grey3(uint32_t v) { return {uint8_t(v), uint8_t(v), uint8_t(v)}; }
std::vector<uint8_t> Le16(uint32_t v) { return {uint8_t(v), uint8_t(v >> 8)}; }

const std::vector<MonoCase>& Cases() {
  using C = CIppImageConverter;
  static const std::vector<MonoCase> cases = {
      {"Mono8ToBGRx", 1, 4, 8, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono8ToBGRx(w, h, s, d, f); }, Grey4},
      {"Mono8ToBGR", 1, 3, 8, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono8ToBGR(w, h, s, d, f); }, Grey3},
      {"Mono8ToMono8", 1, 1, 8, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono8ToMono8(w, h, s, d, f); },
       [](uint32_t s) { return std::vector<uint8_t>{uint8_t(s)}; }},
      {"Mono8ToMono16MSB", 1, 2, 8, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono8ToMono16MSB(w, h, s, d, f); },
       [](uint32_t s) { return Le16(s * 256); }},
      {"Mono16ToBGRx d12", 2, 4, 12, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToBGRx(w, h, 12, s, d, f); },
       [](uint32_t s) { return Grey4((s / 16) % 256); }},
      {"Mono16ToBGRx d10", 2, 4, 10, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToBGRx(w, h, 10, s, d, f); },
       [](uint32_t s) { return Grey4((s / 4) % 256); }},
      {"Mono16ToBGRx d16", 2, 4, 16, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToBGRx(w, h, 16, s, d, f); },
       [](uint32_t s) { return Grey4(s / 256); }},
      {"Mono16ToBGR d12", 2, 3, 12, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToBGR(w, h, 12, s, d, f); },
       [](uint32_t s) { return Grey3((s / 16) % 256); }},
      {"Mono16ToBGR d14", 2, 3, 14, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToBGR(w, h, 14, s, d, f); },
       [](uint32_t s) { return Grey3((s / 64) % 256); }},
      {"Mono16ToMono8 d12", 2, 1, 12, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToMono8(w, h, 12, s, d, f); },
       [](uint32_t s) { return std::vector<uint8_t>{uint8_t((s / 16) % 256)}; }},
      {"Mono16ToMono8 d8", 2, 1, 8, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToMono8(w, h, 8, s, d, f); },
       [](uint32_t s) { return std::vector<uint8_t>{uint8_t(s % 256)}; }},
      {"Mono16ToMono16", 2, 2, 12, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToMono16(w, h, 12, s, d, f); }, Le16},
      {"Mono16ToMono16MSB d12", 2, 2, 12, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToMono16MSB(w, h, 12, s, d, f); },
       [](uint32_t s) { return Le16((s * 16) % 65536); }},
      {"Mono16ToMono16MSB d10", 2, 2, 10, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToMono16MSB(w, h, 10, s, d, f); },
       [](uint32_t s) { return Le16((s * 64) % 65536); }},
      {"SwapWords", 2, 2, 16, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.SwapWords(w, h, s, d, f); },
       [](uint32_t s) { return std::vector<uint8_t>{uint8_t(s >> 8), uint8_t(s)}; }},
  };
  return cases;
}

// Samples span the whole 16-bit range, so bits above the depth are present
// and the wrap of the narrowing shift is exercised everywhere.
void CheckCase(const MonoCase& c, uint32_t w, uint32_t h, bool flip) {
  CIppImageConverter conv;
  const size_t pixels = size_t(w) * h;
  std::vector<uint8_t> src = c.srcBytes == 1 ? testsupport::RandomBytes(pixels, w * 31 + h)
                                             : testsupport::RandomWords(pixels, 65536, w * 31 + h);
  std::vector<uint8_t> dst(pixels * c.dstBytes + 16, 0xA5);
  ASSERT_TRUE(c.call(conv, w, h, src.data(), dst.data(), flip));
  for (uint32_t y = 0; y < h; ++y) {
    const uint32_t outRow = flip ? h - 1 - y : y;
    for (uint32_t x = 0; x < w; ++x) {
      const size_t i = size_t(y) * w + x;
      const uint32_t s = c.srcBytes == 1 ? src[i] : Word(src, i);
      const auto want = c.pixel(s);
      for (int b = 0; b < c.dstBytes; ++b)
        ASSERT_EQ(dst[(size_t(outRow) * w + x) * c.dstBytes + b], want[b])
            << c.name << " w=" << w << " h=" << h << " flip=" << flip << " x=" << x << " y=" << y << " byte " << b;
    }
  }
  for (size_t i = pixels * c.dstBytes; i < dst.size(); ++i) ASSERT_EQ(dst[i], 0xA5) << c.name << ": wrote past the frame";
}

TEST(MonoPlain, EveryMethodEveryVariantOddWidthsAndFlip) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    SCOPED_TRACE(kestrelink::VariantName(variant));
    for (const auto& c : Cases())
      for (uint32_t w : {1u, 7u, 15u, 16u, 17u, 31u, 33u, 63u, 65u, 100u, 257u})
        for (bool flip : {false, true}) CheckCase(c, w, 5, flip);
  }
}

TEST(MonoPlain, WrapNotClipAboveTheDepth) {
  CIppImageConverter conv;
  uint16_t src[3] = {0x1FFF, 0x2010, 0x0FFF};
  uint32_t dst[3];
  ASSERT_TRUE(conv.Mono16ToBGRx(3, 1, 12, src, dst, false));
  EXPECT_EQ(dst[0], 0x00FFFFFFu);  // 0x1FFF >> 4 = 0x1FF, low byte 0xFF
  EXPECT_EQ(dst[1], 0x00010101u);  // 0x2010 >> 4 = 0x201, low byte 0x01
  EXPECT_EQ(dst[2], 0x00FFFFFFu);
}

TEST(MonoPlain, DepthEightTakesTheLowByte) {
  CIppImageConverter conv;
  uint16_t src[2] = {0x1234, 0x00AB};
  uint8_t dst[2];
  ASSERT_TRUE(conv.Mono16ToMono8(2, 1, 8, src, dst, false));
  EXPECT_EQ(dst[0], 0x34);
  EXPECT_EQ(dst[1], 0xAB);
}

TEST(MonoPlain, Mono16ToMono16KeepsBitsAboveTheDepth) {
  CIppImageConverter conv;
  uint16_t src[4] = {0xFFFF, 0x8001, 0x1000, 0x0FFF};
  uint16_t dst[4] = {};
  for (uint32_t d : {8u, 10u, 12u, 16u}) {
    ASSERT_TRUE(conv.Mono16ToMono16(4, 1, d, src, dst, false));
    EXPECT_EQ(0, std::memcmp(src, dst, sizeof src)) << "d=" << d;
  }
}

TEST(MonoPlain, Mono8ToBGRxWritesTheFourthByteZero) {
  CIppImageConverter conv;
  uint8_t src[2] = {0x80, 0xFF};
  uint8_t dst[8];
  std::memset(dst, 0x77, sizeof dst);
  ASSERT_TRUE(conv.Mono8ToBGRx(2, 1, src, dst, false));
  EXPECT_EQ(dst[3], 0);
  EXPECT_EQ(dst[7], 0);
}

TEST(MonoPlain, ZeroHeightReturnsTrueAndTouchesNothing) {
  CIppImageConverter conv;
  uint8_t src[64] = {1};
  uint8_t dst[256];
  std::memset(dst, 0x5A, sizeof dst);
  EXPECT_TRUE(conv.Mono8ToBGRx(16, 0, src, dst, false));
  EXPECT_TRUE(conv.Mono8ToBGR(16, 0, src, dst, true));
  EXPECT_TRUE(conv.Mono8ToMono8(16, 0, src, dst, false));
  EXPECT_TRUE(conv.Mono16ToBGRx(16, 0, 12, src, dst, false));
  EXPECT_TRUE(conv.Mono16ToMono16(16, 0, 12, src, dst, true));
  EXPECT_TRUE(conv.SwapWords(16, 0, src, dst, false));
  for (uint8_t b : dst) ASSERT_EQ(b, 0x5A);
}

TEST(MonoPlain, Mono16ToMono16MSBFailsOnAnEmptyFrameAndLeavesBuffersAlone) {
  // The shift primitive refuses a zero size; the destination is the caller's
  // and is neither written nor released.
  CIppImageConverter conv;
  std::vector<uint8_t> src(64, 1), dst(64, 0x5A);
  EXPECT_FALSE(conv.Mono16ToMono16MSB(16, 0, 12, src.data(), dst.data(), false));
  EXPECT_FALSE(conv.Mono16ToMono16MSB(0, 2, 12, src.data(), dst.data(), true));
  EXPECT_FALSE(conv.Mono16ToMono16MSB(16, 2, 12, nullptr, dst.data(), false));
  for (uint8_t b : dst) ASSERT_EQ(b, 0x5A);
}

TEST(MonoPlain, FlipOnlyReversesRows) {
  // Row 0 of the flipped output is the last row of the plain output and no
  // other difference exists.
  CIppImageConverter conv;
  const uint32_t w = 37, h = 9;
  auto src = testsupport::RandomWords(w * h, 4096, 7);
  std::vector<uint8_t> plain(w * h * 3), flipped(w * h * 3);
  ASSERT_TRUE(conv.Mono16ToBGR(w, h, 12, src.data(), plain.data(), false));
  ASSERT_TRUE(conv.Mono16ToBGR(w, h, 12, src.data(), flipped.data(), true));
  for (uint32_t r = 0; r < h; ++r)
    EXPECT_EQ(0, std::memcmp(&flipped[r * w * 3], &plain[(h - 1 - r) * w * 3], w * 3)) << "row " << r;
}

}  // namespace
