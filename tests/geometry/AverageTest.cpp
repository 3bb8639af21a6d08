// CIppAverageImage against the averaging rule written out: per sample the
// sum over the span, dst = clamp(sum / n, 0, max) with truncating division,
// sums keeping the full value; the BGRx forms leave the fourth sample of dst
// and sums alone; the rolling forms add the entering frame and take off the
// leaving one; RollingBGRx64Average keeps steps of its own.
#include <gtest/gtest.h>
#include <kestrelink/CIppAverageImage.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "platform/OpenMP.h"
#include "support/TestSupport.h"

namespace {

using Bytes = std::vector<uint8_t>;
using Sums = std::vector<int>;

int Sample(const Bytes& f, size_t i, int bytes) { return bytes == 1 ? f[i] : f[2 * i] | f[2 * i + 1] << 8; }
void Put(Bytes& f, size_t i, int bytes, int v) {
  if (bytes == 1) {
    f[i] = uint8_t(v);
  } else {
    f[2 * i] = uint8_t(v), f[2 * i + 1] = uint8_t(v >> 8);
  }
}
int Mean(int sum, int n, int max) { return std::clamp(sum / n, 0, max); }

// A member's frame: `samples` in all, `stride` samples a pixel of which the
// first `used` are averaged (1, 1 for the plain forms; 4, 3 for BGRx).
struct Shape {
  size_t samples;
  int bytes, stride, used, max;
};

bool Averaged(const Shape& s, size_t i) { return int(i % s.stride) < s.used; }

// The full average written out, over frames f[0 .. n-1].
void FullModel(const Shape& s, const std::vector<Bytes>& f, Sums& sums, Bytes& dst) {
  for (size_t i = 0; i < s.samples; ++i) {
    if (!Averaged(s, i)) continue;
    int sum = 0;
    for (const Bytes& frame : f) sum += Sample(frame, i, s.bytes);
    sums[i] = sum;
    Put(dst, i, s.bytes, Mean(sum, int(f.size()), s.max));
  }
}

void RollingModel(const Shape& s, int n, const Bytes& in, const Bytes& out, Sums& sums, Bytes& dst) {
  for (size_t i = 0; i < s.samples; ++i) {
    if (!Averaged(s, i)) continue;
    sums[i] += Sample(in, i, s.bytes) - Sample(out, i, s.bytes);
    Put(dst, i, s.bytes, Mean(sums[i], n, s.max));
  }
}

struct Member {
  std::string name;
  std::function<Shape(int w, int h)> shape;
  std::function<bool(CIppAverageImage&, int n, int w, int h, void** frames, int* sums, void* dst)> full;
  std::function<bool(CIppAverageImage&, int n, int w, int h, void* in, void* out, int* sums, void* dst)> rolling;
};

#define FULL(method) \
  [](CIppAverageImage& a, int n, int w, int h, void** f, int* s, void* d) { return a.method(n, w, h, f, s, d); }
#define FULL16(method, depth) \
  [](CIppAverageImage& a, int n, int w, int h, void** f, int* s, void* d) { return a.method(n, w, h, depth, f, s, d); }
#define ROLL(method)                                                                \
  [](CIppAverageImage& a, int n, int w, int h, void* i, void* o, int* s, void* d) { \
    return a.method(n, w, h, i, o, s, d);                                           \
  }
#define ROLL16(method, depth)                                                       \
  [](CIppAverageImage& a, int n, int w, int h, void* i, void* o, int* s, void* d) { \
    return a.method(n, w, h, depth, i, o, s, d);                                    \
  }

std::function<Shape(int, int)> Plain(int perPixelNum, int perPixelDen, int bytes, int max) {
  return [=](int w, int h) { return Shape{size_t(h) * size_t((perPixelNum * w) / perPixelDen), bytes, 1, 1, max}; };
}

std::vector<Member> Members() {
  return {
      {"Mono8", Plain(1, 1, 1, 255), FULL(Mono8Average), ROLL(RollingMono8Average)},
      {"Mono16 at 12 bits", Plain(1, 1, 2, 4095), FULL16(Mono16Average, 12), ROLL16(RollingMono16Average, 12)},
      {"Mono16 at 10 bits", Plain(1, 1, 2, 1023), FULL16(Mono16Average, 10), ROLL16(RollingMono16Average, 10)},
      {"BGR24", Plain(3, 1, 1, 255), FULL(BGR24Average), ROLL(RollingBGR24Average)},
      {"BGR48", Plain(3, 1, 2, 65535), FULL16(BGR48Average, 16), ROLL16(RollingBGR48Average, 16)},
      {"YUV444", Plain(3, 1, 1, 255), FULL(YUV444Average), ROLL(RollingYUV444Average)},
      {"YUV422", Plain(2, 1, 1, 255), FULL(YUV422Average), ROLL(RollingYUV422Average)},
      {"UVY422", Plain(2, 1, 1, 255), FULL(UVY422Average), ROLL(RollingUVY422Average)},
      {"YUV411", Plain(3, 2, 1, 255), FULL(YUV411Average), ROLL(RollingYUV411Average)},
      {"BGRx32",
       [](int w, int h) {
         return Shape{size_t(4) * w * h, 1, 4, 3, 255};
       },
       FULL(BGRx32Average), ROLL(RollingBGRx32Average)},
      {"BGRx64",
       [](int w, int h) {
         return Shape{size_t(4) * w * h, 2, 4, 3, 1023};
       },
       FULL16(BGRx64Average, 10), nullptr},
  };
}

// Frames of `limit`-bounded samples; 16-bit ones run above a 10-bit depth
// so that the clamp is met.
std::vector<Bytes> Frames(const Shape& s, int n, uint32_t seed) {
  std::vector<Bytes> f;
  for (int k = 0; k < n; ++k)
    f.push_back(s.bytes == 1 ? testsupport::RandomBytes(s.samples, seed + k)
                             : testsupport::RandomWords(s.samples, 1400, seed + k));
  return f;
}

std::vector<void*> Pointers(std::vector<Bytes>& f) {
  std::vector<void*> p;
  for (auto& x : f) p.push_back(x.data());
  return p;
}

const int kWidths[] = {1, 5, 7, 33, 300};
const int kCounts[] = {1, 2, 3, 7, 70};

void CheckFull(int team) {
  testsupport::ScopedTeam scoped(team);
  CIppAverageImage avg;
  kestrelink::platform::SetTeamSize(team);  // after the constructor, whose thread setup reads the store
  for (const Member& m : Members())
    for (int w : kWidths)
      for (int n : kCounts) {
        SCOPED_TRACE(m.name + " w " + std::to_string(w) + " n " + std::to_string(n));
        const int h = 3;
        const Shape s = m.shape(w, h);
        auto frames = Frames(s, n, uint32_t(w * 7 + n));
        auto pointers = Pointers(frames);
        Bytes want = testsupport::RandomBytes(s.samples * s.bytes + 8, 5), got = want;
        Sums wantSums(s.samples + 2, -7), gotSums = wantSums;
        FullModel(s, frames, wantSums, want);
        ASSERT_TRUE(m.full(avg, n, w, h, pointers.data(), gotSums.data(), got.data()));
        ASSERT_EQ(want, got);
        ASSERT_EQ(wantSums, gotSums);
      }
}

TEST(AverageImage, FullAverageMatchesTheRule) { CheckFull(1); }
TEST(AverageImage, FullAverageMatchesTheRuleAtATeamOfTwo) { CheckFull(2); }

TEST(AverageImage, EveryVariantMatchesTheRule) {
  for (auto v : testsupport::RunnableVariants()) {
    SCOPED_TRACE(kestrelink::VariantName(v));
    testsupport::ScopedVariant scoped(v);
    CheckFull(1);
  }
}

// The division by the span is exact for every sum and count a 32-bit sum
// can hold: large sums reach the kernels through a rolling call that adds
// nothing.
TEST(AverageImage, DivisionIsExactOverTheWholeRange) {
  std::mt19937 rng(5);
  for (auto v : testsupport::RunnableVariants()) {
    SCOPED_TRACE(kestrelink::VariantName(v));
    testsupport::ScopedVariant scoped(v);
    for (int n : {1, 2, 3, 7, 10, 64, 255, 1000, 32767, 65535, 2147483647}) {
      Sums sums(257);
      for (size_t i = 0; i < sums.size(); ++i)
        sums[i] = i < 4 ? int(INT32_MAX - i) : i < 8 ? int(n * (i + 1000) % INT32_MAX) : int(rng() >> 1);
      const Sums before = sums;
      Bytes zero(2 * sums.size(), 0), dst(2 * sums.size());
      CIppAverageImage avg;
      ASSERT_TRUE(
          avg.RollingMono16Average(n, int(sums.size()), 1, 31, zero.data(), zero.data(), sums.data(), dst.data()));
      for (size_t i = 0; i < sums.size(); ++i)
        ASSERT_EQ(Sample(dst, i, 2), (before[i] / n) & 0xFFFF) << n << " " << before[i];
    }
  }
}

// Full A, B then rolling in C, out A gives the full average of B, C, sums too;
// then a wrong leaving frame drives sums negative, which gives 0.
TEST(AverageImage, RollingMovesTheSpanOn) {
  CIppAverageImage avg;
  for (const Member& m : Members()) {
    if (!m.rolling) continue;
    for (int w : kWidths) {
      SCOPED_TRACE(m.name + " w " + std::to_string(w));
      const int h = 4;
      const Shape s = m.shape(w, h);
      auto f = Frames(s, 3, uint32_t(w));
      std::vector<Bytes> ab = {f[0], f[1]}, bc = {f[1], f[2]};
      auto pab = Pointers(ab), pbc = Pointers(bc);
      Bytes rolled(s.samples * s.bytes + 4, 0x77), full = rolled;
      Sums rolledSums(s.samples + 1, 0), fullSums = rolledSums;
      ASSERT_TRUE(m.full(avg, 2, w, h, pab.data(), rolledSums.data(), rolled.data()));
      ASSERT_TRUE(m.rolling(avg, 2, w, h, f[2].data(), f[0].data(), rolledSums.data(), rolled.data()));
      ASSERT_TRUE(m.full(avg, 2, w, h, pbc.data(), fullSums.data(), full.data()));
      EXPECT_EQ(rolled, full);
      EXPECT_EQ(rolledSums, fullSums);

      Bytes want = rolled;
      Sums wantSums = rolledSums;
      Bytes high(s.samples * s.bytes, 0);
      for (size_t i = 0; i < s.samples; ++i) Put(high, i, s.bytes, s.bytes == 1 ? 255 : 1399);
      RollingModel(s, 2, f[0], high, wantSums, want);
      ASSERT_TRUE(m.rolling(avg, 2, w, h, f[0].data(), high.data(), rolledSums.data(), rolled.data()));
      EXPECT_EQ(rolled, want);
      EXPECT_EQ(rolledSums, wantSums);
    }
  }
}

TEST(AverageImage, EdgeCases) {
  CIppAverageImage avg;
  // One frame: dst is the frame, sums the samples.
  Bytes a = {9, 200, 3}, dst(3);
  Sums sums(3);
  void* one[] = {a.data()};
  ASSERT_TRUE(avg.Mono8Average(1, 3, 1, one, sums.data(), dst.data()));
  EXPECT_EQ(dst, a);
  EXPECT_EQ(sums, (Sums{9, 200, 3}));
  // Truncation: 1 and 2 average to 1.
  Bytes p = {1}, q = {2}, m(1);
  void* two[] = {p.data(), q.data()};
  ASSERT_TRUE(avg.Mono8Average(2, 1, 1, two, sums.data(), m.data()));
  EXPECT_EQ(m[0], 1);
  // 10-bit depth: 1500 and 1600 clamp to 1023 on output, the sum stays whole.
  Bytes x = {0xDC, 0x05}, y = {0x40, 0x06}, out(2);
  void* deep[] = {x.data(), y.data()};
  ASSERT_TRUE(avg.Mono16Average(2, 1, 1, 10, deep, sums.data(), out.data()));
  EXPECT_EQ(out[0] | out[1] << 8, 1023);
  EXPECT_EQ(sums[0], 3100);
  // YUV411 at width 5 takes 7 samples a row.
  Bytes r1(14, 10), r2(14, 20), o(15, 0xEE);
  void* yuv[] = {r1.data(), r2.data()};
  Sums s411(15, -1);
  ASSERT_TRUE(avg.YUV411Average(2, 5, 2, yuv, s411.data(), o.data()));
  EXPECT_EQ(o, (Bytes{15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 15, 0xEE}));
  EXPECT_EQ(s411[13], 30);
  EXPECT_EQ(s411[14], -1);
  // No frames to divide by: refused, nothing written.
  EXPECT_FALSE(avg.Mono8Average(0, 1, 1, two, sums.data(), m.data()));
  EXPECT_FALSE(avg.RollingMono8Average(0, 1, 1, p.data(), q.data(), sums.data(), m.data()));
  EXPECT_EQ(m[0], 1);
}

// Planar forms: three model calls, plane p of the sums p * w * h in.
TEST(AverageImage, PlanarFormsAverageEachPlane) {
  CIppAverageImage avg;
  const int w = 5, h = 3, n = 3;
  const size_t plane = size_t(w) * h;
  for (int bytes : {1, 2}) {
    SCOPED_TRACE(bytes);
    const Shape s{plane, bytes, 1, 1, bytes == 1 ? 255 : 1023};
    std::vector<Bytes> f[3];
    std::vector<void*> ptr[3];
    Bytes want[3], got[3];
    Sums wantSums(3 * plane), gotSums(3 * plane);
    for (int k = 0; k < 3; ++k) {
      f[k] = Frames(s, n, uint32_t(10 * k + bytes));
      ptr[k] = Pointers(f[k]);
      want[k] = got[k] = Bytes(plane * bytes, 0);
      Sums one(plane);
      FullModel(s, f[k], one, want[k]);
      std::copy(one.begin(), one.end(), wantSums.begin() + k * plane);
    }
    if (bytes == 1)
      ASSERT_TRUE(avg.BGRP24Average(n, w, h, ptr[0].data(), ptr[1].data(), ptr[2].data(), gotSums.data(), got[0].data(),
                                    got[1].data(), got[2].data()));
    else
      ASSERT_TRUE(avg.BGRP48Average(n, w, h, 10, ptr[0].data(), ptr[1].data(), ptr[2].data(), gotSums.data(),
                                    got[0].data(), got[1].data(), got[2].data()));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(want[k], got[k]) << k;
    EXPECT_EQ(wantSums, gotSums);
    // Rolling: frame 0 of each plane leaves, a new one enters.
    const Bytes enter = Frames(s, 1, 99)[0];
    for (int k = 0; k < 3; ++k) {
      Sums one(wantSums.begin() + k * plane, wantSums.begin() + (k + 1) * plane);
      RollingModel(s, n, enter, f[k][0], one, want[k]);
      std::copy(one.begin(), one.end(), wantSums.begin() + k * plane);
    }
    void* in = const_cast<uint8_t*>(enter.data());
    if (bytes == 1)
      ASSERT_TRUE(avg.RollingBGRP24Average(n, w, h, in, in, in, f[0][0].data(), f[1][0].data(), f[2][0].data(),
                                           gotSums.data(), got[0].data(), got[1].data(), got[2].data()));
    else
      ASSERT_TRUE(avg.RollingBGRP48Average(n, w, h, 10, in, in, in, f[0][0].data(), f[1][0].data(), f[2][0].data(),
                                           gotSums.data(), got[0].data(), got[1].data(), got[2].data()));
    for (int k = 0; k < 3; ++k) EXPECT_EQ(want[k], got[k]) << k;
    EXPECT_EQ(wantSums, gotSums);
  }
}

// RollingBGRx64Average: old frame, dst and sums rows start at four samples a
// pixel; within a row old and dst go 4 a pixel, new 3 and sums 3; new's row
// starts a further width samples on for each row after the first of a
// worker's band (bands of h * t / team rows); past the frame new reads 0.
void RollingBgrx64Model(int n, int w, int h, int team, int max, const Bytes& in, const Bytes& out, Sums& sums,
                        Bytes& dst) {
  const size_t frameSamples = size_t(4) * w * h;
  for (int t = 0; t < team; ++t) {
    const int first = h * t / team, last = h * (t + 1) / team;
    for (int row = first; row < last; ++row) {
      const size_t at = size_t(4) * w * row, inAt = at + size_t(row - first) * w;
      for (int x = 0; x < w; ++x)
        for (int c = 0; c < 3; ++c) {
          const size_t j = inAt + 3 * x + c;
          int& sum = sums[at + 3 * x + c];
          sum += (j < frameSamples ? Sample(in, j, 2) : 0) - Sample(out, at + 4 * x + c, 2);
          Put(dst, at + 4 * x + c, 2, Mean(sum, n, max));
        }
    }
  }
}

TEST(AverageImage, RollingBgrx64KeepsItsOwnSteps) {
  for (int team : {1, 2}) {
    testsupport::ScopedTeam scoped(team);
    CIppAverageImage avg;
    kestrelink::platform::SetTeamSize(team);  // after the constructor, whose thread setup reads the store
    for (int w : {1, 3, 8}) {
      SCOPED_TRACE("team " + std::to_string(team) + " w " + std::to_string(w));
      const int h = 6, n = 3;
      const size_t samples = size_t(4) * w * h;
      const Bytes in = testsupport::RandomWords(samples, 4096, 1), out = testsupport::RandomWords(samples, 1000, 2);
      Sums sums(samples);
      for (size_t i = 0; i < samples; ++i) sums[i] = int(3000 + i % 97);
      Bytes want = testsupport::RandomBytes(2 * samples, 3), got = want;
      Sums gotSums = sums;
      RollingBgrx64Model(n, w, h, team, 4095, in, out, sums, want);
      ASSERT_TRUE(avg.RollingBGRx64Average(n, w, h, 12, const_cast<uint8_t*>(in.data()),
                                           const_cast<uint8_t*>(out.data()), gotSums.data(), got.data()));
      EXPECT_EQ(want, got);
      EXPECT_EQ(sums, gotSums);
    }
  }
}

}  // namespace
