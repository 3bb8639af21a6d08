// Every vector variant of the mono row kernels against the portable rows, on
// random data, every width up to a few vectors, and shift counts in and out
// of range.
#include <gtest/gtest.h>

#include "convert/rows/MonoRows.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::rows::MonoRowKernels;

const MonoRowKernels* Table(kestrelink::CpuVariant v) {
  using namespace kestrelink::rows;
  const MonoRowKernels* tables[] = {&kMonoRowsPortable, &kMonoRowsSSE2, &kMonoRowsSSSE3, &kMonoRowsAVX2,
                                    &kMonoRowsAVX512};
  return tables[v];
}

template <class Row>
void Compare(const char* name, Row portable, Row variant, int srcBpp, int dstBpp, uint32_t shift) {
  for (uint32_t w = 0; w <= 200; ++w) {
    // Unaligned starts on both sides.
    auto src = testsupport::RandomBytes(size_t(w) * srcBpp + 1, w + 1);
    std::vector<uint8_t> want(size_t(w) * dstBpp + 65, 0xC3), got(want);
    if constexpr (std::is_invocable_v<Row, const uint8_t*, uint8_t*, uint32_t>) {
      portable(src.data() + 1, want.data() + 1, w);
      variant(src.data() + 1, got.data() + 1, w);
    } else {
      portable(src.data() + 1, want.data() + 1, w, shift);
      variant(src.data() + 1, got.data() + 1, w, shift);
    }
    ASSERT_EQ(want, got) << name << " w=" << w << " shift=" << shift;
  }
}

TEST(MonoRowsVariants, MatchThePortableRows) {
  const MonoRowKernels& ref = *Table(kestrelink::kVariantPortable);
  for (auto v : testsupport::RunnableVariants()) {
    if (v == kestrelink::kVariantPortable) continue;
    SCOPED_TRACE(kestrelink::VariantName(v));
    const MonoRowKernels& k = *Table(v);
    Compare("mono8_to_bgrx", ref.mono8_to_bgrx, k.mono8_to_bgrx, 1, 4, 0);
    Compare("mono8_to_bgr", ref.mono8_to_bgr, k.mono8_to_bgr, 1, 3, 0);
    Compare("mono8_to_mono16msb", ref.mono8_to_mono16msb, k.mono8_to_mono16msb, 1, 2, 0);
    Compare("swap_bytes16", ref.swap_bytes16, k.swap_bytes16, 2, 2, 0);
    for (uint32_t shift : {0u, 1u, 2u, 4u, 6u, 8u, 15u, 16u, 24u, 31u, 0xFFFFFFFCu}) {
      Compare("mono16_to_bgrx", ref.mono16_to_bgrx, k.mono16_to_bgrx, 2, 4, shift);
      Compare("mono16_to_bgr", ref.mono16_to_bgr, k.mono16_to_bgr, 2, 3, shift);
      Compare("mono16_to_mono8", ref.mono16_to_mono8, k.mono16_to_mono8, 2, 1, shift);
      Compare("lshift16", ref.lshift16, k.lshift16, 2, 2, shift);
    }
  }
}

TEST(MonoRowsVariants, ActiveVariantFollowsTheForcing) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    EXPECT_EQ(kestrelink::ActiveVariant(), v);
    EXPECT_EQ(&kestrelink::rows::MonoRows(), Table(v));
  }
  EXPECT_EQ(kestrelink::ActiveVariant(), kestrelink::MachineVariant());
}

}  // namespace
