// Statuses of the YCbCr kernels: -8 for each pointer, plane or step array
// that is null, -6 for regions below the kernel's group, both before any
// memory is touched; 0 otherwise.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "primitives/RgbToYCbCr.h"
#include "primitives/YCbCrToRgb.h"

namespace {

// The arguments a kernel may take, any one of which a case may null.
enum Arg { kSrc, kSrcPlanes, kSrcPlane0, kSrcPlane1, kSrcPlane2, kSrcSteps,
           kDst, kDstPlanes, kDstPlane0, kDstPlane1, kDstPlane2, kDstSteps, kArgCount };

struct Args {
  explicit Args(int nulled) {
    for (int p = 0; p < 3; ++p) {
      srcPlanes[p] = p == nulled - kSrcPlane0 ? nullptr : memory[p].data();
      dstPlanes[p] = p == nulled - kDstPlane0 ? nullptr : memory[3 + p].data();
    }
    src = nulled == kSrc ? nullptr : memory[6].data();
    dst = nulled == kDst ? nullptr : memory[7].data();
    srcArray = nulled == kSrcPlanes ? nullptr : srcPlanes;
    dstArray = nulled == kDstPlanes ? nullptr : dstPlanes;
    srcSteps = nulled == kSrcSteps ? nullptr : steps;
    dstSteps = nulled == kDstSteps ? nullptr : steps;
  }
  std::vector<uint8_t> memory[8] = {std::vector<uint8_t>(1024), std::vector<uint8_t>(1024), std::vector<uint8_t>(1024),
                                    std::vector<uint8_t>(1024), std::vector<uint8_t>(1024), std::vector<uint8_t>(1024),
                                    std::vector<uint8_t>(1024), std::vector<uint8_t>(1024)};
  const Ipp8u* src;
  Ipp8u* dst;
  const Ipp8u* srcPlanes[3];
  Ipp8u* dstPlanes[3];
  const Ipp8u* const* srcArray;
  Ipp8u* const* dstArray;
  int steps[3] = {32, 32, 32};
  const int* srcSteps;
  const int* dstSteps;
  const Ipp16u* words() const { return reinterpret_cast<const Ipp16u*>(src); }
};

struct StatusCase {
  const char* name;
  std::vector<Arg> pointers;  // the arguments it takes
  int minWidth, minHeight;
  std::function<IppStatus(const Args&, IppiSize)> call;
};

const std::vector<StatusCase>& Cases() {
  using A = const Args&;
  const std::vector<Arg> packedToPacked = {kSrc, kDst};
  const std::vector<Arg> planesStepsToPacked = {kSrcPlanes, kSrcPlane0, kSrcPlane1, kSrcPlane2, kSrcSteps, kDst};
  const std::vector<Arg> planesToPacked = {kSrcPlanes, kSrcPlane0, kSrcPlane1, kSrcPlane2, kDst};
  const std::vector<Arg> packedToPlanes = {kSrc, kDstPlanes, kDstPlane0, kDstPlane1, kDstPlane2, kDstSteps};
  const std::vector<Arg> planesToPlanes = {kSrcPlanes, kSrcPlane0, kSrcPlane1, kSrcPlane2,
                                           kDstPlanes, kDstPlane0, kDstPlane1, kDstPlane2, kDstSteps};
  static const std::vector<StatusCase> cases = {
      {"YCbCr422ToBGR_8u_C2C4R", packedToPacked, 2, 1,
       [](A a, IppiSize r) { return ippiYCbCr422ToBGR_8u_C2C4R(a.src, 32, a.dst, 32, r, 0); }},
      {"YCbCr422ToBGR_8u_C2C3R", packedToPacked, 2, 1,
       [](A a, IppiSize r) { return ippiYCbCr422ToBGR_8u_C2C3R(a.src, 32, a.dst, 32, r); }},
      {"YCbCr422ToRGB_8u_C2C3R", packedToPacked, 2, 1,
       [](A a, IppiSize r) { return ippiYCbCr422ToRGB_8u_C2C3R(a.src, 32, a.dst, 32, r); }},
      {"YCbCr411ToBGR_8u_P3C4R", planesStepsToPacked, 4, 1,
       [](A a, IppiSize r) { return ippiYCbCr411ToBGR_8u_P3C4R(a.srcArray, a.srcSteps, a.dst, 32, r, 0); }},
      {"YCbCr411ToBGR_8u_P3C3R", planesStepsToPacked, 4, 1,
       [](A a, IppiSize r) { return ippiYCbCr411ToBGR_8u_P3C3R(a.srcArray, a.srcSteps, a.dst, 32, r); }},
      {"YCbCrToBGR_8u_P3C4R", planesToPacked, 1, 1,
       [](A a, IppiSize r) { return ippiYCbCrToBGR_8u_P3C4R(a.srcArray, 32, a.dst, 32, r, 0); }},
      {"YCbCrToBGR_8u_P3C3R", planesToPacked, 1, 1,
       [](A a, IppiSize r) { return ippiYCbCrToBGR_8u_P3C3R(a.srcArray, 32, a.dst, 32, r); }},
      {"YCbCrToRGB_8u_P3C3R", planesToPacked, 1, 1,
       [](A a, IppiSize r) { return ippiYCbCrToRGB_8u_P3C3R(a.srcArray, 32, a.dst, 32, r); }},
      {"YCbCr420ToBGR_8u_P3C3R", planesStepsToPacked, 2, 2,
       [](A a, IppiSize r) { return ippiYCbCr420ToBGR_8u_P3C3R(a.srcArray, a.srcSteps, a.dst, 32, r); }},
      {"BGRToYCbCr422_8u_C3C2R", packedToPacked, 2, 1,
       [](A a, IppiSize r) { return ippiBGRToYCbCr422_8u_C3C2R(a.src, 32, a.dst, 32, r); }},
      {"BGRToYCbCr422_8u_AC4C2R", packedToPacked, 2, 1,
       [](A a, IppiSize r) { return ippiBGRToYCbCr422_8u_AC4C2R(a.src, 32, a.dst, 32, r); }},
      {"BGRToYCbCr422_8u_C3P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiBGRToYCbCr422_8u_C3P3R(a.src, 32, a.dstArray, a.dstSteps, r); }},
      {"RGBToYCbCr422_8u_C3P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiRGBToYCbCr422_8u_C3P3R(a.src, 32, a.dstArray, a.dstSteps, r); }},
      {"BGRToYCbCr422_8u_AC4P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiBGRToYCbCr422_8u_AC4P3R(a.src, 32, a.dstArray, a.dstSteps, r); }},
      {"BGR555ToYCbCr422_16u8u_C3P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiBGR555ToYCbCr422_16u8u_C3P3R(a.words(), 32, a.dstArray, a.dstSteps, r); }},
      {"BGR565ToYCbCr422_16u8u_C3P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiBGR565ToYCbCr422_16u8u_C3P3R(a.words(), 32, a.dstArray, a.dstSteps, r); }},
      {"RGBToYCbCr422_8u_P3R", planesToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiRGBToYCbCr422_8u_P3R(a.srcArray, 32, a.dstArray, a.dstSteps, r); }},
      {"BGRToYCbCr420_8u_C3P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiBGRToYCbCr420_8u_C3P3R(a.src, 32, a.dstArray, a.dstSteps, r); }},
      {"RGBToYCbCr420_8u_C3P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiRGBToYCbCr420_8u_C3P3R(a.src, 32, a.dstArray, a.dstSteps, r); }},
      {"BGRToYCbCr420_8u_AC4P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiBGRToYCbCr420_8u_AC4P3R(a.src, 32, a.dstArray, a.dstSteps, r); }},
      {"BGR555ToYCbCr420_16u8u_C3P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiBGR555ToYCbCr420_16u8u_C3P3R(a.words(), 32, a.dstArray, a.dstSteps, r); }},
      {"BGR565ToYCbCr420_16u8u_C3P3R", packedToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiBGR565ToYCbCr420_16u8u_C3P3R(a.words(), 32, a.dstArray, a.dstSteps, r); }},
      {"RGBToYCbCr420_8u_P3R", planesToPlanes, 2, 1,
       [](A a, IppiSize r) { return ippiRGBToYCbCr420_8u_P3R(a.srcArray, 32, a.dstArray, a.dstSteps, r); }},
  };
  return cases;
}

TEST(YccKernelStatus, NullPointersGiveMinus8) {
  for (const auto& c : Cases())
    for (Arg arg : c.pointers) {
      const Args args(arg);
      EXPECT_EQ(c.call(args, {4, 2}), ippStsNullPtrErr) << c.name << " argument " << arg;
      EXPECT_EQ(c.call(args, {0, 0}), ippStsNullPtrErr) << c.name << " argument " << arg << ", empty region";
    }
}

TEST(YccKernelStatus, SmallRegionsGiveMinus6) {
  const Args args(kArgCount);
  for (const auto& c : Cases()) {
    const int w = c.minWidth, h = c.minHeight;
    const IppiSize sizes[] = {{w, h}, {w - 1, h}, {w, h - 1}, {0, h}, {w, 0}, {-w, h}, {w, -1}, {4, 2}};
    for (IppiSize s : sizes) {
      const IppStatus want = s.width < w || s.height < h ? ippStsSizeErr : ippStsNoErr;
      EXPECT_EQ(c.call(args, s), want) << c.name << " " << s.width << "x" << s.height;
    }
  }
}

}  // namespace
