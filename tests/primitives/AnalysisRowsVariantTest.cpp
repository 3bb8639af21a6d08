// Every vector variant of the analysis rows against the portable rows, on
// random data at every width up to a few vectors and from unaligned starts.
#include <gtest/gtest.h>

#include <cstring>

#include "primitives/AnalysisRows.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::analysis::AnalysisRowKernels;

const AnalysisRowKernels* Table(kestrelink::CpuVariant v) {
  using namespace kestrelink::analysis;
  const AnalysisRowKernels* tables[] = {&kAnalysisRowsPortable, nullptr, nullptr, &kAnalysisRowsAVX2,
                                        &kAnalysisRowsAVX512};
  return tables[v];
}

// Random input with a pad of 8 samples for the kernels that read ahead, and
// outputs prefilled alike so that a write past n shows.
struct Rows {
  std::vector<uint8_t> in0, in1, in2, in3, in4;
  std::vector<uint8_t> want, got;
  Rows(uint32_t n, uint32_t seed)
      : in0(testsupport::RandomBytes(6 * size_t(n) + 24, seed)),
        in1(testsupport::RandomBytes(6 * size_t(n) + 24, seed + 1)),
        in2(testsupport::RandomBytes(6 * size_t(n) + 24, seed + 2)),
        in3(testsupport::RandomBytes(6 * size_t(n) + 24, seed + 3)),
        in4(testsupport::RandomBytes(6 * size_t(n) + 24, seed + 4)),
        want(6 * size_t(n) + 24, 0xA5),
        got(want) {}
  const uint8_t* const* Five() {
    ptrs[0] = in0.data() + 1, ptrs[1] = in1.data() + 1, ptrs[2] = in2.data() + 1, ptrs[3] = in3.data() + 1,
    ptrs[4] = in4.data() + 1;
    return ptrs;
  }
  const uint8_t* ptrs[5];
};

// Signed 16-bit sums as the Sobel column pass leaves them, within +-16 * 255.
std::vector<int16_t> Sums(uint32_t n, uint32_t seed) {
  auto raw = testsupport::RandomBytes(2 * (size_t(n) + 8), seed);
  std::vector<int16_t> s(size_t(n) + 8);
  for (size_t i = 0; i < s.size(); ++i) s[i] = int16_t((raw[2 * i] | raw[2 * i + 1] << 8) % 8161 - 4080);
  return s;
}

TEST(AnalysisRowsVariants, MatchThePortableRows) {
  const AnalysisRowKernels& ref = *Table(kestrelink::kVariantPortable);
  for (auto v : testsupport::RunnableVariants()) {
    const AnalysisRowKernels* table = Table(v);
    if (v == kestrelink::kVariantPortable || !table) continue;
    SCOPED_TRACE(kestrelink::VariantName(v));
    const AnalysisRowKernels& k = *table;
    for (uint32_t n = 0; n <= 300; n += n < 80 ? 1 : 37) {
      SCOPED_TRACE(n);
      Rows r(n, n * 7 + 1);
      const uint8_t* a = r.in0.data() + 1;
      const uint8_t* b = r.in1.data() + 1;
      auto* a16 = reinterpret_cast<const uint16_t*>(r.in0.data() + 2);
      auto* b16 = reinterpret_cast<const uint16_t*>(r.in1.data() + 2);
      auto* want16 = reinterpret_cast<uint16_t*>(r.want.data() + 2);
      auto* got16 = reinterpret_cast<uint16_t*>(r.got.data() + 2);
      auto same = [&](const char* name) {
        EXPECT_EQ(r.want, r.got) << name;
        std::fill(r.want.begin(), r.want.end(), 0xA5);
        std::fill(r.got.begin(), r.got.end(), 0xA5);
      };
      ref.rgbToGray8(a, r.want.data() + 1, n), k.rgbToGray8(a, r.got.data() + 1, n), same("rgbToGray8");
      ref.rgbToGray16(a16, want16, n), k.rgbToGray16(a16, got16, n), same("rgbToGray16");
      for (auto [lo, hi] : {std::pair<int, int>{0, 255}, {40, 200}, {77, 77}, {200, 40}})
        EXPECT_EQ(ref.countInRange8(a, n, uint8_t(lo), uint8_t(hi)), k.countInRange8(a, n, uint8_t(lo), uint8_t(hi)));
      EXPECT_EQ(ref.sum8(a, n), k.sum8(a, n));
      EXPECT_EQ(ref.sum16(a16, n), k.sum16(a16, n));
      ref.max3Cols8(a, r.want.data() + 1, n), k.max3Cols8(a, r.got.data() + 1, n), same("max3Cols8");
      ref.min3Cols8(a, r.want.data() + 1, n), k.min3Cols8(a, r.got.data() + 1, n), same("min3Cols8");
      ref.min3Cols16(a16, want16, n), k.min3Cols16(a16, got16, n), same("min3Cols16");
      const uint8_t* const* five = r.Five();
      ref.max3Rows8(five[0], five[1], five[2], r.want.data() + 1, n);
      k.max3Rows8(five[0], five[1], five[2], r.got.data() + 1, n), same("max3Rows8");
      ref.min3Rows8(five[0], five[1], five[2], r.want.data() + 1, n);
      k.min3Rows8(five[0], five[1], five[2], r.got.data() + 1, n), same("min3Rows8");
      ref.min3Rows16(a16, b16, a16 + 1, want16, n), k.min3Rows16(a16, b16, a16 + 1, got16, n), same("min3Rows16");
      auto* ws = reinterpret_cast<int16_t*>(want16);
      auto* gs = reinterpret_cast<int16_t*>(got16);
      ref.smoothRows3(five, ws, n), k.smoothRows3(five, gs, n), same("smoothRows3");
      ref.diffRows3(five, ws, n), k.diffRows3(five, gs, n), same("diffRows3");
      ref.smoothRows5(five, ws, n), k.smoothRows5(five, gs, n), same("smoothRows5");
      ref.diffRows5(five, ws, n), k.diffRows5(five, gs, n), same("diffRows5");
      const auto sums = Sums(n, n + 5);
      ref.smoothCols3(sums.data(), r.want.data() + 1, n), k.smoothCols3(sums.data(), r.got.data() + 1, n);
      same("smoothCols3");
      ref.diffCols3(sums.data(), r.want.data() + 1, n), k.diffCols3(sums.data(), r.got.data() + 1, n);
      same("diffCols3");
      ref.smoothCols5(sums.data(), r.want.data() + 1, n), k.smoothCols5(sums.data(), r.got.data() + 1, n);
      same("smoothCols5");
      ref.diffCols5(sums.data(), r.want.data() + 1, n), k.diffCols5(sums.data(), r.got.data() + 1, n);
      same("diffCols5");
      ref.absDiff8(a, b, r.want.data() + 1, n), k.absDiff8(a, b, r.got.data() + 1, n), same("absDiff8");
      ref.absDiff16(a16, b16, want16, n), k.absDiff16(a16, b16, got16, n), same("absDiff16");
      // Signed rows at odd addresses, in place and into another row.
      std::memcpy(r.want.data() + 1, a, 2 * size_t(n)), std::memcpy(r.got.data() + 1, a, 2 * size_t(n));
      ref.abs16s(r.want.data() + 1, n), k.abs16s(r.got.data() + 1, n), same("abs16s");
      std::memcpy(r.want.data() + 1, b, 2 * size_t(n)), std::memcpy(r.got.data() + 1, b, 2 * size_t(n));
      ref.addSat16s(a, r.want.data() + 1, n), k.addSat16s(a, r.got.data() + 1, n), same("addSat16s");
      ref.convert16s8u(a, r.want.data() + 1, n), k.convert16s8u(a, r.got.data() + 1, n), same("convert16s8u");
      ref.threshold8(a, r.want.data() + 1, n, 128, 255), k.threshold8(a, r.got.data() + 1, n, 128, 255);
      same("threshold8");
      ref.threshold16(a16, want16, n, 30000, 4095), k.threshold16(a16, got16, n, 30000, 4095), same("threshold16");
    }
  }
}

}  // namespace
