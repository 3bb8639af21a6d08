// Plain path of the interleaved and packed colour conversions, at every
// processor variant, odd widths, with and without flip, against per-pixel
// expectations written from the layout rules. The destination starts with
// random bytes, so every byte a method must leave alone is checked too.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <functional>
#include <set>
#include <string>

#include "support/TestSupport.h"

namespace {

uint32_t U16(const uint8_t* p) { return uint32_t(p[0] | p[1] << 8); }
// (s >> sh) kept to a byte, sh as a 32-bit shift count; 16 or more leaves nothing of a word.
uint8_t Narrow(uint32_t s, uint32_t sh) { return sh < 32 ? uint8_t(s >> sh) : 0; }
void Put16(uint8_t* d, uint32_t v) { d[0] = uint8_t(v), d[1] = uint8_t(v >> 8); }

using Call = std::function<bool(CIppImageConverter&, uint32_t w, uint32_t h, void* src, void* dst, bool flip)>;

struct PlainCase {
  const char* name;
  size_t srcBytes, dstBytes;
  Call call;
  // Writes the expected destination pixel `d` (holding what was there) from source pixel `s`.
  std::function<void(const uint8_t* s, uint8_t* d)> pixel;
};

#define CALL(expr) [](CIppImageConverter& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.expr; }

const std::vector<PlainCase>& Cases() {
  static const std::vector<PlainCase> cases = {
      // Interleaved 8-bit.
      {"BGR24ToBGRx", 3, 4, CALL(BGR24ToBGRx(w, h, s, d, f)), [](const uint8_t* s, uint8_t* d) { d[0] = s[0], d[1] = s[1], d[2] = s[2]; }},
      {"BGR24ToBGR24", 3, 3, CALL(BGR24ToBGR24(w, h, s, d, f)), [](const uint8_t* s, uint8_t* d) { d[0] = s[0], d[1] = s[1], d[2] = s[2]; }},
      {"BGR24ToRGB24", 3, 3, CALL(BGR24ToRGB24(w, h, s, d, f)), [](const uint8_t* s, uint8_t* d) { d[0] = s[2], d[1] = s[1], d[2] = s[0]; }},
      {"BGR24ToBGR48", 3, 6, CALL(BGR24ToBGR48(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) Put16(d + 2 * i, s[i] * 256u); }},
      {"BGR24ToRGB48", 3, 6, CALL(BGR24ToRGB48(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) Put16(d + 2 * (2 - i), s[i] * 256u); }},
      {"RGB24ToBGRx d8", 3, 4, CALL(RGB24ToBGRx(w, h, 8, s, d, f)), [](const uint8_t* s, uint8_t* d) { d[2] = s[0], d[1] = s[1], d[0] = s[2]; }},
      {"RGB24ToBGRx d10", 3, 4, CALL(RGB24ToBGRx(w, h, 10, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { d[2] = s[0] >> 2, d[1] = s[1] >> 2, d[0] = s[2] >> 2; }},
      {"RGB24ToBGRx d16", 3, 4, CALL(RGB24ToBGRx(w, h, 16, s, d, f)), [](const uint8_t*, uint8_t* d) { d[0] = d[1] = d[2] = 0; }},
      {"RGB24ToBGR24", 3, 3, CALL(RGB24ToBGR24(w, h, s, d, f)), [](const uint8_t* s, uint8_t* d) { d[0] = s[2], d[1] = s[1], d[2] = s[0]; }},
      {"BGRxToBGRx", 4, 4, CALL(BGRxToBGRx(w, h, s, d, f)), [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 4; ++i) d[i] = s[i]; }},
      {"BGRxToBGR24", 4, 3, CALL(BGRxToBGR24(w, h, s, d, f)), [](const uint8_t* s, uint8_t* d) { d[0] = s[0], d[1] = s[1], d[2] = s[2]; }},
      {"RBG32ToRGB24", 4, 3, CALL(RBG32ToRGB24(w, h, s, d, f)), [](const uint8_t* s, uint8_t* d) { d[0] = s[0], d[1] = s[1], d[2] = s[2]; }},
      // Interleaved 16-bit: words narrowed by a shift and cut to a byte, so bits above the depth wrap.
      {"BGR48ToBGRx d12", 6, 4, CALL(BGR48ToBGRx(w, h, 12, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[i] = Narrow(U16(s + 2 * i), 4); }},
      {"BGR48ToBGRx d16", 6, 4, CALL(BGR48ToBGRx(w, h, 16, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[i] = Narrow(U16(s + 2 * i), 8); }},
      {"BGR48ToBGR24 d10", 6, 3, CALL(BGR48ToBGR24(w, h, 10, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[i] = Narrow(U16(s + 2 * i), 2); }},
      {"BGR48ToBGR24 d8", 6, 3, CALL(BGR48ToBGR24(w, h, 8, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[i] = s[2 * i]; }},
      {"BGR48ToBGR48", 6, 6, CALL(BGR48ToBGR48(w, h, 12, s, d, f)), [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 6; ++i) d[i] = s[i]; }},
      {"RGB48ToBGRx d12", 6, 4, CALL(RGB48ToBGRx(w, h, 12, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[2 - i] = Narrow(U16(s + 2 * i), 4); }},
      {"RGB48ToBGR24 d14", 6, 3, CALL(RGB48ToBGR24(w, h, 14, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[2 - i] = Narrow(U16(s + 2 * i), 6); }},
      {"BGR64ToBGRx d12", 8, 4, CALL(BGR64ToBGRx(w, h, 12, s, d, f)),  // shift 16 - d
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[i] = Narrow(U16(s + 2 * i), 4); }},
      {"BGR64ToBGRx d16", 8, 4, CALL(BGR64ToBGRx(w, h, 16, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[i] = s[2 * i]; }},
      {"BGR64ToBGRx d10", 8, 4, CALL(BGR64ToBGRx(w, h, 10, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[i] = Narrow(U16(s + 2 * i), 6); }},
      {"BGR64ToBGR24 d16", 8, 3, CALL(BGR64ToBGR24(w, h, 16, s, d, f)),  // shift d - 8
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[i] = s[2 * i + 1]; }},
      {"BGR64ToBGR24 d12", 8, 3, CALL(BGR64ToBGR24(w, h, 12, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 3; ++i) d[i] = Narrow(U16(s + 2 * i), 4); }},
      {"BGR64ToBGR48", 8, 6, CALL(BGR64ToBGR48(w, h, 12, s, d, f)), [](const uint8_t* s, uint8_t* d) { for (int i = 0; i < 6; ++i) d[i] = s[i]; }},
      // 5-5-5 and 5-6-5 words, no bit replication.
      {"BGR555PackedToBGRx", 2, 4, CALL(BGR555PackedToBGRx(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { const uint32_t u = U16(s); d[0] = (u & 31) << 3, d[1] = ((u >> 5) & 31) << 3, d[2] = ((u >> 10) & 31) << 3; }},
      {"BGR555PackedToBGR24", 2, 3, CALL(BGR555PackedToBGR24(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { const uint32_t u = U16(s); d[0] = (u & 31) << 3, d[1] = ((u >> 5) & 31) << 3, d[2] = ((u >> 10) & 31) << 3; }},
      {"BGR555PackedToRGB24", 2, 3, CALL(BGR555PackedToRGB24(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { const uint32_t u = U16(s); d[2] = (u & 31) << 3, d[1] = ((u >> 5) & 31) << 3, d[0] = ((u >> 10) & 31) << 3; }},
      {"BGR565PackedToBGRx", 2, 4, CALL(BGR565PackedToBGRx(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { const uint32_t u = U16(s); d[0] = (u & 31) << 3, d[1] = ((u >> 5) & 63) << 2, d[2] = (u >> 11) << 3; }},
      {"BGR565PackedToBGR24", 2, 3, CALL(BGR565PackedToBGR24(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { const uint32_t u = U16(s); d[0] = (u & 31) << 3, d[1] = ((u >> 5) & 63) << 2, d[2] = (u >> 11) << 3; }},
      {"BGR565PackedToRGB24", 2, 3, CALL(BGR565PackedToRGB24(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { const uint32_t u = U16(s); d[2] = (u & 31) << 3, d[1] = ((u >> 5) & 63) << 2, d[0] = (u >> 11) << 3; }},
      // 10-bit words; a = u16(s0, s1), b = u16(s1, s2), c = u16(s2, s3).
      {"BGR10PixelPackedPhoenixToBGRx", 4, 4, CALL(BGR10PixelPackedPhoenixToBGRx(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { d[0] = Narrow(U16(s), 2), d[1] = Narrow(U16(s + 1), 6), d[2] = s[3]; }},
      {"BGR10PixelPackedPhoenixToBGR24", 4, 3, CALL(BGR10PixelPackedPhoenixToBGR24(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { d[0] = Narrow(U16(s), 2), d[1] = Narrow(U16(s + 1), 6), d[2] = s[3]; }},
      {"RGB10PixelPackedPhoenixToBGRx", 4, 4, CALL(RGB10PixelPackedPhoenixToBGRx(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { d[0] = s[3], d[1] = Narrow(U16(s + 1), 6), d[2] = Narrow(U16(s), 2); }},
      {"RGB10PixelPackedPhoenixToBGR24", 4, 3, CALL(RGB10PixelPackedPhoenixToBGR24(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { d[0] = s[3], d[1] = Narrow(U16(s + 1), 6), d[2] = Narrow(U16(s), 2); }},
      {"GVSPBGR10v1ToBGR", 4, 3, CALL(GVSPBGR10v1ToBGR(w, h, s, d, f)), [](const uint8_t* s, uint8_t* d) { d[0] = s[1], d[1] = s[2], d[2] = s[3]; }},
      {"GVSPBGR10v1ToBGRx", 4, 4, CALL(GVSPBGR10v1ToBGRx(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { d[0] = s[1], d[1] = s[2], d[2] = s[3], d[3] = 0; }},
      {"GVSPBGR10v2ToBGR", 4, 3, CALL(GVSPBGR10v2ToBGR(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { d[0] = Narrow(U16(s + 2), 6), d[1] = Narrow(U16(s + 1), 4), d[2] = Narrow(U16(s), 2); }},
      {"GVSPBGR10v2ToBGRx", 4, 4, CALL(GVSPBGR10v2ToBGRx(w, h, s, d, f)),
       [](const uint8_t* s, uint8_t* d) { d[0] = Narrow(U16(s + 2), 6), d[1] = Narrow(U16(s + 1), 4), d[2] = Narrow(U16(s), 2), d[3] = 0; }},
  };
  return cases;
}

void CheckCase(CIppImageConverter& conv, const PlainCase& c, uint32_t w, uint32_t h, bool flip) {
  const size_t pixels = size_t(w) * h;
  auto src = testsupport::RandomBytes(pixels * c.srcBytes, w * 31 + h);
  auto dst = testsupport::RandomBytes(pixels * c.dstBytes + 16, w * 17 + 5);
  auto want = dst;
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x)
      c.pixel(&src[(size_t(y) * w + x) * c.srcBytes], &want[(size_t(flip ? h - 1 - y : y) * w + x) * c.dstBytes]);
  ASSERT_TRUE(c.call(conv, w, h, src.data(), dst.data(), flip));
  for (size_t i = 0; i < dst.size(); ++i)
    ASSERT_EQ(dst[i], want[i]) << c.name << " w=" << w << " h=" << h << " flip=" << flip << " pixel "
                               << i / c.dstBytes % w << " row " << i / c.dstBytes / w << " byte " << i % c.dstBytes;
}

TEST(ColourPlain, EveryMethodEveryVariantOddWidthsAndFlip) {
  CIppImageConverter conv;
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    SCOPED_TRACE(kestrelink::VariantName(variant));
    for (const auto& c : Cases())
      for (uint32_t w : {1u, 7u, 15u, 16u, 17u, 22u, 31u, 33u, 63u, 65u, 100u, 257u, 1100u})
        for (bool flip : {false, true}) CheckCase(conv, c, w, 5, flip);
  }
}

// Row loops answer true for an empty frame; the methods that hand the frame
// to a primitive answer what it answers for an empty size: false. Neither
// touches the destination.
TEST(ColourPlain, AnEmptyFrameTouchesNothing) {
  const std::set<std::string> primitive = {"BGR24ToBGRx", "BGR24ToRGB24", "RGB24ToBGR24", "BGRxToBGR24", "RBG32ToRGB24",
                                           "BGR565PackedToBGR24"};
  CIppImageConverter conv;
  std::vector<uint8_t> src(256, 1), dst(256, 0x5A);
  for (const auto& c : Cases()) {
    const std::string method = std::string(c.name).substr(0, std::string(c.name).find(' '));
    EXPECT_EQ(c.call(conv, 16, 0, src.data(), dst.data(), false), !primitive.count(method)) << c.name;
    EXPECT_EQ(c.call(conv, 0, 4, src.data(), dst.data(), true), !primitive.count(method)) << c.name;
  }
  for (uint8_t b : dst) ASSERT_EQ(b, 0x5A);
}

TEST(ColourPlain, PrimitiveMethodsRefuseANullFrame) {
  CIppImageConverter conv;
  std::vector<uint8_t> buffer(256, 0x5A);
  void* b = buffer.data();
  EXPECT_FALSE(conv.BGR24ToBGRx(4, 2, nullptr, b, false));
  EXPECT_FALSE(conv.BGR24ToBGRx(4, 2, b, nullptr, true));
  EXPECT_FALSE(conv.BGR24ToRGB24(4, 2, nullptr, b, false));
  EXPECT_FALSE(conv.BGRxToBGR24(4, 2, b, nullptr, false));
  EXPECT_FALSE(conv.BGR565PackedToBGR24(4, 2, nullptr, b, true));
  EXPECT_FALSE(conv.BGR24ToBGR24P(4, 2, b, b, nullptr, b, false));
  EXPECT_FALSE(conv.BGR24PToBGR24(4, 2, b, nullptr, b, b, false));
  for (uint8_t byte : buffer) ASSERT_EQ(byte, 0x5A);
}

}  // namespace
