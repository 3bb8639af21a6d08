// Channel reordering of 8- and 16-bit three-channel images: the order the
// library passes (2, 1, 0) and others, at every variant, with steps longer
// than a row and negative steps; orders that name no channel are refused.
#include <gtest/gtest.h>

#include <array>

#include "CopyTestRegion.h"

namespace {

using copytest::InterleavedKernel;

InterleavedKernel Swap8(std::array<int, 3> order) {
  return {"ippiSwapChannels_8u_C3R", 3, 3,
          [order](const uint8_t* s, int ss, uint8_t* d, int ds, IppiSize size) {
            return ippiSwapChannels_8u_C3R(s, ss, d, ds, size, order.data());
          },
          [order](const uint8_t* s, uint8_t* d) {
            for (int i = 0; i < 3; ++i) d[i] = s[order[i]];
          }};
}

InterleavedKernel Swap16(std::array<int, 3> order) {
  return {"ippiSwapChannels_16u_C3R", 6, 6,
          [order](const uint8_t* s, int ss, uint8_t* d, int ds, IppiSize size) {
            return ippiSwapChannels_16u_C3R(reinterpret_cast<const Ipp16u*>(s), ss, reinterpret_cast<Ipp16u*>(d), ds,
                                            size, order.data());
          },
          [order](const uint8_t* s, uint8_t* d) {
            for (int i = 0; i < 3; ++i) d[2 * i] = s[2 * order[i]], d[2 * i + 1] = s[2 * order[i] + 1];
          }};
}

TEST(SwapChannels, EveryOrderAtEveryVariant) {
  const std::array<int, 3> orders[] = {{2, 1, 0}, {0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 0, 0}, {1, 1, 2}};
  for (const auto& order : orders) {
    SCOPED_TRACE("order " + std::to_string(order[0]) + std::to_string(order[1]) + std::to_string(order[2]));
    copytest::CheckInterleaved(Swap8(order));
    copytest::CheckInterleaved(Swap16(order));
  }
}

TEST(SwapChannels, RefusesNullsEmptySizesAndOrdersOutsideTheChannels) {
  for (const auto& k : {Swap8({2, 1, 0}), Swap16({2, 1, 0})}) copytest::CheckRefusals(k);
  std::vector<uint8_t> src(64, 1), dst(64, 0x5A);
  const std::vector<uint8_t> untouched = dst;
  for (std::array<int, 3> bad : {std::array<int, 3>{3, 1, 0}, {2, -1, 0}, {0, 1, 7}}) {
    EXPECT_EQ(ippiSwapChannels_8u_C3R(src.data(), 6, dst.data(), 6, IppiSize{2, 2}, bad.data()), ippStsChannelOrderErr);
    EXPECT_EQ(ippiSwapChannels_16u_C3R(reinterpret_cast<const Ipp16u*>(src.data()), 12,
                                       reinterpret_cast<Ipp16u*>(dst.data()), 12, IppiSize{2, 2}, bad.data()),
              ippStsChannelOrderErr);
  }
  EXPECT_EQ(ippiSwapChannels_8u_C3R(src.data(), 6, dst.data(), 6, IppiSize{2, 2}, nullptr), ippStsNullPtrErr);
  EXPECT_EQ(dst, untouched);
}

}  // namespace
