// Every variant of the mirror rows and of the tiled transposes against a
// plain pixel-by-pixel reference, for every pixel size, at odd sizes that
// leave ragged tile and register edges, with guard bytes around the output.
#include <gtest/gtest.h>

#include <cstring>

#include "primitives/MirrorRows.h"
#include "primitives/RotateTranspose.h"
#include "support/TestSupport.h"

namespace {

using Bytes = std::vector<uint8_t>;
constexpr int kPixelSizes[] = {1, 2, 3, 4, 6, 8};
constexpr uint8_t kGuard = 0xC3;

const kestrelink::mirror::MirrorRowKernels* MirrorTable(kestrelink::CpuVariant v) {
  const kestrelink::mirror::MirrorRowKernels* tables[] = {&kestrelink::mirror::kMirrorRowsPortable, nullptr, nullptr,
                                                          &kestrelink::mirror::kMirrorRowsAVX2, nullptr};
  return tables[v];
}

const kestrelink::rotate::TransposeKernels* TransposeTable(kestrelink::CpuVariant v) {
  const kestrelink::rotate::TransposeKernels* tables[] = {
      &kestrelink::rotate::kTransposePortable, &kestrelink::rotate::kTransposeSSE2, nullptr,
      &kestrelink::rotate::kTransposeAVX2, nullptr};
  return tables[v];
}

TEST(MirrorRowsVariants, EveryWidthReversesWholePixels) {
  for (auto v : testsupport::RunnableVariants()) {
    const auto* k = MirrorTable(v);
    if (!k) continue;
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (int bytes : kPixelSizes) {
      for (uint32_t n = 0; n <= 150; ++n) {
        const Bytes src = testsupport::RandomBytes(size_t(n) * bytes + 1, n * 7 + bytes);
        Bytes want(size_t(n) * bytes + 64, kGuard), got = want;
        for (uint32_t i = 0; i < n; ++i)
          std::memcpy(want.data() + 1 + size_t(i) * bytes, src.data() + 1 + size_t(n - 1 - i) * bytes, bytes);
        k->ForPixel(bytes)(src.data() + 1, got.data() + 1, n);
        ASSERT_EQ(want, got) << bytes << " bytes a pixel, " << n << " pixels";
      }
    }
  }
}

TEST(TransposeVariants, RaggedRegionsMatchThePlainMove) {
  struct Shape {
    uint32_t cols, rows;
  };
  const Shape shapes[] = {{1, 1}, {1, 37}, {37, 1}, {17, 16}, {16, 17}, {33, 31}, {67, 130}, {130, 67}, {97, 97},
                          // ragged edges of every block size: 57 = 32 + 16 + 8 + 1, 88 = 64 + 16 + 8,
                          // 120 = 64 + 32 + 16 + 8
                          {120, 121}, {121, 120},
                          {88, 57}, {57, 88}};
  for (auto v : testsupport::RunnableVariants()) {
    const auto* k = TransposeTable(v);
    if (!k) continue;
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (int bytes : kPixelSizes) {
      for (const Shape& s : shapes) {
        // Source rows `cols` pixels plus 3 apart; destination rows `rows` plus 5.
        const ptrdiff_t ss = ptrdiff_t(s.cols + 3) * bytes, ds = ptrdiff_t(s.rows + 5) * bytes;
        const Bytes src = testsupport::RandomBytes(size_t(ss) * s.rows, s.cols * 131 + s.rows + bytes);
        for (bool bottomUp : {false, true}) {
          Bytes want(size_t(ds) * s.cols, kGuard), got = want;
          // dst pixel (j, i) = src pixel (i, j); bottom-up reads source row rows-1-i.
          for (uint32_t i = 0; i < s.rows; ++i)
            for (uint32_t j = 0; j < s.cols; ++j)
              std::memcpy(want.data() + j * ds + ptrdiff_t(i) * bytes,
                          src.data() + (bottomUp ? s.rows - 1 - i : i) * ss + ptrdiff_t(j) * bytes, bytes);
          const uint8_t* first = src.data() + (bottomUp ? (s.rows - 1) * ss : 0);
          k->ForPixel(bytes)(first, bottomUp ? -ss : ss, got.data(), ds, s.cols, s.rows);
          ASSERT_EQ(want, got) << bytes << " bytes a pixel, " << s.cols << "x" << s.rows
                               << (bottomUp ? " bottom-up" : "");
        }
      }
    }
  }
}

}  // namespace
