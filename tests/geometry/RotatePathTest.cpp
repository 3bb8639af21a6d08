// CIppImageRotate's choice of road, value by value: exact angles, centre
// (0, 0) and the size tests send a call to the right-angle copy; anything
// else goes to the general kernel, which leaves uncovered pixels as they were.
#include <kestrelink/CIppImageRotate.h>

#include <gtest/gtest.h>

#include "geometry/GeometryTestFrames.h"

namespace {

using geometrytest::Frame;
constexpr uint8_t kUntouched = 0xEE;

TEST(RotatePath, AdjustDestinationWidthRoundsUpToFour) {
  CIppImageRotate rotate;
  const std::pair<unsigned, int> rows[] = {{0, 0}, {1, 4}, {3, 4}, {4, 4}, {5, 8}, {6, 8}, {1081, 1084}};
  for (auto [in, want] : rows) EXPECT_EQ(rotate.AdjustDestinationWidth(in), want) << in;
}

// A 10 x 6 frame turned by 90 needs rows of 8 pixels and 10 rows; columns 6
// and 7 stay untouched, and at -90 columns 0 and 1.
TEST(RotatePath, TenBySixKeepsItsPadColumns) {
  CIppImageRotate rotate;
  for (double angle : {90.0, -90.0}) {
    Frame src = Frame::Random(10, 6, 1, 4), dst(8, 10, 1, kUntouched);
    ASSERT_TRUE(rotate.Mono8Rotate(10, 6, src.ptr(), 8, 10, dst.ptr(), 0, 0, angle, 0, false));
    for (uint32_t r = 0; r < 10; ++r)
      for (uint32_t c = 0; c < 8; ++c) {
        const bool pad = angle > 0 ? c >= 6 : c < 2;
        if (pad) {
          EXPECT_EQ(*dst.At(r, c), kUntouched) << angle << " row " << r << " col " << c;
        } else {
          const uint32_t y = angle > 0 ? c : 7 - c, x = angle > 0 ? r : 9 - r;
          EXPECT_EQ(*dst.At(r, c), *src.At(5 - y, x)) << angle << " row " << r << " col " << c;
        }
      }
  }
}

// What the general kernel makes of a turn about (0, 0) with nearest
// samples: by 90, output pixel (X, Y) comes from source (Y, -X), so only
// column 0 is covered, holding source row 0; by -90 only row 0, holding
// source column 0; by 180 only (0, 0).
Frame GeneralAboutOrigin(const Frame& src, uint32_t dw, uint32_t dh, double angle) {
  Frame out(dw, dh, src.bytes, kUntouched);
  if (angle == 180.0) {
    geometrytest::CopyPixel(src, 0, 0, out, 0, 0);
  } else if (angle == 90.0) {
    for (uint32_t y = 0; y < dh && y < src.w; ++y) geometrytest::CopyPixel(src, 0, y, out, y, 0);
  } else {
    for (uint32_t x = 0; x < dw && x < src.h; ++x) geometrytest::CopyPixel(src, x, 0, out, 0, x);
  }
  return out;
}

TEST(RotatePath, RightAnglesThatDoNotFitTakeTheGeneralRoad) {
  CIppImageRotate rotate;
  struct Row {
    const char* why;
    uint32_t dw, dh;
    double angle;
  };
  const Row rows[] = {{"dstWidth 6 is not AdjustDestinationWidth(6)", 6, 10, 90.0},
                      {"dstHeight is not srcWidth", 8, 9, 90.0},
                      {"-90 at the source's own size", 10, 6, -90.0},
                      {"90 at the source's own size", 10, 6, 90.0},
                      {"180 at neither size", 9, 6, 180.0}};
  for (const Row& r : rows) {
    Frame src = Frame::Random(10, 6, 1, 5), dst(r.dw, r.dh, 1, kUntouched);
    ASSERT_TRUE(rotate.Mono8Rotate(10, 6, src.ptr(), r.dw, r.dh, dst.ptr(), 0, 0, r.angle, 0, false)) << r.why;
    EXPECT_EQ(dst.data, GeneralAboutOrigin(src, r.dw, r.dh, r.angle).data) << r.why;
  }
}

TEST(RotatePath, AnglesAreComparedExactly) {
  CIppImageRotate rotate;
  // 270 and 90.0000001 at the quarter turn's size: the general road, whose
  // turn about (0, 0) covers at most a sliver at the left.
  for (double angle : {270.0, 90.0000001, 450.0}) {
    Frame src = Frame::Random(8, 8, 1, 6), dst(8, 8, 1, kUntouched);
    ASSERT_TRUE(rotate.Mono8Rotate(8, 8, src.ptr(), 8, 8, dst.ptr(), 0, 0, angle, 0, false));
    size_t written = 0;
    for (uint8_t b : dst.data) written += b != kUntouched;
    EXPECT_LE(written, 8u) << angle;
  }
  // 0 always takes the general road: about (0, 0) with nearest samples it is
  // a copy into the larger frame, the rest untouched.
  Frame src = Frame::Random(5, 3, 1, 7), dst(6, 4, 1, kUntouched);
  ASSERT_TRUE(rotate.Mono8Rotate(5, 3, src.ptr(), 6, 4, dst.ptr(), 0, 0, 0.0, 0, false));
  for (uint32_t r = 0; r < 4; ++r)
    for (uint32_t c = 0; c < 6; ++c)
      EXPECT_EQ(*dst.At(r, c), r < 3 && c < 5 ? *src.At(r, c) : kUntouched) << r << "," << c;
}

// 180 about (1, 0): output (X, Y) from source (2 - X, -Y), so row 0's
// columns 0 to 2 hold source columns 2 to 0 and nothing else is written.
TEST(RotatePath, HalfTurnWithACentreTakesTheGeneralRoad) {
  CIppImageRotate rotate;
  Frame src = Frame::Random(6, 4, 3, 8), dst(6, 4, 3, kUntouched);
  ASSERT_TRUE(rotate.BGR8Rotate(6, 4, src.ptr(), 6, 4, dst.ptr(), 1, 0, 180.0, 0, false));
  Frame want(6, 4, 3, kUntouched);
  for (uint32_t x = 0; x < 3; ++x) geometrytest::CopyPixel(src, 0, 2 - x, want, 0, x);
  EXPECT_EQ(dst.data, want.data);
}

// Turning an odd square about its centre pixel by 90 on the general road
// gives the exact quarter turn, and the same for -90 and 180: the two roads
// turn the same way.
TEST(RotatePath, BothRoadsTurnTheSameWay) {
  CIppImageRotate rotate;
  for (double angle : {90.0, -90.0, 180.0}) {
    for (int interpolation : {0, 1, 2}) {
      Frame src = Frame::Random(9, 9, 2, 9), exact(12, 9, 2, kUntouched), general(9, 9, 2, kUntouched);
      const uint32_t dw = angle == 180.0 ? 9 : 12;
      ASSERT_TRUE(rotate.Mono16Rotate(9, 9, src.ptr(), dw, 9, exact.ptr(), 0, 0, 0, angle, 0, false));
      ASSERT_TRUE(rotate.Mono16Rotate(9, 9, src.ptr(), 9, 9, general.ptr(), 0, 4, 4, angle, interpolation, false));
      // -90 puts its pad at the left of the 12-pixel rows.
      const uint32_t pad = angle == -90.0 ? 3 : 0;
      for (uint32_t r = 0; r < 9; ++r)
        for (uint32_t c = 0; c < 9; ++c)
          ASSERT_EQ(std::memcmp(general.At(r, c), exact.data.data() + (size_t(r) * dw + c + pad) * 2, 2), 0)
              << angle << " interpolation " << interpolation << " at " << r << "," << c;
    }
  }
}

TEST(RotatePath, NullFramesAndEmptySizesAnswerFalseOnTheGeneralRoad) {
  CIppImageRotate rotate;
  Frame src = Frame::Random(4, 4, 4, 10), dst(4, 4, 4, kUntouched);
  EXPECT_FALSE(rotate.BGRx8Rotate(4, 4, nullptr, 4, 4, dst.ptr(), 2, 2, 30.0, 1, false));
  EXPECT_FALSE(rotate.BGRx8Rotate(4, 4, src.ptr(), 4, 4, nullptr, 0, 0, 90.0, 1, false));
  EXPECT_FALSE(rotate.BGRx8Rotate(0, 4, src.ptr(), 4, 4, dst.ptr(), 2, 2, 30.0, 1, false));
  EXPECT_FALSE(rotate.BGRx16Rotate(4, 4, src.ptr(), 0, 4, dst.ptr(), 0, 2, 2, 30.0, 1, false));
  EXPECT_EQ(dst.data, Frame(4, 4, 4, kUntouched).data);
}

}  // namespace
