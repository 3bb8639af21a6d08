// Plain path of the planar colour conversions, at every processor variant,
// odd widths, with and without flip. Which plane lands in which byte is the
// point of most of these: each method keeps its own plane order.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <functional>

#include "support/TestSupport.h"

namespace {

// The converter's 10- and 12-bit rule: the step falls one index late.
uint8_t LateStep(uint32_t s, uint32_t bits) { return s == 0 ? 0 : uint8_t((s - 1) >> (bits - 8)); }

using PlanarCall = std::function<bool(CIppImageConverter&, uint32_t w, uint32_t h, void* p1, void* p2, void* p3,
                                      void* dst, bool flip)>;

struct PlanarCase {
  const char* name;
  size_t sampleBytes, dstBytes;
  uint32_t limit;  // samples drawn below this
  PlanarCall call;
  std::function<void(uint32_t p1, uint32_t p2, uint32_t p3, uint8_t* d)> pixel;
};

#define PCALL(expr) \
  [](CIppImageConverter& c, uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* d, bool f) { return c.expr; }

const std::vector<PlanarCase>& Cases() {
  static const std::vector<PlanarCase> cases = {
      {"BGR24PToBGRx", 1, 4, 256, PCALL(BGR24PToBGRx(w, h, p1, p2, p3, d, f)),  // p1 red, fourth byte 0
       [](uint32_t p1, uint32_t p2, uint32_t p3, uint8_t* d) { d[0] = uint8_t(p3), d[1] = uint8_t(p2), d[2] = uint8_t(p1), d[3] = 0; }},
      {"BGR24PToBGR24", 1, 3, 256, PCALL(BGR24PToBGR24(w, h, p1, p2, p3, d, f)),  // p1 to byte 0
       [](uint32_t p1, uint32_t p2, uint32_t p3, uint8_t* d) { d[0] = uint8_t(p1), d[1] = uint8_t(p2), d[2] = uint8_t(p3); }},
      {"BGR30PToBGRx", 2, 4, 1024, PCALL(BGR30PToBGRx(w, h, p1, p2, p3, d, f)),
       [](uint32_t p1, uint32_t p2, uint32_t p3, uint8_t* d) {
         d[0] = LateStep(p3, 10), d[1] = LateStep(p2, 10), d[2] = LateStep(p1, 10), d[3] = 0;
       }},
      {"BGR36PToBGRx", 2, 4, 4096, PCALL(BGR36PToBGRx(w, h, p1, p2, p3, d, f)),
       [](uint32_t p1, uint32_t p2, uint32_t p3, uint8_t* d) {
         d[0] = LateStep(p3, 12), d[1] = LateStep(p2, 12), d[2] = LateStep(p1, 12), d[3] = 0;
       }},
      {"BGR42PToBGRx d12", 2, 4, 65536, PCALL(BGR42PToBGRx(w, h, 12, p1, p2, p3, d, f)),  // p1 to byte 0, fourth byte kept
       [](uint32_t p1, uint32_t p2, uint32_t p3, uint8_t* d) { d[0] = uint8_t(p1 >> 4), d[1] = uint8_t(p2 >> 4), d[2] = uint8_t(p3 >> 4); }},
      {"BGR42PToBGRx d16", 2, 4, 65536, PCALL(BGR42PToBGRx(w, h, 16, p1, p2, p3, d, f)),
       [](uint32_t p1, uint32_t p2, uint32_t p3, uint8_t* d) { d[0] = uint8_t(p1 >> 8), d[1] = uint8_t(p2 >> 8), d[2] = uint8_t(p3 >> 8); }},
      {"BGR48PToBGR24 d10", 2, 3, 65536, PCALL(BGR48PToBGR24(w, h, 10, p1, p2, p3, d, f)),  // p1 red
       [](uint32_t p1, uint32_t p2, uint32_t p3, uint8_t* d) { d[0] = uint8_t(p3 >> 2), d[1] = uint8_t(p2 >> 2), d[2] = uint8_t(p1 >> 2); }},
      {"BGR48PToBGR24 d8", 2, 3, 65536, PCALL(BGR48PToBGR24(w, h, 8, p1, p2, p3, d, f)),
       [](uint32_t p1, uint32_t p2, uint32_t p3, uint8_t* d) { d[0] = uint8_t(p3), d[1] = uint8_t(p2), d[2] = uint8_t(p1); }},
  };
  return cases;
}

std::vector<uint8_t> Plane(size_t samples, size_t sampleBytes, uint32_t limit, uint32_t seed) {
  return sampleBytes == 1 ? testsupport::RandomBytes(samples, seed) : testsupport::RandomWords(samples, limit, seed);
}

uint32_t Sample(const std::vector<uint8_t>& plane, size_t sampleBytes, size_t i) {
  return sampleBytes == 1 ? plane[i] : testsupport::Word(plane, i);
}

TEST(ColourPlanar, EveryMethodEveryVariantOddWidthsAndFlip) {
  CIppImageConverter conv;
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    SCOPED_TRACE(kestrelink::VariantName(variant));
    for (const auto& c : Cases())
      for (uint32_t w : {1u, 7u, 8u, 9u, 16u, 17u, 31u, 64u, 65u, 257u})
        for (bool flip : {false, true}) {
          const uint32_t h = 5;
          const size_t pixels = size_t(w) * h;
          std::vector<uint8_t> p[3];
          for (int i = 0; i < 3; ++i) p[i] = Plane(pixels, c.sampleBytes, c.limit, w * 3 + i);
          auto dst = testsupport::RandomBytes(pixels * c.dstBytes + 16, w);
          auto want = dst;
          for (uint32_t y = 0; y < h; ++y)
            for (uint32_t x = 0; x < w; ++x) {
              const size_t i = size_t(y) * w + x;
              c.pixel(Sample(p[0], c.sampleBytes, i), Sample(p[1], c.sampleBytes, i), Sample(p[2], c.sampleBytes, i),
                      &want[(size_t(flip ? h - 1 - y : y) * w + x) * c.dstBytes]);
            }
          ASSERT_TRUE(c.call(conv, w, h, p[0].data(), p[1].data(), p[2].data(), dst.data(), flip));
          ASSERT_EQ(dst, want) << c.name << " w=" << w << " flip=" << flip;
        }
  }
}

TEST(ColourPlanar, BGR24ToBGR24PSplitsBlueGreenRed) {
  CIppImageConverter conv;
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    for (uint32_t w : {1u, 31u, 32u, 33u, 64u, 100u})
      for (bool flip : {false, true}) {
        const uint32_t h = 4;
        const auto src = testsupport::RandomBytes(3 * size_t(w) * h, w);
        std::vector<uint8_t> planes[3], want[3];
        for (int c = 0; c < 3; ++c) {
          planes[c] = testsupport::RandomBytes(size_t(w) * h + 8, 40 + c);
          want[c] = planes[c];
          for (uint32_t y = 0; y < h; ++y)
            for (uint32_t x = 0; x < w; ++x)
              want[c][size_t(flip ? h - 1 - y : y) * w + x] = src[3 * (size_t(y) * w + x) + c];
        }
        ASSERT_TRUE(conv.BGR24ToBGR24P(w, h, const_cast<uint8_t*>(src.data()), planes[0].data(), planes[1].data(),
                                       planes[2].data(), flip));
        for (int c = 0; c < 3; ++c)
          ASSERT_EQ(planes[c], want[c]) << kestrelink::VariantName(variant) << " w=" << w << " flip=" << flip << " plane " << c;
      }
  }
}

}  // namespace
