// The BGR grey conversions through fixed-point weights: the stand-ins
// reproduce every reachable table entry, and whole frames come out as the
// 65,536-entry tables give them, in every variant.
#include <gtest/gtest.h>
#include <kestrelink/CIppMotionDetector.h>

#include <algorithm>
#include <cstring>
#include <random>
#include <vector>

#include "analysis/GreyFit.h"
#include "primitives/AnalysisRows.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::analysis::FitGreyWeight;
using kestrelink::analysis::GreyWeight;

// A table entry: the sample times the weight, plus a half, truncated.
int Entry(uint32_t x, double w) { return int(double(x) * w + 0.5); }

std::vector<uint16_t> Table(double w) {
  std::vector<uint16_t> t(65536);
  for (uint32_t x = 0; x < t.size(); ++x) t[x] = uint16_t(Entry(x, w));
  return t;
}

// The grey the tables give a pixel of samples s0 s1 s2 in memory order: the
// 0.587 weight on the first, 0.114 on the second, 0.299 on the third,
// clamped to 255.
int TableGrey(uint32_t s0, uint32_t s1, uint32_t s2) {
  return std::min(Entry(s0, 0.587) + Entry(s1, 0.114) + Entry(s2, 0.299), 255);
}

// Every sample of the width against the plain entry, in 64-bit arithmetic.
void CheckStandIn(const GreyWeight& fit, double w, uint32_t top, bool deep) {
  for (uint32_t x = 0; x <= top; ++x) {
    const uint64_t clamped = std::min(x, fit.clampAt);
    const uint64_t product = clamped * fit.mul + fit.add;
    ASSERT_LE(product, 0xFFFFFFFFu) << x;
    const int got = int(product >> fit.shift);
    // Below 256 the entry itself; from there on any value of 256 or more,
    // since the grey clamps to 255 anyway.
    if (Entry(x, w) < 256 || !deep)
      ASSERT_EQ(got, Entry(x, w)) << "weight " << w << " sample " << x;
    else
      ASSERT_GE(got, 256) << "weight " << w << " sample " << x;
  }
}

TEST(MotionGreyWeights, StandInsMatchEveryEntryOfEachWidth) {
  for (const double w : {0.299, 0.587, 0.114}) {
    const std::vector<uint16_t> table = Table(w);
    GreyWeight fit;
    ASSERT_TRUE(FitGreyWeight(table.data(), w, 65535, true, fit)) << w;
    CheckStandIn(fit, w, 65535, true);
    ASSERT_TRUE(FitGreyWeight(table.data(), w, 255, false, fit)) << w;
    CheckStandIn(fit, w, 255, false);
    // The 16-bit-lane form: (((x << 8) * mul) >> 16) + add / 256, shifted
    // by shift - 8, with every step inside 16 bits.
    ASSERT_TRUE(FitGreyWeight(table.data(), w, 255, false, fit, kestrelink::analysis::kGrey8Form)) << w;
    ASSERT_LT(fit.mul, 65536u);
    ASSERT_EQ(fit.add % 256, 0u);
    ASSERT_GE(fit.shift, 8u);
    for (uint32_t x = 0; x <= 255; ++x) {
      const uint32_t high = ((x << 8) * fit.mul) >> 16, lane = high + fit.add / 256;
      ASSERT_LT(lane, 65536u);
      ASSERT_EQ(int(lane >> (fit.shift - 8)), Entry(x, w)) << "weight " << w << " sample " << x;
    }
  }
}

TEST(MotionGreyWeights, TablesNoStandInCanReproduceAreRefused) {
  std::vector<uint16_t> table = Table(0.299);
  table[200] = uint16_t(table[200] + 1);  // one entry off the line
  GreyWeight fit;
  EXPECT_FALSE(FitGreyWeight(table.data(), 0.299, 255, false, fit));
  std::vector<uint16_t> random(65536);
  std::mt19937 rng(5);
  for (auto& v : random) v = uint16_t(rng() % 300);
  EXPECT_FALSE(FitGreyWeight(random.data(), 0.5, 65535, true, fit));
  EXPECT_FALSE(FitGreyWeight(table.data(), 1.5, 255, false, fit));
}

// Samples of a frame: every value of the width in every position (a sweep
// in three different orders), the points where a weight's entry first
// reaches 256 and their neighbours, the extremes, then random samples.
template <class T>
std::vector<T> GreyFrame(size_t pixels, int stride, uint32_t top, uint32_t seed) {
  std::vector<T> f(pixels * stride);
  std::mt19937 rng(seed);
  const uint32_t range = top + 1;
  std::vector<uint32_t> special = {0, 1, top, top - 1, 250, 500, 1500, 2250};
  for (const double w : {0.299, 0.587, 0.114})
    for (uint32_t x = 0; x <= top && x < 65536; ++x)
      if (Entry(x, w) >= 256) {
        for (int d = -2; d <= 2; ++d) special.push_back(std::min(uint32_t(int(x) + d), top));
        break;
      }
  for (size_t i = 0; i < pixels; ++i) {
    T* p = &f[i * stride];
    if (i < range) {
      p[0] = T(i);
      p[1] = T((i * 7 + 3) % range);
      p[2] = T((i * 13 + 5) % range);
    } else if (i - range < special.size() * special.size()) {
      const size_t k = i - range;
      p[0] = T(std::min(special[k % special.size()], top));
      p[1] = T(std::min(special[k / special.size()], top));
      p[2] = T(std::min(special[(k + 3) % special.size()], top));
    } else {
      for (int c = 0; c < 3; ++c) p[c] = T(rng() % range);
    }
    if (stride == 4) p[3] = T(rng());
  }
  return f;
}

template <class T, class Convert>
void CheckFrames(uint32_t top, Convert convert, int stride) {
  CIppMotionDetector motion;
  // Widths around the vector lengths, and one long frame holding the sweeps.
  const struct {
    unsigned w, h;
  } sizes[] = {{1, 1}, {7, 3}, {33, 3}, {67, 5}, {1920, 40}};
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    for (const auto& s : sizes) {
      const size_t pixels = size_t(s.w) * s.h;
      const std::vector<T> frame = GreyFrame<T>(pixels, stride, top, s.w * 31 + s.h);
      std::vector<T> grey(pixels, T(0xAB));
      ASSERT_TRUE(convert(motion, s.w, s.h, const_cast<T*>(frame.data()), grey.data()));
      for (size_t i = 0; i < pixels; ++i) {
        const T* p = &frame[i * stride];
        ASSERT_EQ(grey[i], TableGrey(p[0], p[1], p[2]))
            << kestrelink::VariantName(v) << " " << s.w << "x" << s.h << " pixel " << i << ": " << p[0] << " "
            << p[1] << " " << p[2];
      }
    }
  }
}

TEST(MotionGreyWeights, WholeFramesEqualTheTablesInEveryForm) {
  CheckFrames<uint8_t>(
      255, [](CIppMotionDetector& m, unsigned w, unsigned h, void* s, void* d) { return m.BGR8GrayConvert(w, h, s, d); },
      3);
  CheckFrames<uint8_t>(
      255, [](CIppMotionDetector& m, unsigned w, unsigned h, void* s, void* d) { return m.BGRx8GrayConvert(w, h, s, d); },
      4);
  for (const uint32_t top : {65535u, 4095u}) {
    CheckFrames<uint16_t>(
        top,
        [](CIppMotionDetector& m, unsigned w, unsigned h, void* s, void* d) { return m.BGR16GrayConvert(w, h, s, d); },
        3);
    CheckFrames<uint16_t>(
        top,
        [](CIppMotionDetector& m, unsigned w, unsigned h, void* s, void* d) { return m.BGRx16GrayConvert(w, h, s, d); },
        4);
  }
}

TEST(MotionGreyWeights, NullFramesAreRefused) {
  CIppMotionDetector motion;
  uint8_t px[8] = {};
  uint16_t px16[8] = {};
  EXPECT_FALSE(motion.BGR8GrayConvert(1, 1, nullptr, px));
  EXPECT_FALSE(motion.BGRx8GrayConvert(1, 1, px, nullptr));
  EXPECT_FALSE(motion.BGR16GrayConvert(1, 1, nullptr, px16));
  EXPECT_FALSE(motion.BGRx16GrayConvert(1, 1, px16, nullptr));
}

// The 16-bit four-sample row under weights of every form the vector lanes
// take (shifts below, at and above 16; offsets that carry into the high
// half; a clamp point), against (min(x, clampAt) mul + add) >> shift summed
// and held at 255, at every variant.
TEST(MotionGreyWeights, SixteenBitRowTakesEveryWeightForm) {
  using kestrelink::analysis::GreyWeight;
  using kestrelink::analysis::GreyWeights;
  const GreyWeight forms[] = {
      {601, 529, 10, 436},          // shift below 16
      {19595, 32900, 16, 855},      // shift 16
      {59769, 262102, 19, 2242},    // above 16, the offset past 16 bits
      {40000, 65535, 17, 0xFFFF},   // no clamp, carries from the low half
      {3, 0, 2, 1000},              // small
  };
  const uint32_t n = 100;
  std::vector<uint16_t> src(4 * n);
  const std::vector<uint8_t> r = testsupport::RandomBytes(8 * n, 77);
  for (uint32_t i = 0; i < 4 * n; ++i) src[i] = uint16_t(r[2 * i] << 8 | r[2 * i + 1]) >> (i % 3 == 0 ? 4 : 0);
  for (const auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    const auto row = kestrelink::analysis::AnalysisRows().weighGrey16C4;
    for (const GreyWeight& f0 : forms)
      for (const GreyWeight& f1 : forms)
        for (const GreyWeight& f2 : forms) {
          const GreyWeights w{f0, f1, f2};
          std::vector<uint16_t> out(n + 1, 0xBEEF);
          row(src.data(), out.data(), n, w);
          for (uint32_t i = 0; i < n; ++i) {
            const auto term = [&](const GreyWeight& g, uint64_t x) {
              return (std::min<uint64_t>(x, g.clampAt) * g.mul + g.add) >> g.shift;
            };
            const uint64_t sum = term(f0, src[4 * i]) + term(f1, src[4 * i + 1]) + term(f2, src[4 * i + 2]);
            ASSERT_EQ(out[i], std::min<uint64_t>(sum, 255)) << kestrelink::VariantName(v) << " pixel " << i;
          }
          EXPECT_EQ(out[n], 0xBEEF);
        }
  }
}

}  // namespace
