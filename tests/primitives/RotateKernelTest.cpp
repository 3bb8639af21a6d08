// The general rotation kernels: the shift query, the statuses, and the
// properties any correct interpolation has, each computed from the rule of
// the turn (x' = x cos a - y sin a + xs, y' = x sin a + y cos a + ys, a
// positive angle clockwise on screen) and not from the kernels.
#include <gtest/gtest.h>

#include <cmath>

#include "primitives/RotatePrimitives.h"
#include "support/TestSupport.h"

namespace {

constexpr int kKinds[] = {IPPI_INTER_NN, IPPI_INTER_LINEAR, IPPI_INTER_CUBIC};

template <class T>
std::vector<T> Filled(size_t n, T v) {
  return std::vector<T>(n, v);
}

// Turns `src` (w x h, `c` samples a pixel) about its centre pixel by `angle`
// into a frame of the same size that starts at `fill`.
template <class T, class Kernel>
std::vector<T> TurnAboutCentre(Kernel kernel, const std::vector<T>& src, int w, int h, int c, double angle,
                               int interpolation, T fill) {
  double xs = 0, ys = 0;
  EXPECT_EQ(ippiGetRotateShift(w / 2, h / 2, angle, &xs, &ys), ippStsNoErr);
  std::vector<T> dst(src.size(), fill);
  const int step = int(w * c * sizeof(T));
  EXPECT_EQ(
      kernel(src.data(), {w, h}, step, {0, 0, w, h}, dst.data(), step, {0, 0, w, h}, angle, xs, ys, interpolation),
      ippStsNoErr);
  return dst;
}

TEST(RotateKernel, ShiftKeepsTheCentreInPlace) {
  for (double angle : {0.0, 12.5, 90.0, -90.0, 180.0, 271.0, -33.3}) {
    const double cx = 17, cy = -4.5, a = angle * M_PI / 180.0;
    double xs = 0, ys = 0;
    ASSERT_EQ(ippiGetRotateShift(cx, cy, angle, &xs, &ys), ippStsNoErr);
    EXPECT_NEAR(cx * std::cos(a) - cy * std::sin(a) + xs, cx, 1e-9) << angle;
    EXPECT_NEAR(cx * std::sin(a) + cy * std::cos(a) + ys, cy, 1e-9) << angle;
  }
  double xs = 0;
  EXPECT_EQ(ippiGetRotateShift(1, 1, 10, &xs, nullptr), ippStsNullPtrErr);
}

TEST(RotateKernel, BadCallsAnswerTheirStatusAndTouchNothing) {
  std::vector<Ipp8u> src(16, 1), dst(16, 9);
  struct Row {
    const char* why;
    const Ipp8u* s;
    Ipp8u* d;
    IppiSize size;
    IppiRect srcRoi, dstRoi;
    int interpolation;
    IppStatus want;
  };
  const Row rows[] = {
      {"null source", nullptr, dst.data(), {4, 4}, {0, 0, 4, 4}, {0, 0, 4, 4}, IPPI_INTER_NN, ippStsNullPtrErr},
      {"null destination", src.data(), nullptr, {4, 4}, {0, 0, 4, 4}, {0, 0, 4, 4}, IPPI_INTER_NN, ippStsNullPtrErr},
      {"empty source", src.data(), dst.data(), {0, 4}, {0, 0, 4, 4}, {0, 0, 4, 4}, IPPI_INTER_NN, ippStsSizeErr},
      {"empty destination region",
       src.data(),
       dst.data(),
       {4, 4},
       {0, 0, 4, 4},
       {0, 0, 4, 0},
       IPPI_INTER_NN,
       ippStsSizeErr},
      {"negative destination corner",
       src.data(),
       dst.data(),
       {4, 4},
       {0, 0, 4, 4},
       {-1, 0, 4, 4},
       IPPI_INTER_NN,
       ippStsSizeErr},
      {"source region off the image",
       src.data(),
       dst.data(),
       {4, 4},
       {4, 0, 4, 4},
       {0, 0, 4, 4},
       IPPI_INTER_NN,
       ippStsWrongIntersectROI},
      {"supersampling",
       src.data(),
       dst.data(),
       {4, 4},
       {0, 0, 4, 4},
       {0, 0, 4, 4},
       IPPI_INTER_SUPER,
       ippStsInterpolationErr},
      {"Lanczos",
       src.data(),
       dst.data(),
       {4, 4},
       {0, 0, 4, 4},
       {0, 0, 4, 4},
       IPPI_INTER_LANCZOS | IPPI_SMOOTH_EDGE,
       ippStsInterpolationErr}};
  for (const Row& r : rows) {
    EXPECT_EQ(ippiRotate_8u_C1R(r.s, r.size, 4, r.srcRoi, r.d, 4, r.dstRoi, 30.0, 1.0, 1.0, r.interpolation), r.want)
        << r.why;
    EXPECT_EQ(dst, std::vector<Ipp8u>(16, 9)) << r.why;
  }
}

// A positive angle turns clockwise on screen: a bright pixel right of the
// centre ends up below it.
TEST(RotateKernel, PositiveAnglesTurnClockwise) {
  std::vector<Ipp8u> src(49, 0);
  src[3 * 7 + 5] = 255;  // row 3, column 5: two right of the centre (3, 3)
  const auto dst = TurnAboutCentre(ippiRotate_8u_C1R, src, 7, 7, 1, 90.0, IPPI_INTER_NN, Ipp8u(0));
  EXPECT_EQ(dst[5 * 7 + 3], 255);  // row 5, column 3: two below it
}

TEST(RotateKernel, IdentityReproducesTheFrameForEveryKind) {
  const auto src = testsupport::RandomBytes(23 * 17 * 3, 1);
  for (int kind : kKinds) {
    const auto dst = TurnAboutCentre(ippiRotate_8u_C3R, src, 23, 17, 3, 0.0, kind, Ipp8u(0));
    EXPECT_EQ(dst, src) << "kind " << kind;
  }
}

// Constant frames stay constant wherever the turned frame covers, 16-bit
// values next to 65535 included, and channels keep their own values.
TEST(RotateKernel, ConstantChannelsStayConstantAndApart) {
  const int w = 41, h = 29;
  std::vector<Ipp16u> src(size_t(w) * h * 3);
  for (size_t i = 0; i < src.size(); i += 3) {
    src[i] = 65535;
    src[i + 1] = 65534;
    src[i + 2] = 7;
  }
  for (int kind : kKinds)
    for (double angle : {17.0, -123.4}) {
      const auto dst = TurnAboutCentre(ippiRotate_16u_C3R, src, w, h, 3, angle, kind, Ipp16u(1));
      size_t covered = 0;
      for (size_t i = 0; i < dst.size(); i += 3) {
        if (dst[i] == 1 && dst[i + 1] == 1 && dst[i + 2] == 1) continue;
        ++covered;
        ASSERT_EQ(dst[i], 65535) << kind << " " << angle;
        ASSERT_EQ(dst[i + 1], 65534) << kind << " " << angle;
        ASSERT_EQ(dst[i + 2], 7) << kind << " " << angle;
      }
      EXPECT_GT(covered, size_t(w) * h / 2) << kind << " " << angle;
    }
}

// A bilinear sample of a linear ramp is the ramp at the source point: each
// covered output pixel holds 2u + 3v + 10 of its back-mapped (u, v), within
// half a level of rounding and the float weights; cubic reproduces ramps too
// away from the edge.
TEST(RotateKernel, RampsSurviveWithinHalfALevel) {
  const int w = 60, h = 40;
  std::vector<Ipp16u> src(size_t(w) * h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) src[size_t(y) * w + x] = Ipp16u(2 * x + 3 * y + 10);
  const double angle = 21.0, a = angle * M_PI / 180.0;
  for (int kind : {IPPI_INTER_LINEAR, IPPI_INTER_CUBIC}) {
    const auto dst = TurnAboutCentre(ippiRotate_16u_C1R, src, w, h, 1, angle, kind, Ipp16u(0));
    double xs, ys;
    ippiGetRotateShift(w / 2, h / 2, angle, &xs, &ys);
    for (int Y = 0; Y < h; ++Y)
      for (int X = 0; X < w; ++X) {
        const double u = std::cos(a) * (X - xs) + std::sin(a) * (Y - ys);
        const double v = -std::sin(a) * (X - xs) + std::cos(a) * (Y - ys);
        if (u < 1 || v < 1 || u > w - 2 || v > h - 2) continue;  // clear of the edge's replicated taps
        ASSERT_NEAR(dst[size_t(Y) * w + X], 2 * u + 3 * v + 10, 0.51) << kind << " at " << X << "," << Y;
      }
  }
}

// Turning an odd square about its centre pixel by a quarter turn moves whole
// pixels whatever the interpolation; AC4 leaves the fourth sample alone.
TEST(RotateKernel, QuarterTurnsMoveWholePixelsAndSkipTheFourthSample) {
  const int n = 9;
  const auto src = testsupport::RandomBytes(size_t(n) * n * 4, 2);
  for (int kind : kKinds) {
    const auto dst = TurnAboutCentre(ippiRotate_8u_AC4R, src, n, n, 4, 90.0, kind, Ipp8u(0xEE));
    for (int y = 0; y < n; ++y)
      for (int x = 0; x < n; ++x) {
        // Clockwise: source (x, y) lands at (n-1-y, x).
        const size_t from = (size_t(y) * n + x) * 4, to = (size_t(x) * n + (n - 1 - y)) * 4;
        for (int c = 0; c < 3; ++c) ASSERT_EQ(dst[to + c], src[from + c]) << kind << " at " << x << "," << y;
        ASSERT_EQ(dst[to + 3], 0xEE);
      }
  }
}

// A half-pixel shift puts the source edge across the first and last
// columns: the plain kernel writes the first whole and leaves the one past
// the end, the smooth edge gives both half of the picture over what was there.
TEST(RotateKernel, SmoothEdgeBlendsTheBorderByCoverage) {
  const int w = 6, h = 3;
  const std::vector<Ipp8u> src(size_t(w) * h, 200);
  for (bool smooth : {false, true}) {
    std::vector<Ipp8u> dst(size_t(w + 1) * h, 0);
    const int kind = IPPI_INTER_LINEAR | (smooth ? IPPI_SMOOTH_EDGE : 0);
    ASSERT_EQ(ippiRotate_8u_C1R(src.data(), {w, h}, w, {0, 0, w, h}, dst.data(), w + 1, {0, 0, w + 1, h}, 0.0, 0.5, 0.0,
                                kind),
              ippStsNoErr);
    for (int y = 0; y < h; ++y) {
      const Ipp8u* row = dst.data() + size_t(y) * (w + 1);
      EXPECT_EQ(row[0], smooth ? 100 : 200);
      for (int x = 1; x < w; ++x) EXPECT_EQ(row[x], 200);
      EXPECT_EQ(row[w], smooth ? 100 : 0);
    }
  }
}

// Only the destination region is written, and uncovered pixels keep their value.
TEST(RotateKernel, DestinationRegionBoundsTheWrites) {
  const std::vector<Ipp8u> src(100, 50);
  std::vector<Ipp8u> dst(100, 3);
  ASSERT_EQ(ippiRotate_8u_C1R(src.data(), {10, 10}, 10, {0, 0, 10, 10}, dst.data(), 10, {2, 3, 4, 5}, 0.0, 0, 0,
                              IPPI_INTER_CUBIC),
            ippStsNoErr);
  for (int y = 0; y < 10; ++y)
    for (int x = 0; x < 10; ++x)
      EXPECT_EQ(dst[size_t(y) * 10 + x], x >= 2 && x < 6 && y >= 3 && y < 8 ? 50 : 3) << x << "," << y;
}

}  // namespace

namespace {

// Catmull-Rom in double, for the reference below.
double CubicTap(double t, int k) {
  const double t2 = t * t, t3 = t2 * t;
  switch (k) {
    case 0:
      return -0.5 * t3 + t2 - 0.5 * t;
    case 1:
      return 1.5 * t3 - 2.5 * t2 + 1.0;
    case 2:
      return -1.5 * t3 + 2.0 * t2 + 0.5 * t;
    default:
      return 0.5 * t3 - 0.5 * t2;
  }
}

// Every covered pixel of a turn against a double-precision evaluation of
// the rule written here (edge taps replicated), for each kind: the same
// pixels are covered, and no sample is off by more than one level.
TEST(RotateKernel, MatchesADoublePrecisionReferenceWithinOneLevel) {
  const int w = 37, h = 29, n = w * h;
  const auto src = testsupport::RandomBytes(size_t(n), 3);
  const double angle = 33.0, a = angle * M_PI / 180.0, xs = 5.25, ys = -7.5;
  const auto at = [&](int x, int y) {
    return double(src[size_t(std::clamp(y, 0, h - 1)) * w + std::clamp(x, 0, w - 1)]);
  };
  for (int kind : kKinds) {
    std::vector<Ipp8u> dst(size_t(n), 0);
    ASSERT_EQ(ippiRotate_8u_C1R(src.data(), {w, h}, w, {0, 0, w, h}, dst.data(), w, {0, 0, w, h}, angle, xs, ys, kind),
              ippStsNoErr);
    int worst = 0, covered = 0;
    for (int Y = 0; Y < h; ++Y)
      for (int X = 0; X < w; ++X) {
        const double u = std::cos(a) * (X - xs) + std::sin(a) * (Y - ys);
        const double v = -std::sin(a) * (X - xs) + std::cos(a) * (Y - ys);
        const int got = dst[size_t(Y) * w + X];
        if (!(u >= -0.5 && u < w - 0.5 && v >= -0.5 && v < h - 0.5)) {
          ASSERT_EQ(got, 0) << "uncovered pixel written at " << X << "," << Y;
          continue;
        }
        ++covered;
        const int iu = int(std::floor(u)), iv = int(std::floor(v));
        const double tx = u - iu, ty = v - iv;
        double want = 0;
        if (kind == IPPI_INTER_NN) {
          want = at(int(std::floor(u + 0.5)), int(std::floor(v + 0.5)));
        } else if (kind == IPPI_INTER_LINEAR) {
          want = (1 - ty) * ((1 - tx) * at(iu, iv) + tx * at(iu + 1, iv)) +
                 ty * ((1 - tx) * at(iu, iv + 1) + tx * at(iu + 1, iv + 1));
        } else {
          for (int j = 0; j < 4; ++j)
            for (int k = 0; k < 4; ++k) want += CubicTap(ty, j) * CubicTap(tx, k) * at(iu - 1 + k, iv - 1 + j);
        }
        want = std::clamp(std::floor(want + 0.5), 0.0, 255.0);
        worst = std::max(worst, std::abs(got - int(want)));
      }
    EXPECT_LE(worst, 1) << "kind " << kind;
    EXPECT_GT(covered, n / 3) << "kind " << kind;
  }
}

}  // namespace
