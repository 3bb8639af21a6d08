// CIppMotionDetector's members and the differences between their 8- and
// 16-bit forms, each against values worked out from the stated rule.
#include <gtest/gtest.h>
#include <kestrelink/CIppMotionDetector.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "support/AnalysisReference.h"
#include "support/TestSupport.h"

namespace {

int Weight(int v, double w) { return int(v * w + 0.5); }

std::vector<uint16_t> Words(size_t n, uint32_t limit, uint32_t seed) {
  const auto raw = testsupport::RandomWords(n, limit, seed);
  std::vector<uint16_t> out(n);
  for (size_t i = 0; i < n; ++i) out[i] = testsupport::Word(raw, i);
  return out;
}

TEST(MotionDetectorGrey, TablesWeighBlueAsGreen) {
  CIppMotionDetector motion;
  // Pixels in memory order s0 s1 s2 (blue, green, red).
  const struct {
    int s0, s1, s2, grey;
  } pixels[] = {
      {0, 255, 0, 29},   // pure green takes the 0.114 weight
      {255, 0, 0, 150},  // pure blue takes the 0.587 weight
      {0, 0, 255, 76},   // red keeps 0.299
      {255, 255, 255, 255}, {10, 20, 30, Weight(30, 0.299) + Weight(20, 0.114) + Weight(10, 0.587)},
  };
  for (const auto& p : pixels) {
    uint8_t bgr[3] = {uint8_t(p.s0), uint8_t(p.s1), uint8_t(p.s2)}, bgrx[4] = {bgr[0], bgr[1], bgr[2], 99};
    uint8_t g = 0, gx = 0;
    ASSERT_TRUE(motion.BGR8GrayConvert(1, 1, bgr, &g));
    ASSERT_TRUE(motion.BGRx8GrayConvert(1, 1, bgrx, &gx));
    EXPECT_EQ(g, p.grey) << p.s0 << " " << p.s1 << " " << p.s2;
    EXPECT_EQ(gx, p.grey);
  }
  // 16-bit: the same tables over the whole range, the sum clamped to 255.
  const struct {
    int s0, s1, s2, grey;
  } deep[] = {{65535, 65535, 65535, 255}, {0, 100, 0, Weight(100, 0.114)}, {1000, 0, 0, 255}, {0, 0, 3, 1}};
  for (const auto& p : deep) {
    uint16_t bgr[3] = {uint16_t(p.s0), uint16_t(p.s1), uint16_t(p.s2)};
    uint16_t bgrx[8] = {7, 7, 7, 7, bgr[0], bgr[1], bgr[2], 7};
    uint16_t g = 0, gx[2] = {};
    ASSERT_TRUE(motion.BGR16GrayConvert(1, 1, bgr, &g));
    ASSERT_TRUE(motion.BGRx16GrayConvert(2, 1, bgrx, gx));
    EXPECT_EQ(g, p.grey) << p.s0 << " " << p.s1 << " " << p.s2;
    EXPECT_EQ(gx[1], p.grey);
  }
}

TEST(MotionDetectorGrey, RgbFormsUseTheWeightedSumOverTheWholeFrame) {
  CIppMotionDetector motion;
  const unsigned w = 37, h = 3;
  const auto rgb = testsupport::RandomBytes(3 * w * h, 5);
  const auto rgb16 = Words(3 * w * h, 65536, 6);
  std::vector<uint8_t> g(w * h);
  std::vector<uint16_t> g16(w * h);
  ASSERT_TRUE(motion.RGB8GrayConvert(w, h, const_cast<uint8_t*>(rgb.data()), g.data()));
  ASSERT_TRUE(motion.RGB16GrayConvert(w, h, const_cast<uint16_t*>(rgb16.data()), g16.data()));
  for (size_t i = 0; i < w * h; ++i) {
    EXPECT_EQ(g[i], (4899 * rgb[3 * i] + 9617 * rgb[3 * i + 1] + 1868 * rgb[3 * i + 2] + 8192) >> 14);
    EXPECT_EQ(g16[i], (4899u * rgb16[3 * i] + 9617u * rgb16[3 * i + 1] + 1868u * rgb16[3 * i + 2] + 8192u) >> 14);
  }
}

TEST(MotionDetectorCount, ShortFormsDifferByWidth) {
  CIppMotionDetector motion;
  // A 6 x 3 frame; the rectangle is x 1, y 0, w 4, h 3.
  const uint8_t img8[18] = {0, 50, 0,  0,  0,  0,  //
                            0, 10, 50, 50, 50, 0, 0, 200, 40, 41, 9, 0};
  const uint16_t img16[18] = {0, 50, 0,  0,  0,  0,  //
                              0, 10, 50, 50, 50, 0, 0, 40, 1, 2, 3, 0};
  const struct {
    int low, high, count8, count16;
  } cases[] = {
      // 8-bit: every pixel, both bounds inclusive. 16-bit: only the first
      // pixel of each row (50, 10, 40), exclusive bounds, w for a hit.
      {10, 50, 7, 4},  // 16-bit: 50 and 10 sit on the bounds, 40 inside
      {9, 51, 8, 12},
      {266, 306, 7, 0},  // 8-bit bounds cut to 8 bits: 10 .. 50
      {0, 255, 12, 12},
  };
  for (const auto& c : cases) {
    int n8 = -1, n16 = -1;
    ASSERT_TRUE(motion.Count8bitGrayPixels(6, 3, const_cast<uint8_t*>(img8), c.low, c.high, 1, 0, 4, 3, n8));
    ASSERT_TRUE(motion.Count16bitGrayPixels(6, 3, const_cast<uint16_t*>(img16), c.low, c.high, 1, 0, 4, 3, n16));
    EXPECT_EQ(n8, c.count8) << c.low << ".." << c.high;
    EXPECT_EQ(n16, c.count16) << c.low << ".." << c.high;
  }
}

TEST(MotionDetectorCount, SecondFormsCountInclusiveAndAverageNonzero) {
  CIppMotionDetector motion;
  const uint8_t zeros[12] = {};
  int count = -1;
  double mean = -1;
  ASSERT_TRUE(motion.Count8bitGrayPixels(4, 3, const_cast<uint8_t*>(zeros), 1, 255, 0, 0, 4, 3, count, mean));
  EXPECT_EQ(count, 0);
  EXPECT_EQ(mean, 0.0);
  const uint16_t img[8] = {0, 5, 300, 0, 7, 1000, 0, 9};
  ASSERT_TRUE(motion.Count16bitGrayPixels(4, 2, const_cast<uint16_t*>(img), 5, 300, 1, 0, 3, 2, count, mean));
  EXPECT_EQ(count, 3);  // 5, 300, 9 of 5, 300, 0, 1000, 0, 9
  EXPECT_DOUBLE_EQ(mean, (5 + 300 + 1000 + 9) / 4.0);
}

TEST(MotionDetectorMean, MeanOfTheRectangle) {
  CIppMotionDetector motion;
  const uint8_t img[6] = {1, 2, 3, 4, 5, 6};
  const uint16_t img16[6] = {1000, 2000, 3000, 4000, 5000, 6001};
  double m = 0, m16 = 0;
  ASSERT_TRUE(motion.Mean8bitGrayPixels(3, 2, const_cast<uint8_t*>(img), 1, 0, 2, 2, m));
  ASSERT_TRUE(motion.Mean16bitGrayPixels(3, 2, const_cast<uint16_t*>(img16), 1, 0, 2, 2, m16));
  EXPECT_DOUBLE_EQ(m, (2 + 3 + 5 + 6) / 4.0);
  EXPECT_DOUBLE_EQ(m16, (2000 + 3000 + 5000 + 6001) / 4.0);
}

TEST(MotionDetectorMoveToward, StepsBeyondBAndWraps) {
  CIppMotionDetector motion;
  const struct {
    int a, b, step, before, after8;
  } cases[] = {
      {0, 250, 10, 1, 4},                             // 260 wraps
      {100, 103, 10, 1, 106},                         // the difference is below the step
      {250, 0, 10, 1, 246},                           // 0 - 10 wraps
      {60, 50, 4, 1, 46},     {77, 77, 9, 123, 123},  // equal: dst keeps its value
  };
  for (const auto& c : cases) {
    uint8_t a = uint8_t(c.a), b = uint8_t(c.b), d = uint8_t(c.before);
    ASSERT_TRUE(motion.MoveToward8bitGrayPixels(1, 1, &a, &b, &d, c.step));
    EXPECT_EQ(d, c.after8) << c.a << " -> " << c.b;
  }
  uint16_t a16[2] = {0, 9}, b16[2] = {65530, 9}, d16[2] = {1, 4321};
  ASSERT_TRUE(motion.MoveToward16bitGrayPixels(2, 1, a16, b16, d16, 10));
  EXPECT_EQ(d16[0], 4);  // 65540 wraps in 16 bits
  EXPECT_EQ(d16[1], 4321);
}

TEST(MotionDetectorThreshold, FullScaleByForm) {
  CIppMotionDetector motion;
  uint8_t src[6] = {0, 99, 100, 101, 255, 7}, dst[6] = {1, 1, 1, 1, 1, 1};
  ASSERT_TRUE(motion.Threshold8bitGrayPixels(3, 2, src, dst, 100, 1, 0, 2, 2));
  EXPECT_EQ(std::vector<int>(dst, dst + 6), (std::vector<int>{1, 0, 255, 1, 255, 0}));
  uint16_t s16[3] = {4000, 4096, 65535}, d16[3] = {};
  ASSERT_TRUE(motion.Threshold16bitGrayPixels(3, 1, 12, s16, d16, 4096, 0, 0, 3, 1));
  EXPECT_EQ(std::vector<int>(d16, d16 + 3), (std::vector<int>{0, 4095, 4095}));
}

// The morphology members act on the rectangle their start pixel and step
// give; the same primitive on that rectangle, by the plain reference, must
// give the same frame.
TEST(MotionDetectorMorphology, StartPixelsAndStepsByForm) {
  CIppMotionDetector motion;
  const unsigned W = 12, H = 8;
  const int x = 2, y = 1, w = 5, h = 4;
  const auto img = testsupport::RandomBytes(W * H, 51);
  auto d8 = img, e8 = img;
  ASSERT_TRUE(motion.Dilate8bitGrayPixels(W, H, d8.data(), x, y, w, h));
  EXPECT_EQ(d8, testsupport::Extreme3x3(img, y * W + x, W, w, h, true));
  ASSERT_TRUE(motion.Erode8bitGrayPixels(W, H, e8.data(), x, y, w, h));
  EXPECT_EQ(e8, testsupport::Extreme3x3(img, (y + 1) * W + x, W, w, h, false));  // one row down

  // 16-bit dilate: the 8-bit dilation on the frame's bytes, rows W bytes apart.
  const auto bytes16 = testsupport::RandomBytes(2 * W * H, 52);
  std::vector<uint16_t> d16(W * H);
  std::memcpy(d16.data(), bytes16.data(), bytes16.size());
  ASSERT_TRUE(motion.Dilate16bitGrayPixels(W, H, d16.data(), x, y, w, h));
  const auto wantBytes = testsupport::Extreme3x3(bytes16, y * W + x, W, w, h, true);
  EXPECT_EQ(0, std::memcmp(d16.data(), wantBytes.data(), wantBytes.size()));

  // 16-bit erode: one row down and one pixel right.
  const auto img16 = Words(W * H, 65536, 53);
  auto e16 = img16;
  ASSERT_TRUE(motion.Erode16bitGrayPixels(W, H, e16.data(), x, y, w, h));
  EXPECT_EQ(e16, testsupport::Extreme3x3(img16, (y + 1) * W + x + 1, W, w, h, false));

  // Opening: erode, then dilate with the same arguments.
  auto o8 = img;
  ASSERT_TRUE(motion.Openning8bitGrayPixels(W, H, o8.data(), x, y, w, h));
  EXPECT_EQ(o8, testsupport::Extreme3x3(testsupport::Extreme3x3(img, (y + 1) * W + x, W, w, h, false), y * W + x, W, w,
                                        h, true));
}

TEST(MotionDetectorSobel, EightBitMagnitudesAtTheRectangle) {
  CIppMotionDetector motion;
  const unsigned W = 40, H = 70;  // more rows than one strip
  const int x = 3, y = 2, w = 33, h = 65;
  auto src = testsupport::RandomBytes(W * H, 61);
  for (size_t i = 0; i < src.size(); i += 3) src[i] = 255;  // strong edges, so sums saturate
  std::vector<uint8_t> rect(size_t(w) * h);
  for (int r = 0; r < h; ++r) std::memcpy(&rect[size_t(r) * w], &src[(y + r) * W + x], size_t(w));
  for (int team : {1, 2, 3})
    for (bool three : {true, false})
      for (int direction : {0, 1, 2}) {
        testsupport::ScopedTeam scopedTeam(team);  // bands of rows must not change the result
        SCOPED_TRACE(::testing::Message() << (three ? "3x3" : "5x5") << " direction " << direction << " team " << team);
        std::vector<uint8_t> dst(W * H, 0x11);
        ASSERT_TRUE(motion.Sobel8bitGrayPixels(W, H, src.data(), dst.data(), x, y, w, h, three, direction));
        const auto vert = testsupport::SobelReference(rect, w, h, true, !three, true, 0);
        const auto horiz = testsupport::SobelReference(rect, w, h, false, !three, true, 0);
        for (unsigned r = 0; r < H; ++r)
          for (unsigned c = 0; c < W; ++c) {
            const bool inside = int(r) >= y && int(r) < y + h && int(c) >= x && int(c) < x + w;
            int want = 0x11;
            if (inside) {
              const size_t i = size_t(int(r) - y) * w + size_t(int(c) - x);
              const int v = std::min(std::abs(vert[i]), 32767), hz = std::min(std::abs(horiz[i]), 32767);
              want = std::min(direction == 0 ? v : direction == 1 ? hz : std::min(v + hz, 32767), 255);
            }
            ASSERT_EQ(dst[r * W + c], want) << c << "," << r;
          }
      }
  std::vector<uint8_t> dst(W * H, 0x11);
  EXPECT_FALSE(motion.Sobel8bitGrayPixels(W, H, src.data(), dst.data(), x, y, w, h, true, 3));
  EXPECT_FALSE(motion.Sobel8bitGrayPixels(W, H, src.data(), dst.data(), x, y, w, h, true, -1));
}

// The 16-bit form: dst zeroed whole; samples narrowed as signed values
// (32768 and up give 0); a border of value 1; the magnitude taken over rows
// W bytes apart, so only some samples of the rectangle lose their sign.
TEST(MotionDetectorSobel, SixteenBitOrderOfWork) {
  CIppMotionDetector motion;
  const unsigned W = 10, H = 6;
  const int x = 1, y = 1, w = 6, h = 4;
  const uint16_t samples[] = {0, 40000, 300, 17, 255, 90, 65535, 2, 128, 256};
  std::vector<uint16_t> src(W * H);
  for (size_t i = 0; i < src.size(); ++i) src[i] = samples[(i * 7) % 10];
  std::vector<uint8_t> narrowed(size_t(w) * h);
  for (int r = 0; r < h; ++r)
    for (int c = 0; c < w; ++c) {
      const int v = int16_t(src[(y + r) * W + x + c]);
      narrowed[size_t(r) * w + c] = uint8_t(std::clamp(v, 0, 255));
    }
  for (int direction : {0, 1, 2, 5}) {
    SCOPED_TRACE(direction);
    std::vector<int16_t> dst(W * H, 0x4444);
    ASSERT_TRUE(motion.Sobel16bitGrayPixels(W, H, src.data(), dst.data(), x, y, w, h, true, direction));
    std::vector<int16_t> want(W * H, 0);
    if (direction <= 2) {
      const auto first = testsupport::SobelReference(narrowed, w, h, direction != 1, false, false, 1);
      for (int r = 0; r < h; ++r)
        for (int c = 0; c < w; ++c) want[(y + r) * W + x + c] = int16_t(first[size_t(r) * w + c]);
      // |v| over the rectangle's rows taken W bytes (W / 2 samples) apart.
      for (int r = 0; r < h; ++r)
        for (int c = 0; c < w; ++c) {
          int16_t& s = want[(y * W + x) + size_t(r) * (W / 2) + c];
          s = int16_t(std::min(std::abs(int(s)), 32767));
        }
      if (direction == 2) {
        const auto second = testsupport::SobelReference(narrowed, w, h, false, false, false, 1);
        for (int r = 0; r < h; ++r)
          for (int c = 0; c < w; ++c) {
            int16_t& s = want[(y + r) * W + x + c];
            s = int16_t(std::clamp(s + std::abs(second[size_t(r) * w + c]), -32768, 32767));
          }
      }
    }
    EXPECT_EQ(dst, want);
  }
}

TEST(MotionDetectorAbsDiff, OnTheRectangleOnly) {
  CIppMotionDetector motion;
  uint8_t a[6] = {10, 20, 30, 40, 50, 60}, b[6] = {15, 10, 30, 0, 255, 1}, d[6] = {7, 7, 7, 7, 7, 7};
  ASSERT_TRUE(motion.AbsDiff8bitGrayPixels(3, 2, a, b, d, 1, 0, 2, 2));
  EXPECT_EQ(std::vector<int>(d, d + 6), (std::vector<int>{7, 10, 0, 7, 205, 59}));
  uint16_t a16[2] = {0, 65535}, b16[2] = {65535, 1000}, d16[2] = {};
  ASSERT_TRUE(motion.AbsDiff16bitGrayPixels(2, 1, a16, b16, d16, 0, 0, 2, 1));
  EXPECT_EQ(d16[0], 65535);
  EXPECT_EQ(d16[1], 64535);
}

TEST(MotionDetectorReplace, ColoursByLayoutAndOneGrey) {
  CIppMotionDetector motion;
  const uint8_t mask[2] = {0, 1};
  uint8_t bgr[6] = {}, rgb[6] = {}, bgrx[8] = {0, 0, 0, 9, 0, 0, 0, 9}, grey[2] = {5, 5};
  ASSERT_TRUE(motion.Replace8bitBGRPixels(2, 1, bgr, const_cast<uint8_t*>(mask), 0, 0, 2, 1, 10, 20, 30));
  ASSERT_TRUE(motion.Replace8bitRGBPixels(2, 1, rgb, const_cast<uint8_t*>(mask), 0, 0, 2, 1, 10, 20, 30));
  ASSERT_TRUE(motion.Replace8bitBGRxPixels(2, 1, bgrx, const_cast<uint8_t*>(mask), 0, 0, 2, 1, 10, 20, 30));
  ASSERT_TRUE(motion.Replace8bitGrayPixels(2, 1, grey, const_cast<uint8_t*>(mask), 0, 0, 2, 1, 10, 20, 30));
  EXPECT_EQ(std::vector<int>(bgr, bgr + 6), (std::vector<int>{0, 0, 0, 30, 20, 10}));
  EXPECT_EQ(std::vector<int>(rgb, rgb + 6), (std::vector<int>{0, 0, 0, 10, 20, 30}));
  EXPECT_EQ(std::vector<int>(bgrx, bgrx + 8), (std::vector<int>{0, 0, 0, 9, 30, 20, 10, 9}));
  EXPECT_EQ(grey[0], 5);
  EXPECT_EQ(grey[1], int(30 * 0.587 + 10 * 0.299 + 20 * 0.114));  // 22
  const uint16_t mask16[1] = {3};
  uint16_t g16[1] = {0}, bgr16[3] = {};
  ASSERT_TRUE(
      motion.Replace16bitGrayPixels(1, 1, 10, g16, const_cast<uint16_t*>(mask16), 0, 0, 1, 1, 4000, 4000, 4000));
  EXPECT_EQ(g16[0], 1023);  // clamped to the depth
  ASSERT_TRUE(motion.Replace16bitBGRPixels(1, 1, 10, bgr16, const_cast<uint16_t*>(mask16), 0, 0, 1, 1, 1, 2, 3000));
  EXPECT_EQ(std::vector<int>(bgr16, bgr16 + 3), (std::vector<int>{3000, 2, 1}));
}

// The corrected convolution, worked by hand from its rule on a 3 x 3
// rectangle: taps count where they fall in the rectangle, the row walk
// stops at the first row outside (so the top row has none), and every tap
// reads rectangle column kc - 1 whatever the output column.
TEST(MotionDetectorConvolution, ReadsTheRectanglesLeftColumns) {
  CIppMotionDetector motion;
  // 5 x 5 frame, rectangle at (1, 1), 3 x 3. Column 0 of the frame is the
  // rectangle's column -1.
  const uint8_t src[25] = {0,  0,  0,  0, 0,  //
                           50, 10, 20, 0, 0,  //
                           60, 30, 90, 0, 0,  //
                           70, 40, 80, 0, 0,  //
                           0,  0,  0,  0, 0};
  uint8_t dst[25];
  std::memset(dst, 0xEE, sizeof dst);
  ASSERT_TRUE(motion.Convolute8bitGrayPixels(5, 5, const_cast<uint8_t*>(src), dst, 1, 1, 3, 3, 0));
  // Laplacian 0 -1 0 / -1 4 -1 / 0 -1 0. Rectangle row r reads rows r-1..r+1
  // of the rectangle, columns -1, 0, 1 (frame columns 0, 1, 2).
  // Row 0: the first kernel row is above the rectangle, the walk stops: 0.
  // Row 1, column 0: taps in columns 0, 1 only (kc 1, 2): weights -1 (r0)
  //   4 -1 (r1) -1 (r2) = 1; sum = -10 + 4*30 - 90 - 40 = -20 -> -20 / 1 -> 0.
  // Row 1, column 1: all taps: weights 0, sum = -10 - 60 + 120 - 90 - 40 = -80 -> 0.
  // Row 1, column 2: taps in columns kc 0, 1: weights -1 + -1 + 4 + -1 = 1;
  //   sum = -10 - 60 + 120 - 40 = 10 -> 10.
  // Row 2, column 0: rows r1, r2 only (r3 is outside: the walk stops),
  //   columns kc 1, 2: weights -1 + 4 - 1 = 2; sum = -30 + 160 - 80 = 50 -> 25.
  // Row 2, column 1: weights -1 - 1 + 4 - 1 = 1; sum = -30 - 70 + 160 - 80 = -20 -> 0.
  // Row 2, column 2: kc 0, 1: weights -1 - 1 + 4 = 2; sum = -30 - 70 + 160 = 60 -> 30.
  const uint8_t want[25] = {0xEE, 0xEE, 0xEE, 0xEE, 0xEE,  //
                            0xEE, 0,    0,    0,    0xEE,  //
                            0xEE, 0,    0,    10,   0xEE,  //
                            0xEE, 25,   0,    30,   0xEE,  //
                            0xEE, 0xEE, 0xEE, 0xEE, 0xEE};
  EXPECT_EQ(0, std::memcmp(dst, want, sizeof want));
  uint16_t src16[25], dst16[25] = {};
  for (int i = 0; i < 25; ++i) src16[i] = uint16_t(src[i] * 100);
  ASSERT_TRUE(motion.Convolute16bitGrayPixels(5, 5, 12, src16, dst16, 1, 1, 3, 3, 0));
  EXPECT_EQ(dst16[2 * 5 + 3], 1000);
  EXPECT_EQ(dst16[3 * 5 + 1], 2500);
  EXPECT_EQ(dst16[3 * 5 + 3], 3000);
}

TEST(MotionDetectorCopy, EachCopyOwnsItsTables) {
  auto original = std::make_unique<CIppMotionDetector>();
  CIppMotionDetector copy(*original);
  CIppMotionDetector assigned;
  assigned = *original;
  original.reset();  // the copies' tables must outlive the original
  const uint8_t px[3] = {255, 0, 0};
  uint8_t g1 = 0, g2 = 0;
  ASSERT_TRUE(copy.BGR8GrayConvert(1, 1, const_cast<uint8_t*>(px), &g1));
  ASSERT_TRUE(assigned.BGR8GrayConvert(1, 1, const_cast<uint8_t*>(px), &g2));
  EXPECT_EQ(g1, 150);
  EXPECT_EQ(g2, 150);
}

// Rectangles that reach past the frame are cut to the rows that fit;
// nothing outside the caller's frames is touched (the sanitizer build
// watches), and a rectangle that starts before the frame or a null frame
// answers false.
TEST(MotionDetectorBounds, RectanglesStayInsideTheFrame) {
  CIppMotionDetector motion;
  const unsigned W = 16, H = 6;
  auto img = testsupport::RandomBytes(W * H, 71);
  std::vector<uint16_t> img16(W * H, 500);
  std::vector<uint8_t> dst(W * H);
  EXPECT_TRUE(motion.Erode8bitGrayPixels(W, H, img.data(), 0, 0, W, H));  // rows 1 .. H - 1
  EXPECT_TRUE(motion.Erode16bitGrayPixels(W, H, img16.data(), 0, 0, W, H));
  EXPECT_TRUE(motion.Openning8bitGrayPixels(W, H, img.data(), 0, 0, W, H));
  EXPECT_TRUE(motion.Sobel8bitGrayPixels(W, H, img.data(), dst.data(), 4, 4, W, H, false, 2));
  int count = 0;
  double mean = 0;
  EXPECT_TRUE(motion.Count8bitGrayPixels(W, H, img.data(), 0, 255, 0, 5, W, 9, count));
  EXPECT_EQ(count, int(W));
  EXPECT_FALSE(motion.Count8bitGrayPixels(W, H, img.data(), 0, 255, -1, 0, 4, 4, count, mean));
  EXPECT_FALSE(motion.Dilate8bitGrayPixels(W, H, nullptr, 0, 0, 4, 4));
  EXPECT_FALSE(motion.Mean8bitGrayPixels(W, H, img.data(), 0, -2, 4, 4, mean));
  EXPECT_FALSE(motion.Sobel16bitGrayPixels(W, H, img16.data(), nullptr, 0, 0, 4, 4, true, 0));
}

}  // namespace
