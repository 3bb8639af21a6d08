// Lossless frames: every predictor and point transform gives the samples
// back exactly (less the transformed bits), with and without restarts; the
// ffmpeg tool reads our streams, and we read its streams, sample for sample.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "jpeg/JpegTestSupport.h"
#include "support/TestSupport.h"

namespace {

using namespace jpegtest;

struct LosslessCase {
  int w, h, channels, precision, predictor, pt, restart;
};

// Samples of a scene at `precision` bits: little-endian words above 8 bits.
std::vector<uint8_t> Samples(int w, int h, int channels, int precision, uint32_t seed) {
  const jpegpeer::Image im = jpegpeer::Scene(w, h, channels, seed);
  if (precision <= 8) {
    std::vector<uint8_t> out = im.pixels;
    for (uint8_t& v : out) v = uint8_t(v >> (8 - precision));
    return out;
  }
  std::vector<uint8_t> out(im.pixels.size() * 2);
  for (size_t i = 0; i < im.pixels.size(); ++i) {
    const uint32_t v = (uint32_t(im.pixels[i]) << (precision - 8)) | (i * 7 % (1u << (precision - 8)));
    out[2 * i] = uint8_t(v);
    out[2 * i + 1] = uint8_t(v >> 8);
  }
  return out;
}

std::vector<uint8_t> EncodeLossless(const std::vector<uint8_t>& src, const LosslessCase& c) {
  const int bytes = c.precision > 8 ? 2 : 1;
  std::vector<uint8_t> out(src.size() * 3 + 4096);
  CMemBuffOutput stream;
  stream.Open(out.data(), uint32_t(out.size()));
  CJPEGEncoder enc;
  EXPECT_EQ(enc.SetSource(src.data(), c.w * c.channels * bytes, {c.w, c.h}, c.channels,
                          c.channels == 1 ? JC_GRAY : JC_BGR, JS_444, c.precision),
            JPEG_OK);
  EXPECT_EQ(enc.SetDestination(&stream), JPEG_OK);
  EXPECT_EQ(enc.SetParamsLossless(JPEG_LOSSLESS, c.channels == 1 ? JC_GRAY : JC_RGB, c.precision, c.predictor, c.pt,
                                  true, c.restart),
            JPEG_OK);
  EXPECT_EQ(enc.WriteHeader(), JPEG_OK);
  EXPECT_EQ(enc.WriteData(), JPEG_OK);
  out.resize(stream.m_position);
  return out;
}

std::vector<uint8_t> DecodeLossless(const std::vector<uint8_t>& stream, int channels, JCOLOR colour,
                                    JERRCODE* status = nullptr) {
  CMemBuffInput in;
  in.Open(stream.data(), uint32_t(stream.size()));
  CJPEGDecoder dec;
  int w = 0, h = 0, ch = 0, p = 0;
  JCOLOR frameColour;
  JSS sampling;
  JERRCODE s = dec.SetSource(&in);
  if (s == JPEG_OK) s = dec.ReadHeader(&w, &h, &ch, &frameColour, &sampling, &p);
  std::vector<uint8_t> out(size_t(w) * h * channels * (p > 8 ? 2 : 1));
  if (s == JPEG_OK)
    s = dec.SetDestination(out.data(), w * channels * (p > 8 ? 2 : 1), {w, h}, channels, colour, JS_444, p, 1);
  if (s == JPEG_OK) s = dec.ReadData();
  if (status) *status = s;
  EXPECT_EQ(dec.Mode(), JPEG_LOSSLESS);
  return out;
}

TEST(JpegLossless, EveryPredictorRoundTrips) {
  std::vector<LosslessCase> cases;
  for (int p = 1; p <= 7; ++p) cases.push_back({37, 23, 1, 8, p, 0, 0});
  cases.push_back({37, 23, 1, 8, 4, 2, 0});   // point transform
  cases.push_back({37, 23, 1, 8, 7, 0, 37});  // restart at each row
  cases.push_back({37, 23, 1, 8, 5, 1, 10});  // restart within rows
  cases.push_back({40, 30, 1, 12, 6, 0, 0});
  cases.push_back({40, 30, 1, 16, 4, 3, 0});
  cases.push_back({33, 17, 3, 8, 1, 0, 0});   // RGB from BGR pixels
  cases.push_back({1, 1, 1, 8, 1, 0, 0});
  for (const LosslessCase& c : cases) {
    SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " ch " << c.channels << " P " << c.precision
                                    << " predictor " << c.predictor << " Pt " << c.pt << " restart " << c.restart);
    const std::vector<uint8_t> src = Samples(c.w, c.h, c.channels, c.precision, uint32_t(c.predictor));
    const std::vector<uint8_t> stream = EncodeLossless(src, c);
    JERRCODE s;
    const std::vector<uint8_t> back = DecodeLossless(stream, c.channels, c.channels == 1 ? JC_GRAY : JC_BGR, &s);
    ASSERT_EQ(s, JPEG_OK);
    ASSERT_EQ(back.size(), src.size());
    const bool wide = c.precision > 8;
    for (size_t i = 0; i < src.size(); i += wide ? 2 : 1) {
      const uint32_t a = wide ? src[i] | src[i + 1] << 8 : src[i];
      const uint32_t b = wide ? back[i] | back[i + 1] << 8 : back[i];
      ASSERT_EQ(b, (a >> c.pt) << c.pt) << "at " << i;
    }
  }
}

bool HaveFfmpeg() { return std::system("ffmpeg -version >/dev/null 2>&1") == 0; }

TEST(JpegLossless, FfmpegReadsOurStreams) {
  if (!HaveFfmpeg()) GTEST_SKIP() << "no ffmpeg tool";
  const LosslessCase c{45, 27, 1, 8, 4, 0, 0};
  const std::vector<uint8_t> src = Samples(c.w, c.h, 1, 8, 3);
  const std::vector<uint8_t> stream = EncodeLossless(src, c);
  testsupport::TempFile in("lossless.jpg", std::string(stream.begin(), stream.end()));
  testsupport::TempFile out("lossless.gray");
  const std::string command = std::string("ffmpeg -loglevel error -y -i ") + in.path() +
                              " -f rawvideo -pix_fmt gray " + out.path();
  ASSERT_EQ(std::system(command.c_str()), 0);
  const std::string decoded = testsupport::ReadFile(out.path());
  EXPECT_EQ(decoded, std::string(src.begin(), src.end()));
}

TEST(JpegLossless, WeReadFfmpegStreams) {
  if (!HaveFfmpeg()) GTEST_SKIP() << "no ffmpeg tool";
  for (const char* format : {"yuvj444p", "yuvj420p"}) {
    SCOPED_TRACE(format);
    testsupport::TempFile jpg(std::string("ff-") + format + ".jpg");
    testsupport::TempFile planes(std::string("ff-") + format + ".yuv");
    const std::string make = std::string("ffmpeg -loglevel error -y -f lavfi -i testsrc=size=48x34 -frames:v 1 ") +
                             "-c:v ljpeg -pix_fmt " + format + " " + jpg.path();
    ASSERT_EQ(std::system(make.c_str()), 0);
    const std::string read = std::string("ffmpeg -loglevel error -y -i ") + jpg.path() +
                             " -f rawvideo -pix_fmt " + format + " " + planes.path();
    ASSERT_EQ(std::system(read.c_str()), 0);
    const std::string file = testsupport::ReadFile(jpg.path()), theirs = testsupport::ReadFile(planes.path());
    const std::vector<uint8_t> stream(file.begin(), file.end());
    // One channel gives the first component, Y, as it was coded.
    JERRCODE s;
    const std::vector<uint8_t> luma = DecodeLossless(stream, 1, JC_GRAY, &s);
    ASSERT_EQ(s, JPEG_OK);
    ASSERT_GE(theirs.size(), luma.size());
    EXPECT_EQ(std::string(luma.begin(), luma.end()), theirs.substr(0, luma.size()));
    if (std::string(format) == "yuvj444p") {
      const std::vector<uint8_t> all = DecodeLossless(stream, 3, JC_RGB, &s);
      ASSERT_EQ(s, JPEG_OK);
      const size_t plane = luma.size();
      for (size_t i = 0; i < plane; ++i)
        for (size_t c = 0; c < 3; ++c) ASSERT_EQ(all[i * 3 + c], uint8_t(theirs[c * plane + i])) << i << " " << c;
    }
  }
}

}  // namespace
