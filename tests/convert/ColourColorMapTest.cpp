// Colour-map path of every colour conversion that has one, at every
// processor variant, odd widths, with and without flip. The tables come from
// a LUT file the test writes, so each expected byte is read straight off the
// file through the layout's own index rule. Destinations start with random
// bytes: the bytes the path leaves alone (the fourth byte of BGRx, the third
// byte of BGR10PixelPacked) are checked too.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <algorithm>
#include <functional>
#include <map>
#include <random>
#include <string>

#include "support/RandomLut.h"
#include "support/TestSupport.h"

namespace {

using Lut = testsupport::RandomLut;
using testsupport::MakeLut;

uint32_t U16(const uint8_t* p) { return uint32_t(p[0] | p[1] << 8); }

using Call = std::function<bool(CIppImageConverter&, uint32_t w, uint32_t h, void* src, void* dst, bool flip)>;
using PlanarCall = std::function<bool(CIppImageConverter&, uint32_t w, uint32_t h, void* p1, void* p2, void* p3,
                                      void* dst, bool flip)>;

struct MapCase {
  const char* name;
  uint32_t bits;     // the table's input depth
  size_t srcBytes;   // per pixel
  uint32_t limit;    // 16-bit samples drawn below this; 0: random bytes
  size_t dstBytes;
  Call call;
  std::function<void(const uint8_t* s, const Lut& l, uint8_t* d)> pixel;
  bool byteZeroRaces = false;  // byte 0 of the frame takes the third channel: checked elsewhere
};

#define CALL(expr) [](CIppImageConverter& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.expr; }

// D_i from table i at sample c_i of the pixel (bytes, or 16-bit words).
void Bytes3(const uint8_t* s, const Lut& l, uint8_t* d, int c0, int c1, int c2) {
  d[0] = l.Byte(0, s[c0]), d[1] = l.Byte(1, s[c1]), d[2] = l.Byte(2, s[c2]);
}
void Words3(const uint8_t* s, const Lut& l, uint8_t* d, int c0, int c1, int c2) {
  d[0] = l.Byte(0, U16(s + 2 * c0)), d[1] = l.Byte(1, U16(s + 2 * c1)), d[2] = l.Byte(2, U16(s + 2 * c2));
}
// Whole 16-bit entries at min(s, 2^bits - 1).
void Limited(const uint8_t* s, const Lut& l, uint8_t* d, uint32_t bits) {
  for (int i = 0; i < 3; ++i) {
    const uint16_t v = l.t[i][std::min(U16(s + 2 * i), (1u << bits) - 1)];
    d[2 * i] = uint8_t(v), d[2 * i + 1] = uint8_t(v >> 8);
  }
}

const std::vector<MapCase>& Cases() {
  static const std::vector<MapCase> cases = {
      {"BGR24ToBGRx", 8, 3, 0, 4, CALL(BGR24ToBGRx(w, h, s, d, f)), [](auto s, auto& l, auto d) { Bytes3(s, l, d, 0, 1, 2); }},
      {"BGR24ToBGR24", 8, 3, 0, 3, CALL(BGR24ToBGR24(w, h, s, d, f)), [](auto s, auto& l, auto d) { Bytes3(s, l, d, 0, 1, 2); }},
      {"RGB24ToBGRx", 8, 3, 0, 4, CALL(RGB24ToBGRx(w, h, 12, s, d, f)), [](auto s, auto& l, auto d) { Bytes3(s, l, d, 2, 1, 0); }},
      {"RGB24ToBGR24", 8, 3, 0, 3, CALL(RGB24ToBGR24(w, h, s, d, f)), [](auto s, auto& l, auto d) { Bytes3(s, l, d, 2, 1, 0); }},
      {"BGRxToBGRx", 8, 4, 0, 4, CALL(BGRxToBGRx(w, h, s, d, f)), [](auto s, auto& l, auto d) { Bytes3(s, l, d, 0, 1, 2); }},
      {"BGRxToBGR24", 8, 4, 0, 3, CALL(BGRxToBGR24(w, h, s, d, f)), [](auto s, auto& l, auto d) { Bytes3(s, l, d, 0, 1, 2); }},
      {"BGR48ToBGRx", 12, 6, 4096, 4, CALL(BGR48ToBGRx(w, h, 12, s, d, f)), [](auto s, auto& l, auto d) { Words3(s, l, d, 0, 1, 2); }},
      {"BGR48ToBGR24", 10, 6, 1024, 3, CALL(BGR48ToBGR24(w, h, 10, s, d, f)), [](auto s, auto& l, auto d) { Words3(s, l, d, 0, 1, 2); }},
      {"BGR48ToBGR48", 12, 6, 65536, 6, CALL(BGR48ToBGR48(w, h, 12, s, d, f)), [](auto s, auto& l, auto d) { Limited(s, l, d, 12); }},
      {"RGB48ToBGRx", 12, 6, 4096, 4, CALL(RGB48ToBGRx(w, h, 12, s, d, f)), [](auto s, auto& l, auto d) { Words3(s, l, d, 2, 1, 0); }},
      {"RGB48ToBGR24", 10, 6, 1024, 3, CALL(RGB48ToBGR24(w, h, 10, s, d, f)), [](auto s, auto& l, auto d) { Words3(s, l, d, 2, 1, 0); }},
      {"BGR64ToBGRx", 12, 8, 4096, 4, CALL(BGR64ToBGRx(w, h, 12, s, d, f)), [](auto s, auto& l, auto d) { Words3(s, l, d, 0, 1, 2); }},
      {"BGR64ToBGR48", 10, 8, 65536, 6, CALL(BGR64ToBGR48(w, h, 10, s, d, f)), [](auto s, auto& l, auto d) { Limited(s, l, d, 10); }},
      {"BGR555PackedToBGRx", 5, 2, 0, 4, CALL(BGR555PackedToBGRx(w, h, s, d, f)),
       [](auto s, auto& l, auto d) { const uint32_t u = U16(s); d[0] = l.Byte(0, u & 31), d[1] = l.Byte(1, (u >> 5) & 31), d[2] = l.Byte(2, (s[1] >> 2) & 31); }},
      {"BGR555PackedToBGR24", 5, 2, 0, 3, CALL(BGR555PackedToBGR24(w, h, s, d, f)),
       [](auto s, auto& l, auto d) { const uint32_t u = U16(s); d[0] = l.Byte(0, u & 31), d[1] = l.Byte(1, (u >> 5) & 31), d[2] = l.Byte(2, (s[1] >> 2) & 31); }},
      {"BGR565PackedToBGRx", 6, 2, 0, 4, CALL(BGR565PackedToBGRx(w, h, s, d, f)),
       [](auto s, auto& l, auto d) { const uint32_t u = U16(s); d[0] = l.Byte(0, (u & 31) * 2), d[1] = l.Byte(1, (u >> 5) & 63), d[2] = l.Byte(2, s[1] >> 2); }},
      {"BGR565PackedToBGR24", 6, 2, 0, 3, CALL(BGR565PackedToBGR24(w, h, s, d, f)),
       [](auto s, auto& l, auto d) { const uint32_t u = U16(s); d[0] = l.Byte(0, (u & 31) * 2), d[1] = l.Byte(1, (u >> 5) & 63), d[2] = l.Byte(2, s[1] >> 2); }},
      // a = u16(s0, s1), b = u16(s1, s2), c = u16(s2, s3).
      {"BGR10PixelPackedToBGRx", 10, 4, 0, 4, CALL(BGR10PixelPackedToBGRx(w, h, s, d, f)),
       [](auto s, auto& l, auto d) { d[0] = l.Byte(0, U16(s) & 0x1FF), d[1] = l.Byte(1, (U16(s + 1) >> 2) & 0x1FF); }, true},
      {"BGR10PixelPackedToBGR24", 10, 4, 0, 3, CALL(BGR10PixelPackedToBGR24(w, h, s, d, f)),
       [](auto s, auto& l, auto d) { d[0] = l.Byte(0, U16(s) & 0x1FF), d[1] = l.Byte(1, (U16(s + 1) >> 2) & 0x1FF); }, true},
      {"BGR10PixelPackedPhoenixToBGRx", 10, 4, 0, 4, CALL(BGR10PixelPackedPhoenixToBGRx(w, h, s, d, f)),
       [](auto s, auto& l, auto d) {
         d[0] = l.Byte(0, U16(s) & 0x3FF), d[1] = l.Byte(1, (U16(s + 1) >> 4) & 0x3FF), d[2] = l.Byte(2, (U16(s + 2) >> 4) & 0x3FF);
       }},
      {"BGR10PixelPackedPhoenixToBGR24", 10, 4, 0, 3, CALL(BGR10PixelPackedPhoenixToBGR24(w, h, s, d, f)),
       [](auto s, auto& l, auto d) {
         d[0] = l.Byte(0, U16(s) & 0x3FF), d[1] = l.Byte(1, (U16(s + 1) >> 4) & 0x3FF), d[2] = l.Byte(2, (U16(s + 2) >> 4) & 0x3FF);
       }},
      {"RGB10PixelPackedPhoenixToBGRx", 10, 4, 0, 4, CALL(RGB10PixelPackedPhoenixToBGRx(w, h, s, d, f)),
       [](auto s, auto& l, auto d) {
         d[0] = l.Byte(0, (U16(s + 2) >> 4) & 0x3FF), d[1] = l.Byte(1, (U16(s + 1) >> 4) & 0x3FF), d[2] = l.Byte(2, U16(s) & 0x3FF);
       }},
      {"RGB10PixelPackedPhoenixToBGR24", 10, 4, 0, 3, CALL(RGB10PixelPackedPhoenixToBGR24(w, h, s, d, f)),
       [](auto s, auto& l, auto d) {
         d[0] = l.Byte(0, (U16(s + 2) >> 4) & 0x3FF), d[1] = l.Byte(1, (U16(s + 1) >> 4) & 0x3FF), d[2] = l.Byte(2, U16(s) & 0x3FF);
       }},
      {"GVSPBGR10v1ToBGR", 10, 4, 0, 3, CALL(GVSPBGR10v1ToBGR(w, h, s, d, f)),
       [](auto s, auto& l, auto d) {
         for (int i = 0; i < 3; ++i) d[i] = l.Byte(i, ((s[0] >> (2 * i)) & 3) | s[i + 1] << 2);
       }},
      {"GVSPBGR10v1ToBGRx", 10, 4, 0, 4, CALL(GVSPBGR10v1ToBGRx(w, h, s, d, f)),  // the fourth byte stays here
       [](auto s, auto& l, auto d) {
         for (int i = 0; i < 3; ++i) d[i] = l.Byte(i, ((s[0] >> (2 * i)) & 3) | s[i + 1] << 2);
       }},
      {"GVSPBGR10v2ToBGR", 10, 4, 0, 3, CALL(GVSPBGR10v2ToBGR(w, h, s, d, f)),
       [](auto s, auto& l, auto d) {
         d[2] = l.Byte(2, U16(s) & 0x3FF), d[1] = l.Byte(1, (U16(s + 1) >> 2) & 0x3FF), d[0] = l.Byte(0, (U16(s + 2) >> 4) & 0x3FF);
       }},
      {"GVSPBGR10v2ToBGRx", 10, 4, 0, 4, CALL(GVSPBGR10v2ToBGRx(w, h, s, d, f)),
       [](auto s, auto& l, auto d) {
         d[2] = l.Byte(2, U16(s) & 0x3FF), d[1] = l.Byte(1, (U16(s + 1) >> 2) & 0x3FF), d[0] = l.Byte(0, (U16(s + 2) >> 4) & 0x3FF);
       }},
  };
  return cases;
}

struct PlanarMapCase {
  const char* name;
  uint32_t bits;
  size_t sampleBytes;
  size_t dstBytes;
  PlanarCall call;
  int planeOf[3];  // the plane (0 for p1) that feeds table and byte i
};

#define PCALL(expr) \
  [](CIppImageConverter& c, uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* d, bool f) { return c.expr; }

const std::vector<PlanarMapCase>& PlanarCases() {
  static const std::vector<PlanarMapCase> cases = {
      {"BGR24PToBGRx", 8, 1, 4, PCALL(BGR24PToBGRx(w, h, p1, p2, p3, d, f)), {0, 1, 2}},
      {"BGR24PToBGR24", 8, 1, 3, PCALL(BGR24PToBGR24(w, h, p1, p2, p3, d, f)), {0, 1, 2}},
      {"BGR30PToBGRx", 10, 2, 4, PCALL(BGR30PToBGRx(w, h, p1, p2, p3, d, f)), {0, 1, 2}},
      {"BGR36PToBGRx", 12, 2, 4, PCALL(BGR36PToBGRx(w, h, p1, p2, p3, d, f)), {0, 1, 2}},
      {"BGR42PToBGRx", 10, 2, 4, PCALL(BGR42PToBGRx(w, h, 10, p1, p2, p3, d, f)), {0, 1, 2}},
      {"BGR48PToBGR24", 12, 2, 3, PCALL(BGR48PToBGR24(w, h, 12, p1, p2, p3, d, f)), {2, 1, 0}},  // p3 to byte 0
  };
  return cases;
}

// One converter and one LUT file per table depth, colour map on.
class ColourColorMap : public ::testing::Test {
 protected:
  const Lut& LutFor(uint32_t bits) {
    auto& entry = luts_[bits];
    if (!entry.file) {
      entry.file = std::make_unique<testsupport::TempFile>("colour-map-" + std::to_string(bits) + ".txt",
                                                           MakeLut(bits, bits * 7 + 1, entry.lut));
    }
    return entry.lut;
  }
  CIppImageConverter& ConverterFor(uint32_t bits) {
    LutFor(bits);
    conv_.SetImageColorMap(true);
    EXPECT_TRUE(conv_.LoadLUTFrom(luts_[bits].file->path()));
    return conv_;
  }

  struct Entry {
    Lut lut;
    std::unique_ptr<testsupport::TempFile> file;
  };
  std::map<uint32_t, Entry> luts_;
  CIppImageConverter conv_;
};

TEST_F(ColourColorMap, EveryInterleavedAndPackedMethodReadsTheTables) {
  for (const auto& c : Cases()) {
    const Lut& lut = LutFor(c.bits);
    CIppImageConverter& conv = ConverterFor(c.bits);
    for (auto variant : testsupport::RunnableVariants()) {
      testsupport::ScopedVariant scoped(variant);
      for (uint32_t w : {1u, 15u, 17u, 33u, 130u})
        for (bool flip : {false, true}) {
          const uint32_t h = 4;
          const size_t pixels = size_t(w) * h;
          const auto src = c.limit ? testsupport::RandomWords(pixels * c.srcBytes / 2, c.limit, w)
                                   : testsupport::RandomBytes(pixels * c.srcBytes, w);
          auto dst = testsupport::RandomBytes(pixels * c.dstBytes + 8, w + 1);
          auto want = dst;
          for (uint32_t y = 0; y < h; ++y)
            for (uint32_t x = 0; x < w; ++x)
              c.pixel(&src[(size_t(y) * w + x) * c.srcBytes], lut, &want[(size_t(flip ? h - 1 - y : y) * w + x) * c.dstBytes]);
          ASSERT_TRUE(c.call(conv, w, h, const_cast<uint8_t*>(src.data()), dst.data(), flip)) << c.name;
          if (c.byteZeroRaces) dst[0] = want[0];
          ASSERT_EQ(dst, want) << c.name << " " << kestrelink::VariantName(variant) << " w=" << w << " flip=" << flip;
        }
    }
  }
}

TEST_F(ColourColorMap, EveryPlanarMethodReadsTheTables) {
  for (const auto& c : PlanarCases()) {
    const Lut& lut = LutFor(c.bits);
    CIppImageConverter& conv = ConverterFor(c.bits);
    for (uint32_t w : {1u, 15u, 17u, 33u, 130u})
      for (bool flip : {false, true}) {
        const uint32_t h = 4;
        const size_t pixels = size_t(w) * h;
        std::vector<uint8_t> p[3];
        for (int i = 0; i < 3; ++i)
          p[i] = c.sampleBytes == 1 ? testsupport::RandomBytes(pixels, w + i)
                                    : testsupport::RandomWords(pixels, 1u << c.bits, w + i);
        auto dst = testsupport::RandomBytes(pixels * c.dstBytes + 8, w);
        auto want = dst;
        for (uint32_t y = 0; y < h; ++y)
          for (uint32_t x = 0; x < w; ++x) {
            const size_t i = size_t(y) * w + x;
            uint8_t* d = &want[(size_t(flip ? h - 1 - y : y) * w + x) * c.dstBytes];
            for (int b = 0; b < 3; ++b) {
              const auto& plane = p[c.planeOf[b]];
              d[b] = lut.Byte(b, c.sampleBytes == 1 ? plane[i] : testsupport::Word(plane, i));
            }
          }
        ASSERT_TRUE(c.call(conv, w, h, p[0].data(), p[1].data(), p[2].data(), dst.data(), flip)) << c.name;
        ASSERT_EQ(dst, want) << c.name << " w=" << w << " flip=" << flip;
      }
  }
}

// With no file, no curve and no clip the tables are the identity scaled to
// 8 bits, i >> (in - 8), and pseudo-colour never reaches this family.
TEST(ColourColorMapTables, IdentityTablesAndNoPseudoColour) {
  CIppImageConverter conv;
  conv.SetImageColorMap(true);
  conv.SetMonoPseudoColorMode(2);
  uint16_t src[3] = {0x0FFF, 0x0123, 0x0010};
  uint8_t dst[3];
  ASSERT_TRUE(conv.BGR48ToBGR24(1, 1, 12, src, dst, false));
  EXPECT_EQ(dst[0], 0xFF);
  EXPECT_EQ(dst[1], 0x12);
  EXPECT_EQ(dst[2], 0x01);
  uint8_t bgr[3] = {1, 2, 3}, out[3];
  ASSERT_TRUE(conv.BGR24ToBGR24(1, 1, bgr, out, false));
  EXPECT_EQ(out[0], 1);
  EXPECT_EQ(out[1], 2);
  EXPECT_EQ(out[2], 3);
}

}  // namespace
