// 12-bit extended and progressive frames, samples in 16-bit words. No peer
// reads 12-bit streams here, so the tests hold the round trip to bounds worked
// out from the quantiser (tables of ones lose only rounding) and to the
// peer's own 8-bit round trip of the same scene (12 bits must lose no more),
// compare the progressive decode with the extended one (same tables, same
// coefficients), and read the stream's own fields. The transforms themselves
// are held to the double-precision ones in the kernel tests.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <random>
#include <vector>

#include "jpeg/CJPEGDecoder.h"
#include "jpeg/CJPEGEncoder.h"
#include "jpeg/JpegPeer.h"
#include "jpeg/JpegStreams.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrelink::jpeg;

struct Frame12 {
  int width = 0, height = 0, channels = 0;
  std::vector<uint16_t> samples;  // B, G, R for three channels
};

// A smooth scene over the whole 12-bit range with edges and noise; `harsh`
// gives blocks of alternating extremes and single-sample checkerboards, the
// largest coefficients and DC differences the format allows.
Frame12 Scene12(int width, int height, int channels, bool harsh = false) {
  Frame12 f{width, height, channels, std::vector<uint16_t>(size_t(width) * height * channels)};
  std::mt19937 rng(uint32_t(width * 31 + height));
  for (int y = 0; y < height; ++y)
    for (int x = 0; x < width; ++x)
      for (int c = 0; c < channels; ++c) {
        double v = 2048 + 1800 * std::sin(x * (0.029 + 0.01 * c) + y * 0.019) * std::cos(y * 0.021 - c);
        if ((x / 23 + y / 19) % 4 == 0) v = 600 + 1200 * c;
        v += int(rng() % 33) - 16;
        if (harsh) v = ((x / 8 + y / 8) % 3 == 0) ? ((x + y) & 1) * 4095 : ((x / 8 + y / 8) & 1) * 4095;
        f.samples[(size_t(y) * width + x) * channels + c] = uint16_t(v < 0 ? 0 : v > 4095 ? 4095 : v);
      }
  return f;
}

double Psnr12(const std::vector<uint16_t>& a, const std::vector<uint16_t>& b) {
  double sq = 0;
  for (size_t i = 0; i < a.size(); ++i) sq += double(a[i] - b[i]) * (a[i] - b[i]);
  return sq == 0 ? 200.0 : 10 * std::log10(4095.0 * 4095.0 * double(a.size()) / sq);
}

struct Options12 {
  JMODE mode = JPEG_EXTENDED;
  JSS sampling = JS_444;
  int quality = 100;
  int restartInterval = 0;
};

// The peer's 8-bit round trip of the scene's top 8 bits, as PSNR.
double PeerPsnr8(const Frame12& f, const Options12& o) {
  jpegpeer::Image im{f.width, f.height, f.channels, std::vector<uint8_t>(f.samples.size())};
  for (size_t i = 0; i < f.samples.size(); ++i) im.pixels[i] = uint8_t(f.samples[i] >> 4);
  if (f.channels == 3)
    for (size_t i = 0; i < im.pixels.size(); i += 3) std::swap(im.pixels[i], im.pixels[i + 2]);
  jpegpeer::EncodeOptions po;
  po.quality = o.quality;
  po.hSamp = o.sampling == JS_444 ? 1 : 2;
  po.vSamp = o.sampling == JS_411 ? 2 : 1;
  po.progressive = o.mode == JPEG_PROGRESSIVE;
  jpegpeer::Image back;
  if (!jpegpeer::Decode(jpegpeer::Encode(im, po), back)) return 1000.0;
  return jpegpeer::Psnr(im.pixels, back.pixels);
}

std::vector<uint8_t> Encode12(const Frame12& f, const Options12& o, JERRCODE* status = nullptr) {
  std::vector<uint8_t> out(f.samples.size() * 4 + 4096);
  CMemBuffOutput stream;
  stream.Open(out.data(), uint32_t(out.size()));
  CJPEGEncoder enc;
  JERRCODE s = enc.SetSource(reinterpret_cast<const uint8_t*>(f.samples.data()), f.width * f.channels * 2,
                             {f.width, f.height}, f.channels, f.channels == 1 ? JC_GRAY : JC_BGR, JS_444, 12);
  if (s == JPEG_OK) s = enc.SetDestination(&stream);
  if (s == JPEG_OK)
    s = enc.SetParams(o.mode, f.channels == 1 ? JC_GRAY : JC_YCBCR, o.sampling, o.restartInterval, false, o.quality);
  if (s == JPEG_OK) s = enc.WriteHeader();
  if (s == JPEG_OK) s = enc.WriteData();
  if (status) *status = s;
  out.resize(s == JPEG_OK ? stream.m_position : 0);
  return out;
}

JERRCODE Decode12(const std::vector<uint8_t>& stream, Frame12& out, int channels, int* precision = nullptr) {
  CMemBuffInput in;
  in.Open(stream.data(), uint32_t(stream.size()));
  CJPEGDecoder dec;
  JERRCODE s = dec.SetSource(&in);
  int w = 0, h = 0, ch = 0, p = 0;
  JCOLOR colour = JC_UNKNOWN;
  JSS sampling = JS_444;
  if (s == JPEG_OK) s = dec.ReadHeader(&w, &h, &ch, &colour, &sampling, &p);
  if (s != JPEG_OK) return s;
  if (precision) *precision = p;
  out = Frame12{w, h, channels, std::vector<uint16_t>(size_t(w) * h * channels, 0xBEEF)};
  s = dec.SetDestination(reinterpret_cast<uint8_t*>(out.samples.data()), w * channels * 2, {w, h}, channels,
                         channels == 1 ? JC_GRAY : JC_BGR, JS_444, p, 1);
  return s == JPEG_OK ? dec.ReadData() : s;
}

TEST(JpegTwelveBit, RoundTripsWithinTheQuantiserBounds) {
  struct Case {
    const char* name;
    int width, height, channels;
    Options12 options;
    bool harsh;
    double minPsnr;  // over the 12-bit peak
  };
  // Quality 100 is a table of ones: only rounding is lost (the transforms',
  // and the colour conversion's half level each way), some 70 dB and more.
  const Case cases[] = {
      {"grey q100", 67, 45, 1, {JPEG_EXTENDED, JS_444, 100, 0}, false, 75.0},
      {"grey q100 extremes", 64, 48, 1, {JPEG_EXTENDED, JS_444, 100, 0}, true, 70.0},
      {"colour 4:4:4 q100", 53, 37, 3, {JPEG_EXTENDED, JS_444, 100, 0}, false, 68.0},
      {"colour 4:4:4 q100 extremes", 48, 32, 3, {JPEG_EXTENDED, JS_444, 100, 0}, true, 65.0},
      // Subsampled chroma loses what it loses at 8 bits.
      {"colour 2x2 q90", 91, 59, 3, {JPEG_EXTENDED, JS_411, 90, 0}, false, 25.0},
      {"colour 4:2:2 q85 restarts", 70, 41, 3, {JPEG_EXTENDED, JS_422, 85, 3}, false, 25.0},
      {"width 1", 1, 19, 3, {JPEG_EXTENDED, JS_411, 95, 0}, false, 25.0},
      {"progressive grey q95", 77, 33, 1, {JPEG_PROGRESSIVE, JS_444, 95, 0}, false, 50.0},
      {"progressive colour 2x2 q90", 66, 50, 3, {JPEG_PROGRESSIVE, JS_411, 90, 0}, false, 25.0},
  };
  for (const Case& c : cases) {
    const Frame12 src = Scene12(c.width, c.height, c.channels, c.harsh);
    JERRCODE status = JPEG_INTERNAL_ERROR;
    const std::vector<uint8_t> stream = Encode12(src, c.options, &status);
    ASSERT_EQ(status, JPEG_OK) << c.name;
    Frame12 out;
    int precision = 0;
    ASSERT_EQ(Decode12(stream, out, c.channels, &precision), JPEG_OK) << c.name;
    EXPECT_EQ(precision, 12) << c.name;
    for (uint16_t v : out.samples) ASSERT_LE(v, 4095) << c.name;
    const double psnr = Psnr12(src.samples, out.samples);
    EXPECT_GT(psnr, c.minPsnr) << c.name;
    EXPECT_GT(psnr, PeerPsnr8(src, c.options) - 0.5) << c.name;
  }
}

TEST(JpegTwelveBit, ProgressiveDecodesToTheExtendedFramesSamples) {
  // The same tables give the same coefficients, whichever way they are coded.
  for (int channels : {1, 3}) {
    const Frame12 src = Scene12(83, 51, channels);
    Options12 o;
    o.quality = 80;
    o.sampling = JS_411;
    Frame12 extended, progressive;
    ASSERT_EQ(Decode12(Encode12(src, o), extended, channels), JPEG_OK);
    o.mode = JPEG_PROGRESSIVE;
    ASSERT_EQ(Decode12(Encode12(src, o), progressive, channels), JPEG_OK);
    EXPECT_EQ(progressive.samples, extended.samples) << channels;
  }
}

TEST(JpegTwelveBit, StreamFieldsAndRefusals) {
  const Frame12 src = Scene12(40, 24, 3);
  const std::vector<uint8_t> s = Encode12(src, Options12{});
  ASSERT_FALSE(s.empty());
  // The frame is SOF1 with precision 12; the DQT entries are 16-bit (Pq 1).
  bool sof1 = false, dqt16 = false;
  for (size_t i = 0; i + 5 < s.size(); ++i) {
    if (s[i] == 0xFF && s[i + 1] == 0xC1) sof1 = s[i + 4] == 12;
    if (s[i] == 0xFF && s[i + 1] == 0xDB) dqt16 = (s[i + 4] >> 4) == 1;
    if (s[i] == 0xFF && s[i + 1] == 0xDA) break;
  }
  EXPECT_TRUE(sof1);
  EXPECT_TRUE(dqt16);

  // Baseline frames are 8-bit only.
  Options12 baseline;
  baseline.mode = JPEG_BASELINE;
  JERRCODE status = JPEG_OK;
  Encode12(src, baseline, &status);
  EXPECT_EQ(status, JPEG_NOT_IMPLEMENTED);

  // An 8-bit destination for a 12-bit frame is a wrong parameter.
  CMemBuffInput in;
  in.Open(s.data(), uint32_t(s.size()));
  CJPEGDecoder dec;
  ASSERT_EQ(dec.SetSource(&in), JPEG_OK);
  ASSERT_EQ(dec.ReadHeader(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), JPEG_OK);
  std::vector<uint8_t> bytes(40 * 24 * 3);
  EXPECT_EQ(dec.SetDestination(bytes.data(), 120, {40, 24}, 3, JC_BGR, JS_444, 8, 1), JPEG_BAD_PARAMETER);
}

TEST(JpegTwelveBit, EveryVariantCodesTheSame) {
  const Frame12 src = Scene12(61, 35, 3);
  Options12 o;
  o.quality = 75;
  o.sampling = JS_422;
  std::vector<uint8_t> firstStream;
  Frame12 firstFrame;
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    const std::vector<uint8_t> stream = Encode12(src, o);
    Frame12 out;
    ASSERT_EQ(Decode12(stream, out, 3), JPEG_OK);
    if (firstStream.empty()) {
      firstStream = stream;
      firstFrame = out;
    }
    EXPECT_EQ(stream, firstStream) << kestrelink::VariantName(v);
    EXPECT_EQ(out.samples, firstFrame.samples) << kestrelink::VariantName(v);
  }
}

}  // namespace
