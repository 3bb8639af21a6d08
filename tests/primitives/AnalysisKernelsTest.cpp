// The analysis kernels against plain references from their definitions, on
// regions with padded rows (a pad that must stay untouched), at every
// variant this machine runs.
#include <gtest/gtest.h>

#include <cstring>

#include "primitives/AnalysisPrimitives.h"
#include "support/AnalysisReference.h"
#include "support/TestSupport.h"

namespace {

const IppiSize kSizes[] = {{1, 1}, {1, 7}, {9, 1}, {2, 2}, {5, 3}, {67, 13}};

TEST(AnalysisKernels, GreyIsTheFourteenBitWeightedSum) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    for (IppiSize s : kSizes) {
      const int step = 3 * s.width + 5, outStep = s.width + 3;
      const auto rgb = testsupport::RandomBytes(size_t(step) * s.height, 11);
      const auto rgb16 = testsupport::RandomWords(size_t(step) * s.height, 65536, 12);
      std::vector<uint8_t> grey(size_t(outStep) * s.height, 0xEE);
      std::vector<uint16_t> grey16(size_t(outStep) * s.height, 0xEEEE);
      ASSERT_EQ(ippiRGBToGray_8u_C3C1R(rgb.data(), step, grey.data(), outStep, s), ippStsNoErr);
      ASSERT_EQ(ippiRGBToGray_16u_C3C1R(reinterpret_cast<const Ipp16u*>(rgb16.data()), 2 * step, grey16.data(),
                                        2 * outStep, s),
                ippStsNoErr);
      for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < outStep; ++x) {
          const size_t p = size_t(y) * step + 3 * size_t(x), o = size_t(y) * outStep + size_t(x);
          if (x >= s.width) {
            EXPECT_EQ(grey[o], 0xEE);
            continue;
          }
          const unsigned want = (4899 * rgb[p] + 9617 * rgb[p + 1] + 1868 * rgb[p + 2] + 8192) >> 14;
          const unsigned want16 = (4899u * testsupport::Word(rgb16, p) + 9617u * testsupport::Word(rgb16, p + 1) +
                                   1868u * testsupport::Word(rgb16, p + 2) + 8192u) >>
                                  14;
          ASSERT_EQ(grey[o], want) << x << "," << y;
          ASSERT_EQ(grey16[o], want16) << x << "," << y;
        }
    }
  }
}

TEST(AnalysisKernels, CountAndMeanOfARegion) {
  const IppiSize s = {70, 9};
  const int step = 75;
  const auto img = testsupport::RandomBytes(size_t(step) * s.height, 21);
  const auto img16 = testsupport::RandomWords(size_t(step) * s.height, 65536, 22);
  const struct { int lo, hi; } bounds[] = {{0, 255}, {40, 200}, {77, 77}, {200, 40}, {255, 255}};
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    for (auto b : bounds) {
      int want = 0, got = -1;
      for (int y = 0; y < s.height; ++y)
        for (int x = 0; x < s.width; ++x)
          want += img[size_t(y) * step + x] >= b.lo && img[size_t(y) * step + x] <= b.hi;
      ASSERT_EQ(ippiCountInRange_8u_C1R(img.data(), step, s, &got, Ipp8u(b.lo), Ipp8u(b.hi)), ippStsNoErr);
      EXPECT_EQ(got, want) << b.lo << ".." << b.hi;
    }
    uint64_t sum = 0, sum16 = 0;
    for (int y = 0; y < s.height; ++y)
      for (int x = 0; x < s.width; ++x)
        sum += img[size_t(y) * step + x], sum16 += testsupport::Word(img16, size_t(y) * step + x);
    double mean = -1, mean16 = -1;
    ASSERT_EQ(ippiMean_8u_C1R(img.data(), step, s, &mean), ippStsNoErr);
    ASSERT_EQ(ippiMean_16u_C1R(reinterpret_cast<const Ipp16u*>(img16.data()), 2 * step, s, &mean16), ippStsNoErr);
    EXPECT_DOUBLE_EQ(mean, double(sum) / (s.width * s.height));
    EXPECT_DOUBLE_EQ(mean16, double(sum16) / (s.width * s.height));
  }
}

TEST(AnalysisKernels, MorphologyInPlaceReplicatesTheEdge) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    for (IppiSize s : kSizes) {
      SCOPED_TRACE(::testing::Message() << s.width << "x" << s.height);
      const size_t stride = size_t(s.width) + 4, origin = stride + 2;  // a frame of 2 pixels around
      const auto img = testsupport::RandomBytes(stride * (s.height + 2), 31);
      auto dilated = img, eroded = img;
      ASSERT_EQ(ippiDilate3x3_8u_C1IR(dilated.data() + origin, int(stride), s), ippStsNoErr);
      ASSERT_EQ(ippiErode3x3_8u_C1IR(eroded.data() + origin, int(stride), s), ippStsNoErr);
      EXPECT_EQ(dilated, testsupport::Extreme3x3(img, origin, stride, s.width, s.height, true));
      EXPECT_EQ(eroded, testsupport::Extreme3x3(img, origin, stride, s.width, s.height, false));
      const auto raw16 = testsupport::RandomWords(stride * (s.height + 2), 65536, 32);
      std::vector<uint16_t> img16(stride * (s.height + 2));
      std::memcpy(img16.data(), raw16.data(), raw16.size());
      auto eroded16 = img16;
      ASSERT_EQ(ippiErode3x3_16u_C1IR(eroded16.data() + origin, int(2 * stride), s), ippStsNoErr);
      EXPECT_EQ(eroded16, testsupport::Extreme3x3(img16, origin, stride, s.width, s.height, false));
    }
  }
}

TEST(AnalysisKernels, SobelMatchesTheFullMasks) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    for (IppiSize s : kSizes)
      for (IppiMaskSize mask : {ippMskSize3x3, ippMskSize5x5})
        for (IppiBorderType border : {ippBorderRepl, ippBorderConst})
          for (bool vertical : {true, false}) {
            SCOPED_TRACE(::testing::Message() << s.width << "x" << s.height << " mask " << mask << " border " << border
                                              << (vertical ? " vert" : " horiz"));
            const int srcStep = s.width + 3, dstStep = 2 * s.width + 6;
            const auto src = testsupport::RandomBytes(size_t(srcStep) * s.height, 41);
            std::vector<uint8_t> packed(size_t(s.width) * s.height);
            for (int y = 0; y < s.height; ++y)
              std::memcpy(&packed[size_t(y) * s.width], &src[size_t(y) * srcStep], size_t(s.width));
            int bytes = 0;
            ASSERT_EQ(vertical ? ippiFilterSobelVertGetBufferSize_8u16s_C1R(s, mask, &bytes)
                               : ippiFilterSobelHorizGetBufferSize_8u16s_C1R(s, mask, &bytes),
                      ippStsNoErr);
            std::vector<uint8_t> buffer(static_cast<size_t>(bytes));
            std::vector<uint8_t> dst(size_t(dstStep) * s.height, 0x5A);
            auto* out = reinterpret_cast<Ipp16s*>(dst.data());
            const IppStatus st = vertical ? ippiFilterSobelVertBorder_8u16s_C1R(src.data(), srcStep, out, dstStep, s,
                                                                                mask, border, 7, buffer.data())
                                          : ippiFilterSobelHorizBorder_8u16s_C1R(src.data(), srcStep, out, dstStep, s,
                                                                                 mask, border, 7, buffer.data());
            ASSERT_EQ(st, ippStsNoErr);
            const auto want = testsupport::SobelReference(packed, s.width, s.height, vertical, mask == ippMskSize5x5,
                                                          border == ippBorderRepl, 7);
            for (int y = 0; y < s.height; ++y) {
              for (int x = 0; x < s.width; ++x) {
                int16_t got;
                std::memcpy(&got, &dst[size_t(y) * dstStep + 2 * size_t(x)], 2);
                ASSERT_EQ(got, want[size_t(y) * s.width + x]) << x << "," << y;
              }
              for (int b = 2 * s.width; b < dstStep; ++b) ASSERT_EQ(dst[size_t(y) * dstStep + b], 0x5A);
            }
          }
  }
}

TEST(AnalysisKernels, SignedArithmeticSaturatesAndRounds) {
  const struct {
    int a, b, scale, sum;
  } adds[] = {
      {30000, 10000, 0, 32767},
      {-30000, -10000, 0, -32768},
      {1, 2, 1, 2},
      {1, 0, 1, 0},
      {-1, 0, 1, 0},
      {5, 0, 1, 2},
      {7, 0, 1, 4},
      {-3, 0, 1, -2},
      {100, 0, 2, 25},
      {6, 0, 2, 2},
      {10, 0, -1, 20},
      {20000, 0, -1, 32767},
  };
  for (auto t : adds) {
    Ipp16s a = Ipp16s(t.a), b = Ipp16s(t.b);
    ASSERT_EQ(ippiAdd_16s_C1IRSfs(&a, 2, &b, 2, {1, 1}, t.scale), ippStsNoErr);
    EXPECT_EQ(b, t.sum) << t.a << " + " << t.b << " scale " << t.scale;
  }
  Ipp16s values[] = {-32768, -32767, -1, 0, 1, 255, 256, 32767};
  Ipp8u narrowed[8];
  ASSERT_EQ(ippiConvert_16s8u_C1R(values, 16, narrowed, 8, {8, 1}), ippStsNoErr);
  const Ipp8u wantNarrowed[] = {0, 0, 0, 0, 1, 255, 255, 255};
  EXPECT_EQ(0, std::memcmp(narrowed, wantNarrowed, 8));
  ASSERT_EQ(ippiAbs_16s_C1IR(values, 16, {8, 1}), ippStsNoErr);
  const Ipp16s wantAbs[] = {32767, 32767, 1, 0, 1, 255, 256, 32767};
  EXPECT_EQ(0, std::memcmp(values, wantAbs, sizeof values));
}

TEST(AnalysisKernels, AbsoluteDifference) {
  const Ipp8u a[] = {0, 255, 10, 200}, b[] = {255, 0, 20, 100};
  Ipp8u d[4];
  ASSERT_EQ(ippiAbsDiff_8u_C1R(a, 2, b, 2, d, 2, {2, 2}), ippStsNoErr);
  EXPECT_EQ(std::vector<int>(d, d + 4), (std::vector<int>{255, 255, 10, 100}));
  const Ipp16u a16[] = {0, 65535, 4000}, b16[] = {65535, 1, 4096};
  Ipp16u d16[3];
  ASSERT_EQ(ippiAbsDiff_16u_C1R(a16, 6, b16, 6, d16, 6, {3, 1}), ippStsNoErr);
  EXPECT_EQ(std::vector<int>(d16, d16 + 3), (std::vector<int>{65535, 65534, 96}));
}

TEST(AnalysisKernels, AllocationAlignsRowsAndSetFills) {
  for (int w : {1, 63, 64, 65, 1921}) {
    int step = 0, step16 = 0;
    Ipp8u* p = ippiMalloc_8u_C1(w, 3, &step);
    Ipp16u* q = ippiMalloc_16u_C1(w, 3, &step16);
    ASSERT_TRUE(p && q);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(p) % 64, 0u);
    EXPECT_EQ(step % 64, 0);
    EXPECT_GE(step, w);
    EXPECT_EQ(step16 % 64, 0);
    EXPECT_GE(step16, 2 * w);
    ASSERT_EQ(ippiSet_8u_C1R(9, p, step, {w, 3}), ippStsNoErr);
    ASSERT_EQ(ippiSet_16u_C1R(60000, q, step16, {w, 3}), ippStsNoErr);
    EXPECT_EQ(p[2 * step + w - 1], 9);
    EXPECT_EQ(q[(2 * step16) / 2 + w - 1], 60000);
    ippiFree(p);
    ippiFree(q);
  }
  int step = 0;
  EXPECT_EQ(ippiMalloc_16s_C1(0, 3, &step), nullptr);
  ippiFree(nullptr);
}

TEST(AnalysisKernels, BadArgumentsAnswerAStatus) {
  Ipp8u px[16] = {};
  Ipp16s out[16];
  int n = 0;
  double mean = 0;
  const struct {
    const char* name;
    IppStatus got, want;
  } cases[] = {
      {"grey null", ippiRGBToGray_8u_C3C1R(nullptr, 3, px, 1, {1, 1}), ippStsNullPtrErr},
      {"count empty", ippiCountInRange_8u_C1R(px, 1, {0, 1}, &n, 0, 1), ippStsSizeErr},
      {"mean null", ippiMean_8u_C1R(px, 1, {1, 1}, nullptr), ippStsNullPtrErr},
      {"mean low", ippiMean_8u_C1R(px, 1, {1, 0}, &mean), ippStsSizeErr},
      {"dilate null", ippiDilate3x3_8u_C1IR(nullptr, 1, {1, 1}), ippStsNullPtrErr},
      {"sobel mask", ippiFilterSobelVertBorder_8u16s_C1R(px, 4, out, 8, {4, 4}, IppiMaskSize(44), ippBorderRepl, 0, px),
       ippStsMaskSizeErr},
      {"sobel border",
       ippiFilterSobelHorizBorder_8u16s_C1R(px, 4, out, 8, {4, 4}, ippMskSize3x3, IppiBorderType(9), 0, px),
       ippStsBorderErr},
      {"sobel buffer",
       ippiFilterSobelVertBorder_8u16s_C1R(px, 4, out, 8, {4, 4}, ippMskSize3x3, ippBorderRepl, 0, nullptr),
       ippStsNullPtrErr},
      {"query mask", ippiFilterSobelVertGetBufferSize_8u16s_C1R({4, 4}, IppiMaskSize(0), &n), ippStsMaskSizeErr},
      {"abs empty", ippiAbs_16s_C1IR(out, 2, {0, 0}), ippStsSizeErr},
      {"set null", ippiSet_16s_C1R(0, nullptr, 2, {1, 1}), ippStsNullPtrErr},
  };
  for (const auto& c : cases) EXPECT_EQ(c.got, c.want) << c.name;
}

}  // namespace
