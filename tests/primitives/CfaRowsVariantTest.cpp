// The vector rows of the colour-filter-array interpolation against the
// portable rows on random mosaics, for every start parity, odd spans, both
// green phases and 16-bit clamp values.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "primitives/CfaRows.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrelink::cfa;

template <class Sample>
struct Rows {
  std::vector<Sample> data[5];
  Rows(uint32_t w, uint32_t limit, uint32_t seed) {
    std::mt19937 rng(seed);
    for (auto& r : data) {
      r.resize(w);
      for (auto& s : r) s = Sample(rng() % limit);
    }
  }
};

struct Planes {
  std::vector<uint16_t> x, g, y;
  explicit Planes(uint32_t w) : x(w, 0xABCD), g(w, 0xABCD), y(w, 0xABCD) {}
  bool operator==(const Planes&) const = default;
};

TEST(CfaRowsVariant, EveryVariantMatchesThePortableRows) {
  const uint32_t w = 211;
  const uint32_t spans[][2] = {{2, 209}, {3, 200}, {2, 3}, {5, 40}, {2, 66}, {7, 140}};
  for (const auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    const CfaRowKernels& k = CfaRows();
    for (const auto& span : spans)
      for (const bool greenOdd : {false, true}) {
        SCOPED_TRACE(std::string(kestrelink::VariantName(variant)) + " columns " + std::to_string(span[0]) + ".." +
                     std::to_string(span[1]) + (greenOdd ? " green odd" : " green even"));
        const Rows<uint8_t> in8(w, 256, span[0] * 7 + span[1]);
        const Window8 win8{{in8.data[0].data(), in8.data[1].data(), in8.data[2].data(), in8.data[3].data(),
                            in8.data[4].data()}};
        std::vector<uint8_t> want[3], got[3];
        for (int p = 0; p < 3; ++p) want[p].assign(w, 0xEE), got[p].assign(w, 0xEE);
        Interior8Portable(win8, {want[0].data(), want[1].data(), want[2].data(), greenOdd}, span[0], span[1]);
        k.interior8(win8, {got[0].data(), got[1].data(), got[2].data(), greenOdd}, span[0], span[1]);
        for (int p = 0; p < 3; ++p) EXPECT_EQ(got[p], want[p]) << "8-bit plane " << p;
        for (const uint32_t top : {4095u, 65535u, 1023u}) {
          const Rows<uint16_t> in16(w, top + 1, span[0] + top);
          const Window16 win16{{in16.data[0].data(), in16.data[1].data(), in16.data[2].data(), in16.data[3].data(),
                                in16.data[4].data()}};
          Planes want16(w), got16(w);
          Interior16Portable(win16, {want16.x.data(), want16.g.data(), want16.y.data(), greenOdd}, span[0], span[1],
                             top);
          k.interior16(win16, {got16.x.data(), got16.g.data(), got16.y.data(), greenOdd}, span[0], span[1], top);
          EXPECT_TRUE(got16 == want16) << "16-bit, clamp " << top;
        }
      }
  }
}

TEST(CfaRowsVariant, PackingAndRowBitsMatchThePortableRows) {
  for (const auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    for (const uint32_t w : {1u, 31u, 32u, 33u, 95u, 200u}) {
      SCOPED_TRACE(std::string(kestrelink::VariantName(variant)) + " width " + std::to_string(w));
      const Rows<uint16_t> in(w, 65536, w);
      std::vector<uint16_t> want(3 * w + 5, 0x1234), got(3 * w + 5, 0x1234);
      Pack16Portable(in.data[0].data(), in.data[1].data(), in.data[2].data(), want.data(), w);
      CfaRows().pack16(in.data[0].data(), in.data[1].data(), in.data[2].data(), got.data(), w);
      EXPECT_EQ(got, want);
      const Rows<uint16_t> small(w, 3000, w + 1);
      EXPECT_EQ(CfaRows().bits16(small.data[0].data(), w), Bits16Portable(small.data[0].data(), w));
      EXPECT_EQ(CfaRows().bits16(in.data[1].data(), w), Bits16Portable(in.data[1].data(), w));
      const Rows<uint8_t> bytes(w, 256, w + 2);
      std::vector<uint8_t> want4 = testsupport::RandomBytes(4 * w + 3, w), got4 = want4;
      Pack8x4Portable(bytes.data[0].data(), bytes.data[1].data(), bytes.data[2].data(), want4.data(), w);
      CfaRows().pack8x4(bytes.data[0].data(), bytes.data[1].data(), bytes.data[2].data(), got4.data(), w);
      EXPECT_EQ(got4, want4);
    }
  }
}

}  // namespace
