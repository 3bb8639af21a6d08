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

#include "h264/H264TestSupport.h"

namespace {

using h264test::Planes;

bool HaveTools() { return std::system("command -v ffmpeg >/dev/null 2>&1 && command -v ffprobe >/dev/null 2>&1") == 0; }

std::string Temp(const std::string& name) { return testing::TempDir() + "kestrelink_h264_" + name; }

std::vector<uint8_t> ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// "key=value" lines of ffprobe's default writer.
std::map<std::string, std::string> Probe(const std::string& file, const std::string& entries) {
  const std::string out = Temp("probe.txt");
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
  if (!HaveTools()) GTEST_SKIP() << "ffmpeg and ffprobe are not installed";
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
    const std::string file = Temp(row.format == H264_SOURCE_MONO ? "mono.h264" : "planar.h264");
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

// Access units of an Annex B stream: a new one opens at a parameter set, SEI
// or delimiter, or at a slice that starts at macroblock 0, once a slice was seen.
std::vector<std::vector<uint8_t>> AccessUnits(const std::vector<uint8_t>& stream) {
  std::vector<std::vector<uint8_t>> units(1);
  bool slice = false;
  for (const auto& [at, size] : h264test::NalUnits(stream.data(), stream.size())) {
    const int type = stream[at] & 31;
    const bool opens = type == 6 || type == 7 || type == 8 || type == 9 ||
                       ((type == 1 || type == 5) && size > 1 && (stream[at + 1] & 0x80));
    if (opens && slice) {
      units.emplace_back();
      slice = false;
    }
    const uint8_t startCode[] = {0, 0, 0, 1};
    units.back().insert(units.back().end(), std::begin(startCode), std::end(startCode));
    units.back().insert(units.back().end(), stream.begin() + at, stream.begin() + at + size);
    slice = slice || type == 1 || type == 5;
  }
  return units;
}

// ffmpeg's own decode of `file`, converted with the studio-range formula to BGR rows of `pitch` bytes.
std::vector<std::vector<uint8_t>> ReferencePictures(const std::string& file, uint32_t w, uint32_t h, size_t pitch) {
  const std::string raw = Temp("reference.yuv");
  const std::string command = "ffmpeg -v error -y -i " + file + " -f rawvideo -pix_fmt yuv420p " + raw;
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  const std::vector<uint8_t> yuv = ReadBytes(raw);
  std::remove(raw.c_str());
  const size_t frameBytes = size_t(w) * h * 3 / 2;
  std::vector<std::vector<uint8_t>> pictures;
  auto clamp = [](int v) { return uint8_t(std::min(255, std::max(0, v))); };
  for (size_t at = 0; at + frameBytes <= yuv.size(); at += frameBytes) {
    const uint8_t *y = &yuv[at], *u = y + size_t(w) * h, *v = u + size_t(w / 2) * (h / 2);
    std::vector<uint8_t> bgr(pitch * h);
    for (uint32_t r = 0; r < h; ++r)
      for (uint32_t c = 0; c < w; ++c) {
        const int l = 4767 * (y[r * w + c] - 16), cb = u[(r / 2) * (w / 2) + c / 2] - 128,
                  cr = v[(r / 2) * (w / 2) + c / 2] - 128;
        uint8_t* px = &bgr[r * pitch + c * 3];
        px[0] = clamp((l + 8261 * cb + 2048) >> 12);
        px[1] = clamp((l - 3330 * cr - 1605 * cb + 2048) >> 12);
        px[2] = clamp((l + 6537 * cr + 2048) >> 12);
      }
    pictures.push_back(std::move(bgr));
  }
  return pictures;
}

TEST(H264Interop, FfmpegStreamsDecodeByRecordsAndLive) {
  if (!HaveTools()) GTEST_SKIP() << "ffmpeg and ffprobe are not installed";
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
    const std::string file = Temp("ffmpeg.h264");
    const std::string command = std::string("ffmpeg -v error -y -f lavfi -i testsrc=size=176x144:rate=30 -frames:v 24 ") +
                                "-c:v libx264 -pix_fmt yuv420p -bf 0 -g 12 " + row.options + " -f h264 " + file;
    ASSERT_EQ(std::system(command.c_str()), 0) << command;
    const std::vector<uint8_t> stream = ReadBytes(file);
    const auto reference = ReferencePictures(file, w, h, pitch);
    std::remove(file.c_str());
    ASSERT_EQ(reference.size(), 24u);

    // As records, one access unit each, with 8 readable bytes behind.
    CH264Conversion codec;
    ASSERT_TRUE(codec.Initialize(false, w, h, H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0));
    const auto units = AccessUnits(stream);
    ASSERT_EQ(units.size(), 24u);
    std::vector<uint8_t> image(pitch * 144);
    for (size_t i = 0; i < units.size(); ++i) {
      std::vector<uint8_t> record(8 + units[i].size() + 8, 0);
      const uint32_t size = uint32_t(units[i].size() + 8);
      for (int b = 0; b < 4; ++b) record[b] = uint8_t(size >> (8 * b));
      std::copy(units[i].begin(), units[i].end(), record.begin() + 8);
      ASSERT_TRUE(codec.DecodeImage(uint32_t(i + 1), record.data(), image.data())) << "picture " << i + 1;
      EXPECT_GT(h264test::Psnr(image.data(), reference[i].data(), image.size()), 50.0) << "picture " << i + 1;
    }

    // Live, in random pieces, with a delimiter behind the last picture.
    std::vector<uint8_t> live = stream;
    const uint8_t delimiter[] = {0, 0, 0, 1, 9, 0x10};
    live.insert(live.end(), std::begin(delimiter), std::end(delimiter));
    ASSERT_TRUE(codec.InitWithRTSP());
    std::mt19937 rng(11);
    std::vector<uint8_t> pending;
    size_t pictures = 0;
    for (size_t at = 0; at < live.size();) {
      const size_t piece = std::min<size_t>(1 + rng() % 1500, live.size() - at);
      pending.insert(pending.end(), live.begin() + at, live.begin() + at + piece);
      at += piece;
      for (;;) {
        int consumed = 0;
        const int result = codec.DecodeImageFromRTSP(int(pending.size()), pending.data(), image.data(), int(image.size()), consumed);
        pending.erase(pending.begin(), pending.begin() + consumed);
        if (result == 1) {
          ASSERT_LT(pictures, reference.size());
          EXPECT_GT(h264test::Psnr(image.data(), reference[pictures].data(), image.size()), 50.0) << "live picture " << pictures + 1;
          ++pictures;
        } else if (consumed == 0 || pending.empty()) {
          break;
        }
      }
    }
    EXPECT_EQ(pictures, 24u);
    codec.UnInitWithRTSP();
  }
}

}  // namespace
