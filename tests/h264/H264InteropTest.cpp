// Interoperability with the ffmpeg command-line tools: our records' payloads
// are a stream that ffprobe reads as we claim it, and streams that ffmpeg
// encodes decode here, by records and live, to the pictures ffmpeg decodes.
// Skipped where the tools are not installed.
#include <kestrelink/CH264Conversion.h>

#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <sstream>
#include <string>

#include "h264/H264FfmpegSupport.h"
#include "h264/H264LiveFeed.h"

namespace {

using h264test::Planes;

// "key=value" lines of ffprobe's default writer.
std::map<std::string, std::string> Probe(const std::string& file, const std::string& entries) {
  const std::string out = h264test::TempPath("probe.txt");
  const std::string command = "ffprobe -v error -count_frames -select_streams v:0 -show_entries stream=" + entries +
                              " -of default=nw=1 " + file + " > " + out;
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  std::map<std::string, std::string> values;
  std::ifstream in(out);
  for (std::string line; std::getline(in, line);) {
    const size_t eq = line.find('=');
    if (eq != std::string::npos) values[line.substr(0, eq)] = line.substr(eq + 1);
  }
  return values;
}

TEST(H264Interop, FfprobeReadsOurStreamAsClaimed) {
  if (!h264test::HaveFfmpegTools()) GTEST_SKIP() << "ffmpeg and ffprobe are not installed";
  const struct {
    H264EndoerSorceFormat format;
    const char* profile;  // ffprobe's name of profile_idc 110 without constraint flags, and of 100
    const char* pixels;  // libavcodec presents 8-bit 4:0:0 as 4:2:0 with neutral chroma
  } rows[] = {{H264_SOURCE_YUV_PLANAR, "High 10", "yuv422p"}, {H264_SOURCE_MONO, "High", "yuv420p"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.pixels);
    const uint32_t w = 352, h = 288;
    CH264Conversion codec;
    ASSERT_TRUE(codec.Initialize(true, w, h, row.format, 10, 0, 8, 0));
    const std::string file = h264test::TempPath(row.format == H264_SOURCE_MONO ? "mono.h264" : "planar.h264");
    {
      std::ofstream out(file, std::ios::binary);
      for (uint32_t t = 0; t < 20; ++t) {
        Planes frame = h264test::SyntheticFrame(w, h, t);
        std::vector<uint8_t> record = h264test::RecordBuffer(w, h);
        ASSERT_TRUE(codec.EncodeImage(record.data(), frame.y.data(), frame.u.data(), frame.v.data()));
        out.write(reinterpret_cast<const char*>(record.data() + 8), h264test::RecordSizeOf(record) - 8);
      }
    }
    auto values = Probe(file, "codec_name,profile,pix_fmt,level,width,height,nb_read_frames");
    EXPECT_EQ(values["codec_name"], "h264");
    EXPECT_EQ(values["profile"], row.profile);
    EXPECT_EQ(values["pix_fmt"], row.pixels);
    EXPECT_EQ(values["level"], "20");  // 396 macroblocks at 30 frames a second
    EXPECT_EQ(values["width"], "352");
    EXPECT_EQ(values["height"], "288");
    EXPECT_EQ(values["nb_read_frames"], "20");
    std::remove(file.c_str());
  }
}

TEST(H264Interop, FfmpegStreamsDecodeByRecordsAndLive) {
  if (!h264test::HaveFfmpegTools()) GTEST_SKIP() << "ffmpeg and ffprobe are not installed";
  const uint32_t w = 176, h = 144;
  const size_t pitch = w * 3;
  const struct {
    const char* name;
    const char* options;
  } rows[] = {
      {"high, CABAC", "-profile:v high -coder 1"},
      {"baseline", "-profile:v baseline"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string file = h264test::TempPath("ffmpeg.h264");
    const std::string command = std::string("ffmpeg -v error -y -f lavfi -i testsrc=size=176x144:rate=30 -frames:v 24 ") +
                                "-c:v libx264 -pix_fmt yuv420p -bf 0 -g 12 " + row.options + " -f h264 " + file;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    const std::vector<uint8_t> stream = h264test::ReadBytes(file);
    const auto reference = h264test::ReferencePictures(file, w, h, pitch);
    std::remove(file.c_str());
    ASSERT_EQ(reference.size(), 24u);

    // As records, one access unit each, with 8 readable bytes behind.
    CH264Conversion codec;
    ASSERT_TRUE(codec.Initialize(false, w, h, H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0));
    const auto units = h264test::AccessUnits(stream);
    ASSERT_EQ(units.size(), 24u);
    std::vector<uint8_t> image(pitch * 144);
    for (size_t i = 0; i < units.size(); ++i) {
      std::vector<uint8_t> record = h264test::RecordOf(units[i]);
      ASSERT_TRUE(codec.DecodeImage(uint32_t(i + 1), record.data(), image.data())) << "picture " << i + 1;
      EXPECT_GT(h264test::Psnr(image.data(), reference[i].data(), image.size()), 50.0) << "picture " << i + 1;
    }

    // Live, in random pieces, with a delimiter behind the last picture.
    std::vector<uint8_t> live = stream;
    const uint8_t delimiter[] = {0, 0, 0, 1, 9, 0x10};
    live.insert(live.end(), std::begin(delimiter), std::end(delimiter));
    h264test::LiveFeed feed(image.size());
    std::mt19937 rng(11);
    for (size_t at = 0; at < live.size();) {
      const size_t piece = std::min<size_t>(1 + rng() % 1500, live.size() - at);
      feed.Feed(live.data() + at, piece);
      at += piece;
    }
    ASSERT_EQ(feed.images.size(), 24u);
    for (size_t i = 0; i < feed.images.size(); ++i)
      EXPECT_GT(h264test::Psnr(feed.images[i].data(), reference[i].data(), image.size()), 50.0) << "live picture " << i + 1;
  }
}

}  // namespace
