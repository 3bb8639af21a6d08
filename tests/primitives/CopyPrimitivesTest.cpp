// The channel-copy kernels: three channels to four and back, interleaved to
// planes and back, against per-pixel expectations, at every variant, with
// steps longer than a row and negative steps.
#include <gtest/gtest.h>

#include "CopyTestRegion.h"

namespace {

using copytest::InterleavedKernel;
using copytest::Region;

const InterleavedKernel kC3AC4{
    "ippiCopy_8u_C3AC4R", 3, 4,
    [](const uint8_t* s, int ss, uint8_t* d, int ds, IppiSize size) { return ippiCopy_8u_C3AC4R(s, ss, d, ds, size); },
    [](const uint8_t* s, uint8_t* d) { d[0] = s[0], d[1] = s[1], d[2] = s[2]; }};  // d[3] as it was

const InterleavedKernel kAC4C3{
    "ippiCopy_8u_AC4C3R", 4, 3,
    [](const uint8_t* s, int ss, uint8_t* d, int ds, IppiSize size) { return ippiCopy_8u_AC4C3R(s, ss, d, ds, size); },
    [](const uint8_t* s, uint8_t* d) { d[0] = s[0], d[1] = s[1], d[2] = s[2]; }};

TEST(CopyPrimitives, ThreeToFourKeepsTheFourthByte) { copytest::CheckInterleaved(kC3AC4); }
TEST(CopyPrimitives, FourToThreeDropsTheFourthByte) { copytest::CheckInterleaved(kAC4C3); }

TEST(CopyPrimitives, InterleavedKernelsRefuseNullsAndEmptySizes) {
  copytest::CheckRefusals(kC3AC4);
  copytest::CheckRefusals(kAC4C3);
}

// Planes: three regions of w bytes a row; the interleaved frame one region.
TEST(CopyPrimitives, SplitAndJoinPlanes) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    for (int w : {1, 3, 31, 32, 33, 64, 65, 100, 129})
      for (bool up : {false, true}) {
        const int h = 3;
        Region packed(3 * size_t(w), h, 4, uint32_t(w));
        Region planes[3] = {Region(size_t(w), h, 9, 1), Region(size_t(w), h, 9, 2), Region(size_t(w), h, 9, 3)};
        // Split: plane c, row y, pixel x is channel c of pixel x of row y.
        Region want[3] = {planes[0], planes[1], planes[2]};
        for (int c = 0; c < 3; ++c)
          for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) want[c].Row(y, up)[x] = packed.Row(y, false)[3 * x + c];
        Ipp8u* const out[3] = {planes[0].Start(up), planes[1].Start(up), planes[2].Start(up)};
        ASSERT_EQ(ippiCopy_8u_C3P3R(packed.Start(false), packed.Step(false), out, planes[0].Step(up), IppiSize{w, h}),
                  ippStsNoErr);
        for (int c = 0; c < 3; ++c)
          ASSERT_EQ(planes[c].bytes, want[c].bytes) << kestrelink::VariantName(variant) << " split w=" << w << " plane " << c;

        // Join the planes back into a fresh frame: the original pixels.
        Region joined(3 * size_t(w), h, 4, uint32_t(w) + 7);
        Region wantJoined = joined;
        for (int y = 0; y < h; ++y)
          for (int x = 0; x < 3 * w; ++x) wantJoined.Row(y, false)[x] = packed.Row(y, false)[x];
        const Ipp8u* const in[3] = {planes[0].Start(up), planes[1].Start(up), planes[2].Start(up)};
        ASSERT_EQ(ippiCopy_8u_P3C3R(in, planes[0].Step(up), joined.Start(false), joined.Step(false), IppiSize{w, h}),
                  ippStsNoErr);
        ASSERT_EQ(joined.bytes, wantJoined.bytes) << kestrelink::VariantName(variant) << " join w=" << w;
      }
  }
}

TEST(CopyPrimitives, PlanarKernelsRefuseNullsAndEmptySizes) {
  std::vector<uint8_t> frame(48, 0x5A), a(16, 0x5A), b(16, 0x5A), c(16, 0x5A);
  Ipp8u* const planes[3] = {a.data(), b.data(), c.data()};
  Ipp8u* const oneMissing[3] = {a.data(), nullptr, c.data()};
  const Ipp8u* const inPlanes[3] = {a.data(), b.data(), c.data()};
  const Ipp8u* const inMissing[3] = {a.data(), b.data(), nullptr};
  EXPECT_EQ(ippiCopy_8u_C3P3R(nullptr, 6, planes, 2, IppiSize{2, 2}), ippStsNullPtrErr);
  EXPECT_EQ(ippiCopy_8u_C3P3R(frame.data(), 6, nullptr, 2, IppiSize{2, 2}), ippStsNullPtrErr);
  EXPECT_EQ(ippiCopy_8u_C3P3R(frame.data(), 6, oneMissing, 2, IppiSize{2, 2}), ippStsNullPtrErr);
  EXPECT_EQ(ippiCopy_8u_C3P3R(frame.data(), 6, planes, 2, IppiSize{0, 2}), ippStsSizeErr);
  EXPECT_EQ(ippiCopy_8u_P3C3R(nullptr, 2, frame.data(), 6, IppiSize{2, 2}), ippStsNullPtrErr);
  EXPECT_EQ(ippiCopy_8u_P3C3R(inMissing, 2, frame.data(), 6, IppiSize{2, 2}), ippStsNullPtrErr);
  EXPECT_EQ(ippiCopy_8u_P3C3R(inPlanes, 2, nullptr, 6, IppiSize{2, 2}), ippStsNullPtrErr);
  EXPECT_EQ(ippiCopy_8u_P3C3R(inPlanes, 2, frame.data(), 6, IppiSize{2, 0}), ippStsSizeErr);
  for (const auto* v : {&frame, &a, &b, &c})
    for (uint8_t byte : *v) ASSERT_EQ(byte, 0x5A);
}

}  // namespace
