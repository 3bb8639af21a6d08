// Memory and file streams: the settled Seek rules, short reads and writes,
// and the statuses of what a stream does not offer.
#include <gtest/gtest.h>

#include <cstring>

#include "jpeg/JpegStreams.h"
#include "support/TestSupport.h"

namespace {

using namespace kestrelink::jpeg;

TEST(JpegStreams, MemorySeekRules) {
  struct Case {
    uint32_t size, start;
    int32_t offset;
    int origin;
    JERRCODE status;
    uint32_t position;  // after the call
  };
  const Case cases[] = {
      {100, 0, 10, 0, JPEG_OK, 0},                   // origin 0 disregards the offset
      {100, 50, 10, 1, JPEG_OK, 60},                 // from the current position
      {100, 50, -50, 1, JPEG_OK, 0},                 //
      {100, 50, -51, 1, JPEG_BUFF_TOO_SMALL, 50},    // before the start
      {100, 0, 100, 1, JPEG_BUFF_TOO_SMALL, 0},      // exactly size is out
      {100, 0, 99, 1, JPEG_OK, 99},                  //
      {100, 0, 0, 2, JPEG_OK, 100},                  // origin 2 reaches size
      {0, 0, 0, 2, JPEG_BUFF_TOO_SMALL, 0},          // but not on an empty buffer
      {100, 10, 95, 0, JPEG_BUFF_TOO_SMALL, 10},     // the bound is checked for origin 0 too
      {100, 0, 5, 3, JPEG_NOT_IMPLEMENTED, 0},       // no such origin
  };
  uint8_t buffer[100] = {};
  for (const Case& c : cases) {
    CMemBuffInput in;
    ASSERT_EQ(in.Open(buffer, c.size), JPEG_OK);
    in.m_position = c.start;
    EXPECT_EQ(in.Seek(c.offset, c.origin), c.status) << c.offset << " from " << c.start << " origin " << c.origin;
    EXPECT_EQ(in.m_position, c.position) << c.offset << " from " << c.start << " origin " << c.origin;
  }
}

TEST(JpegStreams, MemoryReadIsShortAtTheEnd) {
  const uint8_t data[5] = {1, 2, 3, 4, 5};
  CMemBuffInput in;
  EXPECT_EQ(in.Open(nullptr, 5), JPEG_BAD_PARAMETER);
  EXPECT_EQ(in.Open("x"), JPEG_NOT_IMPLEMENTED);
  ASSERT_EQ(in.Open(data, 5), JPEG_OK);
  uint8_t got[8] = {};
  uint32_t n = 0;
  EXPECT_EQ(in.Read(got, 3, n), JPEG_OK);
  EXPECT_EQ(n, 3u);
  EXPECT_EQ(in.Read(got, 3, n), JPEG_BUFF_TOO_SMALL);
  EXPECT_EQ(n, 2u);
  EXPECT_EQ(got[0], 4);
  EXPECT_EQ(got[1], 5);
  uint32_t at = 0;
  EXPECT_EQ(in.GetPosition(at), JPEG_OK);
  EXPECT_EQ(at, 5u);
}

TEST(JpegStreams, MemoryWriteStopsAtTheEnd) {
  uint8_t out[4] = {};
  CMemBuffOutput o;
  EXPECT_EQ(o.Open(static_cast<uint8_t*>(nullptr), 4), JPEG_BAD_PARAMETER);
  ASSERT_EQ(o.Open(out, 4), JPEG_OK);
  uint32_t n = 0;
  const uint8_t data[6] = {9, 8, 7, 6, 5, 4};
  EXPECT_EQ(o.Write(data, 3, n), JPEG_OK);
  EXPECT_EQ(o.Write(data, 3, n), JPEG_BUFF_TOO_SMALL);
  EXPECT_EQ(n, 1u);
  EXPECT_EQ(o.m_position, 4u);
  EXPECT_EQ(out[3], 9);
}

TEST(JpegStreams, FilesRoundTripAndFailWithIoStatus) {
  testsupport::TempFile file("stream.bin");
  {
    CStdFileOutput o;
    ASSERT_EQ(o.Open(file.path()), JPEG_OK);
    uint32_t n = 0;
    EXPECT_EQ(o.Write("abcdef", 6, n), JPEG_OK);
    EXPECT_EQ(n, 6u);
  }
  CStdFileInput in;
  ASSERT_EQ(in.Open(file.path()), JPEG_OK);
  char got[8] = {};
  uint32_t n = 0;
  EXPECT_EQ(in.Seek(2, 0), JPEG_OK);
  EXPECT_EQ(in.Read(got, 3, n), JPEG_OK);
  EXPECT_EQ(std::string(got, 3), "cde");
  uint32_t at = 0;
  EXPECT_EQ(in.GetPosition(at), JPEG_OK);
  EXPECT_EQ(at, 5u);
  EXPECT_EQ(in.Read(got, 3, n), JPEG_FILE_IO);
  EXPECT_EQ(n, 1u);
  EXPECT_EQ(in.Seek(-100, 1), JPEG_FILE_IO);
  CStdFileInput missing;
  EXPECT_EQ(missing.Open("/nonexistent/dir/file.jpg"), JPEG_FILE_IO);
}

TEST(JpegStreams, WidePathOpens) {
  testsupport::TempFile file("wide-\xc3\xa9.bin");
  std::u16string wide;
  for (const char* p = file.path(); *p; ++p) {
    const unsigned char c = static_cast<unsigned char>(*p);
    if (c == 0xC3) {
      wide += char16_t(0xE9);
      ++p;
    } else {
      wide += char16_t(c);
    }
  }
  CStdFileOutput o;
  ASSERT_EQ(o.Open(reinterpret_cast<const unsigned short*>(wide.c_str())), JPEG_OK);
  uint32_t n = 0;
  EXPECT_EQ(o.Write("x", 1, n), JPEG_OK);
  o.Close();
  EXPECT_EQ(testsupport::ReadFile(file.path()), "x");
}

TEST(JpegStreams, StatusTexts) {
  EXPECT_STREQ(JPEGErrorText(0), "no error");
  EXPECT_STREQ(JPEGErrorText(-1), "requested feature is not implemented");
  EXPECT_STREQ(JPEGErrorText(-4), "buffer too small");
  EXPECT_STREQ(JPEGErrorText(-8), "bad frame segment");
  EXPECT_STREQ(JPEGErrorText(-12), "wrong restart marker");
  EXPECT_STREQ(JPEGErrorText(-13), "unknown code");
  EXPECT_STREQ(JPEGErrorText(5), "unknown code");
}

}  // namespace
