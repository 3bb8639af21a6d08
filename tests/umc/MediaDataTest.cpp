// Buffers, views and status texts of the media framework.
#include <gtest/gtest.h>

#include "umc/MediaData.h"
#include "umc/UmcStatus.h"

namespace {

TEST(UmcMediaData, ASizeAllocatesAnOwnedBufferWithNoData) {
  UMC::MediaData none(0);
  EXPECT_FALSE(none.OwnsBuffer());
  EXPECT_EQ(none.GetBufferPointer(), nullptr);
  EXPECT_EQ(none.GetTime(), -1.0);
  UMC::MediaData owned(100);
  EXPECT_TRUE(owned.OwnsBuffer());
  EXPECT_EQ(owned.GetBufferSize(), 100u);
  EXPECT_EQ(owned.GetDataSize(), 0u);
}

TEST(UmcMediaData, AViewConsumesFromTheFrontAndRefusesToGrowPastItsBuffer) {
  uint8_t bytes[16] = {};
  UMC::MediaData view;
  view.SetBufferPointer(bytes, sizeof bytes);
  EXPECT_EQ(view.SetDataSize(17), UMC::UMC_ERR_FAILED);
  ASSERT_EQ(view.SetDataSize(16), UMC::UMC_OK);
  ASSERT_EQ(view.MoveDataPointer(10), UMC::UMC_OK);
  EXPECT_EQ(view.GetDataPointer(), bytes + 10);
  EXPECT_EQ(view.GetDataSize(), 6u);
  EXPECT_EQ(view.MoveDataPointer(7), UMC::UMC_ERR_FAILED);
  EXPECT_EQ(view.SetDataSize(7), UMC::UMC_ERR_FAILED);  // 10 consumed + 7 is past the end
  view.Reset();
  EXPECT_EQ(view.GetDataPointer(), bytes);
  EXPECT_EQ(view.GetDataSize(), 0u);
  view.Close();
  EXPECT_EQ(view.GetBufferPointer(), nullptr);
}

TEST(UmcStatus, EveryCodeHasItsTextAndOthersNone) {
  const struct {
    UMC::Status code;
    const char* text;
  } rows[] = {
      {0, "No any errors"},
      {-999, "General operation fault"},
      {-998, "Object was not initialized before usage"},
      {-987, "Timeout"},
      {-996, "Not enough data"},
      {-995, "Zero pointer was passed as param"},
      {-899, "Failed to initialize codec"},
      {-897, "Required suncronization code was not found"},
      {-896, "Buffer size is not enough"},
      {-895, "End of stream"},
      {-894, "Device/file open error"},
      {-883, "Failed to allocate memory"},
      {-882, "Invalid stream"},
      {-879, "Unsupported"},
      {-878, "Not implemented yet"},
      {-876, "Incorrect parameters"},
  };
  for (const auto& row : rows) {
    ASSERT_NE(UMC::GetErrString(row.code), nullptr) << row.code;
    EXPECT_STREQ(UMC::GetErrString(row.code), row.text) << row.code;
  }
  EXPECT_EQ(UMC::GetErrString(-1), nullptr);
  EXPECT_EQ(UMC::GetErrString(1), nullptr);
}

}  // namespace
