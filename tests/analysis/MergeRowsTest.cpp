// The merger's 8-bit overlay row kernels: each variant against plain
// formulas at the corners of the blend and the ratio, and byte for byte
// against the portable variant over rows that end at every vector tail.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "merge/MergeRows.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::merge::ColourTable;
using kestrelink::merge::MergeRowKernels;
using kestrelink::merge::MergeRows;
using Bytes = std::vector<uint8_t>;

// Kernels as the machine can run them: AVX-512 only where it has VBMI.
std::vector<const MergeRowKernels*> Kernels() {
  std::vector<const MergeRowKernels*> out;
  for (const auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    out.push_back(&MergeRows());
  }
  return out;
}

ColourTable Colours(uint32_t seed) {
  const Bytes r = testsupport::RandomBytes(768, seed);
  ColourTable t;
  std::memcpy(t.plane, r.data(), 768);
  kestrelink::merge::PackColourTable(t);
  return t;
}

TEST(MergeRows, CornersOfBlendAndRatio) {
  Bytes table(256);
  for (int v = 0; v < 256; ++v) table[v] = uint8_t(255 - v);
  Bytes byRatio(256);
  for (int q = 0; q < 256; ++q) byRatio[q] = uint8_t(q ^ 0x5A);
  // a, b: blend weights 0 and 256 give b and a; ratio 256 a / b capped at 255.
  struct Pair {
    uint8_t a, b, ratio;  // ratio: the table index the pair must read
    bool byValue;
  };
  const Pair pairs[] = {
      {0, 0, 0, true},     {200, 0, 200, true},  {90, 90, 255, false}, {1, 255, 1, false},
      {254, 255, 254, false}, {255, 1, 255, false}, {3, 7, 109, false},   {127, 128, 254, false},
  };
  for (const MergeRowKernels* k : Kernels()) {
    for (const uint32_t n : {8u, 70u}) {
      Bytes a(n), b(n), out(n);
      for (uint32_t i = 0; i < n; ++i) a[i] = pairs[i % 8].a, b[i] = pairs[i % 8].b;
      k->blend8(a.data(), b.data(), out.data(), n, 0);
      EXPECT_EQ(out, b);
      k->blend8(a.data(), b.data(), out.data(), n, 256);
      EXPECT_EQ(out, a);
      k->blendLookup8(a.data(), b.data(), out.data(), n, 128, table.data());
      for (uint32_t i = 0; i < n; ++i) EXPECT_EQ(out[i], 255 - ((a[i] + b[i]) >> 1)) << i;
      k->ratioLookup8(a.data(), b.data(), out.data(), n, byRatio.data(), table.data());
      for (uint32_t i = 0; i < n; ++i) {
        const Pair& p = pairs[i % 8];
        EXPECT_EQ(out[i], p.byValue ? 255 - p.ratio : p.ratio ^ 0x5A) << int(p.a) << "/" << int(p.b);
      }
    }
  }
}

// Every pair of bytes in one row: the ratio's index is the integer
// quotient min(256 a / b, 255), or a for b 0.
TEST(MergeRows, RatioOfEveryPairOfBytes) {
  Bytes a(65536), b(65536), byRatio(256), byValue(256), want(65536);
  for (int i = 0; i < 256; ++i) byRatio[i] = uint8_t(i), byValue[i] = uint8_t(255 - i);
  for (uint32_t i = 0; i < 65536; ++i) {
    a[i] = uint8_t(i >> 8), b[i] = uint8_t(i);
    want[i] = b[i] == 0 ? uint8_t(255 - a[i]) : uint8_t(std::min(a[i] * 256 / b[i], 255));
  }
  for (const MergeRowKernels* k : Kernels()) {
    Bytes got(65536);
    k->ratioLookup8(a.data(), b.data(), got.data(), 65536, byRatio.data(), byValue.data());
    EXPECT_EQ(got, want);
  }
}

TEST(MergeRows, VariantsMatchPortableAtEveryTail) {
  const ColourTable byRatio = Colours(5), byValue = Colours(6);
  const Bytes table = testsupport::RandomBytes(256, 7);
  const auto& plain = kestrelink::merge::kMergeRowsPortable;
  for (const MergeRowKernels* k : Kernels()) {
    for (const uint32_t n : {1u, 7u, 8u, 31u, 32u, 33u, 63u, 64u, 65u, 130u, 191u, 1925u}) {
      Bytes a = testsupport::RandomBytes(n, n), b = testsupport::RandomBytes(n, n + 1000);
      for (uint32_t i = 0; i < n; i += 5) b[i] = 0;  // the ratio's b 0 rule
      for (uint32_t i = 2; i < n; i += 7) b[i] = a[i];
      for (const uint32_t w : {0u, 1u, 77u, 255u, 256u}) {
        Bytes want(n + 1, 0xEE), got(n + 1, 0xEE);
        plain.blend8(a.data(), b.data(), want.data(), n, w);
        k->blend8(a.data(), b.data(), got.data(), n, w);
        EXPECT_EQ(got, want) << n << " w " << w;
        plain.blendLookup8(a.data(), b.data(), want.data(), n, w, table.data());
        k->blendLookup8(a.data(), b.data(), got.data(), n, w, table.data());
        EXPECT_EQ(got, want) << n << " w " << w;
      }
      Bytes want(n + 1, 0xEE), got(n + 1, 0xEE);
      plain.lookup8(a.data(), want.data(), n, table.data());
      k->lookup8(a.data(), got.data(), n, table.data());
      EXPECT_EQ(got, want) << n;
      plain.ratioLookup8(a.data(), b.data(), want.data(), n, table.data(), byRatio.plane[1]);
      k->ratioLookup8(a.data(), b.data(), got.data(), n, table.data(), byRatio.plane[1]);
      EXPECT_EQ(got, want) << n;
      // BGR rows, with a guard byte past the end.
      Bytes wantBgr(3 * n + 1, 0xEE), gotBgr(3 * n + 1, 0xEE);
      plain.colour8(a.data(), wantBgr.data(), n, byValue);
      k->colour8(a.data(), gotBgr.data(), n, byValue);
      EXPECT_EQ(gotBgr, wantBgr) << n;
      plain.ratioColour8(a.data(), b.data(), wantBgr.data(), n, byRatio, byValue);
      k->ratioColour8(a.data(), b.data(), gotBgr.data(), n, byRatio, byValue);
      EXPECT_EQ(gotBgr, wantBgr) << n;
    }
  }
}

// 16-bit rows: samples above the depth are held at its top, the blend's
// weights 0 and 256 give b and a, and the table's last entry is read
// without reading past it (the table here is exactly top + 1 entries).
TEST(MergeRows, SixteenBitRowsHoldAtTheTop) {
  const uint32_t top = 4095;
  std::vector<uint16_t> table(top + 1);
  for (uint32_t v = 0; v <= top; ++v) table[v] = uint16_t(top - v);
  const auto& plain = kestrelink::merge::kMergeRowsPortable;
  for (const MergeRowKernels* k : Kernels()) {
    for (const uint32_t n : {1u, 15u, 16u, 17u, 33u, 100u}) {
      std::vector<uint16_t> a(n), b(n), out(n + 1, 0xEEEE), want(n + 1, 0xEEEE);
      for (uint32_t i = 0; i < n; ++i) {
        a[i] = uint16_t(i % 3 == 0 ? 65535 : i * 977 % 5000);  // some above 4095
        b[i] = uint16_t(i % 4 == 1 ? 4095 : i * 331 % 4200);
      }
      const auto hold = [&](uint16_t v) { return uint16_t(std::min<uint32_t>(v, top)); };
      k->blend16(a.data(), b.data(), out.data(), n, 0, top);
      for (uint32_t i = 0; i < n; ++i) ASSERT_EQ(out[i], hold(b[i])) << n << " " << i;
      k->blend16(a.data(), b.data(), out.data(), n, 256, top);
      for (uint32_t i = 0; i < n; ++i) ASSERT_EQ(out[i], hold(a[i])) << n << " " << i;
      k->blend16(a.data(), b.data(), out.data(), n, 64, top);
      for (uint32_t i = 0; i < n; ++i) ASSERT_EQ(out[i], (192 * hold(b[i]) + 64 * hold(a[i])) / 256) << n << " " << i;
      EXPECT_EQ(out[n], 0xEEEE);
      k->hold16(a.data(), out.data(), n, top);
      for (uint32_t i = 0; i < n; ++i) ASSERT_EQ(out[i], hold(a[i])) << n << " " << i;
      k->lookup16(a.data(), out.data(), n, table.data(), top);
      for (uint32_t i = 0; i < n; ++i) ASSERT_EQ(out[i], top - hold(a[i])) << n << " " << i;
      plain.lookup16(b.data(), want.data(), n, table.data(), top);
      k->lookup16(b.data(), out.data(), n, table.data(), top);
      EXPECT_EQ(out, want) << n;
    }
  }
}

// The 16-bit ratio index: samples held at the top before the integer
// quotient min(256 a / b, 255); b 0 takes the value's own index. Quotients
// near integers come from pairs like (k b + 1) / b and (k b - 1) / b.
TEST(MergeRows, SixteenBitRatioIndexIsTheIntegerQuotient) {
  Bytes byRatio(256);
  for (int q = 0; q < 256; ++q) byRatio[q] = uint8_t(q);
  for (const uint32_t top : {4095u, 65535u}) {
    const uint32_t n = 3000;
    std::vector<uint16_t> a(n), b(n);
    const Bytes r = testsupport::RandomBytes(4 * n, top);
    for (uint32_t i = 0; i < n; ++i) {
      b[i] = uint16_t((r[4 * i] << 8 | r[4 * i + 1]) & (i % 2 ? 0xFFFF : 0x0FFF));
      const uint32_t k = r[4 * i + 2];
      a[i] = uint16_t(std::min<uint32_t>(i % 3 == 0 ? (k * b[i] + 255) / 256 : (k * b[i]) / 256 + (i % 3 == 1), 65535));
      if (i % 11 == 0) b[i] = 0;
    }
    Bytes byValue = testsupport::RandomBytes(n, 3);
    for (const MergeRowKernels* k : Kernels()) {
      Bytes got(n + 1, 0xEE);
      k->ratioIndex16(a.data(), b.data(), byValue.data(), got.data(), n, top, byRatio.data());
      for (uint32_t i = 0; i < n; ++i) {
        const uint64_t sa = std::min<uint32_t>(a[i], top), sb = std::min<uint32_t>(b[i], top);
        const int want = b[i] == 0 ? byValue[i] : int(std::min<uint64_t>(sa * 256 / sb, 255));
        ASSERT_EQ(got[i], want) << "top " << top << " " << a[i] << "/" << b[i];
      }
      EXPECT_EQ(got[n], 0xEE);
    }
  }
}

}  // namespace
