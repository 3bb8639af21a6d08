// The RGB-to-YCbCr kernels at every processor variant: Y of each pixel and
// the mean chroma of each pair or 2 x 2 block within 1 of studio-range BT.601
// in double precision, every other byte untouched; padded and bottom-up rows,
// odd widths and heights.
#include <gtest/gtest.h>

#include <functional>

#include "primitives/RgbToYCbCr.h"
#include "primitives/YccTestSupport.h"
#include "support/TestSupport.h"

namespace {

using namespace ycctest;

enum class In { kBgr, kRgb, kBgrx, kBgr555, kBgr565, kPlanarRgb };
enum class Out { kPlanar422, kPlanar420, kPacked422 };

struct Geometry {
  int pad;
  bool bottomUp;
};

int InBytes(In in) {
  switch (in) {
    case In::kBgr:
    case In::kRgb: return 3;
    case In::kBgrx: return 4;
    case In::kBgr555:
    case In::kBgr565: return 2;
    default: return 1;
  }
}

// A random frame in `in`, with the 8-bit R, G, B each pixel stands for.
struct Source {
  Source(In in, int width, int height, Geometry g, uint32_t seed) : w(width), h(height) {
    const int bpp = InBytes(in);
    const int planeCount = in == In::kPlanarRgb ? 3 : 1;
    const auto bytes = testsupport::RandomBytes(size_t(w) * h * bpp * planeCount, seed);
    for (int p = 0; p < planeCount; ++p) {
      planes.emplace_back(size_t(w) * bpp, h, g.pad, g.bottomUp);
      for (int y = 0; y < h; ++y)
        for (int i = 0; i < w * bpp; ++i) planes[p].Row(y)[i] = bytes[(size_t(p) * h + y) * w * bpp + i];
    }
    for (int y = 0; y < h; ++y)
      for (int x = 0; x < w; ++x) {
        const uint8_t* q = planes[0].Row(y) + size_t(x) * bpp;
        const int u = bpp == 2 ? q[0] | (q[1] << 8) : 0;
        RgbD c{};
        switch (in) {
          case In::kBgr:
          case In::kBgrx: c = {double(q[2]), double(q[1]), double(q[0])}; break;
          case In::kRgb: c = {double(q[0]), double(q[1]), double(q[2])}; break;
          case In::kBgr555:  // 5 bits each from bit 10, 5, 0, widened by << 3
            c = {double(((u >> 10) & 31) * 8), double(((u >> 5) & 31) * 8), double((u & 31) * 8)};
            break;
          case In::kBgr565:  // 5, 6, 5 bits from bit 11, 5, 0
            c = {double((u >> 11) * 8), double(((u >> 5) & 63) * 4), double((u & 31) * 8)};
            break;
          case In::kPlanarRgb:
            c = {double(planes[0].Row(y)[x]), double(planes[1].Row(y)[x]), double(planes[2].Row(y)[x])};
            break;
        }
        rgb.push_back(c);
      }
    for (size_t p = 0; p < planes.size(); ++p) ptrs[p] = planes[p].Origin();
  }
  const RgbD& At(int x, int y) const { return rgb[size_t(y) * w + x]; }
  const Ipp8u* Packed() const { return ptrs[0]; }
  const Ipp16u* Words() const { return reinterpret_cast<const Ipp16u*>(ptrs[0]); }
  int Step() const { return planes[0].Step(); }

  int w, h;
  std::vector<Frame> planes;
  std::vector<RgbD> rgb;
  const Ipp8u* ptrs[3] = {};
};

// The three output planes, or the one packed frame.
struct Output {
  Output(Out out, int w, int h, Geometry g) {
    if (out == Out::kPacked422) {
      frames.emplace_back(size_t(2 * w), h, g.pad, g.bottomUp);
      expected.emplace_back(size_t(2 * w), h, g.pad, g.bottomUp);
      return;
    }
    const int ch = out == Out::kPlanar420 ? h / 2 : h;
    const int pads[3] = {g.pad, g.pad ? g.pad + 2 : 0, g.pad ? g.pad + 4 : 0};
    for (int p = 0; p < 3; ++p) {
      const int cols = p ? w / 2 : w, rows = p ? ch : h;
      frames.emplace_back(size_t(cols), rows, pads[p], g.bottomUp);
      expected.emplace_back(size_t(cols), rows, pads[p], g.bottomUp);
    }
    for (int p = 0; p < 3; ++p) {
      ptrs[p] = frames[p].Origin();
      steps[p] = frames[p].Step();
    }
  }
  std::vector<Frame> frames;
  std::vector<Expected> expected;
  Ipp8u* ptrs[3] = {};
  int steps[3] = {};
};

struct EncodeCase {
  const char* name;
  In in;
  Out out;
  std::function<IppStatus(const Source&, Output&, IppiSize)> call;
};

const std::vector<EncodeCase>& Cases() {
  using S = const Source&;
  static const std::vector<EncodeCase> cases = {
      {"BGRToYCbCr422_8u_C3C2R", In::kBgr, Out::kPacked422,
       [](S s, Output& o, IppiSize r) {
         return ippiBGRToYCbCr422_8u_C3C2R(s.Packed(), s.Step(), o.frames[0].Origin(), o.frames[0].Step(), r);
       }},
      {"BGRToYCbCr422_8u_AC4C2R", In::kBgrx, Out::kPacked422,
       [](S s, Output& o, IppiSize r) {
         return ippiBGRToYCbCr422_8u_AC4C2R(s.Packed(), s.Step(), o.frames[0].Origin(), o.frames[0].Step(), r);
       }},
      {"BGRToYCbCr422_8u_C3P3R", In::kBgr, Out::kPlanar422,
       [](S s, Output& o, IppiSize r) { return ippiBGRToYCbCr422_8u_C3P3R(s.Packed(), s.Step(), o.ptrs, o.steps, r); }},
      {"RGBToYCbCr422_8u_C3P3R", In::kRgb, Out::kPlanar422,
       [](S s, Output& o, IppiSize r) { return ippiRGBToYCbCr422_8u_C3P3R(s.Packed(), s.Step(), o.ptrs, o.steps, r); }},
      {"BGRToYCbCr422_8u_AC4P3R", In::kBgrx, Out::kPlanar422,
       [](S s, Output& o, IppiSize r) { return ippiBGRToYCbCr422_8u_AC4P3R(s.Packed(), s.Step(), o.ptrs, o.steps, r); }},
      {"BGR555ToYCbCr422_16u8u_C3P3R", In::kBgr555, Out::kPlanar422,
       [](S s, Output& o, IppiSize r) {
         return ippiBGR555ToYCbCr422_16u8u_C3P3R(s.Words(), s.Step(), o.ptrs, o.steps, r);
       }},
      {"BGR565ToYCbCr422_16u8u_C3P3R", In::kBgr565, Out::kPlanar422,
       [](S s, Output& o, IppiSize r) {
         return ippiBGR565ToYCbCr422_16u8u_C3P3R(s.Words(), s.Step(), o.ptrs, o.steps, r);
       }},
      {"RGBToYCbCr422_8u_P3R", In::kPlanarRgb, Out::kPlanar422,
       [](S s, Output& o, IppiSize r) { return ippiRGBToYCbCr422_8u_P3R(s.ptrs, s.Step(), o.ptrs, o.steps, r); }},
      {"BGRToYCbCr420_8u_C3P3R", In::kBgr, Out::kPlanar420,
       [](S s, Output& o, IppiSize r) { return ippiBGRToYCbCr420_8u_C3P3R(s.Packed(), s.Step(), o.ptrs, o.steps, r); }},
      {"RGBToYCbCr420_8u_C3P3R", In::kRgb, Out::kPlanar420,
       [](S s, Output& o, IppiSize r) { return ippiRGBToYCbCr420_8u_C3P3R(s.Packed(), s.Step(), o.ptrs, o.steps, r); }},
      {"BGRToYCbCr420_8u_AC4P3R", In::kBgrx, Out::kPlanar420,
       [](S s, Output& o, IppiSize r) { return ippiBGRToYCbCr420_8u_AC4P3R(s.Packed(), s.Step(), o.ptrs, o.steps, r); }},
      {"BGR555ToYCbCr420_16u8u_C3P3R", In::kBgr555, Out::kPlanar420,
       [](S s, Output& o, IppiSize r) {
         return ippiBGR555ToYCbCr420_16u8u_C3P3R(s.Words(), s.Step(), o.ptrs, o.steps, r);
       }},
      {"BGR565ToYCbCr420_16u8u_C3P3R", In::kBgr565, Out::kPlanar420,
       [](S s, Output& o, IppiSize r) {
         return ippiBGR565ToYCbCr420_16u8u_C3P3R(s.Words(), s.Step(), o.ptrs, o.steps, r);
       }},
      {"RGBToYCbCr420_8u_P3R", In::kPlanarRgb, Out::kPlanar420,
       [](S s, Output& o, IppiSize r) { return ippiRGBToYCbCr420_8u_P3R(s.ptrs, s.Step(), o.ptrs, o.steps, r); }},
  };
  return cases;
}

RgbD Mean(std::initializer_list<RgbD> px) {
  RgbD m{0, 0, 0};
  for (const RgbD& p : px) m = {m.r + p.r, m.g + p.g, m.b + p.b};
  const double n = double(px.size());
  return {m.r / n, m.g / n, m.b / n};
}

double Y(const RgbD& p) { return LumaOf(p.r, p.g, p.b); }
double Cb(const RgbD& p) { return CbOf(p.r, p.g, p.b); }
double Cr(const RgbD& p) { return CrOf(p.r, p.g, p.b); }

void Fill(Out out, const Source& s, Output& o) {
  const int w = s.w, h = s.h;
  if (out == Out::kPacked422) {  // whole pairs: Y0 Cb Y1 Cr
    for (int y = 0; y < h; ++y)
      for (int i = 0; i < w / 2; ++i) {
        const RgbD a = s.At(2 * i, y), b = s.At(2 * i + 1, y), m = Mean({a, b});
        o.expected[0].Set(y, 4 * size_t(i), Y(a));
        o.expected[0].Set(y, 4 * size_t(i) + 1, Cb(m));
        o.expected[0].Set(y, 4 * size_t(i) + 2, Y(b));
        o.expected[0].Set(y, 4 * size_t(i) + 3, Cr(m));
      }
    return;
  }
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) o.expected[0].Set(y, size_t(x), Y(s.At(x, y)));
  const int ch = out == Out::kPlanar420 ? h / 2 : h;
  for (int cy = 0; cy < ch; ++cy)
    for (int i = 0; i < w / 2; ++i) {
      const int y = out == Out::kPlanar420 ? 2 * cy : cy;
      const RgbD m = out == Out::kPlanar420
                         ? Mean({s.At(2 * i, y), s.At(2 * i + 1, y), s.At(2 * i, y + 1), s.At(2 * i + 1, y + 1)})
                         : Mean({s.At(2 * i, y), s.At(2 * i + 1, y)});
      o.expected[1].Set(cy, size_t(i), Cb(m));
      o.expected[2].Set(cy, size_t(i), Cr(m));
    }
}

void ExpectEncodes(const EncodeCase& c, int w, int h, Geometry g) {
  SCOPED_TRACE(testing::Message() << c.name << " " << w << "x" << h << " pad " << g.pad
                                  << (g.bottomUp ? " bottom-up" : ""));
  const Source src(c.in, w, h, g, uint32_t(w * 977 + h));
  Output out(c.out, w, h, g);
  Fill(c.out, src, out);
  ASSERT_EQ(c.call(src, out, {w, h}), ippStsNoErr);
  const char* names[3] = {"Y", "Cb", "Cr"};
  for (size_t p = 0; p < out.frames.size(); ++p) EXPECT_TRUE(Matches(out.frames[p], out.expected[p])) << names[p];
}

TEST(RgbToYCbCrKernels, MatchStudioRangeBt601) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (const auto& c : Cases())
      for (int w : {98, 71, 34, 3}) ExpectEncodes(c, w, 6, {0, false});
  }
}

TEST(RgbToYCbCrKernels, OddHeightsGiveLumaOnlyForTheLastRow) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (const auto& c : Cases())
      for (int h : {1, 5}) ExpectEncodes(c, 66, h, {0, false});
  }
}

TEST(RgbToYCbCrKernels, PaddedAndBottomUpRows) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (const auto& c : Cases())
      for (Geometry g : {Geometry{11, false}, Geometry{0, true}, Geometry{6, true}}) ExpectEncodes(c, 67, 4, g);
  }
}

// Black, white and the primaries land on the studio range's values.
TEST(RgbToYCbCrKernels, KnownColours) {
  struct Row {
    uint8_t b, g, r, y, cb, cr;
  };
  const Row rows[] = {
      {0, 0, 0, 16, 128, 128},      {255, 255, 255, 235, 128, 128}, {0, 0, 255, 81, 90, 240},
      {0, 255, 0, 145, 54, 34},     {255, 0, 0, 41, 240, 110},      {128, 128, 128, 126, 128, 128},
  };
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    for (const Row& r : rows) {
      SCOPED_TRACE(testing::Message() << kestrelink::VariantName(v) << " BGR " << int(r.b) << " " << int(r.g) << " "
                                      << int(r.r));
      std::vector<uint8_t> src, y(2 * 64), cb(32), cr(32);
      for (int i = 0; i < 2 * 64; ++i) src.insert(src.end(), {r.b, r.g, r.r});
      Ipp8u* planes[3] = {y.data(), cb.data(), cr.data()};
      const int steps[3] = {64, 32, 32};
      ASSERT_EQ(ippiBGRToYCbCr420_8u_C3P3R(src.data(), 3 * 64, planes, steps, {64, 2}), ippStsNoErr);
      EXPECT_EQ(y, std::vector<uint8_t>(2 * 64, r.y));
      EXPECT_EQ(cb, std::vector<uint8_t>(32, r.cb));
      EXPECT_EQ(cr, std::vector<uint8_t>(32, r.cr));
    }
  }
}

// 5-5-5 and 5-6-5 white widen without bit replication: 248 (and 252 for
// 6-bit green) rather than 255.
TEST(RgbToYCbCrKernels, PackedWordsWidenByShifting) {
  const uint16_t white555[2] = {0x7FFF, 0x7FFF}, white565[2] = {0xFFFF, 0xFFFF};
  uint8_t y[2], cb[1], cr[1];
  Ipp8u* planes[3] = {y, cb, cr};
  const int steps[3] = {2, 1, 1};
  ASSERT_EQ(ippiBGR555ToYCbCr422_16u8u_C3P3R(white555, 4, planes, steps, {2, 1}), ippStsNoErr);
  EXPECT_EQ(y[0], std::lround(LumaOf(248, 248, 248)));
  ASSERT_EQ(ippiBGR565ToYCbCr422_16u8u_C3P3R(white565, 4, planes, steps, {2, 1}), ippStsNoErr);
  EXPECT_NEAR(y[0], LumaOf(248, 252, 248), 1);
  EXPECT_NEAR(cr[0], CrOf(248, 252, 248), 1);
}

}  // namespace
