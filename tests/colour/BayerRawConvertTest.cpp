// Raw frames through CIppBayerCorrector: each pattern's colours land in the
// right channels, the 16-bit narrowing, BGRx's untouched fourth byte, flips,
// the 12-bit manual table that wraps in 8-bit output, look frames answered
// false with the image left as the demosaic wrote it, and the refusals.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <utility>

#include "BayerTestSupport.h"

namespace {

using bayertest::Rgb;
using bayertest::UniformMosaic;
using testsupport::RunnableVariants;
using testsupport::ScopedVariant;

constexpr int kW = 18, kH = 10;

enum class Target { Bgr24, Bgrx, Bgr48 };

struct RawSetup {
  int bits;  // 8 or 16 bits a raw sample
  uint32_t depth;
  int pattern;
  CORRECTION_MODE mode = CORRECTION_NONE;
  CORRECTIONAL_ALG alg = CB_ALG_GRAY_OFFSET;
  Rgb balance{0, 0, 0};
};

// Converts a raw frame; dst starts filled with 0x5A bytes.
bool Convert(const RawSetup& s, Target target, const void* raw, std::vector<uint8_t>& dst, bool flip) {
  CIppBayerCorrector c;
  c.SetBayerPattern(BAYERPATTERN(s.pattern));
  c.SetColorCorrectionMode(s.mode);
  c.SetCBAlgorithm(s.alg);
  c.SetColorBalance(s.balance[0], s.balance[1], s.balance[2]);
  EXPECT_TRUE(c.SetImageInfo4CB(kW, kH, uint32_t(s.bits), s.depth, 100, false));
  dst.assign(size_t(kW) * kH * (target == Target::Bgr48 ? 6 : target == Target::Bgrx ? 4 : 3), 0x5A);
  void* src = const_cast<void*>(raw);
  switch (target) {
    case Target::Bgr24: return c.RawConvertToBGR24(src, dst.data(), flip);
    case Target::Bgrx: return c.RawConvertToBGRx(src, dst.data(), flip);
    default: return c.RawConvertToBGR48(src, dst.data(), flip);
  }
}

// Every pixel of an 8-bit target: bytes B, G, R (and the kept fourth byte).
void ExpectEveryPixel(const std::vector<uint8_t>& dst, int step, Rgb rgb) {
  for (size_t p = 0; p < dst.size() / step; ++p) {
    const uint8_t* px = dst.data() + p * step;
    ASSERT_EQ(Rgb({px[2], px[1], px[0]}), rgb) << "pixel " << p;
    if (step == 4) {
      ASSERT_EQ(px[3], 0x5A) << "fourth byte of pixel " << p;
    }
  }
}

TEST(BayerRawConvert, EachPatternPutsItsColoursInTheirChannels) {
  const Rgb colour8{200, 120, 30}, colour12{3200, 1920, 480};  // the same colour at 12 bits: / 16
  {
    for (int pattern = 0; pattern < 6; ++pattern) {  // 4 and 5 read as GBRG
      SCOPED_TRACE("pattern " + std::to_string(pattern));
      const auto raw8 = UniformMosaic<uint8_t>(pattern, kW, kH, colour8);
      const auto raw16 = UniformMosaic<uint16_t>(pattern, kW, kH, colour12);
      std::vector<uint8_t> dst;
      ASSERT_TRUE(Convert({8, 8, pattern}, Target::Bgr24, raw8.data(), dst, false));
      ExpectEveryPixel(dst, 3, colour8);
      ASSERT_TRUE(Convert({8, 8, pattern}, Target::Bgrx, raw8.data(), dst, true));
      ExpectEveryPixel(dst, 4, colour8);
      ASSERT_TRUE(Convert({16, 12, pattern}, Target::Bgr24, raw16.data(), dst, false));
      ExpectEveryPixel(dst, 3, colour8);
      ASSERT_TRUE(Convert({16, 12, pattern}, Target::Bgrx, raw16.data(), dst, false));
      ExpectEveryPixel(dst, 4, colour8);
      ASSERT_TRUE(Convert({16, 12, pattern}, Target::Bgr48, raw16.data(), dst, false));
      const uint16_t* words = reinterpret_cast<const uint16_t*>(dst.data());
      for (size_t p = 0; p < size_t(kW) * kH; ++p)
        ASSERT_EQ(Rgb({words[3 * p + 2], words[3 * p + 1], words[3 * p]}), colour12) << "pixel " << p;
    }
  }
}

TEST(BayerRawConvert, NarrowingShiftsByDepthMinusEight) {
  struct Case {
    uint32_t depth;
    Rgb raw, expected;
  } cases[] = {
      {12, {4095, 2048, 17}, {255, 128, 1}},
      {8, {255, 100, 3}, {255, 100, 3}},
      {10, {1023, 512, 4}, {255, 128, 1}},
      {16, {65535, 256, 255}, {255, 1, 0}},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE("depth " + std::to_string(k.depth));
    const auto raw = UniformMosaic<uint16_t>(BAYER_RGGB, kW, kH, k.raw);
    std::vector<uint8_t> dst;
    ASSERT_TRUE(Convert({16, k.depth, BAYER_RGGB}, Target::Bgr24, raw.data(), dst, false));
    ExpectEveryPixel(dst, 3, k.expected);
  }
}

TEST(BayerRawConvert, FlipTurnsRowsOverAndNothingElse) {
  std::mt19937 rng(7);
  std::vector<uint8_t> raw8(size_t(kW) * kH);
  std::vector<uint16_t> raw16(size_t(kW) * kH);
  for (auto& s : raw8) s = uint8_t(rng());
  for (auto& s : raw16) s = uint16_t(rng() % 4096);
  for (const auto variant : RunnableVariants()) {
    ScopedVariant scoped(variant);
    for (const Target target : {Target::Bgr24, Target::Bgrx, Target::Bgr48})
      for (const int bits : {8, 16}) {
        if (target == Target::Bgr48 && bits == 8) continue;
        for (const CORRECTION_MODE mode : {CORRECTION_NONE, CORRECTION_MANUAL}) {
          SCOPED_TRACE(std::string(kestrelink::VariantName(variant)) + " target " + std::to_string(int(target)) +
                       " bits " + std::to_string(bits) + " mode " + std::to_string(mode));
          const RawSetup s{bits, bits == 8 ? 8u : 12u, BAYER_BGGR, mode, CB_ALG_GRAY_OFFSET, {5, -3, 9}};
          const void* raw = bits == 8 ? static_cast<const void*>(raw8.data()) : raw16.data();
          std::vector<uint8_t> plain, flipped;
          ASSERT_TRUE(Convert(s, target, raw, plain, false));
          ASSERT_TRUE(Convert(s, target, raw, flipped, true));
          const size_t row = plain.size() / kH;
          for (int y = 0; y < kH; ++y)
            ASSERT_TRUE(std::equal(plain.begin() + y * row, plain.begin() + (y + 1) * row,
                                   flipped.begin() + (kH - 1 - y) * row))
                << "row " << y;
        }
      }
  }
}

TEST(BayerRawConvert, TwelveBitManualTableWrapsInEightBitOutput) {
  // Red 4000 narrows to 250; the table of depth 12 holds 250 + 10 = 260,
  // whose low byte is 4.
  const auto raw = UniformMosaic<uint16_t>(BAYER_GRBG, kW, kH, {4000, 1600, 800});
  std::vector<uint8_t> dst;
  ASSERT_TRUE(Convert({16, 12, BAYER_GRBG, CORRECTION_MANUAL, CB_ALG_GRAY_OFFSET, {10, 1, -60}}, Target::Bgr24,
                      raw.data(), dst, false));
  ExpectEveryPixel(dst, 3, {4, 101, 0});
  ASSERT_TRUE(Convert({16, 12, BAYER_GRBG, CORRECTION_MANUAL, CB_ALG_GRAY_OFFSET, {10, 1, -60}}, Target::Bgrx,
                      raw.data(), dst, false));
  ExpectEveryPixel(dst, 4, {4, 101, 0});
  // BGR48 keeps 16 bits of the same table: 4010, 1601, 740.
  ASSERT_TRUE(Convert({16, 12, BAYER_GRBG, CORRECTION_MANUAL, CB_ALG_GRAY_OFFSET, {10, 1, -60}}, Target::Bgr48,
                      raw.data(), dst, false));
  const uint16_t* words = reinterpret_cast<const uint16_t*>(dst.data());
  EXPECT_EQ(Rgb({words[2], words[1], words[0]}), Rgb({4010, 1601, 740}));
}

TEST(BayerRawConvert, AutomaticTablesMeasureTheDemosaicedFrame) {
  const auto raw = UniformMosaic<uint8_t>(BAYER_RGGB, kW, kH, {90, 120, 150});
  std::vector<uint8_t> dst;
  ASSERT_TRUE(Convert({8, 8, BAYER_RGGB, CORRECTION_AUTO, CB_ALG_GRAY_OFFSET}, Target::Bgr24, raw.data(), dst, true));
  ExpectEveryPixel(dst, 3, {120, 120, 120});
}

TEST(BayerRawConvert, LookFramesAnswerFalseAfterTheDemosaic) {
  const Rgb colour{200, 120, 30};
  const auto raw8 = UniformMosaic<uint8_t>(BAYER_BGGR, kW, kH, colour);
  const auto raw16 = UniformMosaic<uint16_t>(BAYER_BGGR, kW, kH, {3200, 1920, 480});
  for (const auto& [mode, alg] : {std::pair{CORRECTION_LOOK, CB_ALG_GRAY_OFFSET}, std::pair{CORRECTION_AUTO, CB_ALG_LOOK_1D},
                                  std::pair{CORRECTION_AUTO, CB_ALG_LOOK_3D_EXACT}, std::pair{CORRECTION_MODE(7), CB_ALG_GRAY_GAIN}}) {
    SCOPED_TRACE("mode " + std::to_string(mode) + " algorithm " + std::to_string(alg));
    const RawSetup s8{8, 8, BAYER_BGGR, mode, alg, {0, 0, 0}}, s16{16, 12, BAYER_BGGR, mode, alg, {0, 0, 0}};
    std::vector<uint8_t> dst;
    EXPECT_FALSE(Convert(s8, Target::Bgr24, raw8.data(), dst, true));
    ExpectEveryPixel(dst, 3, {colour[2], colour[1], colour[0]});  // left in RGB order for the look
    EXPECT_FALSE(Convert(s8, Target::Bgrx, raw8.data(), dst, true));
    ExpectEveryPixel(dst, 4, colour);
    EXPECT_FALSE(Convert(s16, Target::Bgr24, raw16.data(), dst, false));
    ExpectEveryPixel(dst, 3, colour);
    EXPECT_FALSE(Convert(s16, Target::Bgr48, raw16.data(), dst, false));
    const uint16_t* words = reinterpret_cast<const uint16_t*>(dst.data());
    EXPECT_EQ(Rgb({words[0], words[1], words[2]}), Rgb({3200, 1920, 480}));  // RGB order
  }
}

TEST(BayerRawConvert, RefusalsLeaveTheDestination) {
  std::vector<uint8_t> raw(size_t(kW) * kH * 2, 1), dst(size_t(kW) * kH * 6, 0x5A);
  const auto untouched = dst;
  CIppBayerCorrector c;
  EXPECT_FALSE(c.RawConvertToBGR24(raw.data(), dst.data(), false));  // not set up
  ASSERT_TRUE(c.SetImageInfo4CB(kW, kH, 8, 8, 100, false));
  EXPECT_FALSE(c.RawConvertToBGR48(raw.data(), dst.data(), false));  // 8-bit raw has no BGR48
  EXPECT_FALSE(c.RawConvertToBGR24(nullptr, dst.data(), false));
  EXPECT_FALSE(c.RawConvertToBGRx(raw.data(), nullptr, false));
  c.ReleaseCBResources();
  ASSERT_TRUE(c.SetImageInfo4CB(kW, kH, 12, 12, 101, false));  // accepted, but no path takes 12 bits
  EXPECT_FALSE(c.RawConvertToBGR24(raw.data(), dst.data(), false));
  EXPECT_FALSE(c.RawConvertToBGRx(raw.data(), dst.data(), false));
  EXPECT_FALSE(c.RawConvertToBGR48(raw.data(), dst.data(), false));
  EXPECT_EQ(dst, untouched);
}

}  // namespace
