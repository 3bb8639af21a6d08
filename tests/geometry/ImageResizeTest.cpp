// CIppImageResize's interpolated members: the mode table, the ROI tests, the
// supersampling fallback, the output pitch of the first form, the fourth
// sample of the BGRx forms, the 4:2:2 path and the planar form.
#include <kestrelink/CIppImageResize.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "support/ResizeReference.h"
#include "support/TestSupport.h"

namespace {

using Bytes = std::vector<uint8_t>;

// Rows of a mono8 frame w wide, as the reference wants them.
std::vector<double> Samples(const Bytes& b) { return std::vector<double>(b.begin(), b.end()); }

Bytes Rounded(const std::vector<double>& v) {
  Bytes out;
  for (double s : v) out.push_back(uint8_t(testsupport::RefSample(s, 255)));
  return out;
}

// The nearest-neighbour picture of a whole w x h mono8 frame at dw x dh.
Bytes Nearest(const Bytes& src, int w, int h, int dw, int dh) {
  return Rounded(testsupport::RefResize(Samples(src), w, h, 1, 0, 0, w, h, dw, dh, testsupport::kRefNearest));
}

TEST(ImageResize, ModeTableChoosesTheInterpolation) {
  CIppImageResize resize;
  Bytes src = testsupport::RandomBytes(16 * 12, 1);
  const Bytes nearest = Nearest(src, 16, 12, 10, 7);
  struct Row {
    int mode;
    testsupport::RefKind kind;
  };
  // Integer ratios keep the reference and the kernels on the same side of
  // every rounding, except where they differ by the kernels' last step.
  const Row rows[] = {{0, testsupport::kRefNearest}, {7, testsupport::kRefNearest}, {-1, testsupport::kRefNearest},
                      {1, testsupport::kRefLinear},  {2, testsupport::kRefCubic},   {3, testsupport::kRefLanczos},
                      {4, testsupport::kRefArea}};
  for (const Row& r : rows) {
    Bytes dst(10 * 7, 0);
    ASSERT_TRUE(resize.Mono8ippiResize(r.mode, 16, 12, src.data(), 10, 10, 7, dst.data())) << r.mode;
    const Bytes want = Rounded(testsupport::RefResize(Samples(src), 16, 12, 1, 0, 0, 16, 12, 10, 7, r.kind));
    for (size_t i = 0; i < want.size(); ++i) ASSERT_NEAR(dst[i], want[i], 1) << "mode " << r.mode << " at " << i;
    if (r.kind != testsupport::kRefNearest) {
      EXPECT_NE(dst, nearest) << "mode " << r.mode;
    }
  }
}

// Supersampling only reduces: one growing axis is enough for nearest
// neighbour; a factor of exactly 1.0 keeps it.
TEST(ImageResize, SupersamplingFallsBackWhenAnAxisGrows) {
  CIppImageResize resize;
  Bytes src = testsupport::RandomBytes(8 * 8, 2);
  Bytes wider(12 * 4), same(8 * 4);
  ASSERT_TRUE(resize.Mono8ippiResize(4, 8, 8, src.data(), 12, 12, 4, wider.data()));
  EXPECT_EQ(wider, Nearest(src, 8, 8, 12, 4));
  ASSERT_TRUE(resize.Mono8ippiResize(4, 8, 8, 0, 0, 8, 8, src.data(), 8, 4, same.data()));
  for (int y = 0; y < 4; ++y)
    for (int x = 0; x < 8; ++x)
      ASSERT_EQ(same[size_t(y) * 8 + x], (src[size_t(2 * y) * 8 + x] + src[size_t(2 * y + 1) * 8 + x] + 1) / 2);
}

// The second form's ROI tests, value by value, each against the source alone.
TEST(ImageResize, RoiTests) {
  CIppImageResize resize;
  Bytes src = testsupport::RandomBytes(10 * 6, 3);
  struct Row {
    const char* what;
    int x, y, w, h;
    bool ok;
  };
  const Row rows[] = {
      {"whole frame", 0, 0, 10, 6, true},
      {"zero width", 0, 0, 0, 6, false},
      {"zero height", 0, 0, 10, 0, false},
      {"width past the source", 0, 0, 11, 6, false},
      {"height past the source", 0, 0, 10, 7, false},
      {"x past the source", 11, 0, 2, 2, false},
      {"y past the source", 0, 7, 2, 2, false},
      {"negative x, taken unsigned", -1, 0, 2, 2, false},
      {"negative width, taken unsigned", 0, 0, -2, 2, false},
      {"x + width past the source: clipped", 8, 0, 10, 6, true},
      {"y + height past the source: clipped", 0, 5, 3, 6, true},
  };
  for (const Row& r : rows) {
    Bytes dst(5 * 3, 0xAB);
    EXPECT_EQ(resize.Mono8ippiResize(1, 10, 6, r.x, r.y, r.w, r.h, src.data(), 5, 3, dst.data()), r.ok) << r.what;
    if (!r.ok) {
      EXPECT_EQ(dst, Bytes(5 * 3, 0xAB)) << r.what << ": dst untouched";
    }
  }
  // x equal to the width passes the test; the kernel then finds no pixel of
  // the ROI inside the source and the call fails with dst untouched.
  Bytes dst(4, 0xAB);
  EXPECT_FALSE(resize.Mono8ippiResize(1, 10, 6, 10, 0, 2, 2, src.data(), 2, 2, dst.data()));
  EXPECT_EQ(dst, Bytes(4, 0xAB));
}

// The ROI's origin maps onto the output's origin and fills the output.
TEST(ImageResize, RoiFillsTheWholeOutput) {
  CIppImageResize resize;
  std::vector<uint16_t> src(12 * 9);
  for (size_t i = 0; i < src.size(); ++i) src[i] = uint16_t(1000 * i + 7);
  std::vector<uint16_t> dst(8 * 6);
  ASSERT_TRUE(resize.Mono16ippiResize(0, 12, 9, 3, 2, 4, 3, src.data(), 8, 6, dst.data()));
  for (int y = 0; y < 6; ++y)
    for (int x = 0; x < 8; ++x) ASSERT_EQ(dst[size_t(y) * 8 + x], src[size_t(2 + y / 2) * 12 + 3 + x / 2]);
}

// The first form writes rows dstPitchPixels apart and nothing between them.
TEST(ImageResize, FirstFormWritesIntoAWiderImage) {
  CIppImageResize resize;
  Bytes src = testsupport::RandomBytes(6 * 4 * 3, 4);
  Bytes wide(size_t(14) * 8 * 3, 0xCD);
  ASSERT_TRUE(resize.BGR24ippiResize(0, 6, 4, src.data(), 14, 12, 8, wide.data()));
  for (int y = 0; y < 8; ++y)
    for (int x = 0; x < 14; ++x)
      for (int c = 0; c < 3; ++c) {
        const uint8_t got = wide[(size_t(y) * 14 + x) * 3 + c];
        if (x < 12) {
          ASSERT_EQ(got, src[(size_t(y / 2) * 6 + x / 2) * 3 + c]);
        } else {
          ASSERT_EQ(got, 0xCD) << "pad column " << x << " of row " << y;
        }
      }
}

// BGRx forms leave the fourth sample of every output pixel as it was.
TEST(ImageResize, FourthSampleOfBgrxIsNotWritten) {
  CIppImageResize resize;
  Bytes src = testsupport::RandomBytes(9 * 7 * 8, 5);
  for (int mode = 0; mode <= 4; ++mode) {
    Bytes dst8(5 * 4 * 4, 0x77);
    ASSERT_TRUE(resize.BGRx32ippiResize(mode, 9, 7, src.data(), 5, 5, 4, dst8.data()));
    Bytes dst8roi(5 * 4 * 4, 0x77);
    ASSERT_TRUE(resize.BGRx32ippiResize(mode, 9, 7, 1, 1, 8, 6, src.data(), 5, 4, dst8roi.data()));
    std::vector<uint16_t> dst16(13 * 11 * 4, 0x7777);
    ASSERT_TRUE(resize.BGRx64ippiResize(mode, 9, 7, 0, 0, 9, 7, src.data(), 13, 11, dst16.data()));
    for (size_t i = 3; i < dst8.size(); i += 4) ASSERT_EQ(dst8[i], 0x77) << "mode " << mode;
    for (size_t i = 3; i < dst8roi.size(); i += 4) ASSERT_EQ(dst8roi[i], 0x77) << "mode " << mode;
    for (size_t i = 3; i < dst16.size(); i += 4) ASSERT_EQ(dst16[i], 0x7777) << "mode " << mode;
  }
}

// Three planes through the planar form give three mono8 resizes.
TEST(ImageResize, PlanarFormIsThreeMonoResizes) {
  CIppImageResize resize;
  Bytes p[3] = {testsupport::RandomBytes(14 * 10, 6), testsupport::RandomBytes(14 * 10, 7),
                testsupport::RandomBytes(14 * 10, 8)};
  for (int mode = 0; mode <= 4; ++mode) {
    Bytes out[3] = {Bytes(9 * 5), Bytes(9 * 5), Bytes(9 * 5)};
    ASSERT_TRUE(resize.BGR24PlannerippiResize(mode, 14, 10, 2, 1, 11, 8, p[0].data(), p[1].data(), p[2].data(), 9, 5,
                                              out[0].data(), out[1].data(), out[2].data()));
    for (int i = 0; i < 3; ++i) {
      Bytes one(9 * 5);
      ASSERT_TRUE(resize.Mono8ippiResize(mode, 14, 10, 2, 1, 11, 8, p[i].data(), 9, 5, one.data()));
      EXPECT_EQ(out[i], one) << "mode " << mode << " plane " << i;
    }
    EXPECT_FALSE(resize.BGR48PlannerippiResize(mode, 14, 10, 0, 0, 0, 8, p[0].data(), p[1].data(), p[2].data(), 9,
                                               5, out[0].data(), out[1].data(), out[2].data()));
  }
}

// The 4:2:2 path has no supersampling fallback: mode 4 enlarging averages
// the areas a pixel covers where nearest neighbour would pick one.
TEST(ImageResize, YUV422KeepsSupersamplingWhenGrowing) {
  CIppImageResize resize;
  // Two pixels of luma 0 and 90 in one pair, on two rows.
  Bytes src = {0, 128, 90, 128, 0, 128, 90, 128};
  Bytes area(3 * 2 * 2), nearest(3 * 2 * 2);
  ASSERT_TRUE(resize.YUV422ippiResize(4, 2, 2, 0, 0, 2, 2, src.data(), 3, 2, area.data()));
  ASSERT_TRUE(resize.YUV422ippiResize(0, 2, 2, 0, 0, 2, 2, src.data(), 3, 2, nearest.data()));
  // The middle output pixel covers source x 2/3 .. 4/3: half from each pixel.
  EXPECT_EQ(area[2], 45);
  EXPECT_NE(nearest[2], 45);
  Bytes out(8, 0);
  EXPECT_FALSE(resize.YUV422ippiResize(1, 2, 2, 0, 0, 0, 2, src.data(), 2, 2, out.data())) << "the ROI tests hold";
  EXPECT_FALSE(resize.YUV422ippiResize(1, 2, 2, 0, 0, 2, 2, src.data(), 1, 2, out.data())) << "widths below 2";
}

TEST(ImageResize, NullImagesAndEmptyOutputsAnswerFalse) {
  CIppImageResize resize;
  Bytes src(16, 1), dst(16, 2);
  EXPECT_FALSE(resize.Mono8ippiResize(1, 4, 4, nullptr, 4, 4, 4, dst.data()));
  EXPECT_FALSE(resize.Mono8ippiResize(1, 4, 4, src.data(), 4, 4, 4, nullptr));
  EXPECT_FALSE(resize.Mono8ippiResize(1, 4, 4, src.data(), 4, 0, 4, dst.data()));
  EXPECT_FALSE(resize.Mono8ippiResize(1, 4, 4, src.data(), 4, 4, 0, dst.data()));
  EXPECT_FALSE(resize.Mono8ippiResize(1, 0, 4, src.data(), 4, 4, 4, dst.data()));
  EXPECT_FALSE(resize.BGR24PlannerippiResize(1, 4, 4, 0, 0, 4, 4, src.data(), nullptr, src.data(), 4, 4, dst.data(),
                                             dst.data(), dst.data()));
  EXPECT_EQ(dst, Bytes(16, 2));
}

}  // namespace
