// The encoder's streams decode with libjpeg-turbo, carry the format's
// tables and markers in order, and match the peer's own size and quality.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "jpeg/JpegTables.h"
#include "support/TestSupport.h"
#include "jpeg/JpegTestSupport.h"

namespace {

using namespace jpegtest;
using jpegpeer::Image;

// Marker codes in stream order, segments skipped by their lengths, up to SOS.
std::vector<int> Markers(const std::vector<uint8_t>& s) {
  std::vector<int> out;
  size_t i = 0;
  while (i + 4 <= s.size() && s[i] == 0xFF) {
    const int m = s[i + 1];
    out.push_back(m);
    if (m == 0xD8) {
      i += 2;
      continue;
    }
    if (m == 0xDA) break;
    i += 2 + ((s[i + 2] << 8) | s[i + 3]);
  }
  return out;
}

TEST(JpegQuality, RuleOnTheAnnexTables) {
  struct Case {
    int quality;
    int expectFirst;  // first luminance entry (16 in the table)
    int expectLast;   // last luminance entry (99)
  };
  // scale = 5000 / q below 50, else 200 - 2q; entry = (entry * scale + 50) / 100 in 1 .. 255.
  const Case cases[] = {{0, 16, 99}, {50, 16, 99}, {100, 1, 1}, {1, 255, 255}, {25, 32, 198}, {85, 5, 30}, {75, 8, 50}};
  for (const Case& c : cases) {
    uint16_t t[64];
    ASSERT_TRUE(ScaleQuantTable(kLumaQuantZigzag, c.quality, t)) << c.quality;
    EXPECT_EQ(t[0], c.expectFirst) << "quality " << c.quality;
    EXPECT_EQ(t[63], c.expectLast) << "quality " << c.quality;
  }
  uint16_t t[64];
  EXPECT_FALSE(ScaleQuantTable(kLumaQuantZigzag, -1, t));
}

TEST(JpegEncoder, NegativeQualityIsInternalError) {
  const Image im = jpegpeer::Scene(16, 16, 1);
  OurOptions o;
  o.quality = -5;
  JERRCODE s;
  EncodeOurs(im, o, &s);
  EXPECT_EQ(s, JPEG_INTERNAL_ERROR);
}

TEST(JpegEncoder, HeaderMarkersInOrder) {
  OurOptions o;
  o.restartInterval = 4;
  const std::vector<int> grey = Markers(EncodeOurs(jpegpeer::Scene(40, 24, 1), o));
  // Grey: one DQT and one pair of DHT segments.
  EXPECT_EQ(grey, (std::vector<int>{0xD8, 0xE0, 0xFE, 0xDB, 0xC0, 0xC4, 0xC4, 0xDD, 0xDA}));
  o.restartInterval = 0;
  const std::vector<int> colour = Markers(EncodeOurs(jpegpeer::Scene(40, 24, 3), o));
  EXPECT_EQ(colour, (std::vector<int>{0xD8, 0xE0, 0xFE, 0xDB, 0xDB, 0xC0, 0xC4, 0xC4, 0xC4, 0xC4, 0xDA}));
}

TEST(JpegEncoder, CommentNamesTheLibraryVersion) {
  const std::vector<uint8_t> s = EncodeOurs(jpegpeer::Scene(8, 8, 1), OurOptions{});
  const std::string text = CJPEGEncoder::DefaultComment();
  EXPECT_EQ(text.rfind("Intel(R) IPP JPEG encoder [", 0), 0u);
  // SOI (2) + APP0 (18), then FF FE with the length of the text, its zero and 2.
  ASSERT_GT(s.size(), 24 + text.size());
  EXPECT_EQ(s[20], 0xFF);
  EXPECT_EQ(s[21], 0xFE);
  EXPECT_EQ((s[22] << 8) | s[23], int(text.size()) + 3);
  EXPECT_EQ(std::memcmp(s.data() + 24, text.c_str(), text.size() + 1), 0);
}

TEST(JpegEncoder, QuantTablesInStream) {
  for (int quality : {0, 1, 50, 100}) {
    OurOptions o;
    o.quality = quality;
    const std::vector<uint8_t> s = EncodeOurs(jpegpeer::Scene(16, 16, 1), o);
    uint16_t expect[64];
    ScaleQuantTable(kLumaQuantZigzag, quality, expect);
    // DQT after SOI, APP0 and COM.
    size_t at = 20 + 2 + ((s[22] << 8) | s[23]);
    ASSERT_EQ(s[at + 1], 0xDB);
    EXPECT_EQ(s[at + 4], 0);  // 8-bit entries, table 0
    for (int k = 0; k < 64; ++k) ASSERT_EQ(s[at + 5 + k], expect[k]) << "quality " << quality << " entry " << k;
  }
}

// Our stream decoded by the peer against the original, next to the peer's
// own stream at the same quality and sampling.
TEST(JpegEncoder, PeerDecodesAndMatchesPeerSizeAndQuality) {
  struct Case {
    int w, h, channels;
    JSS sampling;
    int quality;
  };
  const Case cases[] = {{640, 480, 3, JS_411, 85}, {640, 480, 3, JS_422, 85}, {640, 480, 3, JS_444, 85},
                        {640, 480, 1, JS_444, 85}, {333, 211, 3, JS_411, 75}, {333, 211, 1, JS_444, 95},
                        {320, 240, 3, JS_411, 50}, {320, 240, 3, JS_444, 100}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " ch " << c.channels << " ss " << c.sampling << " q "
                                    << c.quality);
    const Image im = jpegpeer::Scene(c.w, c.h, c.channels);
    OurOptions o;
    o.sampling = c.sampling;
    o.quality = c.quality;
    const std::vector<uint8_t> ours = EncodeOurs(im, o);
    const std::vector<uint8_t> theirs = jpegpeer::Encode(im, PeerOptions(c.sampling, c.quality));
    Image a, b;
    ASSERT_TRUE(jpegpeer::Decode(ours, a));
    ASSERT_TRUE(jpegpeer::Decode(theirs, b));
    ASSERT_EQ(a.width, c.w);
    ASSERT_EQ(a.height, c.h);
    const double pa = jpegpeer::Psnr(im.pixels, a.pixels), pb = jpegpeer::Psnr(im.pixels, b.pixels);
    EXPECT_GT(pa, pb - 0.1);
    // The peer writes no comment; the rest of the stream is compared.
    const double comment = double(CJPEGEncoder::DefaultComment().size() + 1 + 4);
    EXPECT_LT(double(ours.size()) - comment, double(theirs.size()) * 1.02);
  }
}

TEST(JpegEncoder, OddSizesAndRestartsDecode) {
  struct Case {
    int w, h, channels;
    JSS sampling;
    int restart;
    bool optimise;
  };
  const Case cases[] = {{1, 1, 1, JS_444, 0, false},  {1, 17, 3, JS_411, 0, false}, {17, 1, 3, JS_422, 1, false},
                        {31, 33, 3, JS_411, 3, true}, {9, 9, 1, JS_444, 2, true},   {100, 50, 3, JS_444, 7, false}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " ss " << c.sampling << " restart " << c.restart);
    const Image im = jpegpeer::Scene(c.w, c.h, c.channels, 7);
    OurOptions o;
    o.sampling = c.sampling;
    o.restartInterval = c.restart;
    o.optimise = c.optimise;
    o.quality = 90;
    Image a;
    ASSERT_TRUE(jpegpeer::Decode(EncodeOurs(im, o), a));
    ASSERT_EQ(a.width, c.w);
    ASSERT_EQ(a.height, c.h);
    EXPECT_GT(jpegpeer::Psnr(im.pixels, a.pixels), 28.0);
  }
}

TEST(JpegEncoder, ExtendedModeDecodes) {
  const Image im = jpegpeer::Scene(120, 80, 3);
  OurOptions o;
  o.mode = JPEG_EXTENDED;
  const std::vector<uint8_t> s = EncodeOurs(im, o);
  Image a;
  ASSERT_TRUE(jpegpeer::Decode(s, a));
  EXPECT_GT(jpegpeer::Psnr(im.pixels, a.pixels), 30.0);
}

TEST(JpegEncoder, EveryVariantWritesTheSameStream) {
  const Image im = jpegpeer::Scene(97, 61, 3);
  std::vector<uint8_t> first;
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    const std::vector<uint8_t> s = EncodeOurs(im, OurOptions{});
    if (first.empty()) first = s;
    EXPECT_EQ(s, first) << kestrelink::VariantName(v);
  }
}

TEST(JpegEncoder, TooSmallDestinationIsBufferTooSmall) {
  const Image im = jpegpeer::Scene(64, 64, 3);
  const std::vector<uint8_t> src = jpegpeer::Swapped(im);
  std::vector<uint8_t> out(300);
  CMemBuffOutput stream;
  stream.Open(out.data(), uint32_t(out.size()));
  CJPEGEncoder enc;
  ASSERT_EQ(enc.SetSource(src.data(), 64 * 3, {64, 64}, 3, JC_BGR, JS_444, 8), JPEG_OK);
  ASSERT_EQ(enc.SetDestination(&stream), JPEG_OK);
  ASSERT_EQ(enc.SetParams(JPEG_BASELINE, JC_YCBCR, JS_411, 0, false, 85), JPEG_OK);
  JERRCODE s = enc.WriteHeader();
  if (s == JPEG_OK) s = enc.WriteData();
  EXPECT_EQ(s, JPEG_BUFF_TOO_SMALL);
}

}  // namespace

namespace {

int CountMarkers(const std::vector<uint8_t>& s, int code) {
  int n = 0;
  for (size_t i = 0; i + 1 < s.size(); ++i) n += s[i] == 0xFF && s[i + 1] == code;
  return n;
}

TEST(JpegEncoder, ProgressiveScriptDecodesWithPeerAndOurs) {
  struct Case {
    int w, h, channels;
    JSS sampling;
    int restart, scans;
  };
  const Case cases[] = {{320, 240, 3, JS_411, 0, 10}, {333, 211, 1, JS_444, 0, 6}, {97, 45, 3, JS_422, 3, 10},
                        {1, 1, 3, JS_411, 0, 10},     {61, 7, 1, JS_444, 2, 6},    {200, 120, 3, JS_444, 0, 10}};
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " ch " << c.channels << " restart " << c.restart);
    const Image im = jpegpeer::Scene(c.w, c.h, c.channels, 11);
    OurOptions o;
    o.mode = JPEG_PROGRESSIVE;
    o.sampling = c.sampling;
    o.restartInterval = c.restart;
    o.quality = 85;
    const std::vector<uint8_t> s = EncodeOurs(im, o);
    EXPECT_EQ(CountMarkers(s, 0xDA), c.scans);
    EXPECT_EQ(CountMarkers(s, 0xC2), 1);
    Image theirs, ours;
    ASSERT_TRUE(jpegpeer::Decode(s, theirs));
    ASSERT_EQ(DecodeOurs(s, ours), JPEG_OK);
    EXPECT_LE(jpegpeer::MaxDifference(ours.pixels, theirs.pixels), 1);
    // The same coefficients as the sequential stream, so the same picture.
    o.mode = JPEG_BASELINE;
    Image sequential;
    ASSERT_TRUE(jpegpeer::Decode(EncodeOurs(im, o), sequential));
    EXPECT_EQ(theirs.pixels, sequential.pixels);
  }
}

}  // namespace

namespace {

// Four-component frames: CMYK as it stands and YCCK (the inks' complements
// as YCbCr, K apart), baseline and progressive (the 18-scan script); the
// peer and we read them back as CMYK.
TEST(JpegEncoder, CmykAndYcckFrames) {
  struct Case {
    JCOLOR colour;
    JMODE mode;
    JSS sampling;
    int adobeTransform, scans;
  };
  const Case cases[] = {{JC_CMYK, JPEG_BASELINE, JS_444, 0, 1},
                        {JC_YCCK, JPEG_BASELINE, JS_411, 2, 1},
                        {JC_CMYK, JPEG_PROGRESSIVE, JS_444, 0, 18},
                        {JC_YCCK, JPEG_PROGRESSIVE, JS_422, 2, 18}};
  const int w = 61, h = 37;
  const Image a = jpegpeer::Scene(w, h, 3, 21), b = jpegpeer::Scene(w, h, 1, 22);
  std::vector<uint8_t> cmyk(size_t(w) * h * 4);
  for (size_t i = 0; i < size_t(w) * h; ++i) {
    for (int c = 0; c < 3; ++c) cmyk[i * 4 + c] = a.pixels[i * 3 + c];
    cmyk[i * 4 + 3] = b.pixels[i];
  }
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << "colour " << c.colour << " mode " << c.mode);
    std::vector<uint8_t> out(cmyk.size() * 2 + 4096);
    CMemBuffOutput stream;
    stream.Open(out.data(), uint32_t(out.size()));
    CJPEGEncoder enc;
    ASSERT_EQ(enc.SetSource(cmyk.data(), w * 4, {w, h}, 4, JC_CMYK, JS_444, 8), JPEG_OK);
    ASSERT_EQ(enc.SetDestination(&stream), JPEG_OK);
    ASSERT_EQ(enc.SetParams(c.mode, c.colour, c.sampling, 0, false, 95), JPEG_OK);
    ASSERT_EQ(enc.WriteHeader(), JPEG_OK);
    ASSERT_EQ(enc.WriteData(), JPEG_OK);
    out.resize(stream.m_position);
    // APP14 "Adobe" with the transform flag in its last byte.
    ASSERT_EQ(out[3], 0xEE);
    EXPECT_EQ(out[2 + 2 + 14 - 1], c.adobeTransform);
    EXPECT_EQ(CountMarkers(out, 0xDA), c.scans);
    Image theirs;
    ASSERT_TRUE(jpegpeer::Decode(out, theirs));
    ASSERT_EQ(theirs.channels, 4);
    EXPECT_GT(jpegpeer::Psnr(cmyk, theirs.pixels), 30.0);
    Image ours;
    ASSERT_EQ(DecodeOurs(out, ours, 4), JPEG_OK);
    EXPECT_LE(jpegpeer::MaxDifference(ours.pixels, theirs.pixels), 1);
  }
}

}  // namespace

namespace {

// Optimal tables: no code longer than 16 bits, none all ones, every counted
// symbol coded, an unused table empty.
TEST(JpegEncoder, OptimalHuffmanTables) {
  struct Case {
    const char* name;
    std::vector<uint32_t> counts;  // counts of symbols 0, 1, 2, ...
  };
  std::vector<uint32_t> fibonacci(40);
  fibonacci[0] = fibonacci[1] = 1;
  for (size_t i = 2; i < fibonacci.size(); ++i) fibonacci[i] = fibonacci[i - 1] + fibonacci[i - 2];
  const Case cases[] = {{"unused", {}}, {"one symbol", {5}}, {"two symbols", {5, 1}},
                        {"skewed past 16 bits", fibonacci}, {"flat", std::vector<uint32_t>(256, 3)}};
  for (const Case& c : cases) {
    uint32_t freq[256] = {};
    for (size_t i = 0; i < c.counts.size(); ++i) freq[i] = c.counts[i];
    uint8_t bits[16], values[256];
    int count = -1;
    BuildOptimalHuffman(freq, bits, values, count);
    int total = 0;
    for (int i = 0; i < 16; ++i) total += bits[i];
    EXPECT_EQ(total, count) << c.name;
    EXPECT_EQ(count, int(c.counts.size())) << c.name;
    CJPEGEncoderHuffmanTable t;
    ASSERT_TRUE(t.Init(bits, values, count)) << c.name;
    // Kraft sum strictly below 1: no code is all ones.
    double kraft = 0;
    for (int len = 1; len <= 16; ++len) kraft += bits[len - 1] / double(1 << len);
    if (count) {
      EXPECT_LT(kraft, 1.0) << c.name;
    }
    for (size_t s = 0; s < c.counts.size(); ++s) EXPECT_GT(t.m_length[s], 0) << c.name << " symbol " << s;
  }
}

}  // namespace
