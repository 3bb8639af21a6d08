// The gather variants of the joined-pixel lookups against the portable rows,
// with samples above the table's depth to check the index mask.
#include <gtest/gtest.h>

#include "convert/rows/LutRows.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::rows::LutRowKernels;

TEST(LutRowsVariants, MatchThePortableRows) {
  const LutRowKernels* tables[] = {&kestrelink::rows::kLutRowsPortable, nullptr, nullptr,
                                   &kestrelink::rows::kLutRowsAVX2, &kestrelink::rows::kLutRowsAVX512};
  const auto ref = kestrelink::rows::kLutRowsPortable;
  std::vector<uint32_t> table(4096);
  for (uint32_t i = 0; i < table.size(); ++i) table[i] = i * 2654435761u;
  for (auto v : testsupport::RunnableVariants()) {
    if (!tables[v] || v == kestrelink::kVariantPortable) continue;
    SCOPED_TRACE(kestrelink::VariantName(v));
    for (uint32_t w = 0; w <= 70; ++w) {
      const auto src = testsupport::RandomBytes(2 * size_t(w) + 1, w);
      std::vector<uint8_t> want(4 * size_t(w) + 8, 0x3C), got(want);
      ref.lut8_to_bgrx(src.data() + 1, want.data() + 1, w, table.data());
      tables[v]->lut8_to_bgrx(src.data() + 1, got.data() + 1, w, table.data());
      ASSERT_EQ(want, got) << "lut8 w=" << w;
      ref.lut16_to_bgrx(src.data() + 1, want.data() + 1, w, table.data(), 4095);
      tables[v]->lut16_to_bgrx(src.data() + 1, got.data() + 1, w, table.data(), 4095);
      ASSERT_EQ(want, got) << "lut16 w=" << w;
    }
  }
}

}  // namespace
