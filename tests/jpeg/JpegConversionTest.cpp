// CJpegConversion's behaviour around the codecs: the format table and its
// refusals, the back-end that each depth gets, the registry values, the file
// forms with their metadata segment, wide paths, the row step, the messages,
// stream decoding and the normalised buffer.
#include <gtest/gtest.h>
#include <kestrelink/CJpegConversion.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>
#include <vector>

#include "jpeg/JpegFrontSupport.h"
#include "jpeg/JpegPeer.h"
#include "jpeg/front/CIjlJpegConversion.h"
#include "support/DebugLines.h"

namespace {

using jpegfront_test::HeaderSegments;
using jpegfront_test::ReadFrameHeader;
using jpegfront_test::SizeWord;
using jpegfront_test::UserHive;
using Lines = std::vector<std::string>;

// A smooth frame of `channels` bytes a pixel, rows at `step` bytes (0: packed).
std::vector<uint8_t> SmoothFrame(int w, int h, int channels, int step = 0) {
  if (step == 0) step = w * channels;
  std::vector<uint8_t> f(size_t(step) * h, 0xEE);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x)
      for (int c = 0; c < channels; ++c)
        f[size_t(y) * step + size_t(x) * channels + c] =
            uint8_t(128 + 100 * std::sin(x * (0.05 + 0.03 * c) + y * 0.04) * std::cos(y * 0.03 + c));
  return f;
}

std::vector<uint8_t> ReadWhole(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// A file name of this process in the temporary folder.
std::string TempPath(const char* name) { return ::testing::TempDir() + std::to_string(::getpid()) + "-" + name; }

// Encodes to the compressed buffer form; empty on failure.
std::vector<uint8_t> EncodeToBuffer(CJpegConversion& jpeg, std::vector<uint8_t>& frame) {
  std::vector<uint8_t> buffer(frame.size() * 2 + 4, 0);
  int unused = 0;
  if (!jpeg.EncodeJpeg(nullptr, nullptr, frame.data(), buffer.data(), &unused, nullptr)) return {};
  buffer.resize(SizeWord(buffer));
  return buffer;
}

std::vector<uint8_t> StreamOf(const std::vector<uint8_t>& buffer) { return {buffer.begin() + 4, buffer.end()}; }

bool HasSegment(const std::vector<uint8_t>& jpeg, uint8_t marker) {
  for (const auto& s : HeaderSegments(jpeg.data(), jpeg.size()))
    if (s.marker == marker) return true;
  return false;
}

struct InitCase {
  uint32_t format, bitCount, sampleBits;
  int result;
};

TEST(JpegConversion, InitConverterChecksTheFormatTable) {
  const InitCase cases[] = {
      {100, 8, 8, 1},    {101, 16, 12, 1},  {100, 24, 8, 0},   {112, 16, 12, 1}, {115, 8, 8, 0},
      {123, 48, 10, 1},  {125, 32, 10, 0},  {200, 24, 8, 1},   {200, 48, 12, 1}, {200, 32, 8, 0},
      {300, 24, 8, 1},   {300, 48, 30, 1},  {300, 48, 42, 1},  {300, 48, 32, 0}, {400, 48, 12, 1},
      {500, 32, 8, 1},   {500, 64, 12, 1},  {500, 24, 8, 0},   {600, 16, 16, 1}, {600, 8, 8, 0},
      {700, 16, 8, 1},   {700, 24, 8, 0},   {800, 7, 0, 1},    {900, 24, 8, 1},  {900, 32, 8, 0},
      {905, 99, 0, 1},   {906, 1, 0, 1},    {102, 8, 8, 0},    {0, 8, 8, 0},     {1000, 24, 8, 0},
  };
  for (const InitCase& c : cases) {
    CJpegConversion jpeg;
    EXPECT_EQ(jpeg.InitConverter(64, 32, c.bitCount, c.sampleBits, c.format, 80, true), c.result)
        << "format " << c.format << " bits " << c.bitCount << " sample bits " << c.sampleBits;
  }
}

TEST(JpegConversion, RefusalLeavesTheBackEndInPlace) {
  CJpegConversion jpeg;
  ASSERT_EQ(jpeg.InitConverter(64, 32, 8, 8, 100, 80, true), 1);
  EXPECT_EQ(jpeg.InitConverter(64, 32, 24, 8, 100, 80, true), 0);
  std::vector<uint8_t> frame = SmoothFrame(64, 32, 1);
  const std::vector<uint8_t> buffer = EncodeToBuffer(jpeg, frame);
  ASSERT_FALSE(buffer.empty());
  EXPECT_EQ(ReadFrameHeader(buffer.data() + 4, buffer.size() - 4).factors, (std::vector<uint8_t>{0x11}));
  // Without any back-end the forwarding calls answer false.
  CJpegConversion empty;
  std::vector<uint8_t> out(16);
  int used = 3;
  EXPECT_FALSE(empty.EncodeJpeg(nullptr, nullptr, frame.data(), out.data(), &used, nullptr));
  EXPECT_FALSE(empty.DecodeJpeg(out.data(), frame.data()));
  EXPECT_FALSE(empty.DecodeJpegFromRTSP(16, out.data(), frame.data(), 0, used));
}

struct InfoCase {
  uint32_t format, bitCount, outFormat, outBits, outSampleBits;
};

TEST(JpegConversion, DecodeImageInfoOfEveryCode) {
  const InfoCase cases[] = {
      {100, 8, 100, 8, 8},    {101, 16, 100, 8, 8},   {112, 16, 100, 8, 8},   {113, 16, 100, 8, 8},
      {114, 16, 100, 8, 8},   {115, 16, 100, 8, 8},   {123, 48, 200, 24, 8},  {124, 48, 200, 24, 8},
      {125, 48, 200, 24, 8},  {200, 24, 200, 24, 8},  {200, 48, 200, 24, 8},  {300, 24, 500, 32, 8},
      {300, 48, 500, 32, 8},  {400, 24, 400, 24, 8},  {400, 48, 200, 24, 8},  {500, 32, 500, 32, 8},
      {500, 64, 500, 32, 8},  {600, 16, 600, 16, 16}, {700, 16, 200, 24, 8},  {800, 12, 200, 24, 8},
      {900, 24, 900, 24, 8},  {905, 16, 200, 24, 8},  {906, 16, 200, 24, 8},  {102, 8, 0, 0, 0},
      {301, 24, 0, 0, 0},     {0, 0, 0, 0, 0},
  };
  CJpegConversion jpeg;  // needs no back-end
  for (const InfoCase& c : cases) {
    uint32_t format = 7, bits = 7, sampleBits = 7;
    EXPECT_EQ(jpeg.GetDecodeImageInfo(c.format, c.bitCount, 0, format, bits, sampleBits), c.outFormat != 0);
    EXPECT_EQ(format, c.outFormat) << c.format << "/" << c.bitCount;
    EXPECT_EQ(bits, c.outBits) << c.format << "/" << c.bitCount;
    EXPECT_EQ(sampleBits, c.outSampleBits) << c.format << "/" << c.bitCount;
  }
}

// Only the depth picks the back-end: our codec subsamples colour 2 x 2 and
// writes its comment; the general library keeps full chroma and writes none.
TEST(JpegConversion, BitCountChoosesTheBackEnd) {
  std::vector<uint8_t> bgr24 = SmoothFrame(64, 32, 3);
  std::vector<uint8_t> bgr48(bgr24.size() * 2);
  for (size_t i = 0; i < bgr24.size(); ++i) bgr48[2 * i] = 0, bgr48[2 * i + 1] = bgr24[i];  // 16 significant bits
  CJpegConversion ours, general;
  ASSERT_EQ(ours.InitConverter(64, 32, 24, 8, 200, 90, true), 1);
  ASSERT_EQ(general.InitConverter(64, 32, 48, 16, 200, 90, true), 1);
  const std::vector<uint8_t> a = StreamOf(EncodeToBuffer(ours, bgr24));
  const std::vector<uint8_t> b = StreamOf(EncodeToBuffer(general, bgr48));
  ASSERT_FALSE(a.empty());
  ASSERT_FALSE(b.empty());
  EXPECT_EQ(ReadFrameHeader(a.data(), a.size()).factors, (std::vector<uint8_t>{0x22, 0x11, 0x11}));
  EXPECT_TRUE(HasSegment(a, 0xFE));
  EXPECT_EQ(ReadFrameHeader(b.data(), b.size()).factors, (std::vector<uint8_t>{0x11, 0x11, 0x11}));
  EXPECT_FALSE(HasSegment(b, 0xFE));
  // Both are the same picture (48 bits reduced to 24 first).
  jpegpeer::Image pa, pb;
  ASSERT_TRUE(jpegpeer::Decode(a, pa));
  ASSERT_TRUE(jpegpeer::Decode(b, pb));
  EXPECT_GE(jpegpeer::Psnr(pa.pixels, pb.pixels), 30);
}

TEST(JpegConversion, AcceptedFramesThatDoNotEncode) {
  std::vector<uint8_t> planes[3] = {SmoothFrame(64, 32, 1), SmoothFrame(64, 32, 1), SmoothFrame(64, 32, 1)};
  std::vector<uint8_t> out(64 * 32 * 8);
  int unused = 0;
  CJpegConversion planar;  // 24-bit planes become BGRx, which our codec doesn't take
  ASSERT_EQ(planar.InitConverter(64, 32, 24, 8, 300, 90, true), 1);
  EXPECT_FALSE(planar.EncodeJpeg(planes[0].data(), planes[1].data(), planes[2].data(), out.data(), &unused, nullptr));
  CJpegConversion rgb48;  // accepted, but 48-bit RGB has no reduction
  ASSERT_EQ(rgb48.InitConverter(64, 32, 48, 16, 400, 90, true), 1);
  std::vector<uint8_t> frame(64 * 32 * 6, 0x40);
  EXPECT_FALSE(rgb48.EncodeJpeg(nullptr, nullptr, frame.data(), out.data(), &unused, nullptr));
}

struct RegistryCase {
  const char* values;
  uint8_t lumaFactors;
  uint8_t frameMarker;
};

TEST(JpegConversion, RegistryValuesChooseChromaAndScans) {
  const RegistryCase cases[] = {
      {"", 0x22, 0xC0},
      {"\"JPEG444Mode\"=dword:00000001", 0x11, 0xC0},
      {"\"JPEGbaselineMode\"=dword:00000000", 0x22, 0xC2},
      {"\"JPEG444Mode\"=dword:00000001\r\n\"JPEGbaselineMode\"=dword:00000000", 0x11, 0xC2},
      {"\"JPEG444Mode\"=hex:01,00,00,00\r\n\"JPEGbaselineMode\"=\"0\"", 0x22, 0xC0},  // not double words
  };
  std::vector<uint8_t> frame = SmoothFrame(64, 32, 3);
  for (const RegistryCase& c : cases) {
    UserHive hive(c.values);
    CJpegConversion jpeg;
    ASSERT_EQ(jpeg.InitConverter(64, 32, 24, 8, 200, 90, true), 1);
    const std::vector<uint8_t> stream = StreamOf(EncodeToBuffer(jpeg, frame));
    const auto header = ReadFrameHeader(stream.data(), stream.size());
    EXPECT_EQ(header.marker, c.frameMarker) << c.values;
    ASSERT_EQ(header.factors.size(), 3u);
    EXPECT_EQ(header.factors[0], c.lumaFactors) << c.values;
    jpegpeer::Image decoded;
    ASSERT_TRUE(jpegpeer::Decode(stream, decoded)) << c.values;
  }
}

TEST(JpegConversion, MetadataStandsBehindTheHeadersInAnApp1Segment) {
  const std::vector<uint8_t> metadata = {'E', 'x', 'i', 'f', 0, 0, 'M', 'M', 0, 42};
  std::vector<uint8_t> frame = SmoothFrame(64, 32, 3);
  for (const char* values : {"", "\"JPEGbaselineMode\"=dword:00000000"}) {
    UserHive hive(values);
    const bool progressive = *values != '\0';
    CJpegConversion jpeg;
    ASSERT_EQ(jpeg.InitConverter(64, 32, 24, 8, 200, 90, true), 1);
    const std::string path = TempPath("app1.jpg");
    ASSERT_TRUE(jpeg.WriteJpegToFile(path.c_str(), nullptr, nullptr, frame.data(),
                                     const_cast<uint8_t*>(metadata.data()), uint16_t(metadata.size())));
    const std::vector<uint8_t> file = ReadWhole(path);
    const auto segments = HeaderSegments(file.data(), file.size());
    size_t app1 = 0;
    while (app1 < segments.size() && segments[app1].marker != 0xE1) ++app1;
    ASSERT_LT(app1, segments.size()) << values;
    ASSERT_GT(app1, 0u);
    EXPECT_EQ(segments[app1].body, metadata);
    const size_t at = segments[app1].offset;
    EXPECT_EQ(file[at + 2], 0);
    EXPECT_EQ(file[at + 3], metadata.size() + 2);
    // Behind the last header: the frame header of a progressive image, the
    // tables of a sequential one, whose scan follows at once.
    EXPECT_EQ(segments[app1 - 1].marker, progressive ? 0xC2 : 0xC4) << values;
    if (!progressive) {
      EXPECT_EQ(segments[app1 + 1].marker, 0xDA);
    }
    // Without the segment the file is the memory form's stream.
    std::vector<uint8_t> withoutApp1(file.begin(), file.begin() + long(at));
    withoutApp1.insert(withoutApp1.end(), file.begin() + long(at + 4 + metadata.size()), file.end());
    EXPECT_EQ(withoutApp1, StreamOf(EncodeToBuffer(jpeg, frame))) << values;

    // Size 0, or no metadata: no segment.
    ASSERT_TRUE(jpeg.WriteJpegToFile(path.c_str(), nullptr, nullptr, frame.data(),
                                     const_cast<uint8_t*>(metadata.data()), 0));
    EXPECT_FALSE(HasSegment(ReadWhole(path), 0xE1));
    ASSERT_TRUE(jpeg.WriteJpegToFile(path.c_str(), nullptr, nullptr, frame.data(), nullptr, 10));
    EXPECT_FALSE(HasSegment(ReadWhole(path), 0xE1));
    std::remove(path.c_str());
  }
}

// The file form reads format 400 as RGB; the memory form reads every colour
// frame as BGR. Formats that only normalise to BGR24 have no file form.
TEST(JpegConversion, FileFormTestsTheCallersFormat) {
  std::vector<uint8_t> rgb = SmoothFrame(64, 32, 3);
  const jpegpeer::Image source{64, 32, 3, rgb};
  CJpegConversion jpeg;
  ASSERT_EQ(jpeg.InitConverter(64, 32, 24, 8, 400, 95, true), 1);
  const std::string path = TempPath("rgb.jpg");
  ASSERT_TRUE(jpeg.WriteJpegToFile(path.c_str(), nullptr, nullptr, rgb.data(), nullptr, 0));
  jpegpeer::Image fromFile, fromMemory;
  ASSERT_TRUE(jpegpeer::Decode(ReadWhole(path), fromFile));
  ASSERT_TRUE(jpegpeer::Decode(StreamOf(EncodeToBuffer(jpeg, rgb)), fromMemory));
  EXPECT_GE(jpegpeer::Psnr(fromFile.pixels, rgb), 30);
  EXPECT_GE(jpegpeer::Psnr(fromMemory.pixels, jpegpeer::Swapped(source)), 30);

  std::vector<uint8_t> bgr555(64 * 32 * 2, 0x21);
  CJpegConversion packed;
  ASSERT_EQ(packed.InitConverter(64, 32, 24, 5, 905, 90, true), 1);
  EXPECT_FALSE(EncodeToBuffer(packed, bgr555).empty());
  EXPECT_FALSE(packed.WriteJpegToFile(path.c_str(), nullptr, nullptr, bgr555.data(), nullptr, 0));
  std::remove(path.c_str());
}

TEST(JpegConversion, WideCharacterPaths) {
  // "bild-ü€.jpg" in UTF-16, and the UTF-8 name the file gets.
  const std::string name8 = "bild-\xC3\xBC\xE2\x82\xAC.jpg";
  const std::string dir = ::testing::TempDir() + std::to_string(::getpid()) + "-";
  std::vector<unsigned short> wide(dir.begin(), dir.end());
  for (unsigned short u : std::initializer_list<unsigned short>{'b', 'i', 'l', 'd', '-', 0x00FC, 0x20AC, '.', 'j', 'p', 'g', 0})
    wide.push_back(u);
  std::vector<uint8_t> frame = SmoothFrame(64, 32, 3);
  std::vector<uint8_t> frame48(frame.size() * 2);
  for (size_t i = 0; i < frame.size(); ++i) frame48[2 * i + 1] = frame[i];
  struct Case {
    uint32_t bits, sampleBits;
    std::vector<uint8_t>* frame;
  } cases[] = {{24, 8, &frame}, {48, 16, &frame48}};
  for (const Case& c : cases) {
    CJpegConversion jpeg;
    ASSERT_EQ(jpeg.InitConverter(64, 32, c.bits, c.sampleBits, 200, 90, true), 1);
    ASSERT_TRUE(jpeg.WriteJpegToFileU(wide.data(), nullptr, nullptr, c.frame->data(), nullptr, 0)) << c.bits;
    jpegpeer::Image decoded;
    ASSERT_TRUE(jpegpeer::Decode(ReadWhole(dir + name8), decoded)) << c.bits;
    EXPECT_EQ(decoded.width, 64);
    std::remove((dir + name8).c_str());
  }
}

// Rows of mono frames are read and written at (width + 3) rounded down to 4:
// a width of 5 steps 8 bytes a row.
TEST(JpegConversion, MonoRowsStepToAMultipleOfFour) {
  constexpr int kWidth = 5, kHeight = 16, kStep = 8;
  std::vector<uint8_t> padded = SmoothFrame(kWidth, kHeight, 1, kStep);
  std::vector<uint8_t> packed;
  for (int y = 0; y < kHeight; ++y) packed.insert(packed.end(), padded.begin() + y * kStep, padded.begin() + y * kStep + kWidth);
  CJpegConversion jpeg;
  ASSERT_EQ(jpeg.InitConverter(kWidth, kHeight, 8, 8, 100, 100, true), 1);
  const std::string path = TempPath("narrow.jpg");
  ASSERT_TRUE(jpeg.WriteJpegToFile(path.c_str(), nullptr, nullptr, padded.data(), nullptr, 0));
  const std::vector<uint8_t> stream = ReadWhole(path);
  jpegpeer::Image decoded;
  ASSERT_TRUE(jpegpeer::Decode(stream, decoded));
  EXPECT_LE(jpegpeer::MaxDifference(decoded.pixels, packed), 2);

  std::vector<uint8_t> buffer(4 + stream.size());
  const uint32_t sizeWord = uint32_t(stream.size()) + 4;
  std::memcpy(buffer.data(), &sizeWord, 4);
  std::copy(stream.begin(), stream.end(), buffer.begin() + 4);
  std::vector<uint8_t> out(size_t(kStep) * kHeight, 0x55);
  ASSERT_TRUE(jpeg.DecodeJpeg(buffer.data(), out.data()));
  for (int y = 0; y < kHeight; ++y)
    for (int x = 0; x < kWidth; ++x) EXPECT_NEAR(out[y * kStep + x], packed[y * kWidth + x], 2) << x << "," << y;
  std::remove(path.c_str());
}

// Each failure says what went wrong on the debug output, as worded.
TEST(JpegConversion, FailuresAreWordedOnTheDebugOutput) {
  testsupport::DebugLines debug;
  std::vector<uint8_t> dst(64 * 32 * 4);
  CJpegConversion ours;
  ASSERT_EQ(ours.InitConverter(64, 32, 8, 8, 100, 90, true), 1);

  std::vector<uint8_t> zero(16, 0);
  EXPECT_FALSE(ours.DecodeJpeg(zero.data(), dst.data()));
  EXPECT_EQ(debug.Lines(), (Lines{"File size is 0"}));

  debug.Clear();
  std::vector<uint8_t> garbage = {20, 0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  EXPECT_FALSE(ours.DecodeJpeg(garbage.data(), dst.data()));
  ASSERT_EQ(debug.Lines().size(), 1u);
  EXPECT_EQ(debug.Lines()[0].rfind("Error reading JPEG header - ", 0), 0u) << debug.Lines()[0];

  // A four-channel stream from the general library.
  std::vector<uint8_t> bgrx(64 * 32 * 4, 0x80);
  CJpegConversion general;
  ASSERT_EQ(general.InitConverter(64, 32, 32, 8, 500, 90, true), 1);
  const std::vector<uint8_t> four = EncodeToBuffer(general, bgrx);
  ASSERT_FALSE(four.empty());
  debug.Clear();
  EXPECT_FALSE(ours.DecodeJpeg(const_cast<uint8_t*>(four.data()), dst.data()));
  EXPECT_EQ(debug.Lines(), (Lines{"Unsupported number of channels - 4"}));

  // A stream cut in its scan data.
  std::vector<uint8_t> mono = SmoothFrame(64, 32, 1);
  std::vector<uint8_t> cut = EncodeToBuffer(ours, mono);
  ASSERT_GT(cut.size(), 400u);
  cut.resize(cut.size() - 200);
  const uint32_t cutSize = uint32_t(cut.size());
  std::memcpy(cut.data(), &cutSize, 4);
  debug.Clear();
  EXPECT_FALSE(ours.DecodeJpeg(cut.data(), dst.data()));
  ASSERT_EQ(debug.Lines().size(), 1u);
  EXPECT_EQ(debug.Lines()[0].rfind("Error when decoding JPEG data - ", 0), 0u) << debug.Lines()[0];

  // Room for one byte a pixel: an 8 x 8 frame can't hold the headers.
  CJpegConversion tiny;
  ASSERT_EQ(tiny.InitConverter(8, 8, 8, 8, 100, 90, true), 1);
  std::vector<uint8_t> small(64, 0x80);
  debug.Clear();
  EXPECT_TRUE(EncodeToBuffer(tiny, small).empty());
  ASSERT_EQ(debug.Lines().size(), 1u);
  EXPECT_EQ(debug.Lines()[0].rfind("Error when encoding JPEG data - ", 0), 0u) << debug.Lines()[0];

  // The general library's statuses: -3 no room, -1 a stream it can't read, -4 a file it can't write.
  CJpegConversion tinyGeneral;
  ASSERT_EQ(tinyGeneral.InitConverter(8, 8, 16, 12, 100, 90, true), 1);
  std::vector<uint8_t> small16(128, 0x08);
  debug.Clear();
  EXPECT_TRUE(EncodeToBuffer(tinyGeneral, small16).empty());
  EXPECT_EQ(debug.Lines(), (Lines{"Quillcast - EncodeJpegData - error IJL = -3"}));
  debug.Clear();
  EXPECT_FALSE(general.DecodeJpeg(garbage.data(), dst.data()));
  EXPECT_EQ(debug.Lines(), (Lines{"Quillcast - JpegConversion - error read parametre = -1"}));
  debug.Clear();
  EXPECT_FALSE(general.WriteJpegToFile("/nonexistent-dir/x.jpg", nullptr, nullptr, bgrx.data(), nullptr, 0));
  EXPECT_EQ(debug.Lines(), (Lines{"Quillcast - JpegConversion - error IJL = -4"}));
}

// No companion is beside this test program, so the GPU path reports no card
// and fails, leaving no back-end.
TEST(JpegConversion, GpuWithoutCompanionFailsWithItsMessages) {
  testsupport::DebugLines debug;
  CJpegConversion jpeg;
  EXPECT_EQ(jpeg.InitConverter(256, 256, 8, 8, 100, 90, false), 0);
  ASSERT_GE(debug.Lines().size(), 2u);
  const Lines tail(debug.Lines().end() - 2, debug.Lines().end());
  EXPECT_EQ(tail, (Lines{"Cuda video card not detected.", "Apply cuda JPEG encoding failed"}));
  std::vector<uint8_t> frame(256 * 256), out(256 * 256);
  int size = 0;
  EXPECT_FALSE(jpeg.EncodeJpeg(nullptr, nullptr, frame.data(), out.data(), &size, nullptr));
}

TEST(JpegConversion, StreamDecodingReportsThePositionReached) {
  std::vector<uint8_t> frame = SmoothFrame(64, 32, 3);
  CJpegConversion encoder;
  ASSERT_EQ(encoder.InitConverter(64, 32, 24, 8, 200, 90, true), 1);
  const std::vector<uint8_t> buffer = EncodeToBuffer(encoder, frame);
  std::vector<uint8_t> stream = StreamOf(buffer);
  std::vector<uint8_t> expected(frame.size()), out(frame.size());
  ASSERT_TRUE(encoder.DecodeJpeg(const_cast<uint8_t*>(buffer.data()), expected.data()));

  CJpegConversion rtsp;
  ASSERT_TRUE(rtsp.SetDecodeWithRTSP());
  int used = -1;
  ASSERT_TRUE(rtsp.DecodeJpegFromRTSP(int(stream.size()), stream.data(), out.data(), 0, used));
  EXPECT_EQ(out, expected);
  EXPECT_GT(used, 0);
  EXPECT_LE(used, int(stream.size()));
  // A stream cut short fails, and still tells how far it got.
  used = -1;
  EXPECT_FALSE(rtsp.DecodeJpegFromRTSP(100, stream.data(), out.data(), 0, used));
  EXPECT_GT(used, 0);
  EXPECT_LE(used, 100);

  CJpegConversion general;  // the general library's back-end has no stream decoding
  ASSERT_EQ(general.InitConverter(64, 32, 48, 16, 200, 90, true), 1);
  used = 77;
  EXPECT_FALSE(general.DecodeJpegFromRTSP(int(stream.size()), stream.data(), out.data(), 0, used));
  EXPECT_EQ(used, 0);
}

// The normalised frame lives in a buffer that grows and is reused, or is the
// caller's frame itself.
TEST(JpegConversion, NormalisedBufferGrowsAndIsReused) {
  std::vector<uint8_t> big(128 * 80 * 8, 0x10), out(128 * 80 * 8);
  int unused = 0;
  CIjlJpegConversion backend;
  ASSERT_TRUE(backend.Init(64, 40, 48, 12, 200, 90));
  ASSERT_TRUE(backend.Encode(nullptr, nullptr, big.data(), out.data(), &unused, nullptr));
  EXPECT_EQ(backend.EncodeFormat(), 200);
  EXPECT_EQ(backend.OwnedBytes(), 64u * 40 * 3);
  const uint8_t* first = backend.NormalisedFrame();
  ASSERT_TRUE(backend.Encode(nullptr, nullptr, big.data(), out.data(), &unused, nullptr));
  EXPECT_EQ(backend.NormalisedFrame(), first);
  ASSERT_TRUE(backend.Init(32, 20, 48, 12, 200, 90));
  ASSERT_TRUE(backend.Encode(nullptr, nullptr, big.data(), out.data(), &unused, nullptr));
  EXPECT_EQ(backend.NormalisedFrame(), first);  // big enough already
  ASSERT_TRUE(backend.Init(128, 80, 48, 12, 200, 90));
  ASSERT_TRUE(backend.Encode(nullptr, nullptr, big.data(), out.data(), &unused, nullptr));
  EXPECT_EQ(backend.OwnedBytes(), 128u * 80 * 3);
  ASSERT_TRUE(backend.Init(128, 80, 32, 8, 500, 90));
  ASSERT_TRUE(backend.Encode(nullptr, nullptr, big.data(), out.data(), &unused, nullptr));
  EXPECT_EQ(backend.EncodeFormat(), 500);
  EXPECT_EQ(backend.OwnedBytes(), 0u);
  EXPECT_EQ(backend.NormalisedFrame(), big.data());
}

}  // namespace
