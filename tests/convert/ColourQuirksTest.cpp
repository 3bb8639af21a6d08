// The worked examples and the settled oddities of the colour family: wraps
// instead of clips, plane orders that differ between methods, fourth bytes
// kept or zeroed, the two BGR64 shifts, the paths that disagree, and the
// BGR10PixelPacked third channel that lands in byte 0 of the frame.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <cstring>
#include <set>

#include "platform/OpenMP.h"
#include "support/TestSupport.h"

namespace {

using testsupport::ScopedTeam;

TEST(ColourQuirks, BGR48ToBGRxWrapsAboveTheDepth) {
  CIppImageConverter conv;
  const uint16_t src[6] = {0x3FF, 0x7FF, 0x400, 0x3FF, 0x3FF, 0x3FF};
  uint8_t dst[8];
  std::memset(dst, 0x77, sizeof dst);
  ASSERT_TRUE(conv.BGR48ToBGRx(2, 1, 10, const_cast<uint16_t*>(src), dst, false));
  EXPECT_EQ(dst[0], 0xFF);
  EXPECT_EQ(dst[1], 0xFF);  // 0x7FF >> 2 = 0x1FF, low byte 0xFF
  EXPECT_EQ(dst[2], 0x00);  // 0x400 >> 2 = 0x100, low byte 0
  EXPECT_EQ(dst[3], 0x77);  // the fourth byte is not written
}

TEST(ColourQuirks, WhiteInFiveFiveFiveAndFiveSixFive) {
  CIppImageConverter conv;
  uint16_t white555 = 0x7FFF, white565 = 0xFFFF;
  uint8_t bgr[3];
  ASSERT_TRUE(conv.BGR555PackedToBGR24(1, 1, &white555, bgr, false));
  EXPECT_EQ(bgr[0], 0xF8);
  EXPECT_EQ(bgr[1], 0xF8);
  EXPECT_EQ(bgr[2], 0xF8);
  uint8_t bgrx[4] = {0, 0, 0, 0x42};
  ASSERT_TRUE(conv.BGR565PackedToBGRx(1, 1, &white565, bgrx, false));
  EXPECT_EQ(bgrx[0], 0xF8);
  EXPECT_EQ(bgrx[1], 0xFC);
  EXPECT_EQ(bgrx[2], 0xF8);
  EXPECT_EQ(bgrx[3], 0x42);
}

TEST(ColourQuirks, GvspV1FourthByteIsZeroOnThePlainPathOnly) {
  uint8_t src[4] = {0x3F, 0x10, 0x20, 0x30};
  uint8_t plain[4] = {9, 9, 9, 9}, mapped[4] = {9, 9, 9, 9};
  CIppImageConverter conv;
  ASSERT_TRUE(conv.GVSPBGR10v1ToBGRx(1, 1, src, plain, false));
  EXPECT_EQ(plain[0], 0x10);
  EXPECT_EQ(plain[1], 0x20);
  EXPECT_EQ(plain[2], 0x30);
  EXPECT_EQ(plain[3], 0);
  conv.SetImageColorMap(true);
  ASSERT_TRUE(conv.GVSPBGR10v1ToBGRx(1, 1, src, mapped, false));
  EXPECT_EQ(mapped[0], 0x10);  // (0x10 << 2 | 3) >> 2 through the identity 10-bit table
  EXPECT_EQ(mapped[3], 9);
}

TEST(ColourQuirks, PlanarBGRxAndBGR24ExchangeRedAndBlueOnThePlainPath) {
  CIppImageConverter conv;
  uint8_t p1[2] = {10, 11}, p2[2] = {20, 21}, p3[2] = {30, 31};
  uint8_t bgrx[8], bgr[6];
  ASSERT_TRUE(conv.BGR24PToBGRx(2, 1, p1, p2, p3, bgrx, false));
  ASSERT_TRUE(conv.BGR24PToBGR24(2, 1, p1, p2, p3, bgr, false));
  for (int x = 0; x < 2; ++x) {
    EXPECT_EQ(bgrx[4 * x], p3[x]);
    EXPECT_EQ(bgrx[4 * x + 2], p1[x]);
    EXPECT_EQ(bgrx[4 * x + 3], 0);
    EXPECT_EQ(bgr[3 * x], p1[x]);
    EXPECT_EQ(bgr[3 * x + 2], p3[x]);
  }
}

TEST(ColourQuirks, TenAndTwelveBitPlanesStepOneIndexLate) {
  CIppImageConverter conv;
  uint16_t p10[4] = {4, 5, 1023, 0}, p12[4] = {16, 17, 4095, 0};
  uint32_t out[4];
  ASSERT_TRUE(conv.BGR30PToBGRx(4, 1, p10, p10, p10, out, false));
  EXPECT_EQ(out[0], 0x000000u);
  EXPECT_EQ(out[1], 0x010101u);
  EXPECT_EQ(out[2], 0xFFFFFFu);
  EXPECT_EQ(out[3], 0u);
  ASSERT_TRUE(conv.BGR36PToBGRx(4, 1, p12, p12, p12, out, false));
  EXPECT_EQ(out[0], 0x000000u);
  EXPECT_EQ(out[1], 0x010101u);
  EXPECT_EQ(out[2], 0xFFFFFFu);
}

TEST(ColourQuirks, BGR24ToBGRxKeepsTheFourthBytesFlippedOrNot) {
  CIppImageConverter conv;
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    for (bool flip : {false, true}) {
      const uint32_t w = 37, h = 3;
      const auto src = testsupport::RandomBytes(3 * w * h, 5);
      auto dst = testsupport::RandomBytes(4 * w * h, 6);
      const auto before = dst;
      ASSERT_TRUE(conv.BGR24ToBGRx(w, h, const_cast<uint8_t*>(src.data()), dst.data(), flip));
      for (size_t p = 0; p < size_t(w) * h; ++p) ASSERT_EQ(dst[4 * p + 3], before[4 * p + 3]) << "pixel " << p;
    }
  }
}

TEST(ColourQuirks, TheTwoBGR64NarrowingsDiffer) {
  CIppImageConverter conv;
  uint16_t src[4] = {0x1234, 0xABCD, 0x0FF0, 0x5555};
  uint8_t bgrx[4], bgr[3];
  ASSERT_TRUE(conv.BGR64ToBGRx(1, 1, 16, src, bgrx, false));
  ASSERT_TRUE(conv.BGR64ToBGR24(1, 1, 16, src, bgr, false));
  EXPECT_EQ(bgrx[0], 0x34);  // 16 - d = 0: the low byte
  EXPECT_EQ(bgr[0], 0x12);   // d - 8 = 8: the high byte
  ASSERT_TRUE(conv.BGR64ToBGRx(1, 1, 12, src, bgrx, false));
  ASSERT_TRUE(conv.BGR64ToBGR24(1, 1, 12, src, bgr, false));
  for (int i = 0; i < 3; ++i) EXPECT_EQ(bgrx[i], bgr[i]) << "channel " << i;  // both bits 4-11 at d = 12
  EXPECT_EQ(bgr[1], 0xBC);
}

TEST(ColourQuirks, PhoenixPlainAndColourMapTakeDifferentBitsForTheThirdChannel) {
  // R in bits 22-31 is 0x2AB: the plain path keeps the top byte, bits 24-31;
  // the colour map (identity, 10 bits to 8) indexes bits 20-29.
  const uint32_t word = 0x2ABu << 22 | 0x3u << 20;
  uint8_t plain[3], mapped[3];
  CIppImageConverter conv;
  ASSERT_TRUE(conv.BGR10PixelPackedPhoenixToBGR24(1, 1, const_cast<uint32_t*>(&word), plain, false));
  conv.SetImageColorMap(true);
  ASSERT_TRUE(conv.BGR10PixelPackedPhoenixToBGR24(1, 1, const_cast<uint32_t*>(&word), mapped, false));
  EXPECT_EQ(plain[2], word >> 24);
  EXPECT_EQ(mapped[2], ((word >> 20) & 0x3FF) >> 2);
  EXPECT_NE(plain[2], mapped[2]);
}

TEST(ColourQuirks, ColourMapIndexRulesOfBGR10AndFiveSixFive) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  // BGR10PixelPacked masks its indices to nine bits: a first channel of
  // 0x3FF reads entry 0x1FF of the identity table, 0x1FF >> 2, not 0xFF.
  uint32_t words[2] = {0, 0x3FF};
  uint8_t bgr[6] = {0, 0, 0, 0, 0, 0x66};
  ASSERT_TRUE(conv.BGR10PixelPackedToBGR24(2, 1, words, bgr, false));
  EXPECT_EQ(bgr[3], 0x7F);
  EXPECT_EQ(bgr[5], 0x66);  // the pixel's third byte is left alone
  // The 5-6-5 R index, high byte >> 2, takes G's top bit: G 0x20 alone gives R index 1.
  uint16_t g = 0x20 << 5;
  uint8_t out[3];
  ASSERT_TRUE(conv.BGR565PackedToBGR24(1, 1, &g, out, false));
  EXPECT_EQ(out[2], 1);  // identity 6-bit table, 8 bits out: entries as they stand
  EXPECT_EQ(out[1], 0x20);
}

// Third channel of a BGR10PixelPacked word, c >> 6 on the plain path.
uint8_t Third(const std::vector<uint8_t>& src, size_t pixel) {
  return uint8_t((src[4 * pixel + 2] | src[4 * pixel + 3] << 8) >> 6);
}

TEST(ColourQuirks, BGR10ThirdChannelLandsInByteZero) {
  CIppImageConverter conv;
  const uint32_t w = 19, h = 6;
  const auto src = testsupport::RandomBytes(4 * w * h, 3);
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    for (int bytes : {3, 4})
      for (bool flip : {false, true}) {
        auto dst = testsupport::RandomBytes(bytes * w * h, 4);
        const auto before = dst;
        {
          ScopedTeam one(1);
          const bool ok = bytes == 4 ? conv.BGR10PixelPackedToBGRx(w, h, const_cast<uint8_t*>(src.data()), dst.data(), flip)
                                     : conv.BGR10PixelPackedToBGR24(w, h, const_cast<uint8_t*>(src.data()), dst.data(), flip);
          ASSERT_TRUE(ok);
        }
        // One thread: the last pixel written is the last of the last source row.
        EXPECT_EQ(dst[0], Third(src, size_t(w) * h - 1)) << bytes << " bytes, flip " << flip;
        for (uint32_t y = 0; y < h; ++y)
          for (uint32_t x = 0; x < w; ++x) {
            const size_t s = size_t(y) * w + x, d = (size_t(flip ? h - 1 - y : y) * w + x) * bytes;
            const uint32_t a = src[4 * s] | src[4 * s + 1] << 8, b = src[4 * s + 1] | src[4 * s + 2] << 8;
            if (d != 0) {
              ASSERT_EQ(dst[d], uint8_t(a >> 2)) << "pixel " << s;
            }
            ASSERT_EQ(dst[d + 1], uint8_t(b >> 4)) << "pixel " << s;
            ASSERT_EQ(dst[d + 2], before[d + 2]) << "pixel " << s << ": the third byte is the caller's";
            if (bytes == 4) {
              ASSERT_EQ(dst[d + 3], before[d + 3]) << "pixel " << s;
            }
          }
      }
  }
}

TEST(ColourQuirks, BGR10ByteZeroWithATeamComesFromSomeRowsLastPixel) {
  CIppImageConverter conv;
  const uint32_t w = 33, h = 64;
  const auto src = testsupport::RandomBytes(4 * w * h, 8);
  std::set<uint8_t> rowEnds;
  for (uint32_t y = 0; y < h; ++y) rowEnds.insert(Third(src, size_t(y) * w + w - 1));
  ScopedTeam two(2);
  for (int round = 0; round < 20; ++round) {
    std::vector<uint8_t> dst(4 * w * h, 0);
    ASSERT_TRUE(conv.BGR10PixelPackedToBGRx(w, h, const_cast<uint8_t*>(src.data()), dst.data(), round % 2));
    EXPECT_TRUE(rowEnds.count(dst[0])) << "byte 0 is " << int(dst[0]);
  }
}

}  // namespace
