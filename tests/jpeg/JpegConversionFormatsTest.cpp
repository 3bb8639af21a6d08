// Every format code of CJpegConversion through its software back-ends: the
// frame is normalised as its code says, encoded at quality 100 and decoded
// again, by our back-end and by libjpeg-turbo, and must come back as the
// normalised frame within JPEG's tolerance.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>
#include <kestrelink/CJpegConversion.h>

#include <cmath>
#include <functional>
#include <vector>

#include "jpeg/JpegFrontSupport.h"
#include "jpeg/JpegPeer.h"

namespace {

constexpr uint32_t kW = 64, kH = 40;

// A smooth value at (x, y) for channel c, 0 .. top.
uint32_t Smooth(uint32_t x, uint32_t y, int c, uint32_t top) {
  const double v = 0.5 + 0.4 * std::sin(x * (0.07 + 0.02 * c) + y * 0.05) * std::cos(y * 0.04 - c);
  return uint32_t(v * top);
}

struct Frame {
  std::vector<uint8_t> planes[3];  // packed frames use plane 2 only
};

using Normaliser = std::function<std::vector<uint8_t>(CIppImageConverter&, Frame&)>;

struct FormatCase {
  const char* name;
  uint32_t format, bitCount, sampleBits;
  std::function<Frame()> make;
  Normaliser normalise;  // the expected normalised frame
  int channels;          // of the decoded frame: 1, 3, 4, or 2 (YCbCr 4:2:2)
  int peer;              // libjpeg-turbo's RGB against the normalised frame: 0 same order, 1 swapped, -1 not checked
  double minPsnr;
};

// Smooth byte groups: each group of groupBytes covers pixelsPerGroup pixels,
// byte k of a group carrying channel channelOf[k].
Frame SmoothBytes(int groupBytes, int pixelsPerGroup, std::vector<int> channelOf) {
  Frame f;
  const size_t groups = size_t(kW) / pixelsPerGroup;
  f.planes[2].resize(groups * groupBytes * kH);
  for (uint32_t y = 0; y < kH; ++y)
    for (size_t g = 0; g < groups; ++g)
      for (int k = 0; k < groupBytes; ++k)
        f.planes[2][(y * groups + g) * groupBytes + k] = uint8_t(Smooth(uint32_t(g * pixelsPerGroup), y, channelOf[k], 255));
  return f;
}

// Smooth pixels of up to three fields packed into one little-endian word of
// wordBytes: field c holds bits[c] bits at shift[c].
Frame SmoothPackedWords(int wordBytes, std::vector<int> bits, std::vector<int> shift) {
  Frame f;
  f.planes[2].resize(size_t(kW) * kH * wordBytes);
  for (uint32_t y = 0; y < kH; ++y)
    for (uint32_t x = 0; x < kW; ++x) {
      uint32_t word = 0;
      for (size_t c = 0; c < bits.size(); ++c) word |= Smooth(x, y, int(c), (1u << bits[c]) - 1) << shift[c];
      for (int b = 0; b < wordBytes; ++b) f.planes[2][(size_t(y) * kW + x) * wordBytes + b] = uint8_t(word >> (8 * b));
    }
  return f;
}

// Smooth colour pixels of `channels` samples (the fourth is 0) in words or bytes.
Frame SmoothPixels(int channels, int bytesPerSample, uint32_t top) {
  Frame f;
  f.planes[2].resize(size_t(kW) * kH * channels * bytesPerSample);
  for (uint32_t y = 0; y < kH; ++y)
    for (uint32_t x = 0; x < kW; ++x)
      for (int c = 0; c < channels; ++c) {
        const uint32_t v = c == 3 ? 0 : Smooth(x, y, c, top);
        const size_t i = ((size_t(y) * kW + x) * channels + c) * bytesPerSample;
        f.planes[2][i] = uint8_t(v);
        if (bytesPerSample == 2) f.planes[2][i + 1] = uint8_t(v >> 8);
      }
  return f;
}

Frame SmoothPlanes(int bytesPerSample, uint32_t top) {
  Frame f;
  for (int p = 0; p < 3; ++p) {
    f.planes[p].resize(size_t(kW) * kH * bytesPerSample);
    for (uint32_t y = 0; y < kH; ++y)
      for (uint32_t x = 0; x < kW; ++x) {
        const uint32_t v = Smooth(x, y, p, top);
        const size_t i = (size_t(y) * kW + x) * bytesPerSample;
        f.planes[p][i] = uint8_t(v);
        if (bytesPerSample == 2) f.planes[p][i + 1] = uint8_t(v >> 8);
      }
  }
  return f;
}

std::vector<uint8_t> AsIs(CIppImageConverter&, Frame& f) { return f.planes[2]; }

template <typename Call>
Normaliser To(size_t bytesPerPixel, Call call) {
  return [bytesPerPixel, call](CIppImageConverter& c, Frame& f) {
    std::vector<uint8_t> out(size_t(kW) * kH * bytesPerPixel);
    EXPECT_TRUE(call(c, f, out.data()));
    return out;
  };
}

std::vector<FormatCase> Cases() {
  auto mono16 = [](uint32_t d) {
    return To(1, [d](CIppImageConverter& c, Frame& f, uint8_t* o) { return c.Mono16ToMono8(kW, kH, d, f.planes[2].data(), o, false); });
  };
  auto bgr24 = [](auto method) {
    return To(3, [method](CIppImageConverter& c, Frame& f, uint8_t* o) { return (c.*method)(kW, kH, f.planes[2].data(), o, false); });
  };
  auto mono = [](int bits) { return [bits] { return SmoothPackedWords(2, {bits}, {0}); }; };
  auto packed10 = [](std::vector<int> shift) { return [shift] { return SmoothPackedWords(4, {10, 10, 10}, shift); }; };
  auto bgrBytes = [] { return SmoothBytes(3, 1, {0, 1, 2}); };
  return {
      {"Mono8", 100, 8, 8, [] { return SmoothBytes(1, 1, {0}); }, AsIs, 1, 0, 40},
      {"Mono16", 101, 16, 12, mono(12), mono16(12), 1, 0, 40},
      {"Mono16As112", 112, 16, 10, mono(10), mono16(10), 1, 0, 40},
      {"Mono16As115", 115, 16, 16, mono(16), mono16(16), 1, 0, 40},
      {"BGR10Packed", 123, 48, 10, packed10({0, 10, 20}), bgr24(&CIppImageConverter::BGR10PixelPackedToBGR24), 3, 1, 36},
      {"BGR10Phoenix", 124, 48, 10, packed10({0, 12, 22}), bgr24(&CIppImageConverter::BGR10PixelPackedPhoenixToBGR24), 3, 1, 36},
      {"RGB10Phoenix", 125, 48, 10, packed10({0, 12, 22}), bgr24(&CIppImageConverter::RGB10PixelPackedPhoenixToBGR24), 3, 1, 36},
      {"BGR24", 200, 24, 8, bgrBytes, AsIs, 3, 1, 36},
      {"BGR48", 200, 48, 12, [] { return SmoothPixels(3, 2, 4095); },
       To(3, [](CIppImageConverter& c, Frame& f, uint8_t* o) { return c.BGR48ToBGR24(kW, kH, 12, f.planes[2].data(), o, false); }), 3, 1, 36},
      {"Planar30", 300, 48, 30, [] { return SmoothPlanes(2, 1023); },
       To(4, [](CIppImageConverter& c, Frame& f, uint8_t* o) { return c.BGR30PToBGRx(kW, kH, f.planes[0].data(), f.planes[1].data(), f.planes[2].data(), o, false); }), 4, -1, 33},
      {"Planar36", 300, 48, 36, [] { return SmoothPlanes(2, 4095); },
       To(4, [](CIppImageConverter& c, Frame& f, uint8_t* o) { return c.BGR36PToBGRx(kW, kH, f.planes[0].data(), f.planes[1].data(), f.planes[2].data(), o, false); }), 4, -1, 33},
      {"Planar42", 300, 48, 42, [] { return SmoothPlanes(2, 16383); },
       To(4, [](CIppImageConverter& c, Frame& f, uint8_t* o) { return c.BGR42PToBGRx(kW, kH, 14, f.planes[0].data(), f.planes[1].data(), f.planes[2].data(), o, false); }), 4, -1, 33},
      {"RGB24", 400, 24, 8, bgrBytes, AsIs, 3, 1, 36},
      {"BGRx32", 500, 32, 8, [] { return SmoothPixels(4, 1, 255); }, AsIs, 4, -1, 33},
      {"BGRx64", 500, 64, 12, [] { return SmoothPixels(4, 2, 4095); },
       To(4, [](CIppImageConverter& c, Frame& f, uint8_t* o) { return c.BGR64ToBGRx(kW, kH, 12, f.planes[2].data(), o, false); }), 4, -1, 33},
      {"YCbCr422", 600, 16, 16, [] { return SmoothBytes(4, 2, {0, 1, 0, 2}); }, AsIs, 2, -1, 36},
      {"UVY422", 700, 16, 8, [] { return SmoothBytes(4, 2, {1, 0, 2, 0}); }, bgr24(&CIppImageConverter::UVY422ToBGR24), 3, 1, 36},
      {"UVY411", 800, 12, 8, [] { return SmoothBytes(6, 4, {1, 0, 0, 2, 0, 0}); }, bgr24(&CIppImageConverter::UVY411ToBGR24), 3, 1, 36},
      {"UVY411At24", 800, 24, 8, [] { return SmoothBytes(6, 4, {1, 0, 0, 2, 0, 0}); }, bgr24(&CIppImageConverter::UVY411ToBGR24), 3, 1, 36},
      {"Other24", 900, 24, 8, bgrBytes, AsIs, 3, 1, 36},
      {"BGR555", 905, 16, 5, [] { return SmoothPackedWords(2, {5, 5, 5}, {0, 5, 10}); }, bgr24(&CIppImageConverter::BGR555PackedToBGR24), 3, 1, 36},
      {"BGR565At24", 906, 24, 6, [] { return SmoothPackedWords(2, {5, 6, 5}, {0, 5, 11}); }, bgr24(&CIppImageConverter::BGR565PackedToBGR24), 3, 1, 36},
  };
}

class JpegConversionFormats : public ::testing::TestWithParam<FormatCase> {};

TEST_P(JpegConversionFormats, RoundTripGivesTheNormalisedFrame) {
  const FormatCase& fc = GetParam();
  // Full chroma for the codec's frames, so that quality 100 keeps random pixels.
  jpegfront_test::UserHive hive("\"JPEG444Mode\"=dword:00000001");
  Frame frame = fc.make();
  CIppImageConverter converter;
  const std::vector<uint8_t> expected = fc.normalise(converter, frame);

  CJpegConversion jpeg;
  ASSERT_EQ(jpeg.InitConverter(kW, kH, fc.bitCount, fc.sampleBits, fc.format, 100, true), 1);
  std::vector<uint8_t> buffer(size_t(kW) * kH * 8 + 4, 0);
  int unused = -1;
  ASSERT_TRUE(jpeg.EncodeJpeg(frame.planes[0].data(), frame.planes[1].data(), frame.planes[2].data(),
                              buffer.data(), &unused, nullptr));
  const uint32_t size = jpegfront_test::SizeWord(buffer);
  ASSERT_GT(size, 4u);
  // The size word counts itself: the stream's end marker is its last two bytes.
  EXPECT_EQ(buffer[size - 2], 0xFF);
  EXPECT_EQ(buffer[size - 1], 0xD9);

  std::vector<uint8_t> decoded(expected.size(), 0);
  ASSERT_TRUE(jpeg.DecodeJpeg(buffer.data(), decoded.data()));
  EXPECT_GE(jpegpeer::Psnr(decoded, expected), fc.minPsnr);

  if (fc.peer >= 0) {
    jpegpeer::Image peer;
    ASSERT_TRUE(jpegpeer::Decode(std::vector<uint8_t>(buffer.begin() + 4, buffer.begin() + size), peer));
    ASSERT_EQ(peer.width, int(kW));
    ASSERT_EQ(peer.height, int(kH));
    jpegpeer::Image normalised{int(kW), int(kH), fc.channels, expected};
    EXPECT_GE(jpegpeer::Psnr(peer.pixels, fc.peer == 1 ? jpegpeer::Swapped(normalised) : expected), fc.minPsnr - 2);
  }
}

INSTANTIATE_TEST_SUITE_P(EveryCode, JpegConversionFormats, ::testing::ValuesIn(Cases()),
                         [](const auto& info) { return std::string(info.param.name); });

}  // namespace
