// The Exif reader: type sizes, inline values in either byte order, rational
// pairs, sub-IFDs, thumbnails, formatted texts and damaged offsets.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "jpeg/CJPEGMetaData.h"
#include "jpeg/JpegTestSupport.h"

namespace {

using namespace kestrelink::jpeg;

// A TIFF structure written by hand, in either byte order.
struct Tiff {
  bool little;
  std::vector<uint8_t> bytes;
  void Put16(size_t at, uint32_t v) {
    if (bytes.size() < at + 2) bytes.resize(at + 2);
    bytes[at + (little ? 0 : 1)] = uint8_t(v);
    bytes[at + (little ? 1 : 0)] = uint8_t(v >> 8);
  }
  void Put32(size_t at, uint32_t v) {
    if (little) {
      Put16(at, v & 0xFFFF);
      Put16(at + 2, v >> 16);
    } else {
      Put16(at, v >> 16);
      Put16(at + 2, v & 0xFFFF);
    }
  }
  // Header, then one IFD of `entries` at offset 8 with `next`.
  struct Entry {
    uint16_t tag, type;
    uint32_t count;
    std::vector<uint8_t> field;  // the four bytes of the value field as stored
  };
  explicit Tiff(bool le) : little(le) {
    bytes = {uint8_t(le ? 'I' : 'M'), uint8_t(le ? 'I' : 'M')};
    Put16(2, 42);
    Put32(4, 8);
  }
  void Ifd(size_t at, const std::vector<Entry>& entries, uint32_t next) {
    Put16(at, uint32_t(entries.size()));
    for (size_t i = 0; i < entries.size(); ++i) {
      const size_t e = at + 2 + 12 * i;
      Put16(e, entries[i].tag);
      Put16(e + 2, entries[i].type);
      Put32(e + 4, entries[i].count);
      if (bytes.size() < e + 12) bytes.resize(e + 12);
      std::memcpy(&bytes[e + 8], entries[i].field.data(), 4);
    }
    Put32(at + 2 + 12 * entries.size(), next);
  }
  std::vector<uint8_t> Field(uint32_t v) {
    Tiff t(little);
    t.bytes.clear();
    t.Put32(0, v);
    return t.bytes;
  }
};

TEST(JpegMetaData, TypeSizes) {
  const uint32_t expect[12] = {1, 0, 1, 2, 4, 8, 0, 1, 0, 4, 8, 0};
  for (uint32_t t = 0; t < 12; ++t) EXPECT_EQ(CJPEGMetaData::TypeSize(t), expect[t]) << t;
}

TEST(JpegMetaData, InlineValuesAndByteOrder) {
  struct Case {
    bool little;
    uint16_t type;
    uint32_t count;
    std::vector<uint8_t> field;
    std::vector<uint8_t> expectData;  // first bytes of the decoded data, in memory
  };
  auto u16 = [](uint16_t a, uint16_t b) {
    std::vector<uint8_t> v(4);
    std::memcpy(v.data(), &a, 2);
    std::memcpy(v.data() + 2, &b, 2);
    return v;
  };
  const Case cases[] = {
      // A short with count 1 in a little-endian file gets the high half of the raw value: 0.
      {true, 3, 1, {0x34, 0x12, 0, 0}, u16(0, 0x1234)},
      {false, 3, 1, {0x12, 0x34, 0, 0}, u16(0x1234, 0)},
      {true, 3, 2, {0x34, 0x12, 0x78, 0x56}, u16(0x5678, 0x1234)},
      // Four inline bytes in a little-endian file come out reversed.
      {true, 2, 4, {'A', 'B', 'C', 'D'}, {'D', 'C', 'B', 'A'}},
      {false, 2, 4, {'A', 'B', 'C', 'D'}, {'A', 'B', 'C', 'D'}},
      {true, 7, 2, {'x', 'y', 0, 0}, {0, 0}},
      {false, 7, 2, {'x', 'y', 0, 0}, {'x', 'y'}},
      // Type 1 is not decoded.
      {false, 1, 4, {1, 2, 3, 4}, {0, 0, 0, 0}},
  };
  for (const Case& c : cases) {
    Tiff t(c.little);
    t.Ifd(8, {{270, c.type, c.count, c.field}}, 0);
    CJPEGMetaData m;
    ASSERT_EQ(m.Parse(t.bytes.data(), uint32_t(t.bytes.size())), JPEG_OK);
    ASSERT_EQ(m.CountOf(0), 1u);
    const CJPEGMetaDataEntry& e = *m.IfdRecord(0).entries[0];
    EXPECT_STREQ(e.name, "ImageDescription");
    EXPECT_EQ(std::vector<uint8_t>(e.data, e.data + c.expectData.size()), c.expectData)
        << (c.little ? "II" : "MM") << " type " << c.type << " count " << c.count;
  }
}

TEST(JpegMetaData, RationalsReadAPairPerTwoOfCount) {
  for (bool little : {true, false}) {
    Tiff t(little);
    t.Ifd(8, {{33434, 5, 1, t.Field(100)}, {33437, 10, 3, t.Field(100)}}, 0);
    for (uint32_t i = 0; i < 6; ++i) t.Put32(100 + 4 * i, 10 + i);  // pairs 10/11, 12/13, 14/15
    CJPEGMetaData m;
    ASSERT_EQ(m.Parse(t.bytes.data(), uint32_t(t.bytes.size())), JPEG_OK);
    const uint32_t* one = reinterpret_cast<const uint32_t*>(m.IfdRecord(0).entries[0]->data);
    EXPECT_EQ(one[0], 10u);
    EXPECT_EQ(one[1], 11u);
    const uint32_t* three = reinterpret_cast<const uint32_t*>(m.IfdRecord(0).entries[1]->data);
    // Count 3: the loop steps by 2, so two pairs are read, into slots 0-1 and 2-3.
    EXPECT_EQ(three[0], 10u);
    EXPECT_EQ(three[1], 11u);
    EXPECT_EQ(three[2], 12u);
    EXPECT_EQ(three[3], 13u);
    EXPECT_EQ(three[4], 0u);
    EXPECT_EQ(three[5], 0u);
    char* text = CJPEGMetaData::Format(m.IfdRecord(0).entries[0]);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, "tag:0x829A, name:ExposureTime, value:10/11");
    std::free(text);
  }
}

TEST(JpegMetaData, SubIfdsAndThumbnail) {
  Tiff t(true);
  // IFD 0 at 8: Exif pointer to 100, GPS pointer to 200, next IFD 1 at 300.
  t.Ifd(8, {{34665, 4, 1, t.Field(100)}, {34853, 4, 1, t.Field(200)}}, 300);
  t.Ifd(100, {{36864, 7, 4, {'0', '2', '3', '0'}}, {40965, 4, 1, t.Field(400)}}, 0);
  t.Ifd(200, {{1, 2, 2, {'N', 0, 0, 0}}}, 0);
  t.Ifd(300, {{513, 4, 1, t.Field(500)}, {514, 4, 1, t.Field(6)}}, 0);
  t.Ifd(400, {{1, 2, 4, {'R', '9', '8', 0}}, {2, 7, 4, {'0', '1', '0', '0'}}}, 0);
  t.bytes.resize(506, 0x55);
  CJPEGMetaData m;
  ASSERT_EQ(m.Parse(t.bytes.data(), uint32_t(t.bytes.size())), JPEG_OK);
  EXPECT_EQ(m.byteOrder, 18761);
  EXPECT_EQ(m.magic, 42);
  EXPECT_EQ(m.firstOffset, 8u);
  EXPECT_EQ(m.CountOf(CJPEGMetaData::kIfd0), 2u);
  EXPECT_EQ(m.CountOf(CJPEGMetaData::kIfd1), 2u);
  EXPECT_EQ(m.CountOf(CJPEGMetaData::kIfdExif), 2u);
  EXPECT_EQ(m.CountOf(CJPEGMetaData::kIfdGps), 1u);
  EXPECT_EQ(m.CountOf(CJPEGMetaData::kIfdInterop), 2u);
  EXPECT_EQ(m.CountOf(5), 0u);
  EXPECT_EQ(m.CountOf(-1), 0u);
  EXPECT_EQ(m.ThumbnailSize(), 6u);
  EXPECT_EQ(m.ThumbnailData(), t.bytes.data() + 500);
  EXPECT_STREQ(CJPEGMetaData::TagDescription(1), "Indicates the identification of the Interoperability rule.");
  EXPECT_EQ(CJPEGMetaData::TagDescription(2), nullptr);
  m.Clear();
  EXPECT_EQ(m.CountOf(0), 0u);
  EXPECT_EQ(m.byteOrder, 0);
}

TEST(JpegMetaData, FormatTexts) {
  Tiff t(false);
  t.Ifd(8,
        {{271, 2, 6, t.Field(100)},      // "Canon" at an offset
         {274, 3, 1, {0, 6, 0, 0}},      // short
         {40962, 4, 1, t.Field(1920)},  // long
         {42001, 4, 1, t.Field(7)},      // past the named tags
         {37500, 7, 3, {'a', 'b', 'c', 0}},
         {1000, 11, 1, t.Field(0)}},     // a type above 10
        0);
  t.bytes.resize(106);
  std::memcpy(&t.bytes[100], "Canon", 6);
  CJPEGMetaData m;
  ASSERT_EQ(m.Parse(t.bytes.data(), uint32_t(t.bytes.size())), JPEG_OK);
  const char* expect[] = {"tag:0x010F, name:Make, value:Canon", "tag:0x0112, name:Orientation, value:6",
                          "tag:0xA002, name:PixelXDimension, value:1920", "tag:0xA411, name:(null), value:7",
                          "tag:0x927C, name:MakerNote, value:abc", nullptr};
  for (int i = 0; i < 6; ++i) {
    char* text = CJPEGMetaData::Format(m.IfdRecord(0).entries[i]);
    if (expect[i] == nullptr) {
      EXPECT_EQ(text, nullptr);
    } else {
      ASSERT_NE(text, nullptr) << i;
      EXPECT_STREQ(text, expect[i]);
    }
    std::free(text);
  }
  EXPECT_EQ(m.IfdRecord(0).entries[3]->name, nullptr);
}

TEST(JpegMetaData, OffsetsPastThePayloadFail) {
  struct Case {
    const char* name;
    uint32_t firstOffset;
    Tiff::Entry entry;
  };
  Tiff probe(true);
  const Case cases[] = {{"first IFD past the end", 4000, {270, 2, 1, {0, 0, 0, 0}}},
                        {"string offset past the end", 8, {270, 2, 100, probe.Field(30)}},
                        {"rational offset past the end", 8, {282, 5, 1, probe.Field(0xFFFFFFF0u)}},
                        {"huge count", 8, {273, 4, 0x40000000u, probe.Field(8)}}};
  for (const Case& c : cases) {
    Tiff t(true);
    t.Put32(4, c.firstOffset);
    t.Ifd(8, {c.entry}, 0);
    CJPEGMetaData m;
    EXPECT_EQ(m.Parse(t.bytes.data(), uint32_t(t.bytes.size())), JPEG_BUFF_TOO_SMALL) << c.name;
  }
  CJPEGMetaData m;
  const uint8_t tiny[3] = {'I', 'I', 42};
  EXPECT_EQ(m.Parse(tiny, 3), JPEG_BUFF_TOO_SMALL);
}

TEST(JpegMetaData, DecoderHandsExifToTheReader) {
  const jpegpeer::Image im = jpegpeer::Scene(16, 16, 1);
  std::vector<uint8_t> stream = jpegtest::EncodeOurs(im, jpegtest::OurOptions{});
  Tiff t(false);
  t.Ifd(8, {{272, 2, 4, {'K', '1', '0', 0}}}, 0);
  std::vector<uint8_t> app1 = {0xFF, 0xE1, 0, 0, 'E', 'x', 'i', 'f', 0, 0};
  app1.insert(app1.end(), t.bytes.begin(), t.bytes.end());
  app1[2] = uint8_t((app1.size() - 2) >> 8);
  app1[3] = uint8_t(app1.size() - 2);
  stream.insert(stream.begin() + 2, app1.begin(), app1.end());
  CMemBuffInput in;
  in.Open(stream.data(), uint32_t(stream.size()));
  CJPEGDecoder dec;
  ASSERT_EQ(dec.SetSource(&in), JPEG_OK);
  ASSERT_EQ(dec.ReadHeader(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr), JPEG_OK);
  EXPECT_TRUE(dec.HasExif());
  ASSERT_EQ(dec.MetaData().CountOf(0), 1u);
  EXPECT_STREQ(reinterpret_cast<const char*>(dec.MetaData().IfdRecord(0).entries[0]->data), "K10");
}

}  // namespace
