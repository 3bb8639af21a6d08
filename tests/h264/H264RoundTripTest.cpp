// Encoding frames to records and decoding them back through CH264Conversion.
#include <kestrelink/CH264Conversion.h>

#include <algorithm>
#include <gtest/gtest.h>

#include "h264/H264TestSupport.h"
#include "support/TestSupport.h"

namespace {

using h264test::Planes;
using h264test::SyntheticFrame;

// Studio-range YCbCr to 8-bit B, G, R, written from the conversion's formula.
void ExpectedBgr(const Planes& p, bool mono, std::vector<uint8_t>& out, size_t pitch) {
  out.assign(pitch * p.height, 0);
  auto clamp = [](int v) { return uint8_t(std::min(255, std::max(0, v))); };
  for (uint32_t y = 0; y < p.height; ++y)
    for (uint32_t x = 0; x < p.width; ++x) {
      const int l = 4767 * (p.y[size_t(y) * p.width + x] - 16);
      const int cb = mono ? 0 : p.u[size_t(y / 2) * (p.width / 2) + x / 2] - 128;
      const int cr = mono ? 0 : p.v[size_t(y / 2) * (p.width / 2) + x / 2] - 128;
      uint8_t* px = &out[y * pitch + x * 3];
      px[0] = clamp((l + 8261 * cb + 2048) >> 12);
      px[1] = clamp((l - 3330 * cr - 1605 * cb + 2048) >> 12);
      px[2] = clamp((l + 6537 * cr + 2048) >> 12);
    }
}

double RowsPsnr(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b, uint32_t width, uint32_t height,
                size_t pitch) {
  std::vector<uint8_t> pa, pb;
  for (uint32_t y = 0; y < height; ++y) {
    pa.insert(pa.end(), a.begin() + y * pitch, a.begin() + y * pitch + width * 3);
    pb.insert(pb.end(), b.begin() + y * pitch, b.begin() + y * pitch + width * 3);
  }
  return h264test::Psnr(pa.data(), pb.data(), pa.size());
}

struct RoundTripCase {
  const char* name;
  uint32_t width, height;
  H264EndoerSorceFormat format;
};

// Rows of 178 * 3 bytes are padded to 536: the decoder's output rows are 4-byte aligned.
TEST(H264RoundTrip, RecordsDecodeBackAboveThirtyFiveDecibels) {
  const RoundTripCase cases[] = {
      {"planar 176x144", 176, 144, H264_SOURCE_YUV_PLANAR},
      {"planar 178x100, padded rows", 178, 100, H264_SOURCE_YUV_PLANAR},
      {"mono 176x144", 176, 144, H264_SOURCE_MONO},
      {"mono 130x66, partial macroblocks", 130, 66, H264_SOURCE_MONO},
  };
  for (const RoundTripCase& c : cases) {
    for (auto variant : testsupport::RunnableVariants()) {
      testsupport::ScopedVariant scoped(variant);
      SCOPED_TRACE(testing::Message() << c.name << ", variant " << int(variant));
      CH264Conversion codec;
      ASSERT_TRUE(codec.Initialize(true, c.width, c.height, c.format, 12, 0, 8, 0));
      ASSERT_TRUE(codec.Initialize(false, c.width, c.height, c.format, 0, 0, 8, 0));
      const size_t pitch = (size_t(c.width) * 3 + 3) & ~size_t(3);
      std::vector<uint8_t> image(((c.height + 15) & ~15u) * size_t(c.width) * 3 + pitch, 0), expected;
      for (uint32_t t = 0; t < 15; ++t) {
        Planes frame = SyntheticFrame(c.width, c.height, t);
        std::vector<uint8_t> record = h264test::RecordBuffer(c.width, c.height);
        ASSERT_TRUE(codec.EncodeImage(record.data(), frame.y.data(), frame.u.data(), frame.v.data()));
        ASSERT_TRUE(codec.DecodeImage(t + 1, record.data(), image.data())) << "frame " << t + 1;
        ExpectedBgr(frame, c.format == H264_SOURCE_MONO, expected, pitch);
        EXPECT_GT(RowsPsnr(image, expected, c.width, c.height, pitch), 35.0) << "frame " << t + 1;
      }
      EXPECT_EQ(codec.GetLastDecodeFrameIndex(), 15u);
    }
  }
}

}  // namespace
