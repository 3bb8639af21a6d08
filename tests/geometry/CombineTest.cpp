// CImageCombine against a plain model written from the format: every member,
// both placements, frames of unequal sizes and odd widths, the destination
// prefilled with random bytes so that what must stay unwritten is checked
// with what is written; at a team of 1 and of 2, and at every processor
// variant this machine runs.
#include <gtest/gtest.h>
#include <kestrelink/CImageCombine.h>

#include <cstdio>
#include <functional>
#include <string>

#include "geometry/CombineReference.h"
#include "geometry/rows/CombineYuvRows.h"
#include "platform/OpenMP.h"
#include "support/TestSupport.h"

namespace {

using namespace combinetest;

using Pixel = std::function<void(int frame, const uint8_t* s, uint8_t* d)>;

// Pixel-sized members: pixel i of a frame's row to pixel i of its place.
void ModelPixels(const Sizes& s, bool side, const Bytes& a, const Bytes& b, Bytes& dst, size_t sp, size_t dp,
                 const Pixel& pixel) {
  const uint32_t W = Width(s, side);
  EachPlacement(s, side, [&](int f, uint32_t in, uint32_t out) {
    const uint32_t w = f ? s.w2 : s.w1;
    const Bytes& src = f ? b : a;
    const size_t at = f && side ? s.w1 : 0;
    for (uint32_t x = 0; x < w; ++x) pixel(f, &src[(size_t(in) * w + x) * sp], &dst[(size_t(out) * W + at + x) * dp]);
  });
}

Pixel Copy(size_t n) {
  return [n](int, const uint8_t* s, uint8_t* d) { std::copy(s, s + n, d); };
}

// The YUV ...CombineBGR members: four-pixel steps, (w - 1) / 4 + 1 a row,
// reading on past the row in the frame (0 past its end) and writing on
// into the destination (nothing past its end), rows in order.
enum Yuv { kYuv422, kUvy422, kUvy411, kUvy444 };
void ModelYuv(const Sizes& s, bool side, const Bytes& a, const Bytes& b, Bytes& dst, Yuv layout) {
  const uint32_t W = Width(s, side);
  const size_t end = size_t(W) * Height(s, side);
  EachPlacement(s, side, [&](int f, uint32_t in, uint32_t out) {
    const uint32_t w = f ? s.w2 : s.w1;
    if (w == 0) return;
    const Bytes& src = f ? b : a;
    const size_t start = layout == kUvy411 ? (size_t(in) * w * 3) >> 1 : size_t(in) * w * (layout == kUvy444 ? 3 : 2);
    auto at = [&](size_t i) -> int { return start + i < src.size() ? src[start + i] : 0; };
    const size_t first = size_t(out) * W + (f && side ? s.w1 : 0);
    for (uint32_t step = 0; step < (w - 1) / 4 + 1; ++step) {
      for (int p = 0; p < 4; ++p) {
        const size_t x = 4 * size_t(step) + p;
        int y, u, v;
        switch (layout) {
          case kYuv422:
            y = at(2 * x), u = at(4 * (x / 2) + 1), v = at(4 * (x / 2) + 3);
            break;
          case kUvy422:
            y = at(2 * x + 1), u = at(4 * (x / 2)), v = at(4 * (x / 2) + 2);
            break;
          case kUvy411: {
            const size_t g = 6 * step;
            const int ys[4] = {at(g + 1), at(g + 2), at(g + 4), at(g + 5)};
            y = ys[p], u = at(g), v = at(g + 3);
            break;
          }
          default:
            y = at(3 * x + 1), u = at(3 * x), v = at(3 * x + 2);
        }
        if (first + x < end) Formula(y, u, v, &dst[3 * (first + x)]);
      }
    }
  });
}

struct Member {
  std::string name;
  std::function<size_t(uint32_t w, uint32_t h)> frameBytes;
  size_t dstPixelBytes;
  std::function<bool(CImageCombine&, const Sizes&, Bytes&, Bytes&, Bytes&, bool)> call;
  std::function<void(const Sizes&, const Bytes&, const Bytes&, Bytes&, bool)> model;
};

std::function<size_t(uint32_t, uint32_t)> PerPixel(size_t n) {
  return [n](uint32_t w, uint32_t h) { return n * w * h; };
}

#define CALL(method)                                                              \
  [](CImageCombine& c, const Sizes& s, Bytes& a, Bytes& b, Bytes& d, bool side) { \
    return c.method(s.w1, s.h1, a.data(), s.w2, s.h2, b.data(), d.data(), side);  \
  }
#define CALL_DEPTHS(method, d1, d2)                                                      \
  [](CImageCombine& c, const Sizes& s, Bytes& a, Bytes& b, Bytes& d, bool side) {        \
    return c.method(s.w1, s.h1, d1, a.data(), s.w2, s.h2, d2, b.data(), d.data(), side); \
  }
#define CALL_OUT(method, d1, d2, dOut)                                                         \
  [](CImageCombine& c, const Sizes& s, Bytes& a, Bytes& b, Bytes& d, bool side) {              \
    return c.method(s.w1, s.h1, d1, a.data(), s.w2, s.h2, d2, b.data(), dOut, d.data(), side); \
  }

std::function<void(const Sizes&, const Bytes&, const Bytes&, Bytes&, bool)> Pixels(size_t sp, size_t dp, Pixel p) {
  return [=](const Sizes& s, const Bytes& a, const Bytes& b, Bytes& d, bool side) {
    ModelPixels(s, side, a, b, d, sp, dp, p);
  };
}

std::function<void(const Sizes&, const Bytes&, const Bytes&, Bytes&, bool)> YuvModel(Yuv layout) {
  return
      [=](const Sizes& s, const Bytes& a, const Bytes& b, Bytes& d, bool side) { ModelYuv(s, side, a, b, d, layout); };
}

// mask & (same ? s >> n : s << n), same = (d1 == dOut) for both frames.
uint16_t Depth(uint32_t s, uint32_t d, uint32_t d1, uint32_t dOut) {
  const uint32_t n = d > dOut ? d - dOut : dOut - d, mask = (1u << dOut) - 1;
  return uint16_t(mask & (d1 == dOut ? s >> n : s << n));
}

// The 16-bit colour members: rows of w * 4 words in, W * 4 samples out;
// per frame and placement the source and destination steps of a pixel, the
// second frame side by side from sample w1 * 3.
struct Steps {
  size_t in[2], out[2];
};
using Sample = std::function<void(int frame, uint16_t s, uint8_t* d)>;
void ModelWide(const Sizes& s, bool side, const Bytes& a, const Bytes& b, Bytes& dst, size_t dstSample, Steps sideSteps,
               Steps aboveSteps, const Sample& sample) {
  const uint32_t W = Width(s, side);
  const Steps& st = side ? sideSteps : aboveSteps;
  EachPlacement(s, side, [&](int f, uint32_t in, uint32_t out) {
    const uint32_t w = f ? s.w2 : s.w1;
    const Bytes& src = f ? b : a;
    const size_t from = size_t(in) * w * 4, to = size_t(out) * W * 4 + (f && side ? 3 * size_t(s.w1) : 0);
    for (uint32_t x = 0; x < w; ++x)
      for (int c = 0; c < 3; ++c)
        sample(f, Word(src, from + st.in[f] * x + c), &dst[dstSample * (to + st.out[f] * x + c)]);
  });
}

std::vector<Member> Members() {
  auto grey = [](uint8_t* d, int v) { d[0] = d[1] = d[2] = uint8_t(v); };
  std::vector<Member> m = {
      {"Mono8CombineMono8", PerPixel(1), 1, CALL(Mono8CombineMono8), Pixels(1, 1, Copy(1))},
      {"Mono16CombineMono16", PerPixel(2), 2, CALL(Mono16CombineMono16), Pixels(2, 2, Copy(2))},
      {"YUV422CombineYUV422", PerPixel(2), 2, CALL(YUV422CombineYUV422), Pixels(2, 2, Copy(2))},
      {"UVY422CombineUVY422", PerPixel(2), 2, CALL(UVY422CombineUVY422), Pixels(2, 2, Copy(2))},
      {"YUV444CombineYUV444", PerPixel(3), 3, CALL(YUV444CombineYUV444), Pixels(3, 3, Copy(3))},
      {"RGB24CombineToRGB", PerPixel(3), 3, CALL(RGB24CombineToRGB), Pixels(3, 3, Copy(3))},
      {"BGR24CombineToBGR", PerPixel(3), 3, CALL(BGR24CombineToBGR), Pixels(3, 3, Copy(3))},
      {"BGRxCombineToBGRx", PerPixel(4), 4, CALL(BGRxCombineToBGRx), Pixels(4, 4, Copy(4))},
      {"BGR555CombineToBGR555", PerPixel(2), 2, CALL(BGR555CombineToBGR555), Pixels(2, 2, Copy(2))},
      {"BGR565CombineToBGR565", PerPixel(2), 2, CALL(BGR565CombineToBGR565), Pixels(2, 2, Copy(2))},
      {"BGR555CombineToBGR", PerPixel(2), 3, CALL(BGR555CombineToBGR),
       Pixels(2, 3,
              [](int, const uint8_t* s, uint8_t* d) {
                const int u = s[0] | s[1] << 8;
                d[0] = uint8_t((u & 31) << 3), d[1] = uint8_t(((u >> 5) & 31) << 3),
                d[2] = uint8_t(((u >> 10) & 31) << 3);
              })},
      {"BGR565CombineToBGR", PerPixel(2), 3, CALL(BGR565CombineToBGR),
       Pixels(2, 3,
              [](int, const uint8_t* s, uint8_t* d) {
                const int u = s[0] | s[1] << 8;
                d[0] = uint8_t((u & 31) << 3), d[1] = uint8_t(((u >> 5) & 63) << 2), d[2] = uint8_t((u >> 11) << 3);
              })},
      {"BGRxCombineToBGR", PerPixel(4), 3, CALL(BGRxCombineToBGR), Pixels(4, 3, Copy(3))},
      {"RGB24CombineToBGR", PerPixel(3), 3, CALL(RGB24CombineToBGR),
       Pixels(3, 3, [](int, const uint8_t* s, uint8_t* d) { d[0] = s[2], d[1] = s[1], d[2] = s[0]; })},
      {"Mono8CombineBGR", PerPixel(1), 3, CALL(Mono8CombineBGR),
       Pixels(1, 3, [grey](int, const uint8_t* s, uint8_t* d) { grey(d, s[0]); })},
      {"Mono16CombineBGR 12 10", PerPixel(2), 3, CALL_DEPTHS(Mono16CombineBGR, 12, 10),
       Pixels(2, 3,
              [grey](int f, const uint8_t* s, uint8_t* d) { grey(d, uint8_t((s[0] | s[1] << 8) >> (f ? 2 : 4))); })},
      {"Mono16CombineBGR 16 8", PerPixel(2), 3, CALL_DEPTHS(Mono16CombineBGR, 16, 8),
       Pixels(2, 3, [grey](int f, const uint8_t* s, uint8_t* d) { grey(d, f ? s[0] : s[1]); })},
      {"YUV422CombineBGR", PerPixel(2), 3, CALL(YUV422CombineBGR), YuvModel(kYuv422)},
      {"UVY422CombineBGR", PerPixel(2), 3, CALL(UVY422CombineBGR), YuvModel(kUvy422)},
      {"YUV411CombineBGR", [](uint32_t w, uint32_t h) { return (size_t(h) * w * 3) >> 1; }, 3, CALL(YUV411CombineBGR),
       YuvModel(kUvy411)},
      {"YUV444CombineBGR", PerPixel(3), 3, CALL(YUV444CombineBGR), YuvModel(kUvy444)},
  };
  // Depth changes: same (d1 == dOut) and not, frames deeper and shallower.
  const uint32_t depths[][3] = {{12, 12, 8}, {12, 10, 12}, {10, 14, 12}, {16, 8, 16}};
  for (const auto& dd : depths) {
    const uint32_t d1 = dd[0], d2 = dd[1], dOut = dd[2];
    char text[48];
    std::snprintf(text, sizeof text, " %u %u to %u", d1, d2, dOut);
    const std::string tag = text;
    using DepthMethod = bool (CImageCombine::*)(uint32_t, uint32_t, uint32_t, void*, uint32_t, uint32_t, uint32_t,
                                                void*, uint32_t, void*, bool);
    auto depthCall = [=](DepthMethod method) {
      return [=](CImageCombine& c, const Sizes& s, Bytes& a, Bytes& b, Bytes& d, bool side) {
        return (c.*method)(s.w1, s.h1, d1, a.data(), s.w2, s.h2, d2, b.data(), dOut, d.data(), side);
      };
    };
    auto sample = [=](int f, uint16_t s, uint8_t* d) {
      const uint16_t v = Depth(s, f ? d2 : d1, d1, dOut);
      d[0] = uint8_t(v), d[1] = uint8_t(v >> 8);
    };
    m.push_back({"Mono16CombineMono16" + tag, PerPixel(2), 2, depthCall(&CImageCombine::Mono16CombineMono16),
                 Pixels(2, 2, [=](int f, const uint8_t* s, uint8_t* d) { sample(f, uint16_t(s[0] | s[1] << 8), d); })});
    m.push_back({"BGRx64CombineBGRx64" + tag, PerPixel(8), 8, depthCall(&CImageCombine::BGRx64CombineBGRx64),
                 [=](const Sizes& s, const Bytes& a, const Bytes& b, Bytes& d, bool side) {
                   ModelWide(s, side, a, b, d, 2, {{4, 4}, {4, 4}}, {{4, 4}, {4, 4}}, sample);
                 }});
    m.push_back({"BGR48CombineBGR48" + tag, PerPixel(8), 8, depthCall(&CImageCombine::BGR48CombineBGR48),
                 [=](const Sizes& s, const Bytes& a, const Bytes& b, Bytes& d, bool side) {
                   ModelWide(s, side, a, b, d, 2, {{3, 3}, {3, 3}}, {{3, 3}, {3, 3}}, sample);
                 }});
  }
  // BGRx64CombineBGR shifts both frames by d1 - 8; BGR48CombineBGR by each frame's own.
  m.push_back({"BGRx64CombineBGR", PerPixel(8), 4, CALL_DEPTHS(BGRx64CombineBGR, 12, 10),
               [](const Sizes& s, const Bytes& a, const Bytes& b, Bytes& d, bool side) {
                 ModelWide(s, side, a, b, d, 1, {{4, 4}, {4, 4}}, {{3, 4}, {4, 4}},
                           [](int, uint16_t v, uint8_t* o) { *o = uint8_t(v >> 4); });
               }});
  m.push_back({"BGR48CombineBGR", PerPixel(8), 4, CALL_DEPTHS(BGR48CombineBGR, 12, 10),
               [](const Sizes& s, const Bytes& a, const Bytes& b, Bytes& d, bool side) {
                 ModelWide(s, side, a, b, d, 1, {{4, 3}, {4, 3}}, {{3, 3}, {3, 3}},
                           [](int f, uint16_t v, uint8_t* o) { *o = uint8_t(v >> (f ? 2 : 4)); });
               }});
  return m;
}

// Unequal sizes both ways, odd widths, a frame of no rows, one pixel.
const Sizes kSizes[] = {{5, 4, 3, 6},  {7, 3, 9, 2},   {8, 5, 8, 5}, {1, 1, 4, 3},   {12, 7, 5, 0},
                        {6, 2, 11, 5}, {16, 3, 13, 4}, {3, 5, 1, 1}, {40, 9, 36, 11}};

void CheckAll(int team) {
  testsupport::ScopedTeam scoped(team);
  CImageCombine combine;
  kestrelink::platform::SetTeamSize(team);  // after the constructor, whose thread setup reads the store
  for (const Member& m : Members())
    for (const Sizes& s : kSizes)
      for (bool side : {true, false}) {
        SCOPED_TRACE(m.name + " " + std::to_string(s.w1) + "x" + std::to_string(s.h1) + " + " + std::to_string(s.w2) +
                     "x" + std::to_string(s.h2) + (side ? " side by side" : " above"));
        auto a = testsupport::RandomBytes(m.frameBytes(s.w1, s.h1), s.w1 * 31 + s.h1);
        auto b = testsupport::RandomBytes(m.frameBytes(s.w2, s.h2), s.w2 * 17 + s.h2 + 5);
        auto want = testsupport::RandomBytes(m.dstPixelBytes * Width(s, side) * Height(s, side), 99);
        auto got = want;
        m.model(s, a, b, want, side);
        ASSERT_TRUE(m.call(combine, s, a, b, got, side));
        ASSERT_EQ(want, got);
      }
}

TEST(ImageCombine, EveryMemberMatchesTheModelAtATeamOfOne) { CheckAll(1); }
TEST(ImageCombine, EveryMemberMatchesTheModelAtATeamOfTwo) { CheckAll(2); }

TEST(ImageCombine, EveryVariantMatchesTheModel) {
  for (auto v : testsupport::RunnableVariants()) {
    SCOPED_TRACE(kestrelink::VariantName(v));
    testsupport::ScopedVariant scoped(v);
    CheckAll(1);
  }
}

TEST(ImageCombine, SizesOfTheCombinedFrame) {
  CImageCombine c;
  EXPECT_EQ(c.GetCombineImageWidth(640, 320, true), 960u);
  EXPECT_EQ(c.GetCombineImageHeight(480, 240, true), 480u);
  EXPECT_EQ(c.GetCombineImageWidth(640, 320, false), 640u);
  EXPECT_EQ(c.GetCombineImageHeight(480, 240, false), 720u);
}

TEST(ImageCombine, ShorterSecondFrameLeavesTheRestUnwritten) {
  CImageCombine c;
  Bytes a(4 * 6, 1), b(2 * 3, 2), dst(6 * 6, 0xEE);
  ASSERT_TRUE(c.Mono8CombineMono8(4, 6, a.data(), 2, 3, b.data(), dst.data(), true));
  for (uint32_t r = 0; r < 6; ++r)
    for (uint32_t x = 0; x < 6; ++x) EXPECT_EQ(dst[r * 6 + x], x < 4 ? 1 : r < 3 ? 2 : 0xEE) << r << "," << x;
}

// Frames large enough that the copies write around the caches: odd widths
// put the second frame's rows at every alignment; the rest stays unwritten.
TEST(ImageCombine, LargeCopiesPlaceEveryByte) {
  for (int team : {1, 2})
    for (bool side : {true, false})
      for (size_t px : {size_t(1), size_t(3)}) {
        testsupport::ScopedTeam scoped(team);
        const uint32_t w1 = 1501, h1 = 1203, w2 = 997, h2 = 1100;
        const uint32_t W = side ? w1 + w2 : w1, H = side ? h1 : h1 + h2;
        Bytes a(size_t(w1) * h1 * px), b(size_t(w2) * h2 * px), dst(size_t(W) * H * px, 0xA5);
        for (size_t i = 0; i < a.size(); ++i) a[i] = uint8_t(i * 7 + 1);
        for (size_t i = 0; i < b.size(); ++i) b[i] = uint8_t(i * 13 + 5);
        CImageCombine c;
        ASSERT_TRUE(px == 1 ? c.Mono8CombineMono8(w1, h1, a.data(), w2, h2, b.data(), dst.data(), side)
                            : c.BGR24CombineToBGR(w1, h1, a.data(), w2, h2, b.data(), dst.data(), side));
        size_t wrong = 0;
        for (uint32_t r = 0; r < H; ++r)
          for (uint32_t x = 0; x < W; ++x)
            for (size_t k = 0; k < px; ++k) {
              int want = 0xA5;
              if (side && x < w1 && r < h1) want = a[(size_t(r) * w1 + x) * px + k];
              if (side && x >= w1 && r < h2) want = b[(size_t(r) * w2 + x - w1) * px + k];
              if (!side && r < h1) want = a[(size_t(r) * w1 + x) * px + k];
              if (!side && r >= h1 && x < w2) want = b[(size_t(r - h1) * w2 + x) * px + k];
              wrong += dst[(size_t(r) * W + x) * px + k] != want;
            }
        EXPECT_EQ(wrong, 0u) << "team " << team << (side ? " side by side" : " above") << ", " << px << " bytes";
      }
}

TEST(ImageCombine, DepthExamples) {
  CImageCombine c;
  // 12, 12 to 8: both shift left by 4 and the mask keeps the low 4 bits, moved up.
  Bytes a(2), b(2), dst(4, 0);
  PutWord(a, 0, 0xABC), PutWord(b, 0, 0x123);
  ASSERT_TRUE(c.Mono16CombineMono16(1, 1, 12, a.data(), 1, 1, 12, b.data(), 8, dst.data(), true));
  EXPECT_EQ(Word(dst, 0), 0xC0);
  EXPECT_EQ(Word(dst, 1), 0x30);
  // 12, 10 to 12: the first unchanged, the second shifted right by 2.
  PutWord(b, 0, 0x3FF);
  ASSERT_TRUE(c.Mono16CombineMono16(1, 1, 12, a.data(), 1, 1, 10, b.data(), 12, dst.data(), true));
  EXPECT_EQ(Word(dst, 0), 0xABC);
  EXPECT_EQ(Word(dst, 1), 0xFF);
}

TEST(ImageCombine, FormulaExamples) {
  CImageCombine c;
  // UVY444: grey gives G one above Y; U = 255 gives g = 25.
  Bytes a = {128, 100, 128}, b = {255, 128, 128}, dst(6, 0);
  ASSERT_TRUE(c.YUV444CombineBGR(1, 1, a.data(), 1, 1, b.data(), dst.data(), true));
  EXPECT_EQ(dst, (Bytes{100, 101, 100, 255, 103, 128}));
}

// One above the other, where both frames keep the destination's pixel grid.
TEST(ImageCombine, SixteenBitColourNeverWritesTheFourthSample) {
  CImageCombine c;
  for (bool side : {false}) {
    Bytes a = testsupport::RandomBytes(8 * 3 * 2, 1), b = testsupport::RandomBytes(8 * 2 * 2, 2);
    Bytes bytes(4 * Width({3, 2, 2, 2}, side) * Height({3, 2, 2, 2}, side), 0x5A);
    Bytes words(2 * bytes.size(), 0x5A);
    ASSERT_TRUE(c.BGRx64CombineBGRx64(3, 2, 12, a.data(), 2, 2, 12, b.data(), 12, words.data(), side));
    ASSERT_TRUE(c.BGRx64CombineBGR(3, 2, 12, a.data(), 2, 2, 12, b.data(), bytes.data(), side));
    for (size_t p = 0; p < bytes.size() / 4; ++p) {
      EXPECT_EQ(bytes[4 * p + 3], 0x5A) << p;
      EXPECT_EQ(Word(words, 4 * p + 3), 0x5A5A) << p;
    }
  }
}

TEST(ImageCombine, PlanarMembers) {
  CImageCombine c;
  const Sizes s = {5, 3, 2, 4};
  for (bool side : {true, false}) {
    const uint32_t W = Width(s, side), H = Height(s, side);
    Bytes p[3], q[3], p16[3], q16[3];
    for (int k = 0; k < 3; ++k) {
      p[k] = testsupport::RandomBytes(5 * 3, 10 + k), q[k] = testsupport::RandomBytes(2 * 4, 20 + k);
      p16[k] = testsupport::RandomBytes(2 * 5 * 3, 30 + k), q16[k] = testsupport::RandomBytes(2 * 2 * 4, 40 + k);
    }
    Bytes want = testsupport::RandomBytes(3 * W * H, 7), got = want;
    ModelPixels(s, side, p[0], q[0], want, 1, 3, [&](int f, const uint8_t* sp, uint8_t* d) {
      const size_t i = sp - (f ? q[0] : p[0]).data();
      for (int k = 0; k < 3; ++k) d[k] = (f ? q[k] : p[k])[i];
    });
    ASSERT_TRUE(c.BGR24PlannerCombineBGR(5, 3, p[0].data(), p[1].data(), p[2].data(), 2, 4, q[0].data(), q[1].data(),
                                         q[2].data(), got.data(), side));
    EXPECT_EQ(want, got);
    ModelPixels(s, side, p16[0], q16[0], want, 2, 3, [&](int f, const uint8_t* sp, uint8_t* d) {
      const size_t i = (sp - (f ? q16[0] : p16[0]).data()) / 2;
      for (int k = 0; k < 3; ++k) d[k] = uint8_t(Word(f ? q16[k] : p16[k], i) >> (f ? 2 : 4));
    });
    ASSERT_TRUE(c.BGR48PlanneCombineBGR(5, 3, 12, p16[0].data(), p16[1].data(), p16[2].data(), 2, 4, 10, q16[0].data(),
                                        q16[1].data(), q16[2].data(), got.data(), side));
    EXPECT_EQ(want, got);
    // Plane to plane: each plane as the single-plane member places it.
    for (int k = 0; k < 3; ++k) {
      Bytes r8[3], r16[3];
      for (int j = 0; j < 3; ++j) r8[j] = Bytes(W * H, 0x33), r16[j] = Bytes(2 * W * H, 0x33);
      Bytes one8(W * H, 0x33), one16(2 * W * H, 0x33);
      ModelPixels(s, side, p[k], q[k], one8, 1, 1, Copy(1));
      ModelPixels(s, side, p16[k], q16[k], one16, 2, 2, [](int f, const uint8_t* sp, uint8_t* d) {
        const uint16_t v = Depth(uint32_t(sp[0] | sp[1] << 8), f ? 10 : 12, 12, 8);
        d[0] = uint8_t(v), d[1] = uint8_t(v >> 8);
      });
      ASSERT_TRUE(c.BGR24PlannerCombineBGRPlanner(5, 3, p[0].data(), p[1].data(), p[2].data(), 2, 4, q[0].data(),
                                                  q[1].data(), q[2].data(), r8[0].data(), r8[1].data(), r8[2].data(),
                                                  side));
      ASSERT_TRUE(c.BGR48PlanneCombineBGRPlanner48(5, 3, 12, p16[0].data(), p16[1].data(), p16[2].data(), 2, 4, 10,
                                                   q16[0].data(), q16[1].data(), q16[2].data(), 8, r16[0].data(),
                                                   r16[1].data(), r16[2].data(), side));
      EXPECT_EQ(r8[k], one8) << k;
      EXPECT_EQ(r16[k], one16) << k;
    }
  }
}

TEST(ImageCombine, MissingFramesAreRefused) {
  CImageCombine c;
  Bytes a(16, 1), dst(32, 0xEE);
  EXPECT_FALSE(c.Mono8CombineMono8(4, 4, a.data(), 4, 4, nullptr, dst.data(), true));
  EXPECT_FALSE(c.YUV422CombineBGR(4, 2, a.data(), 4, 2, a.data(), nullptr, true));
  EXPECT_EQ(dst, Bytes(32, 0xEE));
  // A frame of no rows needs no pixels.
  EXPECT_TRUE(c.Mono8CombineMono8(4, 4, a.data(), 4, 0, nullptr, dst.data(), true));
}

}  // namespace

// The vector steps of the YUV combines against the portable ones, random
// bytes, every step count up to a few rounds, unaligned rows.
TEST(ImageCombine, YuvStepVariantsMatchThePortableSteps) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    const auto& k = kestrelink::rows::CombineYuvRows();
    for (int layout = 0; layout < 4; ++layout)
      for (uint32_t steps = 0; steps <= 40; ++steps) {
        SCOPED_TRACE(std::string(kestrelink::VariantName(v)) + " layout " + std::to_string(layout) + " steps " +
                     std::to_string(steps));
        const auto src = testsupport::RandomBytes(kestrelink::rows::kYuvStepBytes[layout] * steps + 1, steps + 3);
        Bytes want = testsupport::RandomBytes(12 * steps + 33, 8), got = want;
        kestrelink::rows::kCombineYuvPortable.steps[layout](src.data() + 1, want.data() + 1, steps);
        k.steps[layout](src.data() + 1, got.data() + 1, steps);
        ASSERT_EQ(want, got);
      }
  }
}
