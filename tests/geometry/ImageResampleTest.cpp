// CIppImageResize's decimating members: which source pixels land where, what
// stays untouched, and the vector rows against the plain loop.
#include <kestrelink/CIppImageResize.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

#include "geometry/ResampleRows.h"
#include "support/TestSupport.h"

namespace {

using Bytes = std::vector<uint8_t>;

// The output a decimation by `step` gives, written from the rule: source
// pixel (x * step, y * step) at output (x, y) for every such pixel inside
// both frames; `out` keeps its content elsewhere.
Bytes Decimated(const Bytes& src, uint32_t w, uint32_t h, uint32_t step, uint32_t bpp, uint32_t dw, uint32_t dh,
                Bytes out) {
  for (uint32_t y = 0; y * step < h && y < dh; ++y)
    for (uint32_t x = 0; x * step < w && x < dw; ++x)
      for (uint32_t b = 0; b < bpp; ++b) out[(size_t(y) * dw + x) * bpp + b] = src[(size_t(y * step) * w + x * step) * bpp + b];
  return out;
}

TEST(ImageResample, Mono8WalksEveryStepthPixel) {
  CIppImageResize resize;
  Bytes src(10 * 4);
  for (size_t i = 0; i < src.size(); ++i) src[i] = uint8_t(i);
  Bytes three(3 * 2, 0xEE);
  ASSERT_TRUE(resize.Mono8Resample(10, 4, 3, src.data(), 3, 2, three.data()));
  EXPECT_EQ(three, (Bytes{0, 3, 6, 30, 33, 36}));
  Bytes eight(8 * 2, 0xEE);
  ASSERT_TRUE(resize.Mono8Resample(10, 4, 3, src.data(), 8, 2, eight.data()));
  EXPECT_EQ(eight, (Bytes{0, 3, 6, 9, 0xEE, 0xEE, 0xEE, 0xEE, 30, 33, 36, 39, 0xEE, 0xEE, 0xEE, 0xEE}));
}

TEST(ImageResample, StepBelowOneAnswersFalseAndWritesNothing) {
  CIppImageResize resize;
  Bytes src(16, 1), dst(16, 2);
  for (int step : {0, -1, -100}) {
    EXPECT_FALSE(resize.BGRx32Resample(2, 2, step, src.data(), 2, 2, dst.data()));
    EXPECT_FALSE(resize.BGR24PlannerResample(4, 4, step, src.data(), src.data(), src.data(), 4, 4, dst.data(),
                                             dst.data(), dst.data()));
  }
  EXPECT_EQ(dst, Bytes(16, 2));
}

// Every member moves whole pixels of its size: output rows past the source's
// reach and columns past dstWidth are left as they were.
TEST(ImageResample, EveryMemberMovesWholePixels) {
  CIppImageResize resize;
  using Member = bool (CIppImageResize::*)(uint32_t, uint32_t, int, void*, uint32_t, uint32_t, void*);
  struct Row {
    const char* name;
    Member member;
    uint32_t bpp;
  };
  const Row rows[] = {{"Mono8", &CIppImageResize::Mono8Resample, 1},   {"Mono16", &CIppImageResize::Mono16Resample, 2},
                      {"BGR555", &CIppImageResize::BGR555Resample, 2}, {"BGR565", &CIppImageResize::BGR565Resample, 2},
                      {"BGR24", &CIppImageResize::BGR24Resample, 3},   {"BGR48", &CIppImageResize::BGR48Resample, 6},
                      {"BGRx32", &CIppImageResize::BGRx32Resample, 4}, {"BGRx64", &CIppImageResize::BGRx64Resample, 8}};
  struct Size {
    uint32_t w, h, step, dw, dh;
  };
  const Size sizes[] = {{67, 9, 2, 34, 5}, {67, 9, 2, 20, 3}, {64, 8, 1, 64, 8}, {50, 7, 3, 40, 9},
                        {41, 5, 5, 9, 1},  {90, 3, 2, 60, 4}};
  for (const Row& r : rows)
    for (const Size& s : sizes) {
      const Bytes src = testsupport::RandomBytes(size_t(s.w) * s.h * r.bpp, s.w + r.bpp);
      const Bytes start = testsupport::RandomBytes(size_t(s.dw) * s.dh * r.bpp, 99);
      Bytes dst = start;
      ASSERT_TRUE((resize.*r.member)(s.w, s.h, int(s.step), const_cast<uint8_t*>(src.data()), s.dw, s.dh, dst.data()));
      EXPECT_EQ(dst, Decimated(src, s.w, s.h, s.step, r.bpp, s.dw, s.dh, start))
          << r.name << " " << s.w << "x" << s.h << " step " << s.step << " to " << s.dw << "x" << s.dh;
    }
}

TEST(ImageResample, PlanarFormsMoveThePlanesInLockstep) {
  CIppImageResize resize;
  Bytes in[3] = {testsupport::RandomBytes(31 * 7 * 2, 1), testsupport::RandomBytes(31 * 7 * 2, 2),
                 testsupport::RandomBytes(31 * 7 * 2, 3)};
  Bytes out[3] = {Bytes(16 * 4 * 2, 5), Bytes(16 * 4 * 2, 6), Bytes(16 * 4 * 2, 7)};
  ASSERT_TRUE(resize.BGR48PlannerResample(31, 7, 2, in[0].data(), in[1].data(), in[2].data(), 16, 4, out[0].data(),
                                          out[1].data(), out[2].data()));
  for (int p = 0; p < 3; ++p) EXPECT_EQ(out[p], Decimated(in[p], 31, 7, 2, 2, 16, 4, Bytes(16 * 4 * 2, Bytes::value_type(5 + p))));
  Bytes out8[3] = {Bytes(11 * 3, 5), Bytes(11 * 3, 6), Bytes(11 * 3, 7)};
  ASSERT_TRUE(resize.BGR24PlannerResample(31, 7, 3, in[0].data(), in[1].data(), in[2].data(), 11, 3, out8[0].data(),
                                          out8[1].data(), out8[2].data()));
  for (int p = 0; p < 3; ++p) EXPECT_EQ(out8[p], Decimated(in[p], 31, 7, 3, 1, 11, 3, Bytes(11 * 3, Bytes::value_type(5 + p))));
}

// A row of `count` outputs by every variant against the plain loop, for every
// pixel size and steps 1 to 5: the source ends at the last pixel read (its own
// allocation, so a read past it shows under the address checker) and eight
// guard bytes after the last output must keep their content.
template <size_t Bpp>
void ExpectRowsMatchPlain(kestrelink::CpuVariant variant) {
  using kestrelink::geometry::DecimateRow;
  using kestrelink::geometry::DecimateRowPlain;
  for (uint32_t step = 1; step <= 5; ++step)
    for (uint32_t count = 0; count <= 150; count += count < 70 ? 1 : 13) {
      const size_t last = count == 0 ? 0 : size_t(count - 1) * step + 1;
      const Bytes src = testsupport::RandomBytes(Bpp * last, count * 7 + step);
      Bytes got(Bpp * size_t(count) + 8, 0xA5), want = got;
      DecimateRow<Bpp>(src.data(), step, count, got.data());
      DecimateRowPlain<Bpp>(src.data(), step, count, want.data());
      ASSERT_EQ(got, want) << kestrelink::VariantName(variant) << ", " << Bpp << " bytes, step " << step << ", "
                           << count;
    }
}

TEST(ImageResample, VectorRowsMatchThePlainLoop) {
  for (const kestrelink::CpuVariant v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant forced(v);
    ExpectRowsMatchPlain<1>(v);
    ExpectRowsMatchPlain<2>(v);
    ExpectRowsMatchPlain<3>(v);
    ExpectRowsMatchPlain<4>(v);
    ExpectRowsMatchPlain<6>(v);
    ExpectRowsMatchPlain<8>(v);
  }
}

}  // namespace
