// The decoder reads the peer's streams to within one grey level of the
// peer's own decode, and answers damaged streams with the format's statuses.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/TestSupport.h"
#include "jpeg/JpegTestSupport.h"

namespace {

using namespace jpegtest;
using jpegpeer::Image;

TEST(JpegDecoder, PeerStreamsWithinOneLevelOfPeerDecode) {
  struct Case {
    int w, h, channels, hs, vs;
    bool progressive, optimise;
    int restart, quality;
  };
  const Case cases[] = {
      {640, 480, 3, 2, 2, false, false, 0, 85}, {640, 480, 3, 2, 1, false, false, 0, 85},
      {640, 480, 3, 1, 1, false, false, 0, 85}, {640, 480, 1, 1, 1, false, false, 0, 85},
      {333, 211, 3, 2, 2, true, false, 0, 80},  {333, 211, 1, 1, 1, true, false, 0, 90},
      {301, 199, 3, 2, 2, false, true, 5, 75},  {17, 9, 3, 2, 2, false, false, 1, 95},
      {1, 1, 3, 2, 2, false, false, 0, 85},     {1, 40, 1, 1, 1, true, false, 0, 85},
      {129, 67, 3, 1, 2, false, false, 3, 85},  {257, 130, 3, 1, 1, true, true, 2, 100},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(testing::Message() << c.w << "x" << c.h << " ch " << c.channels << " " << c.hs << "x" << c.vs
                                    << (c.progressive ? " progressive" : "") << " restart " << c.restart);
    const Image im = jpegpeer::Scene(c.w, c.h, c.channels, 3);
    jpegpeer::EncodeOptions o;
    o.quality = c.quality;
    o.hSamp = c.hs;
    o.vSamp = c.vs;
    o.progressive = c.progressive;
    o.optimise = c.optimise;
    o.restartInterval = c.restart;
    const std::vector<uint8_t> stream = jpegpeer::Encode(im, o);
    Image theirs, ours;
    ASSERT_TRUE(jpegpeer::Decode(stream, theirs));
    ASSERT_EQ(DecodeOurs(stream, ours), JPEG_OK);
    ASSERT_EQ(ours.width, c.w);
    ASSERT_EQ(ours.height, c.h);
    EXPECT_LE(jpegpeer::MaxDifference(ours.pixels, theirs.pixels), 1);
  }
}

TEST(JpegDecoder, OurStreamsRoundTrip) {
  for (JSS sampling : {JS_444, JS_422, JS_411}) {
    const Image im = jpegpeer::Scene(203, 101, 3, 5);
    OurOptions o;
    o.sampling = sampling;
    o.quality = 90;
    o.restartInterval = 4;
    const std::vector<uint8_t> stream = EncodeOurs(im, o);
    Image ours, theirs;
    ASSERT_EQ(DecodeOurs(stream, ours), JPEG_OK);
    ASSERT_TRUE(jpegpeer::Decode(stream, theirs));
    EXPECT_LE(jpegpeer::MaxDifference(ours.pixels, theirs.pixels), 1) << sampling;
  }
}

TEST(JpegDecoder, HeaderReportsFrame) {
  const Image im = jpegpeer::Scene(77, 33, 3);
  OurOptions o;
  o.sampling = JS_422;
  const std::vector<uint8_t> stream = EncodeOurs(im, o);
  CMemBuffInput in;
  in.Open(stream.data(), uint32_t(stream.size()));
  CJPEGDecoder dec;
  ASSERT_EQ(dec.SetSource(&in), JPEG_OK);
  int w, h, ch, p;
  JCOLOR colour;
  JSS sampling;
  ASSERT_EQ(dec.ReadHeader(&w, &h, &ch, &colour, &sampling, &p), JPEG_OK);
  EXPECT_EQ(w, 77);
  EXPECT_EQ(h, 33);
  EXPECT_EQ(ch, 3);
  EXPECT_EQ(colour, JC_YCBCR);
  EXPECT_EQ(sampling, JS_422);
  EXPECT_EQ(p, 8);
  // SetDestination's refusals.
  std::vector<uint8_t> out(77 * 33 * 3);
  EXPECT_EQ(dec.SetDestination(nullptr, 231, {77, 33}, 3, JC_BGR, JS_444, 8, 1), JPEG_BAD_PARAMETER);
  EXPECT_EQ(dec.SetDestination(out.data(), -231, {77, 33}, 3, JC_BGR, JS_444, 8, 1), JPEG_BAD_PARAMETER);
  EXPECT_EQ(dec.SetDestination(out.data(), 231, {77, 33}, 0, JC_BGR, JS_444, 8, 1), JPEG_BAD_PARAMETER);
  EXPECT_EQ(dec.SetDestination(out.data(), 231, {77, 33}, 5, JC_BGR, JS_444, 8, 1), JPEG_BAD_PARAMETER);
  EXPECT_EQ(dec.SetDestination(out.data(), 231, {77, 33}, 3, JC_BGR, JS_444, 0, 1), JPEG_BAD_PARAMETER);
  EXPECT_EQ(dec.SetDestination(out.data(), 231, {77, 33}, 3, JC_BGR, JS_444, 12, 1), JPEG_BAD_PARAMETER);
  EXPECT_EQ(dec.SetDestination(out.data(), 231, {77, 33}, 3, JC_BGR, JS_444, 8, 1), JPEG_OK);
  EXPECT_EQ(dec.ReadData(), JPEG_OK);
}

// Offset of the first marker `code` in a stream.
size_t FindMarker(const std::vector<uint8_t>& s, int code) {
  for (size_t i = 0; i + 1 < s.size(); ++i)
    if (s[i] == 0xFF && s[i + 1] == code) return i;
  return s.size();
}

TEST(JpegDecoder, DamagedStreamsGetTheirStatus) {
  OurOptions o;
  o.restartInterval = 2;
  const std::vector<uint8_t> good = EncodeOurs(jpegpeer::Scene(64, 48, 3), o);
  const size_t sof = FindMarker(good, 0xC0), sos = FindMarker(good, 0xDA), rst = FindMarker(good, 0xD0);
  ASSERT_LT(rst, good.size());
  const size_t sofLength = size_t((good[sof + 2] << 8) | good[sof + 3]) + 2;

  std::vector<uint8_t> twoFrames = good;
  twoFrames.insert(twoFrames.begin() + long(sos), good.begin() + long(sof), good.begin() + long(sof + sofLength));
  std::vector<uint8_t> arithmetic = good;
  arithmetic[sof + 1] = 0xC9;
  std::vector<uint8_t> lossyHier = good;
  lossyHier[sof + 1] = 0xC5;
  std::vector<uint8_t> wrongRestart = good;
  wrongRestart[rst + 1] = 0xD3;
  std::vector<uint8_t> truncated(good.begin(), good.begin() + long(sos + (good.size() - sos) / 2));
  std::vector<uint8_t> headerOnly(good.begin(), good.begin() + long(sos));

  struct Case {
    const char* name;
    const std::vector<uint8_t>* stream;
    JERRCODE status;
  };
  const Case cases[] = {{"two SOF0", &twoFrames, JPEG_BAD_FRAME_SEGMENT},
                        {"arithmetic SOF9", &arithmetic, JPEG_NOT_IMPLEMENTED},
                        {"SOF5", &lossyHier, JPEG_NOT_IMPLEMENTED},
                        {"wrong restart number", &wrongRestart, JPEG_BAD_RESTART},
                        {"truncated scan", &truncated, JPEG_BUFF_TOO_SMALL},
                        {"no scan", &headerOnly, JPEG_BUFF_TOO_SMALL}};
  for (const Case& c : cases) {
    Image out;
    EXPECT_EQ(DecodeOurs(*c.stream, out), c.status) << c.name;
  }
  EXPECT_STREQ(JPEGErrorText(JPEG_NOT_IMPLEMENTED), "requested feature is not implemented");
  EXPECT_STREQ(JPEGErrorText(JPEG_BAD_FRAME_SEGMENT), "bad frame segment");
}

// An input that hands over a few bytes per read.
class TrickleInput : public CBaseStreamInput {
 public:
  TrickleInput(const std::vector<uint8_t>& data, uint32_t piece) : m_data(data), m_piece(piece) {}
  JERRCODE Open(const char*) override { return JPEG_NOT_IMPLEMENTED; }
  JERRCODE Close() override { return JPEG_OK; }
  JERRCODE Seek(int32_t, int) override { return JPEG_NOT_IMPLEMENTED; }
  JERRCODE GetPosition(uint32_t& p) override {
    p = uint32_t(m_at);
    return JPEG_OK;
  }
  JERRCODE Read(void* target, uint32_t count, uint32_t& got) override {
    got = uint32_t(std::min<size_t>({count, m_piece, m_data.size() - m_at}));
    std::copy_n(m_data.begin() + long(m_at), got, static_cast<uint8_t*>(target));
    m_at += got;
    return got == 0 && count ? JPEG_BUFF_TOO_SMALL : JPEG_OK;
  }

 private:
  const std::vector<uint8_t>& m_data;
  uint32_t m_piece;
  size_t m_at = 0;
};

TEST(JpegDecoder, BytesInPiecesAndFromFiles) {
  const Image im = jpegpeer::Scene(700, 500, 3, 9);
  jpegpeer::EncodeOptions o;
  o.progressive = true;
  const std::vector<uint8_t> stream = jpegpeer::Encode(im, o);
  ASSERT_GT(stream.size(), 16384u);  // crosses the input buffer
  Image whole, pieces, file;
  ASSERT_EQ(DecodeOurs(stream, whole), JPEG_OK);
  for (uint32_t piece : {1u, 7u, 4096u}) {
    TrickleInput in(stream, piece);
    ASSERT_EQ(DecodeOursFrom(in, pieces), JPEG_OK) << piece;
    EXPECT_EQ(pieces.pixels, whole.pixels) << piece;
  }
  testsupport::TempFile tmp("decode.jpg", std::string(stream.begin(), stream.end()));
  CStdFileInput in;
  ASSERT_EQ(in.Open(tmp.path()), JPEG_OK);
  ASSERT_EQ(DecodeOursFrom(in, file), JPEG_OK);
  EXPECT_EQ(file.pixels, whole.pixels);
}

TEST(JpegDecoder, EveryVariantDecodesTheSame) {
  const Image im = jpegpeer::Scene(131, 77, 3);
  const std::vector<uint8_t> stream = jpegpeer::Encode(im, jpegpeer::EncodeOptions{});
  Image first;
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    Image out;
    ASSERT_EQ(DecodeOurs(stream, out), JPEG_OK);
    if (first.pixels.empty()) first = out;
    EXPECT_EQ(out.pixels, first.pixels) << kestrelink::VariantName(v);
  }
}

TEST(JpegDecoder, GreyAndBgrOutputsOfAColourFrame) {
  const Image im = jpegpeer::Scene(64, 32, 3);
  const std::vector<uint8_t> stream = jpegpeer::Encode(im, jpegpeer::EncodeOptions{});
  Image rgb, grey, peerGrey;
  ASSERT_EQ(DecodeOurs(stream, rgb), JPEG_OK);
  ASSERT_EQ(DecodeOurs(stream, grey, 1), JPEG_OK);
  ASSERT_TRUE(jpegpeer::Decode(stream, peerGrey, true));
  EXPECT_LE(jpegpeer::MaxDifference(grey.pixels, peerGrey.pixels), 1);
}

}  // namespace

namespace {

// Reduced output: ceil(size / scale) pixels each way, each the rounded mean of
// the full-size pixels it covers.
TEST(JpegDecoder, ReducedOutputAveragesTheFullFrame) {
  const Image im = jpegpeer::Scene(101, 75, 3, 13);
  const std::vector<uint8_t> stream = jpegpeer::Encode(im, jpegpeer::EncodeOptions{});
  Image full;
  ASSERT_EQ(DecodeOurs(stream, full), JPEG_OK);
  for (int scale : {2, 4, 8}) {
    const int ow = (101 + scale - 1) / scale, oh = (75 + scale - 1) / scale;
    std::vector<uint8_t> out(size_t(ow) * oh * 3);
    CMemBuffInput in;
    in.Open(stream.data(), uint32_t(stream.size()));
    CJPEGDecoder dec;
    ASSERT_EQ(dec.SetSource(&in), JPEG_OK);
    ASSERT_EQ(dec.ReadHeader(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), JPEG_OK);
    // The destination must hold the reduced frame.
    EXPECT_EQ(dec.SetDestination(out.data(), ow * 3, {ow, oh}, 3, JC_RGB, JS_444, 8, 3), JPEG_BAD_PARAMETER);
    ASSERT_EQ(dec.SetDestination(out.data(), ow * 3, {ow, oh}, 3, JC_RGB, JS_444, 8, scale), JPEG_OK);
    ASSERT_EQ(dec.ReadData(), JPEG_OK);
    for (int oy = 0; oy < oh; ++oy)
      for (int ox = 0; ox < ow; ++ox)
        for (int c = 0; c < 3; ++c) {
          uint32_t sum = 0, n = 0;
          for (int y = oy * scale; y < std::min(75, oy * scale + scale); ++y)
            for (int x = ox * scale; x < std::min(101, ox * scale + scale); ++x, ++n)
              sum += full.pixels[(size_t(y) * 101 + x) * 3 + c];
          ASSERT_EQ(out[(size_t(oy) * ow + ox) * 3 + c], (sum + n / 2) / n) << scale << ": " << ox << "," << oy;
        }
  }
}

}  // namespace
