// Streams with several slices a picture, as many network cameras send them,
// from the ffmpeg tool: the live path gives each picture once and whole, fed
// whole, in random pieces, an access unit or one NAL unit a call, as the
// record path and ffmpeg's own decode give it. Skipped where the tools are not installed.
#include <kestrelink/CH264Conversion.h>

#include <gtest/gtest.h>
#include <random>
#include <string>

#include "h264/H264FfmpegSupport.h"
#include "h264/H264LiveFeed.h"

namespace {

constexpr uint32_t kW = 176, kH = 144, kPictures = 30;
constexpr size_t kPitch = kW * 3;

struct SlicedStream {
  std::vector<uint8_t> bytes;                  // with a delimiter behind the last picture
  std::vector<std::vector<uint8_t>> peer;      // ffmpeg's decode, one BGR picture each
  std::vector<std::vector<uint8_t>> records;   // the record path's decode of each access unit
};

SlicedStream Encode(const std::string& options) {
  SlicedStream s;
  const std::string file = h264test::TempPath("sliced.h264");
  const std::string command = "ffmpeg -v error -y -f lavfi -i testsrc=size=176x144:rate=30 -frames:v " +
                              std::to_string(kPictures) + " -c:v libx264 -pix_fmt yuv420p -bf 0 -g 12 " + options +
                              " -f h264 " + file;
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  s.bytes = h264test::ReadBytes(file);
  s.peer = h264test::ReferencePictures(file, kW, kH, kPitch);
  std::remove(file.c_str());

  CH264Conversion codec;
  EXPECT_TRUE(codec.Initialize(false, kW, kH, H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0));
  const auto units = h264test::AccessUnits(s.bytes);
  for (size_t i = 0; i < units.size(); ++i) {
    std::vector<uint8_t> record = h264test::RecordOf(units[i]);
    s.records.emplace_back(kPitch * kH);
    EXPECT_TRUE(codec.DecodeImage(uint32_t(i + 1), record.data(), s.records.back().data())) << "record " << i + 1;
  }
  const uint8_t delimiter[] = {0, 0, 0, 1, 9, 0x10};
  s.bytes.insert(s.bytes.end(), std::begin(delimiter), std::end(delimiter));
  return s;
}

size_t SliceCount(const std::vector<uint8_t>& stream) {
  size_t slices = 0;
  for (const auto& [at, size] : h264test::NalUnits(stream.data(), stream.size()))
    slices += (stream[at] & 31) == 1 || (stream[at] & 31) == 5;
  return slices;
}

void ExpectEveryPictureOnceAndWhole(const SlicedStream& s, const h264test::LiveFeed& feed) {
  ASSERT_EQ(feed.images.size(), size_t(kPictures));
  for (size_t i = 0; i < kPictures; ++i)
    EXPECT_TRUE(feed.images[i] == s.peer[i])
        << "picture " << i + 1 << ": " << h264test::Psnr(feed.images[i].data(), s.peer[i].data(), kPitch * kH) << " dB";
}

TEST(H264MultiSliceLive, EveryPictureComesOnceAndWholeHoweverTheBytesArrive) {
  if (!h264test::HaveFfmpegTools()) GTEST_SKIP() << "ffmpeg and ffprobe are not installed";
  const struct {
    const char* options;
    size_t slices;
  } rows[] = {
      {"-profile:v baseline -slices 2", 2},
      {"-profile:v baseline -slices 3", 3},
      {"-profile:v baseline -slices 8", 8},
      {"-profile:v high -coder 1 -slices 4", 4},
      {"-profile:v high -coder 1 -slices 8", 8},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.options);
    const SlicedStream s = Encode(row.options);
    ASSERT_EQ(s.peer.size(), size_t(kPictures));
    ASSERT_EQ(s.records.size(), size_t(kPictures));
    ASSERT_EQ(SliceCount(s.bytes), kPictures * row.slices);
    for (size_t i = 0; i < kPictures; ++i) EXPECT_TRUE(s.records[i] == s.peer[i]) << "record " << i + 1;
    {
      SCOPED_TRACE("whole");
      h264test::LiveFeed feed(kPitch * kH);
      feed.Feed(s.bytes.data(), s.bytes.size());
      ExpectEveryPictureOnceAndWhole(s, feed);
    }
    for (uint32_t seed = 1; seed <= 6; ++seed) {  // pieces of up to 90, 12 or 1500 bytes
      SCOPED_TRACE(testing::Message() << "random pieces, seed " << seed);
      h264test::LiveFeed feed(kPitch * kH);
      std::mt19937 rng(seed);
      for (size_t at = 0; at < s.bytes.size();) {
        const size_t piece = std::min<size_t>(1 + rng() % (seed % 3 == 0 ? 12 : seed % 3 == 1 ? 90 : 1500), s.bytes.size() - at);
        feed.Feed(s.bytes.data() + at, piece);
        at += piece;
      }
      ExpectEveryPictureOnceAndWhole(s, feed);
    }
    {
      SCOPED_TRACE("one access unit a call");
      h264test::LiveFeed feed(kPitch * kH);
      for (const auto& unit : h264test::AccessUnits(s.bytes)) feed.Feed(unit.data(), unit.size());
      ExpectEveryPictureOnceAndWhole(s, feed);
    }
    {
      SCOPED_TRACE("one NAL unit a call");
      h264test::LiveFeed feed(kPitch * kH);
      for (const auto& [at, size] : h264test::NalUnits(s.bytes.data(), s.bytes.size())) {
        std::vector<uint8_t> unit = {0, 0, 0, 1};
        unit.insert(unit.end(), s.bytes.begin() + at, s.bytes.begin() + at + size);
        feed.Feed(unit.data(), unit.size());
      }
      ExpectEveryPictureOnceAndWhole(s, feed);
    }
  }
}

}  // namespace
