// The resize kernels against the double-precision reference and the
// properties any correct interpolation has, in every form.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "primitives/Resize.h"
#include "support/ResizeReference.h"
#include "support/TestSupport.h"

namespace {

using testsupport::RefKind;

struct Mode {
  int interpolation;
  RefKind ref;
  const char* name;
};
const Mode kModes[] = {{IPPI_INTER_NN, testsupport::kRefNearest, "nearest"},
                       {IPPI_INTER_LINEAR, testsupport::kRefLinear, "linear"},
                       {IPPI_INTER_CUBIC, testsupport::kRefCubic, "cubic"},
                       {IPPI_INTER_LANCZOS, testsupport::kRefLanczos, "lanczos"},
                       {IPPI_INTER_SUPER, testsupport::kRefArea, "super"}};

template <class T>
using Kernel = IppStatus (*)(const T*, IppiSize, int, IppiRect, T*, int, IppiRect, double, double, double, double, int,
                             Ipp8u*);

// A frame of w x h pixels of `channels` samples.
template <class T>
struct Frame {
  int w, h, channels;
  std::vector<T> s;
  Frame(int w_, int h_, int c, T fill = 0) : w(w_), h(h_), channels(c), s(size_t(w_) * h_ * c, fill) {}
  T& at(int x, int y, int c = 0) { return s[(size_t(y) * w + x) * channels + c]; }
  int step() const { return w * channels * int(sizeof(T)); }
};

template <class T>
Frame<T> RandomFrame(int w, int h, int c, uint32_t seed, uint32_t top) {
  Frame<T> f(w, h, c);
  std::mt19937 rng(seed);
  for (auto& v : f.s) v = T(rng() % (top + 1));
  return f;
}

// Resizes src's ROI to dstW x dstH through `kernel`, into a frame that
// starts as `out` (so untouched samples can be seen).
template <class T>
IppStatus Resize(Kernel<T> kernel, const Frame<T>& src, IppiRect roi, Frame<T>& out, int interpolation) {
  const IppiRect dstRect{0, 0, out.w, out.h};
  int bytes = 0;
  const int channels = src.channels == 4 ? 4 : src.channels;
  if (ippiResizeGetBufSize(roi, dstRect, channels, interpolation, &bytes) != ippStsNoErr) return -1000;
  std::vector<Ipp8u> buffer(static_cast<size_t>(bytes));
  return kernel(src.s.data(), {src.w, src.h}, src.step(), roi, out.s.data(), out.step(), dstRect,
                double(out.w) / roi.width, double(out.h) / roi.height, 0, 0, interpolation, buffer.data());
}

template <class T>
std::vector<double> Ref(const Frame<T>& src, IppiRect roi, int dstW, int dstH, RefKind kind) {
  return testsupport::RefResize(std::vector<double>(src.s.begin(), src.s.end()), src.w, src.h, src.channels, roi.x,
                                roi.y, roi.width, roi.height, dstW, dstH, kind);
}

struct Shape {
  int w, h, roiX, roiY, roiW, roiH, dstW, dstH;
};
// Reductions and enlargements, whole and part frames, integer and odd ratios,
// a ROI that runs past the frame (clipped), a one-pixel-wide source.
const Shape kShapes[] = {{19, 13, 0, 0, 19, 13, 31, 17},  {40, 30, 0, 0, 40, 30, 13, 11},
                         {24, 16, 0, 0, 24, 16, 12, 8},   {17, 9, 3, 2, 11, 6, 23, 14},
                         {20, 20, 14, 15, 10, 10, 9, 7},  {1, 7, 0, 0, 1, 7, 5, 3},
                         {33, 21, 0, 0, 33, 21, 33, 21}, {64, 8, 0, 0, 64, 8, 5, 8}};

// Largest difference between a kernel and the rounded reference; `exact`
// gathers the largest distance from the unrounded reference (0.5 would be
// perfect rounding), where it is not saturated.
template <class T>
double LargestError(double& exact, Kernel<T> kernel, int channels, uint32_t top, const Mode& m, const Shape& s) {
  const Frame<T> src = RandomFrame<T>(s.w, s.h, channels, uint32_t(s.w * 31 + s.dstW), top);
  const IppiRect roi{s.roiX, s.roiY, s.roiW, s.roiH};
  Frame<T> out(s.dstW, s.dstH, channels);
  EXPECT_EQ(Resize(kernel, src, roi, out, m.interpolation), ippStsNoErr);
  const std::vector<double> ref = Ref(src, roi, s.dstW, s.dstH, m.ref);
  double largest = 0;
  for (size_t i = 0; i < ref.size(); ++i) {
    if (channels == 4 && i % 4 == 3) continue;  // the fourth sample is not written
    largest = std::max(largest, std::fabs(double(out.s[i]) - testsupport::RefSample(ref[i], top)));
    if (ref[i] >= 0 && ref[i] <= top) exact = std::max(exact, std::fabs(double(out.s[i]) - ref[i]));
  }
  return largest;
}

// 8-bit forms filter in fixed point, 16-bit forms in float: both stay within
// one step of the rounded double-precision result, in every variant.
TEST(ResizeKernel, WithinOneOfTheDoubleReference) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    double worst8 = 0, worst16 = 0, exact8 = 0, exact16 = 0;
    for (const Mode& m : kModes)
      for (const Shape& s : kShapes) {
        SCOPED_TRACE(testing::Message() << kestrelink::VariantName(v) << " " << m.name << " " << s.w << "x" << s.h
                                        << " -> " << s.dstW << "x" << s.dstH);
        worst8 = std::max({worst8, LargestError<Ipp8u>(exact8, ippiResizeSqrPixel_8u_C1R, 1, 255, m, s),
                           LargestError<Ipp8u>(exact8, ippiResizeSqrPixel_8u_C3R, 3, 255, m, s),
                           LargestError<Ipp8u>(exact8, ippiResizeSqrPixel_8u_AC4R, 4, 255, m, s)});
        worst16 = std::max({worst16, LargestError<Ipp16u>(exact16, ippiResizeSqrPixel_16u_C1R, 1, 65535, m, s),
                            LargestError<Ipp16u>(exact16, ippiResizeSqrPixel_16u_C3R, 3, 65535, m, s),
                            LargestError<Ipp16u>(exact16, ippiResizeSqrPixel_16u_AC4R, 4, 65535, m, s)});
      }
    EXPECT_LE(worst8, 1.0);
    EXPECT_LE(worst16, 1.0);
    EXPECT_LT(exact8, 0.6);
    EXPECT_LT(exact16, 0.51);
    std::printf("[ resize  ] %s: largest error against the rounded reference 8-bit %.0f, 16-bit %.0f; "
                "from the exact value 8-bit %.4f, 16-bit %.4f\n",
                kestrelink::VariantName(v), worst8, worst16, exact8, exact16);
  }
}

TEST(ResizeKernel, ConstantFramesStayConstant) {
  for (const Mode& m : kModes)
    for (const Shape& s : kShapes) {
      SCOPED_TRACE(m.name);
      for (Ipp16u value : {Ipp16u(0), Ipp16u(1), Ipp16u(65534), Ipp16u(65535)}) {
        const Frame<Ipp16u> src(s.w, s.h, 1, value);
        Frame<Ipp16u> out(s.dstW, s.dstH, 1, 7);
        ASSERT_EQ(Resize<Ipp16u>(ippiResizeSqrPixel_16u_C1R, src, {s.roiX, s.roiY, s.roiW, s.roiH}, out,
                                 m.interpolation),
                  ippStsNoErr);
        for (Ipp16u got : out.s) ASSERT_EQ(got, value);
      }
      for (Ipp8u value : {Ipp8u(0), Ipp8u(77), Ipp8u(255)}) {
        const Frame<Ipp8u> src(s.w, s.h, 3, value);
        Frame<Ipp8u> out(s.dstW, s.dstH, 3, 7);
        ASSERT_EQ(Resize<Ipp8u>(ippiResizeSqrPixel_8u_C3R, src, {s.roiX, s.roiY, s.roiW, s.roiH}, out,
                                m.interpolation),
                  ippStsNoErr);
        for (Ipp8u got : out.s) ASSERT_EQ(got, value);
      }
    }
}

TEST(ResizeKernel, IdentitySizeReproducesTheFrame) {
  const Frame<Ipp8u> src = RandomFrame<Ipp8u>(37, 23, 1, 5, 255);
  for (const Mode& m : kModes) {
    Frame<Ipp8u> out(37, 23, 1);
    ASSERT_EQ(Resize<Ipp8u>(ippiResizeSqrPixel_8u_C1R, src, {0, 0, 37, 23}, out, m.interpolation), ippStsNoErr);
    EXPECT_EQ(out.s, src.s) << m.name;
  }
}

TEST(ResizeKernel, NearestDoublingGivesTwoByTwoBlocks) {
  const Frame<Ipp16u> src = RandomFrame<Ipp16u>(9, 7, 3, 11, 65535);
  Frame<Ipp16u> out(18, 14, 3);
  ASSERT_EQ(Resize<Ipp16u>(ippiResizeSqrPixel_16u_C3R, src, {0, 0, 9, 7}, out, IPPI_INTER_NN), ippStsNoErr);
  Frame<Ipp16u> s = src;
  for (int y = 0; y < 14; ++y)
    for (int x = 0; x < 18; ++x)
      for (int c = 0; c < 3; ++c) ASSERT_EQ(out.at(x, y, c), s.at(x / 2, y / 2, c)) << x << "," << y;
}

TEST(ResizeKernel, HalvingByAreaOfTwoByTwoBlocksGivesTheBlocks) {
  Frame<Ipp8u> blocks(16, 10, 1), small = RandomFrame<Ipp8u>(8, 5, 1, 3, 255);
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 16; ++x) blocks.at(x, y) = small.at(x / 2, y / 2);
  Frame<Ipp8u> out(8, 5, 1);
  ASSERT_EQ(Resize<Ipp8u>(ippiResizeSqrPixel_8u_C1R, blocks, {0, 0, 16, 10}, out, IPPI_INTER_SUPER), ippStsNoErr);
  EXPECT_EQ(out.s, small.s);
  // And of any frame, the rounded mean of each block.
  const Frame<Ipp8u> any = RandomFrame<Ipp8u>(16, 10, 1, 4, 255);
  ASSERT_EQ(Resize<Ipp8u>(ippiResizeSqrPixel_8u_C1R, any, {0, 0, 16, 10}, out, IPPI_INTER_SUPER), ippStsNoErr);
  Frame<Ipp8u> a = any;
  for (int y = 0; y < 5; ++y)
    for (int x = 0; x < 8; ++x) {
      const int sum = a.at(2 * x, 2 * y) + a.at(2 * x + 1, 2 * y) + a.at(2 * x, 2 * y + 1) + a.at(2 * x + 1, 2 * y + 1);
      EXPECT_NEAR(out.at(x, y), (sum + 2) / 4, 0) << x << "," << y;
    }
}

// A ramp enlarged by bilinear stays a ramp: within one step of the line
// through the pixel centres, clamped at the edges.
TEST(ResizeKernel, BilinearKeepsARamp) {
  Frame<Ipp8u> ramp(16, 2, 1);
  for (int x = 0; x < 16; ++x) ramp.at(x, 0) = ramp.at(x, 1) = Ipp8u(x * 16);
  Frame<Ipp8u> out(40, 2, 1);
  ASSERT_EQ(Resize<Ipp8u>(ippiResizeSqrPixel_8u_C1R, ramp, {0, 0, 16, 2}, out, IPPI_INTER_LINEAR), ippStsNoErr);
  for (int x = 0; x < 40; ++x) {
    const double c = std::clamp((x + 0.5) * 16 / 40 - 0.5, 0.0, 15.0);
    EXPECT_NEAR(out.at(x, 0), 16 * c, 1.0) << x;
  }
}

// Channels never mix: a frame whose first channel is noise and the others
// constant keeps the others constant in every mode.
TEST(ResizeKernel, ChannelsNeverMix) {
  for (const Mode& m : kModes) {
    Frame<Ipp8u> src = RandomFrame<Ipp8u>(21, 15, 4, 8, 255);
    for (int y = 0; y < 15; ++y)
      for (int x = 0; x < 21; ++x) src.at(x, y, 1) = 40, src.at(x, y, 2) = 200, src.at(x, y, 3) = 9;
    Frame<Ipp8u> out(13, 22, 4, 0xEE);
    ASSERT_EQ(Resize<Ipp8u>(ippiResizeSqrPixel_8u_AC4R, src, {0, 0, 21, 15}, out, m.interpolation), ippStsNoErr);
    for (int y = 0; y < 22; ++y)
      for (int x = 0; x < 13; ++x) {
        ASSERT_EQ(out.at(x, y, 1), 40) << m.name;
        ASSERT_EQ(out.at(x, y, 2), 200) << m.name;
        ASSERT_EQ(out.at(x, y, 3), 0xEE) << m.name << ": the fourth sample is left as it was";
      }
  }
}

// Samples near the top survive the overshoot of the cubic and Lanczos lobes:
// they saturate, never wrap.
TEST(ResizeKernel, SixteenBitTopSurvives) {
  Frame<Ipp16u> bars(24, 4, 1);
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 24; ++x) bars.at(x, y) = x % 12 < 6 ? 65535 : 0;
  for (const Mode& m : kModes) {
    Frame<Ipp16u> out(29, 9, 1);
    ASSERT_EQ(Resize<Ipp16u>(ippiResizeSqrPixel_16u_C1R, bars, {0, 0, 24, 4}, out, m.interpolation), ippStsNoErr);
    EXPECT_EQ(*std::max_element(out.s.begin(), out.s.end()), 65535) << m.name;
    // The column over the middle of a bright bar stays at the top.
    const int x = int(3.0 * 29 / 24);
    EXPECT_GE(out.at(x, 4), 65000) << m.name;
  }
}

// Three planes give what three one-channel calls give.
TEST(ResizeKernel, PlanarIsThreeOneChannelResizes) {
  Frame<Ipp8u> p[3] = {RandomFrame<Ipp8u>(15, 11, 1, 1, 255), RandomFrame<Ipp8u>(15, 11, 1, 2, 255),
                       RandomFrame<Ipp8u>(15, 11, 1, 3, 255)};
  for (const Mode& m : kModes) {
    Frame<Ipp8u> out[3] = {{7, 19, 1}, {7, 19, 1}, {7, 19, 1}};
    const Ipp8u* in[3] = {p[0].s.data(), p[1].s.data(), p[2].s.data()};
    Ipp8u* o[3] = {out[0].s.data(), out[1].s.data(), out[2].s.data()};
    int bytes = 0;
    ASSERT_EQ(ippiResizeGetBufSize({2, 1, 12, 9}, {0, 0, 7, 19}, 4, m.interpolation, &bytes), ippStsNoErr);
    std::vector<Ipp8u> buffer(static_cast<size_t>(bytes));
    ASSERT_EQ(ippiResizeSqrPixel_8u_P3R(in, {15, 11}, 15, {2, 1, 12, 9}, o, 7, {0, 0, 7, 19}, 7.0 / 12, 19.0 / 9, 0, 0,
                                        m.interpolation, buffer.data()),
              ippStsNoErr);
    for (int i = 0; i < 3; ++i) {
      Frame<Ipp8u> one(7, 19, 1);
      ASSERT_EQ(Resize<Ipp8u>(ippiResizeSqrPixel_8u_C1R, p[i], {2, 1, 12, 9}, one, m.interpolation), ippStsNoErr);
      EXPECT_EQ(out[i].s, one.s) << m.name << " plane " << i;
    }
  }
}

// Output rows done in bands (as the class gives each thread) are the rows
// of one whole call, and nothing outside a band is written.
TEST(ResizeKernel, BandsOfRowsMatchTheWholeFrame) {
  const Frame<Ipp16u> src = RandomFrame<Ipp16u>(30, 26, 3, 9, 65535);
  for (const Mode& m : kModes) {
    Frame<Ipp16u> whole(17, 40, 3);
    ASSERT_EQ(Resize<Ipp16u>(ippiResizeSqrPixel_16u_C3R, src, {0, 0, 30, 26}, whole, m.interpolation), ippStsNoErr);
    Frame<Ipp16u> banded(17, 40, 3, 0x5A5A);
    int bytes = 0;
    ASSERT_EQ(ippiResizeGetBufSize({0, 0, 30, 26}, {0, 0, 17, 40}, 3, m.interpolation, &bytes), ippStsNoErr);
    std::vector<Ipp8u> buffer(static_cast<size_t>(bytes));
    for (int y0 : {0, 13, 27}) {
      const int rows = y0 == 27 ? 13 : y0 == 13 ? 14 : 13;
      ASSERT_EQ(ippiResizeSqrPixel_16u_C3R(src.s.data(), {30, 26}, src.step(), {0, 0, 30, 26}, banded.s.data(),
                                           banded.step(), {0, y0, 17, rows}, 17.0 / 30, 40.0 / 26, 0, 0,
                                           m.interpolation, buffer.data()),
                ippStsNoErr);
    }
    EXPECT_EQ(banded.s, whole.s) << m.name;
  }
}

TEST(ResizeKernel, StatusOfBadArguments) {
  Frame<Ipp8u> src(8, 8, 1), dst(4, 4, 1);
  std::vector<Ipp8u> buffer(1 << 16);
  struct Row {
    const char* what;
    const Ipp8u* src;
    IppiSize size;
    IppiRect roi;
    Ipp8u* dst;
    IppiRect dstRect;
    double xf, yf;
    int interpolation;
    Ipp8u* buffer;
    IppStatus want;
  };
  const Row rows[] = {
      {"null source", nullptr, {8, 8}, {0, 0, 8, 8}, dst.s.data(), {0, 0, 4, 4}, .5, .5, 2, buffer.data(), -8},
      {"null destination", src.s.data(), {8, 8}, {0, 0, 8, 8}, nullptr, {0, 0, 4, 4}, .5, .5, 2, buffer.data(), -8},
      {"null buffer", src.s.data(), {8, 8}, {0, 0, 8, 8}, dst.s.data(), {0, 0, 4, 4}, .5, .5, 2, nullptr, -8},
      {"empty source", src.s.data(), {0, 8}, {0, 0, 8, 8}, dst.s.data(), {0, 0, 4, 4}, .5, .5, 2, buffer.data(), -6},
      {"empty destination", src.s.data(), {8, 8}, {0, 0, 8, 8}, dst.s.data(), {0, 0, 4, 0}, .5, .5, 2, buffer.data(),
       -6},
      {"zero factor", src.s.data(), {8, 8}, {0, 0, 8, 8}, dst.s.data(), {0, 0, 4, 4}, 0, .5, 2, buffer.data(), -23},
      {"negative factor", src.s.data(), {8, 8}, {0, 0, 8, 8}, dst.s.data(), {0, 0, 4, 4}, .5, -1, 2, buffer.data(),
       -23},
      {"infinite factor", src.s.data(), {8, 8}, {0, 0, 8, 8}, dst.s.data(), {0, 0, 4, 4}, INFINITY, .5, 2,
       buffer.data(), -23},
      {"unknown interpolation", src.s.data(), {8, 8}, {0, 0, 8, 8}, dst.s.data(), {0, 0, 4, 4}, .5, .5, 3,
       buffer.data(), -22},
      {"area factor far below the rectangles' ratio: more taps than the buffer was sized for", src.s.data(),
       {8, 8}, {0, 0, 8, 8}, dst.s.data(), {0, 0, 4, 4}, 0.01, .5, 8, buffer.data(), -23},
      {"ROI right of the frame", src.s.data(), {8, 8}, {8, 0, 8, 8}, dst.s.data(), {0, 0, 4, 4}, .5, .5, 2,
       buffer.data(), -37},
      {"ROI above the frame", src.s.data(), {8, 8}, {0, -9, 8, 8}, dst.s.data(), {0, 0, 4, 4}, .5, .5, 2,
       buffer.data(), -37},
  };
  for (const Row& r : rows) {
    const std::vector<Ipp8u> before = dst.s;
    EXPECT_EQ(ippiResizeSqrPixel_8u_C1R(r.src, r.size, 8, r.roi, r.dst, 4, r.dstRect, r.xf, r.yf, 0, 0,
                                        r.interpolation, r.buffer),
              r.want)
        << r.what;
    EXPECT_EQ(dst.s, before) << r.what;
  }
  int bytes = 0;
  EXPECT_EQ(ippiResizeGetBufSize({0, 0, 8, 8}, {0, 0, 4, 4}, 1, 2, nullptr), -8);
  EXPECT_EQ(ippiResizeGetBufSize({0, 0, 0, 8}, {0, 0, 4, 4}, 1, 2, &bytes), -6);
  EXPECT_EQ(ippiResizeGetBufSize({0, 0, 8, 8}, {0, 0, 4, 4}, 2, 2, &bytes), -6);
  EXPECT_EQ(ippiResizeGetBufSize({0, 0, 8, 8}, {0, 0, 4, 4}, 1, 5, &bytes), -22);
}

// Packed 4:2:2: luma and each chroma resized as its own plane, chroma at
// half the width; a frame of one colour stays that colour.
TEST(ResizeKernel, YUV422ResizesLumaAndChromaApart) {
  const int w = 12, h = 6;
  std::vector<Ipp8u> src(size_t(w) * h * 2);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      src[(size_t(y) * w + x) * 2] = Ipp8u(10 * x + y);                 // luma ramp
      src[(size_t(y) * w + x) * 2 + 1] = x % 2 == 0 ? Ipp8u(100) : Ipp8u(200);  // Cb 100, Cr 200
    }
  for (const Mode& m : kModes) {
    const int dw = 24, dh = 12;
    std::vector<Ipp8u> out(size_t(dw) * dh * 2, 0);
    ASSERT_EQ(ippiResizeYUV422_8u_C2R(src.data(), {w, h}, 2 * w, {0, 0, w, h}, out.data(), 2 * dw, {dw, dh}, 2.0, 2.0,
                                      m.interpolation),
              ippStsNoErr);
    for (int y = 0; y < dh; ++y)
      for (int x = 0; x < dw; ++x) {
        ASSERT_EQ(out[(size_t(y) * dw + x) * 2 + 1], x % 2 == 0 ? 100 : 200) << m.name;
        if (m.interpolation == IPPI_INTER_NN) {
          ASSERT_EQ(out[(size_t(y) * dw + x) * 2], 10 * (x / 2) + y / 2) << "nearest doubles luma pixels";
        }
      }
  }
  std::vector<Ipp8u> out(8, 0);
  EXPECT_EQ(ippiResizeYUV422_8u_C2R(src.data(), {1, h}, 2, {0, 0, 1, h}, out.data(), 4, {2, 2}, 2, 1, 1), -6);
  EXPECT_EQ(ippiResizeYUV422_8u_C2R(src.data(), {w, h}, 2 * w, {0, 0, w, h}, out.data(), 2, {1, 2}, 1, 1, 1), -6);
  EXPECT_EQ(ippiResizeYUV422_8u_C2R(nullptr, {w, h}, 2 * w, {0, 0, w, h}, out.data(), 4, {2, 2}, 1, 1, 1), -8);
}

}  // namespace
