// The merger's composing members against the serial model of the overlay
// (MergerReference.h) over a table of placements, with the quirks of the
// strict inside tests and the streamed second layer; ratio, blend, colour
// and channel rules at their corners; rotation, mirror and failures.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageMerger.h>

#include <algorithm>
#include <string>
#include <vector>

#include "analysis/MergerReference.h"
#include "merge/MergeLayers.h"
#include "support/TestSupport.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Words = std::vector<uint16_t>;

struct Placing {
  int w1, h1, w2, h2, offsetX, offsetY;
};

// Same sizes, second inside the first, second overhanging, negative
// offsets, layers apart, second larger.
const Placing kPlacings[] = {
    {7, 5, 7, 5, 0, 0}, {9, 8, 4, 3, 2, 3}, {6, 6, 5, 4, 3, 4},    {8, 5, 6, 6, -2, -1},
    {4, 3, 3, 2, 6, 5}, {3, 4, 9, 7, 0, 0}, {10, 7, 10, 7, -3, 2}, {5, 9, 2, 2, 1, 1},
};

constexpr uint8_t kStale = 0xA7;

Words Random16(size_t n, uint32_t limit, uint32_t seed) {
  const Bytes b = testsupport::RandomWords(n, limit, seed);
  Words w(n);
  for (size_t i = 0; i < n; ++i) w[i] = testsupport::Word(b, i);
  return w;
}

TEST(MergerOverlay, SubMono8MatchesModelAtEveryPlacing) {
  for (const Placing& c : kPlacings) {
    SCOPED_TRACE(testing::Message() << c.w1 << "x" << c.h1 << " + " << c.w2 << "x" << c.h2 << " at " << c.offsetX << ","
                                    << c.offsetY);
    CIppImageMerger m;
    m.RebuildSlopeLUT(3, 0.7f, 1);
    Bytes a = testsupport::RandomBytes(size_t(c.w1) * c.h1, 1), b = testsupport::RandomBytes(size_t(c.w2) * c.h2, 2);
    b[0] = 0, b[3 % b.size()] = 0;  // ratios by 0
    const auto l = mergerref::Place(c.w1, c.h1, c.w2, c.h2, c.offsetX, c.offsetY);
    Bytes got(size_t(l.width) * l.height, kStale), want = got;
    ASSERT_TRUE(m.SubMono8ToMono8(c.w1, c.h1, a.data(), nullptr, c.w2, c.h2, b.data(), nullptr, got.data(), c.offsetX,
                                  c.offsetY, 0, 0, 1.6, 0.0, 0, 0, false));
    const bool cleared = c.w1 != c.w2 || c.h1 != c.h2;
    const auto g = [&](int v) { return uint8_t(m.gammaTable[v]); };
    const auto ratio = [&](int x, int y) { return y == 0 ? x : int(m.slopeTable[std::min((x << 8) / y, 255)]); };
    mergerref::Overlay<uint8_t, uint8_t>(
        c.w1, c.h1, a, c.w2, c.h2, b, c.offsetX, c.offsetY, want, g, g,
        [&](uint8_t x, uint8_t y) { return g(ratio(x, y)); },
        [&](uint8_t& o, int x, int y) {
          // The first frame's copy shows at its unclaimed edge; elsewhere 0 or stale.
          if (x >= l.x1 && x < l.x1 + c.w1 && y >= l.y1 && y < l.y1 + c.h1)
            o = a[size_t(y - l.y1) * c.w1 + (x - l.x1)];
          else if (cleared)
            o = 0;
        });
    EXPECT_EQ(got, want);
  }
}

TEST(MergerOverlay, MergeMono16AndPseudoColour16MatchModel) {
  for (const Placing& c : kPlacings) {
    SCOPED_TRACE(testing::Message() << c.w1 << "x" << c.h1 << " + " << c.w2 << "x" << c.h2);
    CIppImageMerger m;
    const uint32_t depth = 12;
    // Some samples above 12 bits: they count as the top value.
    Words a = Random16(size_t(c.w1) * c.h1, 4200, 3), b = Random16(size_t(c.w2) * c.h2, 4200, 4);
    const auto l = mergerref::Place(c.w1, c.h1, c.w2, c.h2, c.offsetX, c.offsetY);
    Words got(size_t(l.width) * l.height, kStale), want = got;
    ASSERT_TRUE(m.MergeMono16ToMono16(c.w1, c.h1, depth, a.data(), 0.3f, c.w2, c.h2, b.data(), got.data(), c.offsetX,
                                      c.offsetY, 0, 0, 0.8, 0.0, 0, 0, false));
    const int w = int(0.3f * 256.0);  // 76
    const auto clip = [](int v) { return std::min(v, 4095); };
    const auto g = [&](uint16_t v) { return m.gammaTable[clip(v)]; };
    mergerref::Overlay<uint16_t, uint16_t>(
        c.w1, c.h1, a, c.w2, c.h2, b, c.offsetX, c.offsetY, want, g, g,
        [&](uint16_t x, uint16_t y) {
          return m.gammaTable[std::clamp(((256 - w) * clip(y) + clip(x) * w) >> 8, 0, 4095)];
        },
        [&](uint16_t& o, int x, int y) {
          if (x >= l.x1 && x < l.x1 + c.w1 && y >= l.y1 && y < l.y1 + c.h1)
            o = a[size_t(y - l.y1) * c.w1 + (x - l.x1)];
          else if (c.w1 != c.w2 || c.h1 != c.h2)
            o = 0;
        });
    EXPECT_EQ(got, want);

    // Pseudo colour of the ratio, with the colour tables entered by the top 8 bits.
    std::vector<uint8_t> bgr(size_t(l.width) * l.height * 3, kStale);
    ASSERT_TRUE(m.SubMono16ToBGRByPseudoColor(c.w1, c.h1, depth, a.data(), nullptr, c.w2, c.h2, b.data(), nullptr,
                                              bgr.data(), c.offsetX, c.offsetY, 0, 0, 1.0, 0.0, 0, 0, false));
    struct Px {
      uint8_t b, g, r;
    };
    std::vector<Px> wantBgr(size_t(l.width) * l.height, Px{kStale, kStale, kStale});
    const auto colour = [&](int v) {
      const int c8 = clip(v) >> 4;
      return Px{m.pseudoBlue[c8], m.pseudoGreen[c8], m.pseudoRed[c8]};
    };
    mergerref::Overlay<uint16_t, Px>(
        c.w1, c.h1, a, c.w2, c.h2, b, c.offsetX, c.offsetY, wantBgr, [&](uint16_t v) { return colour(v); },
        [&](uint16_t v) { return colour(v); },
        [&](uint16_t x, uint16_t y) {
          if (y == 0) return colour(x);
          return colour(m.slopeTable[std::min((clip(x) << 8) / clip(y), 255)] << 4);
        },
        [&](Px& o, int, int) {
          o = Px{0, 0, 0};
        });
    for (size_t i = 0; i < wantBgr.size(); ++i) {
      ASSERT_EQ(bgr[3 * i], wantBgr[i].b) << i;
      ASSERT_EQ(bgr[3 * i + 1], wantBgr[i].g) << i;
      ASSERT_EQ(bgr[3 * i + 2], wantBgr[i].r) << i;
    }
  }
}

// Equal 4x3 layers at offset 0: row 0 and column 0 belong to the second
// layer alone, the rest to both, so pixel (2, 1) reads a[6] and b[6].
TEST(MergerOverlay, RatioAndBlendCorners) {
  CIppImageMerger m;
  const struct {
    uint8_t a, b;
    float weight;
    int ratioWant, blendWant;
  } rows[] = {
      {90, 0, 1.0f, 90, 90},       // b 0: the ratio is a; weight 1: a
      {90, 90, 0.0f, -255, 90},    // a = b: slopeTable[255]; weight 0: b
      {1, 1, 0.5f, -255, 1},       // a = b = 1, still capped at 255
      {10, 200, 0.0f, -12, 200},   // (10 << 8) / 200 = 12
      {200, 10, 0.25f, -255, 57},  // (0.75 * 10 + 0.25 * 200), 192 * 10 + 64 * 200 >> 8
      {0, 50, 1.0f, -0, 0},
  };
  for (auto r : rows) {
    Bytes a(12, 0), b(12, 0), out(12);
    a[6] = r.a, b[6] = r.b;
    ASSERT_TRUE(m.SubMono8ToMono8(4, 3, a.data(), nullptr, 4, 3, b.data(), nullptr, out.data(), 0, 0, 0, 0, 1.0, 0.0, 0,
                                  0, false));
    EXPECT_EQ(out[6], r.ratioWant < 0 || (r.ratioWant == 0 && r.b != 0) ? m.slopeTable[-r.ratioWant] : r.ratioWant)
        << int(r.a) << "/" << int(r.b);
    ASSERT_TRUE(
        m.MergeMono8ToMono8(4, 3, a.data(), r.weight, 4, 3, b.data(), out.data(), 0, 0, 0, 0, 1.0, 0.0, 0, 0, false));
    EXPECT_EQ(out[6], r.blendWant) << int(r.a) << "," << int(r.b) << " w " << r.weight;
  }
  // A weight beyond 1 clamps at 255 and 0; through a gamma table, too.
  Bytes a(12, 200), b(12, 100), out(12);
  m.MergeMono8ToMono8(4, 3, a.data(), 3.0f, 4, 3, b.data(), out.data(), 0, 0, 0, 0, 1.0, 0.0, 0, 0, false);
  EXPECT_EQ(out[6], 255);  // (-512 * 100 + 200 * 768) >> 8 = 400
  m.MergeMono8ToMono8(4, 3, a.data(), -3.0f, 4, 3, b.data(), out.data(), 0, 0, 0, 0, 1.5, 0.0, 0, 0, false);
  EXPECT_EQ(out[6], m.gammaTable[0]);
}

TEST(MergerOverlay, ChannelCodesWriteTheirBytesAndSixFailsBeforeAnyWrite) {
  CIppImageMerger m;
  const uint8_t kBytes[6][3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 0}, {0, 1, 1}};
  for (int channel = 0; channel < 6; ++channel) {
    Bytes a(6, 40), b(6, 90), out(18, kStale);
    ASSERT_TRUE(m.MergeMono8ToBGR(3, 2, a.data(), channel, 0.5f, 3, 2, b.data(), 1, 0.5f, out.data(), 0, 0, 0, 0, 1.0,
                                  0.0, 0, 0, false));
    for (int byte = 0; byte < 3; ++byte) {
      // The second frame goes to green after the first: it wins there.
      const uint8_t want = byte == 1 ? 90 : kBytes[channel][byte] ? 40 : kStale;
      EXPECT_EQ(out[3 * 4 + byte], want) << channel << " " << byte;
    }
  }
  for (int bad : {6, 7, -1}) {
    Bytes a(6, 40), b(6, 90), out(18 + 3 * 6, kStale);
    EXPECT_FALSE(m.MergeMono8ToBGR(3, 2, a.data(), bad, 0.5f, 3, 2, b.data(), 0, 0.5f, out.data(), 2, 2, 0, 0, 1.0, 0.0,
                                   0, 0, false));
    EXPECT_FALSE(m.MergeMono8ToBGR(3, 2, a.data(), 0, 0.5f, 3, 2, b.data(), bad, 0.5f, out.data(), 2, 2, 0, 0, 1.0, 0.0,
                                   0, 0, false));
    EXPECT_EQ(out, Bytes(out.size(), kStale));
  }
  // 16 bits: the gamma value's top 8 bits.
  Words a(6, 0x3FF), b(6, 0x100);
  Bytes out(18, 0);
  ASSERT_TRUE(m.MergeMono16ToBGR(3, 2, 10, a.data(), 2, 0.f, 3, 2, b.data(), 0, 0.f, out.data(), 0, 0, 0, 0, 1.0, 0.0,
                                 0, 0, false));
  EXPECT_EQ(out[0], 0x40);
  EXPECT_EQ(out[1], 0);
  EXPECT_EQ(out[2], 0xFF);
}

TEST(MergerOverlay, RotationAndMirrorOfTheSecondLayer) {
  CIppImageMerger m;
  const int w = 7, h = 5;
  const Bytes a = testsupport::RandomBytes(w * h, 8), b = testsupport::RandomBytes(w * h, 9);
  Bytes flippedBoth(w * h), flippedCols(w * h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      flippedBoth[y * w + x] = b[(h - 1 - y) * w + (w - 1 - x)];
      flippedCols[y * w + x] = b[y * w + (w - 1 - x)];
    }
  const auto merge = [&](const Bytes& second, double angle, int mirror) {
    Bytes out(w * h, 0);
    EXPECT_TRUE(m.MergeMono8ToMono8(w, h, const_cast<uint8_t*>(a.data()), 0.5f, w, h,
                                    const_cast<uint8_t*>(second.data()), out.data(), 0, 0, 3, 2, 1.0, angle, mirror, 0,
                                    false));
    return out;
  };
  EXPECT_EQ(merge(b, 0.0, 2), merge(flippedCols, 0.0, 0));
  EXPECT_EQ(merge(b, 0.0, 3), merge(flippedBoth, 0.0, 0));
  // A half turn about the centre pixel is the mirror about both axes.
  EXPECT_EQ(merge(b, 180.0, 0), merge(flippedBoth, 0.0, 0));
  // Turned, then mirrored in place: back to the start.
  EXPECT_EQ(merge(b, 180.0, 3), merge(b, 0.0, 0));
  // A mirror code outside 1..3 without a turn leaves the second layer blank.
  EXPECT_EQ(merge(b, 0.0, 5), merge(Bytes(w * h, 0), 0.0, 0));
}

TEST(MergerOverlay, BackgroundsAreTakenOffFirst) {
  CIppImageMerger m;
  const Bytes a = testsupport::RandomBytes(20, 11), bgA = testsupport::RandomBytes(20, 12);
  const Bytes b = testsupport::RandomBytes(12, 13), bgB = testsupport::RandomBytes(12, 14);
  Bytes diffA(20), diffB(12);
  for (int i = 0; i < 20; ++i) diffA[i] = uint8_t(std::abs(a[i] - bgA[i]));
  for (int i = 0; i < 12; ++i) diffB[i] = uint8_t(std::abs(b[i] - bgB[i]));
  Bytes got(5 * 4 * 3, 0), want(5 * 4 * 3, 0);
  ASSERT_TRUE(m.SubMono8ToBGRByPseudoColor(5, 4, const_cast<uint8_t*>(a.data()), const_cast<uint8_t*>(bgA.data()), 4, 3,
                                           const_cast<uint8_t*>(b.data()), const_cast<uint8_t*>(bgB.data()), got.data(),
                                           1, 1, 0, 0, 1.0, 0.0, 0, 0, false));
  ASSERT_TRUE(m.SubMono8ToBGRByPseudoColor(5, 4, diffA.data(), nullptr, 4, 3, diffB.data(), nullptr, want.data(), 1, 1,
                                           0, 0, 1.0, 0.0, 0, 0, false));
  EXPECT_EQ(got, want);
}

TEST(MergerOverlay, HslRegionsTakeTheirOwnHue) {
  CIppImageMerger m;
  // 6x4 first, 2x2 second at (3, 1): (1, 2) first only, (4, 2) both, (3, 1)
  // is first-strict but not second-strict, so first only.
  Bytes a(24, 100), b(4, 100), out(24 * 3, kStale);
  ASSERT_TRUE(m.MergeMono8ToBGRByHSL(6, 4, 0.5f, a.data(), 0, 2, 2, b.data(), 170, out.data(), 3, 1, 0, 0, 1.0, 0.0, 0,
                                     0, false));
  const auto px = [&](int x, int y) { return &out[(y * 6 + x) * 3]; };
  // Hue 0 at lightness 100: m2 = (100 * 510 + 127) / 255 = 200, m1 = 0: red 200.
  EXPECT_EQ(px(1, 2)[2], 200);
  EXPECT_EQ(px(1, 2)[1], 0);
  EXPECT_EQ(px(1, 2)[0], 0);
  EXPECT_EQ(px(3, 1)[2], 200);
  // Overlap: red (255, 1, 1) and blue (1, 1, 255) added give (255, 2, 255):
  // hue dB - dG = 0 - 42 -> 213, saturation 255. At lightness 100 (the
  // blend) m2 = 200, m1 = 0: red at hue 298 -> 43 is 200, green at 213 is
  // 0, blue at 128 is (200 * 42 + 21) / 42 = 200.
  EXPECT_EQ(m.hslHueW, 213);
  EXPECT_EQ(m.hslSatW, 255);
  EXPECT_EQ(px(4, 2)[0], 200);
  EXPECT_EQ(px(4, 2)[1], 0);
  EXPECT_EQ(px(4, 2)[2], 200);
  // The first layer's left column is claimed by neither layer: black.
  EXPECT_EQ(px(0, 2)[0], 0);
  EXPECT_EQ(px(0, 2)[2], 0);
  EXPECT_EQ(m.hslHue1, 0);
  EXPECT_EQ(m.hslHue2, 170);
  EXPECT_EQ(m.hslSat1, 255);
}

TEST(MergerOverlay, BadCallsAnswerFalse) {
  CIppImageMerger m;
  Bytes a(4, 1), out(16, kStale);
  Words w(4, 1), wout(16, 0);
  EXPECT_FALSE(
      m.SubMono8ToMono8(2, 2, nullptr, nullptr, 2, 2, a.data(), nullptr, out.data(), 0, 0, 0, 0, 1, 0, 0, 0, false));
  EXPECT_FALSE(
      m.SubMono8ToMono8(0, 2, a.data(), nullptr, 2, 2, a.data(), nullptr, out.data(), 0, 0, 0, 0, 1, 0, 0, 0, false));
  EXPECT_FALSE(
      m.MergeMono16ToMono16(2, 2, 17, w.data(), 0.5f, 2, 2, w.data(), wout.data(), 0, 0, 0, 0, 1, 0, 0, 0, false));
  EXPECT_FALSE(
      m.MergeMono16ToMono16(2, 2, 0, w.data(), 0.5f, 2, 2, w.data(), wout.data(), 0, 0, 0, 0, 1, 0, 0, 0, false));
  EXPECT_EQ(out, Bytes(16, kStale));
}

TEST(MergerOverlay, CopiesKeepTheirOwnTablesAndTeamsAgree) {
  CIppImageMerger m;
  m.RebuildSlopeLUT(0, 1.3f, 1);
  m.RebuildPseudoColorLUT(1);
  CIppImageMerger copy = m;
  m.RebuildPseudoColorLUT(0);
  const Bytes a = testsupport::RandomBytes(64 * 40, 21), b = testsupport::RandomBytes(50 * 33, 22);
  Bytes one(70 * 45 * 3), two(70 * 45 * 3);
  {
    testsupport::ScopedTeam team(1);
    copy.SubMono8ToBGRByPseudoColor(64, 40, const_cast<uint8_t*>(a.data()), nullptr, 50, 33,
                                    const_cast<uint8_t*>(b.data()), nullptr, one.data(), 20, 12, 0, 0, 1.4, 0.0, 0, 0,
                                    false);
  }
  {
    testsupport::ScopedTeam team(2);
    copy.SubMono8ToBGRByPseudoColor(64, 40, const_cast<uint8_t*>(a.data()), nullptr, 50, 33,
                                    const_cast<uint8_t*>(b.data()), nullptr, two.data(), 20, 12, 0, 0, 1.4, 0.0, 0, 0,
                                    false);
  }
  EXPECT_EQ(one, two);
  EXPECT_EQ(copy.pseudoRed[1], 0);  // swapped in the copy
  EXPECT_EQ(m.pseudoRed[1], 255);
}

}  // namespace

namespace {

// The background difference |a - b| by sample, over bands of rows; 16-bit
// differences are held at the depth's largest value.
TEST(MergerOverlay, BackgroundDifferenceAndDepthClamp) {
  using kestrelink::merge::AbsDiffFrame;
  const Words image = {5000, 0, 4095, 10, 65535, 7}, background = {0, 5000, 0, 20, 0, 7};
  Words out(6, 0xAAAA);
  AbsDiffFrame<uint16_t>(3, 2, 4095, image.data(), background.data(), out.data());
  EXPECT_EQ(out, (Words{4095, 4095, 4095, 10, 4095, 0}));
  AbsDiffFrame<uint16_t>(3, 2, 65535, image.data(), background.data(), out.data());
  EXPECT_EQ(out, (Words{5000, 5000, 4095, 10, 65535, 0}));
  const Bytes bytes = {0, 255, 10, 200, 3, 9}, back = {255, 0, 20, 100, 3, 1};
  Bytes diff(6, kStale);
  testsupport::ScopedTeam team(2);
  AbsDiffFrame<uint8_t>(2, 3, 255, bytes.data(), back.data(), diff.data());
  EXPECT_EQ(diff, (Bytes{255, 255, 10, 100, 0, 8}));
}

}  // namespace

namespace {

// run() under each variant gives what it gives under the portable one.
template <class Run>
void ExpectVariantsAgree(Run run, const std::string& what) {
  decltype(run()) want;
  {
    testsupport::ScopedVariant portable(kestrelink::kVariantPortable);
    want = run();
  }
  for (const auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    EXPECT_EQ(run(), want) << what << " " << kestrelink::VariantName(v);
  }
}

// The 8-bit members on rows long enough for the vector kernels and their
// tails give every variant's bytes the same as the portable one's.
TEST(MergerOverlay, EightBitMembersAgreeAcrossVariants) {
  const Placing wide[] = {{150, 9, 140, 7, 5, 1}, {130, 6, 130, 6, -3, 2}, {200, 4, 67, 5, 70, 0}};
  for (const Placing& c : wide) {
    SCOPED_TRACE(testing::Message() << c.w1 << "x" << c.h1 << " + " << c.w2 << "x" << c.h2);
    Bytes a = testsupport::RandomBytes(size_t(c.w1) * c.h1, 31), b = testsupport::RandomBytes(size_t(c.w2) * c.h2, 32);
    for (size_t i = 0; i < b.size(); i += 9) b[i] = 0;
    const auto l = mergerref::Place(c.w1, c.h1, c.w2, c.h2, c.offsetX, c.offsetY);
    const size_t mono = size_t(l.width) * l.height;
    auto run = [&](int call) {
      CIppImageMerger m;
      m.RebuildSlopeLUT(-4, 0.9f, 0);
      Bytes out(call < 4 ? mono : 3 * mono, kStale);
      uint8_t *pa = a.data(), *pb = b.data(), *o = out.data();
      const int x = c.offsetX, y = c.offsetY;
      switch (call) {
        case 0: m.SubMono8ToMono8(c.w1, c.h1, pa, nullptr, c.w2, c.h2, pb, nullptr, o, x, y, 0, 0, 2.2, 0, 0, 0, false); break;
        case 1: m.MergeMono8ToMono8(c.w1, c.h1, pa, 0.3f, c.w2, c.h2, pb, o, x, y, 0, 0, 1.0, 0, 0, 0, false); break;
        case 2: m.MergeMono8ToMono8(c.w1, c.h1, pa, 0.7f, c.w2, c.h2, pb, o, x, y, 0, 0, 2.2, 0, 0, 0, false); break;
        case 3: m.MergeMono8ToMono8(c.w1, c.h1, pa, 1.7f, c.w2, c.h2, pb, o, x, y, 0, 0, 0.5, 0, 0, 0, false); break;
        case 4:
          m.SubMono8ToBGRByPseudoColor(c.w1, c.h1, pa, nullptr, c.w2, c.h2, pb, nullptr, o, x, y, 0, 0, 1.8, 0, 0, 0,
                                       false);
          break;
        case 5:
          m.SubMono8ToBGRByHSL(c.w1, c.h1, pa, nullptr, 20, c.w2, c.h2, pb, nullptr, 150, o, x, y, 0, 0, 1.3, 0, 0, 0,
                               false);
          break;
        default:
          m.MergeMono8ToBGRByHSL(c.w1, c.h1, 0.4f, pa, 60, c.w2, c.h2, pb, 200, o, x, y, 0, 0, 0.8, 0, 0, 0, false);
      }
      return out;
    };
    for (int call = 0; call < 7; ++call) ExpectVariantsAgree([&] { return run(call); }, "member " + std::to_string(call));
  }
}

// The 16-bit blend (12-bit samples, some beyond the depth) under each
// variant: the identity gamma, gamma 2.2 and a weight outside 0..1.
TEST(MergerOverlay, SixteenBitBlendAgreesAcrossVariants) {
  const Placing c{150, 5, 140, 6, 5, 1};
  const Words a = Random16(size_t(c.w1) * c.h1, 5000, 41), b = Random16(size_t(c.w2) * c.h2, 4096, 42);
  const auto l = mergerref::Place(c.w1, c.h1, c.w2, c.h2, c.offsetX, c.offsetY);
  for (const double gamma : {1.0, 2.2}) {
    for (const float weight : {0.25f, 1.5f}) {
      auto run = [&] {
        CIppImageMerger m;
        Words out(size_t(l.width) * l.height, 0xABCD);
        m.MergeMono16ToMono16(c.w1, c.h1, 12, const_cast<uint16_t*>(a.data()), weight, c.w2, c.h2,
                              const_cast<uint16_t*>(b.data()), out.data(), c.offsetX, c.offsetY, 0, 0, gamma, 0, 0, 0,
                              false);
        return out;
      };
      ExpectVariantsAgree(run, "gamma " + std::to_string(gamma) + " weight " + std::to_string(weight));
    }
  }
}

// The 16-bit ratio to pseudo-colour (12-bit samples, some beyond the depth,
// b 0 here and there) under each variant.
TEST(MergerOverlay, SixteenBitPseudoColourAgreesAcrossVariants) {
  const Placing c{150, 5, 140, 6, 5, 1};
  const Words a = Random16(size_t(c.w1) * c.h1, 5000, 43);
  Words b = Random16(size_t(c.w2) * c.h2, 4600, 44);
  for (size_t i = 0; i < b.size(); i += 7) b[i] = 0;
  const auto l = mergerref::Place(c.w1, c.h1, c.w2, c.h2, c.offsetX, c.offsetY);
  for (const double gamma : {1.0, 2.2}) {
    auto run = [&] {
      CIppImageMerger m;
      m.RebuildSlopeLUT(5, 1.2f, 1);
      Bytes out(3 * size_t(l.width) * l.height, kStale);
      m.SubMono16ToBGRByPseudoColor(c.w1, c.h1, 12, const_cast<uint16_t*>(a.data()), nullptr, c.w2, c.h2,
                                    b.data(), nullptr, out.data(), c.offsetX, c.offsetY, 0, 0, gamma, 0, 0, 0, false);
      return out;
    };
    ExpectVariantsAgree(run, "gamma " + std::to_string(gamma));
  }
}

}  // namespace
