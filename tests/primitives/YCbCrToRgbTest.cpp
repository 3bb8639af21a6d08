// The YCbCr-to-RGB kernels at every processor variant: each written byte
// within 1 of studio-range BT.601 in double precision, every other byte
// untouched; rows padded or stored bottom-up (negative steps), widths that end
// in a partial group.
#include <gtest/gtest.h>

#include <functional>

#include "primitives/YCbCrToRgb.h"
#include "primitives/YccTestSupport.h"
#include "support/TestSupport.h"

namespace {

using namespace ycctest;

enum class Layout { kPairs422, kPlanar411, kPlanar444, kPlanar420 };
enum class Out { kBgrx, kBgr, kRgb };

struct Geometry {
  int pad;
  bool bottomUp;
};

constexpr Ipp8u kAlpha = 0x5A;

// Random samples of a frame and the memory that holds them in `layout`.
struct Source {
  Source(Layout l, int width, int height, Geometry g, uint32_t seed) : layout(l), w(width), h(height) {
    sx = l == Layout::kPlanar411 ? 2 : l == Layout::kPlanar444 ? 0 : 1;
    sy = l == Layout::kPlanar420 ? 1 : 0;
    cw = l == Layout::kPairs422 ? (w + 1) / 2 : w >> sx;
    ch = h >> sy;
    const auto bytes = testsupport::RandomBytes(size_t(w) * h + 2 * size_t(cw) * h, seed);
    yv.assign(bytes.begin(), bytes.begin() + w * h);
    cbv.assign(bytes.begin() + w * h, bytes.begin() + w * h + cw * h);
    crv.assign(bytes.begin() + w * h + cw * h, bytes.end());
    if (l == Layout::kPairs422) {
      planes.emplace_back(size_t(2 * w), h, g.pad, g.bottomUp);
      for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) {  // Y0 Cb Y1 Cr; an odd last pixel has Y and Cb only
          planes[0].Row(y)[2 * x] = uint8_t(yv[y * w + x]);
          planes[0].Row(y)[2 * x + 1] = uint8_t(x % 2 ? crv[y * cw + x / 2] : cbv[y * cw + x / 2]);
        }
    } else {
      planes.emplace_back(size_t(w), h, g.pad, g.bottomUp);
      for (int y = 0; y < h; ++y)
        for (int x = 0; x < w; ++x) planes[0].Row(y)[x] = uint8_t(yv[y * w + x]);
      // 4:4:4 takes one step for all planes, so its chroma rows match luma's.
      const int cpad = l == Layout::kPlanar444 ? g.pad : g.pad + 3;
      for (const auto* values : {&cbv, &crv}) {
        planes.emplace_back(size_t(cw), ch, cpad, g.bottomUp);
        for (int y = 0; y < ch; ++y)
          for (int x = 0; x < cw; ++x) planes.back().Row(y)[x] = uint8_t((*values)[y * cw + x]);
      }
    }
    for (size_t i = 0; i < planes.size(); ++i) {
      ptrs[i] = planes[i].Origin();
      steps[i] = planes[i].Step();
    }
  }
  int Y(int x, int y) const { return yv[y * w + x]; }
  int Cb(int x, int y) const { return cbv[(y >> sy) * cw + (x >> sx)]; }
  int Cr(int x, int y) const { return crv[(y >> sy) * cw + (x >> sx)]; }
  // The pixels the kernel converts: whole groups only.
  int Columns() const { return w & ~((1 << sx) - 1); }
  int Rows() const { return h & ~((1 << sy) - 1); }

  Layout layout;
  int w, h, sx = 0, sy = 0, cw = 0, ch = 0;
  std::vector<int> yv, cbv, crv;
  std::vector<Frame> planes;
  const Ipp8u* ptrs[3] = {};
  int steps[3] = {};
};

struct DecodeCase {
  const char* name;
  Layout layout;
  Out out;
  int minWidth, minHeight;
  std::function<IppStatus(const Source&, Frame&, IppiSize)> call;
};

const std::vector<DecodeCase>& Cases() {
  using S = const Source&;
  static const std::vector<DecodeCase> cases = {
      {"YCbCr422ToBGR_8u_C2C4R", Layout::kPairs422, Out::kBgrx, 2, 1,
       [](S s, Frame& d, IppiSize r) {
         return ippiYCbCr422ToBGR_8u_C2C4R(s.ptrs[0], s.steps[0], d.Origin(), d.Step(), r, kAlpha);
       }},
      {"YCbCr422ToBGR_8u_C2C3R", Layout::kPairs422, Out::kBgr, 2, 1,
       [](S s, Frame& d, IppiSize r) { return ippiYCbCr422ToBGR_8u_C2C3R(s.ptrs[0], s.steps[0], d.Origin(), d.Step(), r); }},
      {"YCbCr422ToRGB_8u_C2C3R", Layout::kPairs422, Out::kRgb, 2, 1,
       [](S s, Frame& d, IppiSize r) { return ippiYCbCr422ToRGB_8u_C2C3R(s.ptrs[0], s.steps[0], d.Origin(), d.Step(), r); }},
      {"YCbCr411ToBGR_8u_P3C4R", Layout::kPlanar411, Out::kBgrx, 4, 1,
       [](S s, Frame& d, IppiSize r) { return ippiYCbCr411ToBGR_8u_P3C4R(s.ptrs, s.steps, d.Origin(), d.Step(), r, kAlpha); }},
      {"YCbCr411ToBGR_8u_P3C3R", Layout::kPlanar411, Out::kBgr, 4, 1,
       [](S s, Frame& d, IppiSize r) { return ippiYCbCr411ToBGR_8u_P3C3R(s.ptrs, s.steps, d.Origin(), d.Step(), r); }},
      {"YCbCrToBGR_8u_P3C4R", Layout::kPlanar444, Out::kBgrx, 1, 1,
       [](S s, Frame& d, IppiSize r) { return ippiYCbCrToBGR_8u_P3C4R(s.ptrs, s.steps[0], d.Origin(), d.Step(), r, kAlpha); }},
      {"YCbCrToBGR_8u_P3C3R", Layout::kPlanar444, Out::kBgr, 1, 1,
       [](S s, Frame& d, IppiSize r) { return ippiYCbCrToBGR_8u_P3C3R(s.ptrs, s.steps[0], d.Origin(), d.Step(), r); }},
      {"YCbCrToRGB_8u_P3C3R", Layout::kPlanar444, Out::kRgb, 1, 1,
       [](S s, Frame& d, IppiSize r) { return ippiYCbCrToRGB_8u_P3C3R(s.ptrs, s.steps[0], d.Origin(), d.Step(), r); }},
      {"YCbCr420ToBGR_8u_P3C3R", Layout::kPlanar420, Out::kBgr, 2, 2,
       [](S s, Frame& d, IppiSize r) { return ippiYCbCr420ToBGR_8u_P3C3R(s.ptrs, s.steps, d.Origin(), d.Step(), r); }},
  };
  return cases;
}

int PixelBytes(Out out) { return out == Out::kBgrx ? 4 : 3; }

void ExpectConverts(const DecodeCase& c, int w, int h, Geometry g) {
  SCOPED_TRACE(testing::Message() << c.name << " " << w << "x" << h << " pad " << g.pad
                                  << (g.bottomUp ? " bottom-up" : ""));
  const Source src(c.layout, w, h, g, uint32_t(w * 131 + h));
  const int bpp = PixelBytes(c.out), dpad = g.pad ? g.pad + 5 : 0;
  Frame dst(size_t(w) * bpp, h, dpad, g.bottomUp);
  Expected want(size_t(w) * bpp, h, dpad, g.bottomUp);
  for (int y = 0; y < src.Rows(); ++y)
    for (int x = 0; x < src.Columns(); ++x) {
      const RgbD p = ToRgb(src.Y(x, y), src.Cb(x, y), src.Cr(x, y));
      const double first = c.out == Out::kRgb ? p.r : p.b, third = c.out == Out::kRgb ? p.b : p.r;
      want.Set(y, size_t(bpp) * x, first);
      want.Set(y, size_t(bpp) * x + 1, p.g);
      want.Set(y, size_t(bpp) * x + 2, third);
      if (bpp == 4) want.Set(y, size_t(bpp) * x + 3, kAlpha, 0);
    }
  ASSERT_EQ(c.call(src, dst, {w, h}), ippStsNoErr);
  EXPECT_TRUE(Matches(dst, want));
}

TEST(YCbCrToRgbKernels, MatchStudioRangeBt601) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (const auto& c : Cases())
      for (int w : {70, 67, 34, 5}) ExpectConverts(c, std::max(w, c.minWidth), 6, {0, false});
  }
}

TEST(YCbCrToRgbKernels, PaddedAndBottomUpRows) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (const auto& c : Cases())
      for (Geometry g : {Geometry{9, false}, Geometry{0, true}, Geometry{7, true}}) ExpectConverts(c, 66, 5, g);
  }
}

TEST(YCbCrToRgbKernels, SmallestRegions) {
  for (const auto& c : Cases()) ExpectConverts(c, c.minWidth, c.minHeight, {0, false});
}

// Every Y, Cb, Cr combination through the 4:4:4 kernel, one Y a call.
TEST(YCbCrToRgbKernels, EveryInputWithinOne) {
  std::vector<uint8_t> cb(65536), cr(65536), y(65536), dst(3 * 65536);
  for (int i = 0; i < 65536; ++i) cb[i] = uint8_t(i), cr[i] = uint8_t(i >> 8);
  const Ipp8u* planes[3] = {y.data(), cb.data(), cr.data()};
  int worst = 0;
  for (int luma = 0; luma < 256; ++luma) {
    std::fill(y.begin(), y.end(), uint8_t(luma));
    ASSERT_EQ(ippiYCbCrToRGB_8u_P3C3R(planes, 256, dst.data(), 3 * 256, {256, 256}), ippStsNoErr);
    for (int i = 0; i < 65536; ++i) {
      const RgbD p = ToRgb(luma, cb[i], cr[i]);
      const double want[3] = {p.r, p.g, p.b};
      for (int k = 0; k < 3; ++k) worst = std::max(worst, std::abs(int(dst[3 * i + k]) - int(std::lround(want[k]))));
    }
  }
  EXPECT_LE(worst, 1);
}

}  // namespace
