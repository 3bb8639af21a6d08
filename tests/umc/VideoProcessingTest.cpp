// Colour conversion of pictures: the encoder's input stage and the decoder's output stage.
#include <algorithm>
#include <gtest/gtest.h>

#include "support/TestSupport.h"
#include "umc/VideoProcessing.h"

namespace {

uint8_t Clamp(int v) { return uint8_t(std::min(255, std::max(0, v))); }

// B, G, R of one studio-range sample, from the conversion's formula.
void Bgr(int y, int cb, int cr, uint8_t out[3]) {
  const int l = 4767 * (y - 16);
  out[0] = Clamp((l + 8261 * (cb - 128) + 2048) >> 12);
  out[1] = Clamp((l - 3330 * (cr - 128) - 1605 * (cb - 128) + 2048) >> 12);
  out[2] = Clamp((l + 6537 * (cr - 128) + 2048) >> 12);
}

TEST(UmcVideoProcessing, PlanarToRgb24MatchesTheFormulaAtEveryPixel) {
  const struct {
    const char* name;
    UMC::ColorFormat format;
    int32_t width, height;
  } rows[] = {
      {"4:2:0", UMC::YUV420, 10, 6}, {"4:2:0, odd height", UMC::YUV420, 10, 7},
      {"4:2:2 reads its even chroma rows", UMC::YUV422, 12, 6}, {"luma alone is grey", UMC::GRAY, 9, 5},
  };
  for (const auto& row : rows) {
    for (auto variant : testsupport::RunnableVariants()) {
      testsupport::ScopedVariant scoped(variant);
      SCOPED_TRACE(testing::Message() << row.name << ", variant " << int(variant));
      UMC::VideoData in, out;
      ASSERT_EQ(in.Init(row.width, row.height, row.format, 0), UMC::UMC_OK);
      std::vector<uint8_t> source = testsupport::RandomBytes(in.GetMappingSize(), 3);
      ASSERT_EQ(in.SetBufferPointer(source.data(), source.size()), UMC::UMC_OK);
      ASSERT_EQ(out.SetAlignment(4), UMC::UMC_OK);
      ASSERT_EQ(out.Init(row.width, row.height, UMC::RGB24, 0), UMC::UMC_OK);
      std::vector<uint8_t> target(out.GetMappingSize());
      ASSERT_EQ(out.SetBufferPointer(target.data(), target.size()), UMC::UMC_OK);
      UMC::VideoProcessing processing;
      ASSERT_EQ(processing.GetFrame(&in, &out), UMC::UMC_OK);
      EXPECT_EQ(out.GetDataSize(), target.size());
      const int32_t evenWidth = row.width & ~1;
      for (int32_t y = 0; y < row.height; ++y)
        for (int32_t x = 0; x < evenWidth; ++x) {
          const int chromaRow = row.format == UMC::YUV420 ? y / 2 : y & ~1;
          const int luma = in.GetPlanePointer(0)[y * in.GetPlanePitch(0) + x];
          const int cb = row.format == UMC::GRAY ? 128 : in.GetPlanePointer(1)[chromaRow * in.GetPlanePitch(1) + x / 2];
          const int cr = row.format == UMC::GRAY ? 128 : in.GetPlanePointer(2)[chromaRow * in.GetPlanePitch(2) + x / 2];
          uint8_t expected[3];
          Bgr(luma, cb, cr, expected);
          const uint8_t* got = &target[y * out.GetPlanePitch(0) + x * 3];
          ASSERT_TRUE(std::equal(expected, expected + 3, got)) << "pixel " << x << "," << y;
        }
      if (row.width % 2) {  // an odd last column repeats its neighbour
        const uint8_t* last = &target[(row.width - 1) * 3];
        EXPECT_TRUE(std::equal(last, last + 3, last - 3));
      }
    }
  }
}

TEST(UmcVideoProcessing, FourTwoZeroBecomesFourTwoTwoByRepeatingChromaRowsIntoALargerFrame) {
  UMC::VideoData in, out;
  ASSERT_EQ(in.Init(6, 4, UMC::YUV420, 0), UMC::UMC_OK);
  std::vector<uint8_t> source = testsupport::RandomBytes(in.GetMappingSize(), 9);
  ASSERT_EQ(in.SetBufferPointer(source.data(), source.size()), UMC::UMC_OK);
  ASSERT_EQ(out.Init(16, 16, UMC::YUV422, 0), UMC::UMC_OK);
  std::vector<uint8_t> target(out.GetMappingSize(), 0xEE);
  ASSERT_EQ(out.SetBufferPointer(target.data(), target.size()), UMC::UMC_OK);
  UMC::VideoProcessing processing;
  ASSERT_EQ(processing.GetFrame(&in, &out), UMC::UMC_OK);
  for (int y = 0; y < 4; ++y) {
    EXPECT_TRUE(std::equal(source.begin() + y * 6, source.begin() + y * 6 + 6, out.GetPlanePointer(0) + y * 16));
    for (int p = 1; p < 3; ++p) {
      const uint8_t* from = in.GetPlanePointer(p) + (y / 2) * 3;
      EXPECT_TRUE(std::equal(from, from + 3, out.GetPlanePointer(p) + y * 8)) << "plane " << p << ", row " << y;
    }
  }
  EXPECT_EQ(out.GetPlanePointer(0)[6], 0xEE);  // beyond the source: the encoder pads it
  // A smaller target, or a source without its planes, is refused.
  UMC::VideoData small;
  ASSERT_EQ(small.Init(4, 4, UMC::YUV422, 0), UMC::UMC_OK);
  std::vector<uint8_t> smallBuffer(small.GetMappingSize());
  small.SetBufferPointer(smallBuffer.data(), smallBuffer.size());
  EXPECT_EQ(processing.GetFrame(&in, &small), UMC::UMC_ERR_INVALID_PARAMS);
  in.SetPlanePointer(nullptr, 1);
  EXPECT_EQ(processing.GetFrame(&in, &out), UMC::UMC_ERR_NULL_PTR);
}

}  // namespace
