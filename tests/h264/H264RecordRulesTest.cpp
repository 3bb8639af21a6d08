// The record format and the frame-index rules of CH264Conversion.
#include <kestrelink/CH264Conversion.h>
#include <kestrelink/DebugOutput.h>

#include <gtest/gtest.h>
#include <string>

#include "h264/H264TestSupport.h"
#include "support/TestSupport.h"

namespace {

using h264test::Planes;
using h264test::RecordBuffer;
using h264test::RecordSizeOf;
using h264test::SyntheticFrame;

constexpr uint32_t kW = 64, kH = 48;

uint16_t Field16(const std::vector<uint8_t>& record, size_t at) { return uint16_t(record[at] | record[at + 1] << 8); }

std::vector<std::vector<uint8_t>> EncodeSequence(uint32_t frames, int gopSize, H264EndoerSorceFormat format,
                                                 int bitRate = 0) {
  CH264Conversion codec;
  EXPECT_TRUE(codec.Initialize(true, kW, kH, format, gopSize, bitRate, 8, 0));
  std::vector<std::vector<uint8_t>> records;
  for (uint32_t t = 0; t < frames; ++t) {
    Planes frame = SyntheticFrame(kW, kH, t);
    records.push_back(RecordBuffer(kW, kH));
    EXPECT_TRUE(codec.EncodeImage(records.back().data(), frame.y.data(), frame.u.data(), frame.v.data()));
  }
  return records;
}

TEST(H264Records, KeyFramesCarryTheGopSizeOnFramesOneThirteenTwentyFive) {
  const auto records = EncodeSequence(26, 12, H264_SOURCE_YUV_PLANAR);
  for (size_t i = 0; i < records.size(); ++i) {
    const uint32_t frame = uint32_t(i + 1);
    const bool key = frame == 1 || frame == 13 || frame == 25;
    SCOPED_TRACE(testing::Message() << "frame " << frame);
    EXPECT_EQ(Field16(records[i], 4), key ? 12 : 0);
    EXPECT_EQ(Field16(records[i], 6), key ? 0 : (frame - 1) % 12);
    // Payload: a four-byte start code, then a sequence parameter set exactly on key frames.
    EXPECT_EQ(records[i][8], 0);
    EXPECT_EQ(records[i][9], 0);
    EXPECT_EQ(records[i][10], 0);
    EXPECT_EQ(records[i][11], 1);
    EXPECT_EQ((records[i][12] & 31) == 7, key);
    EXPECT_GT(RecordSizeOf(records[i]), 8u);
  }
}

void Collect(const char* message, void* context) { static_cast<std::vector<std::string>*>(context)->push_back(message); }

TEST(H264Records, ZeroGopSizeMeansThirtyAndTheLogShowsTheRawArguments) {
  std::vector<std::string> lines;
  kestrelink::SetDebugOutputHandler(&Collect, &lines);
  const auto records = EncodeSequence(32, 0, H264_SOURCE_MONO);
  kestrelink::SetDebugOutputHandler(nullptr, nullptr);
  ASSERT_FALSE(lines.empty());
  EXPECT_EQ(lines[0], "H264 GOP size: 0,Bitrate is 0");
  for (size_t i = 0; i < records.size(); ++i) {
    const bool key = i == 0 || i == 30;
    EXPECT_EQ(Field16(records[i], 4), key ? 30 : 0) << "frame " << i + 1;
  }
}

class H264Decoding : public testing::Test {
 protected:
  void SetUp() override {
    records_ = EncodeSequence(14, 12, H264_SOURCE_YUV_PLANAR);
    ASSERT_TRUE(codec_.Initialize(false, kW, kH, H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0));
    image_.assign(size_t(kH) * kW * 3, 0);
  }
  bool Decode(uint32_t index, size_t record) { return codec_.DecodeImage(index, records_[record].data(), image_.data()); }

  std::vector<std::vector<uint8_t>> records_;
  CH264Conversion codec_;
  std::vector<uint8_t> image_;
};

TEST_F(H264Decoding, SkippingAnIndexRestartsAndANonKeyRecordThenFails) {
  EXPECT_TRUE(Decode(1, 0));
  EXPECT_TRUE(Decode(2, 1));
  EXPECT_TRUE(Decode(3, 2));
  EXPECT_EQ(codec_.GetLastDecodeFrameIndex(), 3u);
  EXPECT_FALSE(Decode(5, 4));
  EXPECT_EQ(codec_.GetLastDecodeFrameIndex(), 0u);
  EXPECT_FALSE(Decode(6, 5));  // still no decoder: another restart on a record that is no key frame
  EXPECT_TRUE(Decode(13, 12));  // the next key frame starts it again, whatever the index
  EXPECT_TRUE(Decode(14, 13));
  EXPECT_EQ(codec_.GetLastDecodeFrameIndex(), 14u);
}

TEST_F(H264Decoding, IndexOneAlwaysRestarts) {
  EXPECT_TRUE(Decode(1, 0));
  EXPECT_TRUE(Decode(2, 1));
  EXPECT_FALSE(Decode(1, 2));  // a restart on a record that is no key frame
  EXPECT_EQ(codec_.GetLastDecodeFrameIndex(), 0u);
  EXPECT_TRUE(Decode(1, 0));
  EXPECT_TRUE(Decode(2, 1));
  EXPECT_EQ(codec_.GetLastDecodeFrameIndex(), 2u);
}

TEST_F(H264Decoding, IndexZeroIsRefusedAndChangesNothing) {
  EXPECT_TRUE(Decode(1, 0));
  EXPECT_FALSE(Decode(0, 1));
  EXPECT_EQ(codec_.GetLastDecodeFrameIndex(), 1u);
  EXPECT_TRUE(Decode(2, 1));
}

TEST_F(H264Decoding, ReleaseMakesTheNextRecordStartAtAKeyFrame) {
  EXPECT_TRUE(Decode(1, 0));
  codec_.ReleaseDecodeResource();
  EXPECT_EQ(codec_.GetLastDecodeFrameIndex(), 0u);
  EXPECT_FALSE(Decode(2, 1));
  EXPECT_TRUE(Decode(1, 0));
}

TEST_F(H264Decoding, ThreeByteStartCodeDecodesAsFourBytes) {
  std::vector<uint8_t> fourByteImage(image_.size());
  ASSERT_TRUE(codec_.DecodeImage(1, records_[0].data(), fourByteImage.data()));
  // The same record with its first start code one byte shorter.
  std::vector<uint8_t> shorter(records_[0].size());
  const uint32_t size = RecordSizeOf(records_[0]);
  std::copy(records_[0].begin() + 9, records_[0].end(), shorter.begin() + 8);
  const uint32_t newSize = size - 1;
  for (int i = 0; i < 4; ++i) shorter[i] = uint8_t(newSize >> (8 * i));
  std::copy(records_[0].begin() + 4, records_[0].begin() + 8, shorter.begin() + 4);
  ASSERT_EQ(shorter[8], 0);
  ASSERT_EQ(shorter[10], 1);
  ASSERT_TRUE(codec_.DecodeImage(1, shorter.data(), image_.data()));
  EXPECT_EQ(image_, fourByteImage);
}

TEST_F(H264Decoding, BadRecordsGiveFalseWithoutHarm) {
  std::vector<uint8_t> noStartCode = records_[0];
  noStartCode[10] = 2;
  EXPECT_FALSE(codec_.DecodeImage(1, noStartCode.data(), image_.data()));
  EXPECT_EQ(codec_.GetLastDecodeFrameIndex(), 0u);

  // A key record cut to a quarter of its payload, then garbage behind a sequence parameter set header.
  std::vector<uint8_t> truncated = records_[0];
  const uint32_t cut = 8 + (RecordSizeOf(records_[0]) - 8) / 4;
  for (int i = 0; i < 4; ++i) truncated[i] = uint8_t(cut >> (8 * i));
  codec_.DecodeImage(1, truncated.data(), image_.data());
  std::vector<uint8_t> garbage = testsupport::RandomBytes(616, 7);  // a 600-byte record and the 8 bytes behind it
  const uint8_t head[] = {0x58, 0x02, 0, 0, 12, 0, 0, 0, 0, 0, 0, 1, 0x67};
  std::copy(std::begin(head), std::end(head), garbage.begin());
  codec_.DecodeImage(1, garbage.data(), image_.data());
  // The decoder comes back on a good key frame.
  EXPECT_TRUE(Decode(1, 0));
  EXPECT_TRUE(Decode(2, 1));
}

TEST(H264Front, SetParamersAnswersWhetherTheEncoderIsSetUpButNotOpen) {
  CH264Conversion codec;
  EXPECT_FALSE(codec.SetParamers(true, H264_PARAM_NONE, 5));
  ASSERT_TRUE(codec.Initialize(true, kW, kH, H264_SOURCE_MONO, 12, 0, 8, 0));
  EXPECT_TRUE(codec.SetParamers(true, H264_PARAM_NONE, 5));
  Planes frame = SyntheticFrame(kW, kH, 0);
  std::vector<uint8_t> record = RecordBuffer(kW, kH);
  ASSERT_TRUE(codec.EncodeImage(record.data(), frame.y.data(), nullptr, nullptr));
  EXPECT_FALSE(codec.SetParamers(true, H264_PARAM_NONE, 5));
  // The decoder side stays "set up, not open" for as long as it is initialised.
  ASSERT_TRUE(codec.Initialize(false, kW, kH, H264_SOURCE_MONO, 0, 0, 8, 0));
  EXPECT_TRUE(codec.SetParamers(false, H264_PARAM_NONE, 0));
}

// The source is described with the given depth; deeper than 8 bits it is not
// coded, and the record still comes back, holding what the encoder left: nothing.
TEST(H264Front, AFrameTheEncoderCannotTakeStillGivesARecord) {
  std::vector<std::string> lines;
  kestrelink::SetDebugOutputHandler(&Collect, &lines);
  CH264Conversion codec;
  ASSERT_TRUE(codec.Initialize(true, kW, kH, H264_SOURCE_MONO, 12, 0, 12, 0));
  std::vector<uint16_t> deep(size_t(kW) * kH, 0x0800);
  std::vector<uint8_t> record = RecordBuffer(kW, kH);
  EXPECT_TRUE(codec.EncodeImage(record.data(), deep.data(), nullptr, nullptr));
  kestrelink::SetDebugOutputHandler(nullptr, nullptr);
  EXPECT_EQ(RecordSizeOf(record), 8u);
  EXPECT_EQ(Field16(record, 4), 0);
  EXPECT_EQ(Field16(record, 6), 1);  // the counter moves on all the same
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_EQ(lines[1], "H264 Encoder Encoding ================-879");
}

TEST(H264Front, EncodeBeforeInitializeFails) {
  CH264Conversion codec;
  Planes frame = SyntheticFrame(kW, kH, 0);
  std::vector<uint8_t> record = RecordBuffer(kW, kH);
  EXPECT_FALSE(codec.EncodeImage(record.data(), frame.y.data(), frame.u.data(), frame.v.data()));
  EXPECT_FALSE(CH264Conversion::IsHardwareEncodingSupported());
  EXPECT_FALSE(codec.UnInitialize(true));
}

TEST(H264Front, SecondInitializeWithTheSameSetUpKeepsTheRunningEncoder) {
  CH264Conversion codec;
  ASSERT_TRUE(codec.Initialize(true, kW, kH, H264_SOURCE_YUV_PLANAR, 12, 0, 8, 0));
  Planes frame = SyntheticFrame(kW, kH, 0);
  std::vector<uint8_t> record = RecordBuffer(kW, kH);
  ASSERT_TRUE(codec.EncodeImage(record.data(), frame.y.data(), frame.u.data(), frame.v.data()));
  ASSERT_TRUE(codec.Initialize(true, kW, kH, H264_SOURCE_YUV_PLANAR, 5, 100000, 8, 0));  // GOP and rate not compared
  EXPECT_FALSE(codec.SetParamers(true, H264_PARAM_NONE, 0));  // still open
  for (int t = 1; t < 6; ++t) ASSERT_TRUE(codec.EncodeImage(record.data(), frame.y.data(), frame.u.data(), frame.v.data()));
  EXPECT_EQ(Field16(record, 6), 5);  // frame 6 of a GOP of 12 is no key frame
  // Another size tears the encoder down and sets it up anew.
  ASSERT_TRUE(codec.Initialize(true, kW + 16, kH, H264_SOURCE_YUV_PLANAR, 5, 0, 8, 0));
  EXPECT_TRUE(codec.SetParamers(true, H264_PARAM_NONE, 0));
}

}  // namespace
