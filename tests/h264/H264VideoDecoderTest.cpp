// The decoder core's own rules: threads, delivery mode, short input, the
// header walk and the flush at the end of a stream.
#include <gtest/gtest.h>
#include <omp.h>

#include "h264/CIPPH264Conversion.h"
#include "h264/H264TestSupport.h"
#include "h264/H264VideoDecoder.h"

namespace {

constexpr uint32_t kW = 64, kH = 48;

std::vector<uint8_t> TwoFrames() {
  CIPPH264Conversion encoder;
  encoder.Initialize(true, kW, kH, H264_SOURCE_YUV_PLANAR, 12, 0, 8, 0);
  std::vector<uint8_t> stream;
  for (uint32_t t = 0; t < 2; ++t) {
    h264test::Planes frame = h264test::SyntheticFrame(kW, kH, t);
    std::vector<uint8_t> record = h264test::RecordBuffer(kW, kH);
    encoder.EncodeImage(record.data(), frame.y.data(), frame.u.data(), frame.v.data());
    stream.insert(stream.end(), record.begin() + 8, record.begin() + h264test::RecordSizeOf(record));
  }
  return stream;
}

TEST(H264VideoDecoder, ThreadCountAndDeliveryModeFollowTheParameters) {
  const struct {
    int32_t threads, expected;
    double playbackRate;
    int32_t mode;
  } rows[] = {{1, 1, 0.0, 2}, {9, 8, 1.0, 1}, {-1, omp_get_num_procs(), 1.00005, 1},
              {0, omp_get_num_procs(), 2.0, 2}};
  for (const auto& row : rows) {
    UMC::H264VideoDecoder decoder;
    UMC::H264VideoDecoderParams params;
    params.numThreads = row.threads;
    params.playbackRate = row.playbackRate;
    ASSERT_EQ(decoder.Init(&params), UMC::UMC_OK);
    EXPECT_EQ(decoder.GetThreadCount(), row.expected) << row.threads;
    EXPECT_EQ(decoder.GetDeliveryMode(), row.mode) << row.playbackRate;
  }
  UMC::H264VideoDecoder decoder;
  UMC::VideoDecoderParams otherClass;
  EXPECT_EQ(decoder.Init(&otherClass), UMC::UMC_ERR_NULL_PTR);
  UMC::VideoData out;
  EXPECT_EQ(decoder.GetFrame(nullptr, &out), UMC::UMC_ERR_NOT_INITIALIZED);
}

TEST(H264VideoDecoder, HeadersFromInitShortInputAndTheFlushAtTheEnd) {
  std::vector<uint8_t> stream = TwoFrames();
  // A start code behind the last slice completes it, though not its picture: nothing shows what follows.
  for (uint8_t b : {0, 0, 0, 1}) stream.push_back(b);
  UMC::MediaData data;
  data.SetBufferPointer(stream.data(), stream.size());
  data.SetDataSize(stream.size());
  UMC::H264VideoDecoderParams params;
  params.numThreads = 1;
  params.m_pData = &data;
  UMC::H264VideoDecoder decoder;
  ASSERT_EQ(decoder.Init(&params), UMC::UMC_OK);
  UMC::H264VideoDecoderParams info;
  ASSERT_EQ(decoder.GetInfo(&info), UMC::UMC_OK);
  EXPECT_EQ(info.info.width, int(kW));
  EXPECT_EQ(info.info.height, int(kH));
  EXPECT_EQ(info.info.colorFormat, UMC::YUV422);
  EXPECT_EQ(info.profiles, 110);

  UMC::VideoData out;
  out.SetAlignment(4);
  ASSERT_EQ(out.Init(kW, kH, UMC::RGB24, 0), UMC::UMC_OK);
  std::vector<uint8_t> image(out.GetMappingSize());
  out.SetBufferPointer(image.data(), image.size());
  // Three bytes are taken and answered with "not enough data".
  uint8_t three[3] = {0, 0, 1};
  UMC::MediaData tiny;
  tiny.SetBufferPointer(three, 3);
  tiny.SetDataSize(3);
  EXPECT_EQ(decoder.GetFrame(&tiny, &out), UMC::UMC_ERR_NOT_ENOUGH_DATA);
  EXPECT_EQ(tiny.GetDataSize(), 0u);
  // The first picture completes when the second begins; the second, held, at the flush.
  EXPECT_EQ(decoder.GetFrame(&data, &out), UMC::UMC_OK);
  EXPECT_EQ(out.GetDataSize(), image.size());
  EXPECT_EQ(decoder.GetFrame(&data, &out), UMC::UMC_ERR_NOT_ENOUGH_DATA);
  EXPECT_EQ(decoder.GetFrame(nullptr, &out), UMC::UMC_OK);
  EXPECT_EQ(decoder.GetFrame(nullptr, &out), UMC::UMC_ERR_END_OF_STREAM);
}

TEST(H264VideoDecoder, NoSequenceParameterSetShowsInGetInfo) {
  std::vector<uint8_t> junk = {0, 0, 0, 1, 0x41, 0x9a, 0x12, 0x34, 0, 0, 1, 0x06, 0x05, 0x01};
  UMC::MediaData data;
  data.SetBufferPointer(junk.data(), junk.size());
  data.SetDataSize(junk.size());
  UMC::H264VideoDecoderParams params;
  params.m_pData = &data;
  UMC::H264VideoDecoder decoder;
  EXPECT_EQ(decoder.Init(&params), UMC::UMC_OK);
  UMC::H264VideoDecoderParams info;
  EXPECT_EQ(decoder.GetInfo(&info), UMC::UMC_ERR_NOT_ENOUGH_DATA);
}

}  // namespace
