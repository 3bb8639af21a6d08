// Every vector variant of the YCbCr rows against the portable rows, byte for
// byte, on random data, every width up to a few vectors, unaligned buffers
// and guard bytes after each output.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "primitives/YccRows.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrelink::ycc;

const YccRowKernels* Table(kestrelink::CpuVariant v) {
  const YccRowKernels* tables[] = {&kYccRowsPortable, nullptr, nullptr, &kYccRowsAVX2, &kYccRowsAVX512};
  return tables[v];
}

// The tables this machine runs, by name: each variant's, and the AVX-512
// rows with VNNI where the processor has it.
std::vector<std::pair<std::string, const YccRowKernels*>> Tables() {
  std::vector<std::pair<std::string, const YccRowKernels*>> tables;
  for (auto v : testsupport::RunnableVariants())
    if (Table(v)) tables.emplace_back(kestrelink::VariantName(v), Table(v));
  if (kestrelink::platform::GetCpuFeatures().avx512vnni && Table(kestrelink::kVariantAVX512) &&
      !tables.empty() && tables.back().second == Table(kestrelink::kVariantAVX512))
    tables.emplace_back("avx512 with VNNI", &kYccRowsAVX512Vnni);
  return tables;
}

using Bytes = std::vector<uint8_t>;

// Output buffers of one call: guard-filled, one byte in from an aligned start.
struct Outputs {
  explicit Outputs(std::initializer_list<size_t> sizes) {
    for (size_t n : sizes) buffers.emplace_back(n + 40, 0xC3);
  }
  uint8_t* operator[](size_t i) { return buffers[i].data() + 1; }
  std::vector<Bytes> buffers;
};

TEST(YccRowsVariants, DecodersMatchThePortableRows) {
  const YccRowKernels& ref = kYccRowsPortable;
  for (const auto& [name, k] : Tables()) {
    if (k == &ref) continue;
    SCOPED_TRACE(name);
    for (uint32_t pairs = 0; pairs <= 70; ++pairs) {
      const Bytes src = testsupport::RandomBytes(4 * size_t(pairs) + 1, pairs + 7);
      Outputs want({8 * size_t(pairs)}), got({8 * size_t(pairs)});
      ref.pairs_to_bgrx(src.data() + 1, want[0], pairs, 0x3C);
      k->pairs_to_bgrx(src.data() + 1, got[0], pairs, 0x3C);
      ASSERT_EQ(want.buffers, got.buffers) << "pairs_to_bgrx, pairs " << pairs;
      for (ChannelOrder order : {kOrderBGR, kOrderRGB}) {
        Outputs want3({6 * size_t(pairs)}), got3({6 * size_t(pairs)});
        ref.pairs_to_c3(src.data() + 1, want3[0], pairs, order);
        k->pairs_to_c3(src.data() + 1, got3[0], pairs, order);
        ASSERT_EQ(want3.buffers, got3.buffers) << "pairs_to_c3, order " << order << ", pairs " << pairs;
        ref.uyvy_to_c3(src.data() + 1, want3[0], pairs, order);
        k->uyvy_to_c3(src.data() + 1, got3[0], pairs, order);
        ASSERT_EQ(want3.buffers, got3.buffers) << "uyvy_to_c3, order " << order << ", pairs " << pairs;
      }
      ref.uyvy_to_bgrx(src.data() + 1, want[0], pairs, 0x3C);
      k->uyvy_to_bgrx(src.data() + 1, got[0], pairs, 0x3C);
      ASSERT_EQ(want.buffers, got.buffers) << "uyvy_to_bgrx, pairs " << pairs;
    }
  }
}

TEST(YccRowsVariants, EncodersMatchThePortableRows) {
  const YccRowKernels& ref = kYccRowsPortable;
  for (const auto& [name, k] : Tables()) {
    if (k == &ref) continue;
    SCOPED_TRACE(name);
    for (uint32_t w = 0; w <= 140; ++w) {
      const Bytes src0 = testsupport::RandomBytes(4 * size_t(w) + 1, w + 11);
      const Bytes src1 = testsupport::RandomBytes(4 * size_t(w) + 1, w + 13);
      const size_t c = w / 2;
      for (ChannelOrder order : {kOrderBGR, kOrderRGB}) {
        Outputs want({w, c, c}), got({w, c, c});
        ref.c3_to_planar422(src0.data() + 1, want[0], want[1], want[2], w, order);
        k->c3_to_planar422(src0.data() + 1, got[0], got[1], got[2], w, order);
        ASSERT_EQ(want.buffers, got.buffers) << "c3_to_planar422, order " << order << ", w " << w;
        Outputs want2({w, w, c, c}), got2({w, w, c, c});
        ref.c3_to_planar420(src0.data() + 1, src1.data() + 1, want2[0], want2[1], want2[2], want2[3], w, order);
        k->c3_to_planar420(src0.data() + 1, src1.data() + 1, got2[0], got2[1], got2[2], got2[3], w, order);
        ASSERT_EQ(want2.buffers, got2.buffers) << "c3_to_planar420, order " << order << ", w " << w;
      }
      Outputs want({w, c, c}), got({w, c, c});
      ref.bgrx_to_planar422(src0.data() + 1, want[0], want[1], want[2], w);
      k->bgrx_to_planar422(src0.data() + 1, got[0], got[1], got[2], w);
      ASSERT_EQ(want.buffers, got.buffers) << "bgrx_to_planar422, w " << w;
      Outputs want2({w, w, c, c}), got2({w, w, c, c});
      ref.bgrx_to_planar420(src0.data() + 1, src1.data() + 1, want2[0], want2[1], want2[2], want2[3], w);
      k->bgrx_to_planar420(src0.data() + 1, src1.data() + 1, got2[0], got2[1], got2[2], got2[3], w);
      ASSERT_EQ(want2.buffers, got2.buffers) << "bgrx_to_planar420, w " << w;
    }
  }
}

// The Cb Y0 Cr Y1 rows give what the Y0 Cb Y1 Cr rows give for the same
// groups with the bytes of each 16-bit word swapped.
TEST(YccRowsVariants, UyvyRowsAreThePairRowsInTheOtherByteOrder) {
  for (const auto& [name, k] : Tables()) {
    SCOPED_TRACE(name);
    for (uint32_t pairs : {1u, 7u, 8u, 33u}) {
      const Bytes uyvy = testsupport::RandomBytes(4 * size_t(pairs), pairs + 21);
      Bytes yuyv(uyvy.size());
      for (size_t i = 0; i < uyvy.size(); i += 2) yuyv[i] = uyvy[i + 1], yuyv[i + 1] = uyvy[i];
      Outputs want({8 * size_t(pairs)}), got({8 * size_t(pairs)});
      k->pairs_to_bgrx(yuyv.data(), want[0], pairs, 0);
      k->uyvy_to_bgrx(uyvy.data(), got[0], pairs, 0);
      ASSERT_EQ(want.buffers, got.buffers) << "bgrx, pairs " << pairs;
      Outputs want3({6 * size_t(pairs)}), got3({6 * size_t(pairs)});
      k->pairs_to_c3(yuyv.data(), want3[0], pairs, kOrderRGB);
      k->uyvy_to_c3(uyvy.data(), got3[0], pairs, kOrderRGB);
      ASSERT_EQ(want3.buffers, got3.buffers) << "rgb, pairs " << pairs;
    }
  }
}

// Extreme inputs, where saturation and the offsets matter most.
TEST(YccRowsVariants, ExtremesMatchThePortableRows) {
  Bytes src;
  for (int a : {0, 255})
    for (int b : {0, 255})
      for (int c : {0, 255})
        for (int d : {0, 255}) src.insert(src.end(), {uint8_t(a), uint8_t(b), uint8_t(c), uint8_t(d)});
  src.resize(4 * 64, 128);
  for (const auto& [name, k] : Tables()) {
    SCOPED_TRACE(name);
    Outputs want({512}), got({512});
    kYccRowsPortable.pairs_to_bgrx(src.data(), want[0], 64, 0);
    k->pairs_to_bgrx(src.data(), got[0], 64, 0);
    EXPECT_EQ(want.buffers, got.buffers) << name;
    kYccRowsPortable.uyvy_to_bgrx(src.data(), want[0], 64, 0);
    k->uyvy_to_bgrx(src.data(), got[0], 64, 0);
    EXPECT_EQ(want.buffers, got.buffers) << "uyvy";
    Outputs want3({64, 32, 32}), got3({64, 32, 32});
    kYccRowsPortable.bgrx_to_planar422(src.data(), want3[0], want3[1], want3[2], 64);
    k->bgrx_to_planar422(src.data(), got3[0], got3[1], got3[2], 64);
    EXPECT_EQ(want3.buffers, got3.buffers) << "planar";
  }
}

TEST(YccRowsVariants, TableFollowsTheActiveVariant) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    const YccRowKernels* want = Table(v) ? Table(v) : &kYccRowsPortable;
    if (want == &kYccRowsAVX512 && kestrelink::platform::GetCpuFeatures().avx512vnni) want = &kYccRowsAVX512Vnni;
    EXPECT_EQ(&YccRows(), want) << kestrelink::VariantName(v);
  }
}

}  // namespace
