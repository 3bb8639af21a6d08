#pragma once
// Regions for the whole-image kernels of the copy family: rows inside a
// larger buffer (so the step is longer than the row, and the bytes between
// rows must survive), walked top-down or bottom-up through a negative step.
#include <gtest/gtest.h>

#include <functional>
#include <vector>

#include "primitives/Primitives.h"
#include "support/TestSupport.h"

namespace copytest {

struct Region {
  Region(size_t rowBytes, int h, size_t pad, uint32_t seed)
      : h(h), step(rowBytes + pad), bytes(testsupport::RandomBytes(step * size_t(h), seed)) {}
  // Buffer row that holds region row y.
  int BufferRow(int y, bool bottomUp) const { return bottomUp ? h - 1 - y : y; }
  uint8_t* Row(int y, bool bottomUp) { return bytes.data() + step * size_t(BufferRow(y, bottomUp)); }
  // What a kernel is handed: the region's first row and the step to the next.
  uint8_t* Start(bool bottomUp) { return Row(0, bottomUp); }
  int Step(bool bottomUp) const { return bottomUp ? -int(step) : int(step); }

  int h;
  size_t step;
  std::vector<uint8_t> bytes;
};

// One interleaved kernel: run it on a region, and the expected bytes of one
// destination pixel (prefilled with what the destination held) from its source pixel.
struct InterleavedKernel {
  const char* name;
  size_t srcPixelBytes, dstPixelBytes;
  std::function<IppStatus(const uint8_t* src, int srcStep, uint8_t* dst, int dstStep, IppiSize size)> run;
  std::function<void(const uint8_t* s, uint8_t* d)> pixel;
};

// Every variant, widths across the vector sizes, and each pairing of
// top-down and bottom-up source and destination.
inline void CheckInterleaved(const InterleavedKernel& k) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    for (int w : {1, 2, 5, 16, 21, 22, 33, 64, 65, 130})
      for (bool srcUp : {false, true})
        for (bool dstUp : {false, true}) {
          const int h = 3;
          Region src(k.srcPixelBytes * size_t(w), h, 5, uint32_t(w)), dst(k.dstPixelBytes * size_t(w), h, 7, uint32_t(w) + 99);
          Region want = dst;
          for (int y = 0; y < h; ++y)
            for (int x = 0; x < w; ++x) k.pixel(src.Row(y, srcUp) + k.srcPixelBytes * x, want.Row(y, dstUp) + k.dstPixelBytes * x);
          ASSERT_EQ(k.run(src.Start(srcUp), src.Step(srcUp), dst.Start(dstUp), dst.Step(dstUp), IppiSize{w, h}), ippStsNoErr);
          ASSERT_EQ(dst.bytes, want.bytes) << k.name << " " << kestrelink::VariantName(variant) << " w=" << w
                                           << " source " << (srcUp ? "bottom-up" : "top-down") << ", destination "
                                           << (dstUp ? "bottom-up" : "top-down");
        }
  }
}

// Null pointers give -8 and sizes below one pixel or one row -6, with the
// destination untouched.
inline void CheckRefusals(const InterleavedKernel& k) {
  std::vector<uint8_t> src(64, 1), dst(64, 0x5A);
  const std::vector<uint8_t> untouched = dst;
  EXPECT_EQ(k.run(nullptr, 24, dst.data(), 32, IppiSize{2, 2}), ippStsNullPtrErr) << k.name;
  EXPECT_EQ(k.run(src.data(), 24, nullptr, 32, IppiSize{2, 2}), ippStsNullPtrErr) << k.name;
  for (IppiSize size : {IppiSize{0, 2}, IppiSize{2, 0}, IppiSize{-1, 2}, IppiSize{2, -3}})
    EXPECT_EQ(k.run(src.data(), 24, dst.data(), 32, size), ippStsSizeErr)
        << k.name << " " << size.width << "x" << size.height;
  EXPECT_EQ(dst, untouched) << k.name;
}

}  // namespace copytest
