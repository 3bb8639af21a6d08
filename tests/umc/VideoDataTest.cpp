// Planes, pitches and alignment of pictures.
#include <gtest/gtest.h>
#include <vector>

#include "umc/VideoData.h"

namespace {

TEST(UmcVideoData, UnknownFormatIsAnInvalidStreamAndLeavesTheFormatUnset) {
  UMC::VideoData picture;
  EXPECT_EQ(picture.Init(16, 16, UMC::ColorFormat(24), 8), UMC::UMC_ERR_INVALID_STREAM);
  EXPECT_EQ(picture.GetColorFormat(), UMC::NONE);
  EXPECT_EQ(picture.Init(16, 16, 3, 7), UMC::UMC_ERR_INVALID_STREAM);  // depth below 8
  EXPECT_EQ(picture.Init(0, 16, 3, 8), UMC::UMC_ERR_INVALID_STREAM);
}

TEST(UmcVideoData, PitchAndPlaneSizesFollowTheFormatAndTheAlignment) {
  const struct {
    const char* name;
    int32_t width, height;
    UMC::ColorFormat format;
    int32_t alignment;
    std::vector<uint64_t> pitches, heights;
  } rows[] = {
      {"RGB24 is 4-aligned by itself", 5, 3, UMC::RGB24, 1, {16}, {3}},
      {"RGB24 aligned to 4", 6, 2, UMC::RGB24, 4, {20}, {2}},
      {"RGB24 aligned to 64", 6, 2, UMC::RGB24, 64, {64}, {2}},
      {"RGB32", 5, 2, UMC::RGB32, 1, {20}, {2}},
      {"YUV420 odd sizes round the chroma up", 7, 5, UMC::YUV420, 1, {7, 4, 4}, {5, 3, 3}},
      {"YUV422", 8, 4, UMC::YUV422, 1, {8, 4, 4}, {4, 4, 4}},
      {"YUV420 aligned to 16", 20, 4, UMC::YUV420, 16, {32, 16, 16}, {4, 2, 2}},
      {"NV12 interleaves chroma at full width, half height", 6, 4, UMC::NV12, 1, {6, 6}, {4, 2}},
      {"YUY2 is two bytes a pixel, 2-aligned", 5, 2, UMC::YUY2, 1, {12}, {2}},
      {"RGB565: two-byte samples double the format alignment", 5, 2, UMC::RGB565, 1, {12}, {2}},
      {"YVU9 quarters chroma both ways", 9, 9, UMC::YVU9, 1, {9, 3, 3}, {9, 3, 3}},
      {"GRAY", 3, 3, UMC::GRAY, 1, {3}, {3}},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    UMC::VideoData picture;
    ASSERT_EQ(picture.SetAlignment(row.alignment), UMC::UMC_OK);
    ASSERT_EQ(picture.Init(row.width, row.height, row.format, 0), UMC::UMC_OK);
    ASSERT_EQ(size_t(picture.GetNumPlanes()), row.pitches.size());
    uint64_t total = 0;
    for (int32_t p = 0; p < picture.GetNumPlanes(); ++p) {
      EXPECT_EQ(picture.GetPlanePitch(p), row.pitches[p]) << "plane " << p;
      EXPECT_EQ(uint64_t(picture.GetPlaneInfo(p)->height), row.heights[p]) << "plane " << p;
      total += row.pitches[p] * row.heights[p];
    }
    EXPECT_EQ(picture.GetMappingSize(), total);
  }
}

TEST(UmcVideoData, AlignmentTakesTheLowestSetBit) {
  const struct {
    int32_t value;
    UMC::Status status;
    int32_t alignment;
  } rows[] = {{1, 0, 1}, {4, 0, 4}, {12, 1, 4}, {6, 1, 2}, {65536, 1, 32768}, {0, UMC::UMC_ERR_INVALID_STREAM, 1},
              {-4, UMC::UMC_ERR_INVALID_STREAM, 1}};
  for (const auto& row : rows) {
    UMC::VideoData picture;
    EXPECT_EQ(picture.SetAlignment(row.value), row.status) << row.value;
    EXPECT_EQ(picture.GetAlignment(), row.alignment) << row.value;
  }
}

TEST(UmcVideoData, BufferOneByteShortIsRefusedAndPlanesFollowEachOther) {
  UMC::VideoData picture;
  ASSERT_EQ(picture.Init(8, 4, UMC::YUV420, 0), UMC::UMC_OK);
  const size_t need = 8 * 4 + 2 * (4 * 2);
  EXPECT_EQ(picture.GetMappingSize(), need);
  std::vector<uint8_t> buffer(need);
  EXPECT_EQ(picture.SetBufferPointer(buffer.data(), need - 1), UMC::UMC_ERR_NOT_ENOUGH_BUFFER);
  EXPECT_EQ(picture.GetDataSize(), 0u);
  EXPECT_EQ(picture.GetPlanePointer(0), nullptr);
  ASSERT_EQ(picture.SetBufferPointer(buffer.data(), need), UMC::UMC_OK);
  EXPECT_EQ(picture.GetPlanePointer(0), buffer.data());
  EXPECT_EQ(picture.GetPlanePointer(1), buffer.data() + 32);
  EXPECT_EQ(picture.GetPlanePointer(2), buffer.data() + 40);
  EXPECT_EQ(picture.SetPlanePointer(buffer.data(), 3), UMC::UMC_ERR_FAILED);
}

TEST(UmcVideoData, CompressedKindsMapFixedSizes) {
  UMC::VideoData a, b;
  ASSERT_EQ(a.Init(4, 4, UMC::COMPRESSED_A, 8), UMC::UMC_OK);
  ASSERT_EQ(b.Init(4, 4, UMC::COMPRESSED_B, 8), UMC::UMC_OK);
  EXPECT_EQ(a.GetMappingSize(), 256u);
  EXPECT_EQ(b.GetMappingSize(), 16u);
}

TEST(UmcVideoData, CropMovesPlanePointersAndRefusesEmptyOrOutsideRectangles) {
  UMC::VideoData picture;
  ASSERT_EQ(picture.Init(8, 8, UMC::YUV420, 0), UMC::UMC_OK);
  std::vector<uint8_t> buffer(picture.GetMappingSize());
  ASSERT_EQ(picture.SetBufferPointer(buffer.data(), buffer.size()), UMC::UMC_OK);
  EXPECT_EQ(picture.Crop({0, 0, 9, 8}), UMC::UMC_ERR_INVALID_PARAMS);
  EXPECT_EQ(picture.Crop({2, 2, 2, 4}), UMC::UMC_ERR_INVALID_PARAMS);
  ASSERT_EQ(picture.Crop({2, 4, 6, 8}), UMC::UMC_OK);
  EXPECT_EQ(picture.GetWidth(), 4);
  EXPECT_EQ(picture.GetHeight(), 4);
  EXPECT_EQ(picture.GetPlanePointer(0), buffer.data() + 4 * 8 + 2);
  EXPECT_EQ(picture.GetPlanePointer(1), buffer.data() + 64 + 2 * 4 + 1);
}

}  // namespace
