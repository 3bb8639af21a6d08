// Every vector variant of the colour row kernels against the portable rows:
// random data, every width up to a few vectors, unaligned rows, and a
// destination already holding random bytes, so that the bytes a row must
// keep are checked along with the ones it writes.
#include <gtest/gtest.h>

#include <functional>

#include "convert/rows/ColourRowsCopy.h"
#include "convert/rows/ColourRowsPacked.h"
#include "convert/rows/ColourRowsPlanar.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrelink::rows;
using kestrelink::CpuVariant;

// The vector variants this machine runs that have tables of their own.
std::vector<CpuVariant> VectorVariants() {
  std::vector<CpuVariant> out;
  for (auto v : testsupport::RunnableVariants())
    if (v == kestrelink::kVariantAVX2 || v == kestrelink::kVariantAVX512) out.push_back(v);
  return out;
}

template <class Table>
const Table& Of(CpuVariant v, const Table& portable, const Table& avx2, const Table& avx512) {
  return v == kestrelink::kVariantAVX512 ? avx512 : v == kestrelink::kVariantAVX2 ? avx2 : portable;
}

// Runs row(src, dst, w) of both tables for every width on the same source
// and the same prefilled destination, and compares the destinations whole.
using RowCall = std::function<void(const uint8_t* src, uint8_t* dst, uint32_t w)>;
void Compare(const std::string& name, size_t srcBytesPerPixel, size_t dstBytesPerPixel, const RowCall& portable,
             const RowCall& vector) {
  for (uint32_t w = 0; w <= 200; ++w) {
    const auto src = testsupport::RandomBytes(srcBytesPerPixel * w + 1, 7 * w + 1);
    auto want = testsupport::RandomBytes(dstBytesPerPixel * w + 65, 11 * w + 3);
    auto got = want;
    portable(src.data() + 1, want.data() + 1, w);
    vector(src.data() + 1, got.data() + 1, w);
    ASSERT_EQ(want, got) << name << " w=" << w;
  }
}

TEST(ColourRowsVariants, CopyRowsMatchThePortableRows) {
  const CopyRowKernels& ref = kCopyRowsPortable;
  const ChannelOrder orders[] = {kSameOrder, kReversedOrder, {{1, 2, 0}}, {{0, 0, 2}}, {{2, 2, 2}}};
  for (auto v : VectorVariants()) {
    SCOPED_TRACE(kestrelink::VariantName(v));
    const CopyRowKernels& k = Of(v, kCopyRowsPortable, kCopyRowsAVX2, kCopyRowsAVX512);
    for (const ChannelOrder& o : orders) {
      const std::string order = " order " + std::to_string(o.c[0]) + std::to_string(o.c[1]) + std::to_string(o.c[2]);
      for (uint32_t shift : {0u, 1u, 2u, 7u, 8u, 15u, 31u}) {
        auto call = [o, shift](auto row) { return [=](const uint8_t* s, uint8_t* d, uint32_t w) { row(s, d, w, o, shift); }; };
        Compare("bytes3_to_4" + order + " shift " + std::to_string(shift), 3, 4, call(ref.bytes3_to_4),
                call(k.bytes3_to_4));
      }
      for (uint32_t shift : {0u, 2u, 4u, 8u, 15u, 16u, 31u}) {
        auto call = [o, shift](auto row) { return [=](const uint8_t* s, uint8_t* d, uint32_t w) { row(s, d, w, o, shift); }; };
        Compare("words3_to_bytes3of4" + order + " shift " + std::to_string(shift), 6, 4,
                call(ref.words3_to_bytes3of4), call(k.words3_to_bytes3of4));
        Compare("words3_to_bytes3" + order + " shift " + std::to_string(shift), 6, 3, call(ref.words3_to_bytes3),
                call(k.words3_to_bytes3));
      }
      auto call = [o](auto row) { return [=](const uint8_t* s, uint8_t* d, uint32_t w) { row(s, d, w, o); }; };
      Compare("reorder3x8" + order, 3, 3, call(ref.reorder3x8), call(k.reorder3x8));
      Compare("reorder3x16" + order, 6, 6, call(ref.reorder3x16), call(k.reorder3x16));
    }
    Compare("bytes4_to_3", 4, 3, ref.bytes4_to_3, k.bytes4_to_3);
    Compare("words4_to_3", 8, 6, ref.words4_to_3, k.words4_to_3);
    for (uint32_t shift : {0u, 2u, 4u, 8u, 15u, 16u, 31u}) {
      auto call = [shift](auto row) { return [=](const uint8_t* s, uint8_t* d, uint32_t w) { row(s, d, w, shift); }; };
      Compare("words4_to_bytes3of4 shift " + std::to_string(shift), 8, 4, call(ref.words4_to_bytes3of4),
              call(k.words4_to_bytes3of4));
      Compare("words4_to_bytes3 shift " + std::to_string(shift), 8, 3, call(ref.words4_to_bytes3),
              call(k.words4_to_bytes3));
    }
    // Planes live one after another in one buffer, w bytes each.
    auto split = [](auto row) {
      return [=](const uint8_t* s, uint8_t* d, uint32_t w) { row(s, d, d + w, d + 2 * size_t(w), w); };
    };
    auto merge = [](auto row) {
      return [=](const uint8_t* s, uint8_t* d, uint32_t w) { row(s, s + w, s + 2 * size_t(w), d, w); };
    };
    Compare("split3", 3, 3, split(ref.split3), split(k.split3));
    Compare("merge3", 3, 3, merge(ref.merge3), merge(k.merge3));
  }
}

TEST(ColourRowsVariants, PackedRowsMatchThePortableRows) {
  struct Entry {
    const char* name;
    PackedRow PackedRowKernels::*row;
    size_t srcBytes, dstBytes;
  };
  const Entry entries[] = {
      {"bgr555_to_bgrx", &PackedRowKernels::bgr555_to_bgrx, 2, 4},
      {"bgr555_to_bgr24", &PackedRowKernels::bgr555_to_bgr24, 2, 3},
      {"bgr555_to_rgb24", &PackedRowKernels::bgr555_to_rgb24, 2, 3},
      {"bgr565_to_bgrx", &PackedRowKernels::bgr565_to_bgrx, 2, 4},
      {"bgr565_to_bgr24", &PackedRowKernels::bgr565_to_bgr24, 2, 3},
      {"bgr565_to_rgb24", &PackedRowKernels::bgr565_to_rgb24, 2, 3},
      {"bgr10_to_bgrx", &PackedRowKernels::bgr10_to_bgrx, 4, 4},
      {"bgr10_to_bgr24", &PackedRowKernels::bgr10_to_bgr24, 4, 3},
      {"phoenix_to_bgrx", &PackedRowKernels::phoenix_to_bgrx, 4, 4},
      {"phoenix_to_bgr24", &PackedRowKernels::phoenix_to_bgr24, 4, 3},
      {"rgb_phoenix_to_bgrx", &PackedRowKernels::rgb_phoenix_to_bgrx, 4, 4},
      {"rgb_phoenix_to_bgr24", &PackedRowKernels::rgb_phoenix_to_bgr24, 4, 3},
      {"gvsp_v1_to_bgrx", &PackedRowKernels::gvsp_v1_to_bgrx, 4, 4},
      {"gvsp_v1_to_bgr24", &PackedRowKernels::gvsp_v1_to_bgr24, 4, 3},
      {"gvsp_v2_to_bgrx", &PackedRowKernels::gvsp_v2_to_bgrx, 4, 4},
      {"gvsp_v2_to_bgr24", &PackedRowKernels::gvsp_v2_to_bgr24, 4, 3},
  };
  for (auto v : VectorVariants()) {
    SCOPED_TRACE(kestrelink::VariantName(v));
    const PackedRowKernels& k = Of(v, kPackedRowsPortable, kPackedRowsAVX2, kPackedRowsAVX512);
    for (const Entry& e : entries) Compare(e.name, e.srcBytes, e.dstBytes, kPackedRowsPortable.*e.row, k.*e.row);
  }
}

// The converter's pixel-part tables, built here from their rule.
struct PartTables {
  explicit PartTables(uint32_t bits) {
    for (int i = 0; i < 3; ++i) part[i].resize(size_t(1) << bits);
    for (uint32_t s = 0; s < (1u << bits); ++s) {
      const uint32_t t = bits == 8 ? s : s == 0 ? 0 : (s - 1) >> (bits - 8);
      for (int i = 0; i < 3; ++i) part[i][s] = t << (8 * i);
    }
    tables = {{part[0].data(), part[1].data(), part[2].data()}, bits};
  }
  std::vector<uint32_t> part[3];
  PixelPartTables tables;
};

TEST(ColourRowsVariants, PlanarRowsMatchThePortableRows) {
  const PartTables t8(8), t10(10), t12(12);
  for (auto v : VectorVariants()) {
    SCOPED_TRACE(kestrelink::VariantName(v));
    const PlanarRowKernels& k = Of(v, kPlanarRowsPortable, kPlanarRowsAVX2, kPlanarRowsAVX512);
    const PlanarRowKernels& ref = kPlanarRowsPortable;
    // The three planes lie one after another in the source buffer.
    auto tabled = [](auto row, size_t sample, const PixelPartTables& t) {
      return [=, &t](const uint8_t* s, uint8_t* d, uint32_t w) {
        row(s, s + sample * w, s + 2 * sample * w, d, w, t);
      };
    };
    Compare("bytes_to_bgrx", 3, 4, tabled(ref.bytes_to_bgrx, 1, t8.tables), tabled(k.bytes_to_bgrx, 1, t8.tables));
    for (const PartTables* t : {&t10, &t12})
      Compare("words_to_bgrx bits " + std::to_string(t->tables.bits), 6, 4, tabled(ref.words_to_bgrx, 2, t->tables),
              tabled(k.words_to_bgrx, 2, t->tables));
    for (uint32_t shift : {0u, 2u, 4u, 8u, 16u, 24u}) {
      auto shifted = [shift](auto row) {
        return [=](const uint8_t* s, uint8_t* d, uint32_t w) { row(s, s + 2 * size_t(w), s + 4 * size_t(w), d, w, shift); };
      };
      Compare("words_shift_to_bgrx shift " + std::to_string(shift), 6, 4, shifted(ref.words_shift_to_bgrx),
              shifted(k.words_shift_to_bgrx));
      Compare("words_shift_to_bgr24 shift " + std::to_string(shift), 6, 3, shifted(ref.words_shift_to_bgr24),
              shifted(k.words_shift_to_bgr24));
    }
  }
}

TEST(ColourRowsVariants, TheActiveVariantPicksItsTables) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    const bool vector = v == kestrelink::kVariantAVX2 || v == kestrelink::kVariantAVX512;
    EXPECT_EQ(&CopyRows(), vector ? &Of(v, kCopyRowsPortable, kCopyRowsAVX2, kCopyRowsAVX512) : &kCopyRowsPortable);
    EXPECT_EQ(&PackedRows(), vector ? &Of(v, kPackedRowsPortable, kPackedRowsAVX2, kPackedRowsAVX512) : &kPackedRowsPortable);
    EXPECT_EQ(&PlanarRows(), vector ? &Of(v, kPlanarRowsPortable, kPlanarRowsAVX2, kPlanarRowsAVX512) : &kPlanarRowsPortable);
  }
}

}  // namespace
