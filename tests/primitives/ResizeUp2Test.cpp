// The exact 2x bilinear enlargement: its row kernels in every variant
// against the portable rows, and whole resizes through it against the
// double-precision bilinear reference rounded half up, which is what the
// separable path gives at this ratio (weights 1/4 and 3/4 make every sum a
// multiple of 1/16, exact in its fixed-point and float passes alike).
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "primitives/Resize.h"
#include "primitives/ResizeUp2.h"
#include "support/ResizeReference.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrelink::resize;

// Random samples up to top.
template <class T>
std::vector<T> Random(size_t n, uint32_t top, uint32_t seed) {
  std::mt19937 rng(seed);
  std::vector<T> v(n);
  // A quarter of the samples at the top of the range, where sums overflow first.
  for (auto& s : v) s = T(rng() % 4 == 0 ? top - rng() % 4 : rng() % (top + 1));
  return v;
}

template <class T>
void Rows(const Up2RowKernels& k, const T* a, const T* b, uint32_t m, T* outA, T* outB) {
  if constexpr (sizeof(T) == 1)
    k.rows8(a, b, m, outA, outB);
  else
    k.rows16(a, b, m, outA, outB);
}

// Every length up to a few AVX-512 vectors, one output row and two, and
// guard samples past 2m that must stay.
template <class T>
void RowsMatchPortable(uint32_t top) {
  const Up2RowKernels* tables[] = {&kUp2RowsPortable, nullptr, nullptr, &kUp2RowsAVX2, &kUp2RowsAVX512};
  for (auto v : testsupport::RunnableVariants()) {
    const Up2RowKernels* k = tables[v];
    if (!k || k == &kUp2RowsPortable) continue;
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (uint32_t m = 0; m <= 200; m += 1 + m / 16) {
      const std::vector<T> a = Random<T>(m + 1, top, m), b = Random<T>(m + 1, top, m + 500);
      for (bool two : {false, true}) {
        std::vector<T> wantA(2 * m + 8, T(7)), wantB = wantA, gotA = wantA, gotB = wantA;
        Rows(kUp2RowsPortable, a.data(), b.data(), m, wantA.data(), two ? wantB.data() : nullptr);
        Rows(*k, a.data(), b.data(), m, gotA.data(), two ? gotB.data() : nullptr);
        EXPECT_EQ(gotA, wantA) << "m " << m;
        EXPECT_EQ(gotB, wantB) << "m " << m;
      }
    }
  }
}

TEST(ResizeUp2, RowVariantsMatchThePortableRows) {
  RowsMatchPortable<uint8_t>(255);
  RowsMatchPortable<uint16_t>(65535);
}

// One source pair and its four outputs, worked by hand: near 3/4, far 1/4
// on each axis, (9 * near + 3 * across + 3 * down + diagonal + 8) / 16.
TEST(ResizeUp2, PortableRowsFollowTheWeights) {
  const uint16_t a[2] = {65535, 0}, b[2] = {100, 7};
  uint16_t outA[2], outB[2];
  Up2RowsPortable<uint16_t>(a, b, 0, 1, outA, outB);
  EXPECT_EQ(outA[0], (9 * 65535 + 3 * 0 + 3 * 100 + 7 + 8) / 16);
  EXPECT_EQ(outA[1], (9 * 0 + 3 * 65535 + 3 * 7 + 100 + 8) / 16);
  EXPECT_EQ(outB[0], (9 * 100 + 3 * 7 + 3 * 65535 + 0 + 8) / 16);
  EXPECT_EQ(outB[1], (9 * 7 + 3 * 100 + 3 * 0 + 65535 + 8) / 16);
}

template <class T>
using Kernel = IppStatus (*)(const T*, IppiSize, int, IppiRect, T*, int, IppiRect, double, double, double, double, int,
                             Ipp8u*);

struct Case {
  int w, h;         // source frame
  IppiRect roi;     // source ROI
  IppiRect dst;     // destination region, inside a frame of 2 * roi
};

// Whole frames at odd and even sizes (past a few vectors of the widest
// variant), a ROI inside the frame and one running past it, and
// destination regions that start on odd rows and columns.
const Case kCases[] = {
    {1, 1, {0, 0, 1, 1}, {0, 0, 2, 2}},          {2, 3, {0, 0, 2, 3}, {0, 0, 4, 6}},
    {7, 5, {0, 0, 7, 5}, {0, 0, 14, 10}},        {64, 4, {0, 0, 64, 4}, {0, 0, 128, 8}},
    {131, 9, {0, 0, 131, 9}, {0, 0, 262, 18}},   {200, 6, {0, 0, 200, 6}, {0, 0, 400, 12}},
    {90, 11, {13, 2, 70, 7}, {0, 0, 140, 14}},   {90, 11, {40, 6, 70, 9}, {0, 0, 140, 18}},
    {150, 10, {3, 1, 140, 8}, {5, 3, 260, 11}},  {150, 10, {0, 0, 150, 10}, {1, 1, 298, 18}},
};

template <class T>
void MatchesTheReference(Kernel<T> kernel, uint32_t top) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    for (const Case& c : kCases) {
      SCOPED_TRACE(testing::Message() << kestrelink::VariantName(v) << " " << c.w << "x" << c.h << " roi "
                                      << c.roi.x << "," << c.roi.y << " dst " << c.dst.x << "," << c.dst.y);
      const std::vector<T> src = Random<T>(size_t(c.w) * c.h, top, uint32_t(c.w * 7 + c.h));
      const int dw = 2 * c.roi.width, dh = 2 * c.roi.height;
      std::vector<T> out(size_t(dw) * dh, T(3));
      int bytes = 0;
      ASSERT_EQ(ippiResizeGetBufSize(c.roi, {0, 0, dw, dh}, 1, IPPI_INTER_LINEAR, &bytes), ippStsNoErr);
      std::vector<Ipp8u> buffer(static_cast<size_t>(bytes));
      ASSERT_EQ(kernel(src.data(), {c.w, c.h}, c.w * int(sizeof(T)), c.roi, out.data(), dw * int(sizeof(T)), c.dst,
                       2.0, 2.0, 0, 0, IPPI_INTER_LINEAR, buffer.data()),
                ippStsNoErr);
      const std::vector<double> ref =
          testsupport::RefResize(std::vector<double>(src.begin(), src.end()), c.w, c.h, 1, c.roi.x, c.roi.y,
                                 c.roi.width, c.roi.height, dw, dh, testsupport::kRefLinear);
      int wrong = 0;
      for (int y = 0; y < dh; ++y)
        for (int x = 0; x < dw; ++x) {
          const bool inside = x >= c.dst.x && x < c.dst.x + c.dst.width && y >= c.dst.y && y < c.dst.y + c.dst.height;
          const size_t i = size_t(y) * dw + x;
          const double want = inside ? std::floor(ref[i] + 0.5) : 3.0;
          if (double(out[i]) != want && wrong++ < 3) ADD_FAILURE() << "at " << x << "," << y << " " << out[i] << " want " << want;
        }
    }
  }
}

TEST(ResizeUp2, EightBitMatchesTheRoundedReference) { MatchesTheReference<Ipp8u>(ippiResizeSqrPixel_8u_C1R, 255); }
TEST(ResizeUp2, SixteenBitMatchesTheRoundedReference) {
  MatchesTheReference<Ipp16u>(ippiResizeSqrPixel_16u_C1R, 65535);
}

}  // namespace
