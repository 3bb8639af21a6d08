// The mirror kernels: what each axis reverses, steps of either sign, and the
// statuses that leave the destination untouched.
#include <gtest/gtest.h>

#include "primitives/MirrorPrimitives.h"

namespace {

// A 3 x 2 frame of 8-bit pixels 1 2 3 / 4 5 6 under each axis.
TEST(MirrorKernel, AxesReverseRowsColumnsOrBoth) {
  const Ipp8u src[6] = {1, 2, 3, 4, 5, 6};
  struct Row {
    IppiAxis axis;
    Ipp8u want[6];
  };
  const Row rows[] = {
      {ippAxsHorizontal, {4, 5, 6, 1, 2, 3}}, {ippAxsVertical, {3, 2, 1, 6, 5, 4}}, {ippAxsBoth, {6, 5, 4, 3, 2, 1}}};
  for (const Row& r : rows) {
    Ipp8u dst[6] = {};
    ASSERT_EQ(ippiMirror_8u_C1R(src, 3, dst, 3, {3, 2}, r.axis), ippStsNoErr);
    EXPECT_EQ(std::vector<Ipp8u>(dst, dst + 6), std::vector<Ipp8u>(r.want, r.want + 6)) << "axis " << r.axis;
  }
}

TEST(MirrorKernel, SixteenBitFourChannelPixelsMoveWhole) {
  const Ipp16u src[8] = {1, 2, 3, 4, 5, 6, 7, 0xFFFF};
  Ipp16u dst[8] = {};
  ASSERT_EQ(ippiMirror_16u_C4R(src, 16, dst, 16, {2, 1}, ippAxsVertical), ippStsNoErr);
  EXPECT_EQ(std::vector<Ipp16u>(dst, dst + 8), (std::vector<Ipp16u>{5, 6, 7, 0xFFFF, 1, 2, 3, 4}));
}

TEST(MirrorKernel, NegativeStepsWalkBottomUp) {
  const Ipp8u src[6] = {1, 2, 3, 4, 5, 6};
  Ipp8u dst[6] = {};
  // Reading bottom-up and mirroring about the horizontal axis is a plain copy.
  ASSERT_EQ(ippiMirror_8u_C3R(src + 3, -3, dst, 3, {1, 2}, ippAxsHorizontal), ippStsNoErr);
  EXPECT_EQ(std::vector<Ipp8u>(dst, dst + 6), std::vector<Ipp8u>(src, src + 6));
}

TEST(MirrorKernel, BadCallsTouchNothing) {
  Ipp8u src[4] = {1, 2, 3, 4}, dst[4] = {9, 9, 9, 9};
  struct Row {
    const Ipp8u* s;
    Ipp8u* d;
    IppiSize size;
    int axis;
    IppStatus want;
  };
  const Row rows[] = {{nullptr, dst, {2, 2}, 0, ippStsNullPtrErr}, {src, nullptr, {2, 2}, 0, ippStsNullPtrErr},
                      {src, dst, {0, 2}, 0, ippStsSizeErr},        {src, dst, {2, 0}, 2, ippStsSizeErr},
                      {src, dst, {2, 2}, 3, ippStsMirrorFlipErr},  {src, dst, {2, 2}, -1, ippStsMirrorFlipErr}};
  for (const Row& r : rows) {
    EXPECT_EQ(ippiMirror_8u_C1R(r.s, 2, r.d, 2, r.size, IppiAxis(r.axis)), r.want);
    EXPECT_EQ(std::vector<Ipp8u>(dst, dst + 4), std::vector<Ipp8u>(4, 9));
  }
}

}  // namespace
