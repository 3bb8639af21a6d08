// Same-format copies: the block copy and the row-reversing copy.
#include <gtest/gtest.h>

#include <algorithm>

#include "frame/FrameCopy.h"
#include "support/TestSupport.h"

namespace {

TEST(FrameCopy, BlockAndFlippedCopies) {
  for (uint32_t rows : {1u, 2u, 7u}) {
    const uint32_t rowBytes = 13;
    const auto src = testsupport::RandomBytes(size_t(rowBytes) * rows, rows);
    std::vector<uint8_t> plain(src.size() + 4, 0x11), flipped(src.size() + 4, 0x11);
    kestrelink::CopyFrame(src.data(), rowBytes, rows, plain.data(), false);
    kestrelink::CopyFrame(src.data(), rowBytes, rows, flipped.data(), true);
    EXPECT_TRUE(std::equal(src.begin(), src.end(), plain.begin()));
    for (uint32_t r = 0; r < rows; ++r)
      EXPECT_TRUE(std::equal(src.begin() + r * rowBytes, src.begin() + (r + 1) * rowBytes,
                             flipped.begin() + (rows - 1 - r) * rowBytes))
          << "row " << r;
    EXPECT_EQ(plain[src.size()], 0x11);
    EXPECT_EQ(flipped[src.size()], 0x11);
  }
}

}  // namespace
