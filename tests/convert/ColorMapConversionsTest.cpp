// Every mono conversion on the colour-map path, with and without flip, at
// widths that are not multiples of a vector: the tables come from a LUT file
// the test writes, so each expected pixel is read straight off the file.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <functional>
#include <random>
#include <string>

#include "support/RandomLut.h"
#include "support/TestSupport.h"

namespace {

using Lut = testsupport::RandomLut;
using testsupport::MakeLut;

struct MapCase {
  const char* name;
  uint32_t bits;  // table depth: 8 for Mono8 sources, d for Mono16
  int srcBytes, dstBytes;
  std::function<bool(CIppImageConverter&, uint32_t, uint32_t, void*, void*, bool)> call;
  std::function<std::vector<uint8_t>(const Lut&, uint32_t)> pixel;
};

std::vector<uint8_t> Colour(const Lut& l, uint32_t s, int bytes) {
  std::vector<uint8_t> p = {uint8_t(l.t[0][s]), uint8_t(l.t[1][s]), uint8_t(l.t[2][s]), 0};
  p.resize(bytes);
  return p;
}

TEST(ColorMapConversions, EveryMonoMethodReadsTheTables) {
  using C = CIppImageConverter;
  const std::vector<MapCase> cases = {
      {"Mono8ToBGRx", 8, 1, 4, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono8ToBGRx(w, h, s, d, f); },
       [](const Lut& l, uint32_t s) { return Colour(l, s, 4); }},
      {"Mono8ToBGR", 8, 1, 3, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono8ToBGR(w, h, s, d, f); },
       [](const Lut& l, uint32_t s) { return Colour(l, s, 3); }},
      {"Mono8ToMono8", 8, 1, 1, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono8ToMono8(w, h, s, d, f); },
       [](const Lut& l, uint32_t s) { return std::vector<uint8_t>{uint8_t(l.t[0][s])}; }},
      {"Mono16ToBGRx", 12, 2, 4, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToBGRx(w, h, 12, s, d, f); },
       [](const Lut& l, uint32_t s) { return Colour(l, s, 4); }},
      {"Mono16ToBGR", 10, 2, 3, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToBGR(w, h, 10, s, d, f); },
       [](const Lut& l, uint32_t s) { return Colour(l, s, 3); }},
      {"Mono16ToMono8", 12, 2, 1, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToMono8(w, h, 12, s, d, f); },
       [](const Lut& l, uint32_t s) { return std::vector<uint8_t>{uint8_t(l.t[0][s])}; }},
      {"Mono16ToMono16", 12, 2, 2, [](C& c, uint32_t w, uint32_t h, void* s, void* d, bool f) { return c.Mono16ToMono16(w, h, 12, s, d, f); },
       [](const Lut& l, uint32_t s) { return std::vector<uint8_t>{uint8_t(l.t[0][s]), uint8_t(l.t[0][s] >> 8)}; }},
  };
  for (auto variant : testsupport::RunnableVariants())
  for (const auto& c : cases) {
    testsupport::ScopedVariant scoped(variant);
    SCOPED_TRACE(kestrelink::VariantName(variant));
    Lut lut;
    testsupport::TempFile file(std::string("map-") + c.name + ".txt", MakeLut(c.bits, c.bits, lut));
    CIppImageConverter conv;
    conv.SetImageColorMap(true);
    ASSERT_TRUE(conv.LoadLUTFrom(file.path()));
    for (uint32_t w : {1u, 15u, 17u, 33u, 130u})
      for (bool flip : {false, true}) {
        const uint32_t h = 4;
        const size_t pixels = size_t(w) * h;
        const auto src = c.srcBytes == 1 ? testsupport::RandomBytes(pixels, w)
                                         : testsupport::RandomWords(pixels, 1u << c.bits, w);
        std::vector<uint8_t> dst(pixels * c.dstBytes + 8, 0xEE);
        ASSERT_TRUE(c.call(conv, w, h, const_cast<uint8_t*>(src.data()), dst.data(), flip));
        for (uint32_t y = 0; y < h; ++y)
          for (uint32_t x = 0; x < w; ++x) {
            const size_t i = size_t(y) * w + x;
            const uint32_t s = c.srcBytes == 1 ? src[i] : testsupport::Word(src, i);
            const auto want = c.pixel(lut, s);
            const size_t at = ((flip ? h - 1 - y : y) * size_t(w) + x) * c.dstBytes;
            for (int b = 0; b < c.dstBytes; ++b)
              ASSERT_EQ(dst[at + b], want[b]) << c.name << " w=" << w << " flip=" << flip << " x=" << x << " y=" << y;
          }
        for (size_t i = pixels * c.dstBytes; i < dst.size(); ++i) ASSERT_EQ(dst[i], 0xEE) << c.name << ": past the frame";
      }
  }
}

}  // namespace
