// 5-6-5 words to 24-bit BGR: each channel at the top of its byte, the low
// bits 0; at every variant, with steps longer than a row and negative steps.
#include <gtest/gtest.h>

#include "CopyTestRegion.h"

namespace {

const copytest::InterleavedKernel kBgr565{
    "ippiBGR565ToBGR_16u8u_C3R", 2, 3,
    [](const uint8_t* s, int ss, uint8_t* d, int ds, IppiSize size) {
      return ippiBGR565ToBGR_16u8u_C3R(reinterpret_cast<const Ipp16u*>(s), ss, d, ds, size);
    },
    [](const uint8_t* s, uint8_t* d) {
      const uint32_t u = s[0] | s[1] << 8;
      d[0] = uint8_t((u & 31) << 3);         // B, bits 0-4
      d[1] = uint8_t(((u >> 5) & 63) << 2);  // G, bits 5-10
      d[2] = uint8_t((u >> 11) << 3);        // R, bits 11-15
    }};

TEST(BGR565ToBGR, ChannelsAtTheTopOfTheirBytes) { copytest::CheckInterleaved(kBgr565); }

TEST(BGR565ToBGR, WhiteAndThePrimaries) {
  const Ipp16u src[4] = {0xFFFF, 0x001F, 0x07E0, 0xF800};
  uint8_t dst[12];
  ASSERT_EQ(ippiBGR565ToBGR_16u8u_C3R(src, 8, dst, 12, IppiSize{4, 1}), ippStsNoErr);
  const uint8_t want[12] = {0xF8, 0xFC, 0xF8, 0xF8, 0, 0, 0, 0xFC, 0, 0, 0, 0xF8};
  for (int i = 0; i < 12; ++i) EXPECT_EQ(dst[i], want[i]) << "byte " << i;
}

TEST(BGR565ToBGR, RefusesNullsAndEmptySizes) { copytest::CheckRefusals(kBgr565); }

}  // namespace
