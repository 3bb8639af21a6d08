// The JP2 file and the packet record as the converter writes them: boxes
// and markers byte for byte, the record's count, the layouts' settled
// asymmetries, the file replaced on each write, and the messages.
#include <unistd.h>

#include <gtest/gtest.h>
#include <kestrelink/DebugOutput.h>

#include "jpeg2000/Jpeg2kTestSupport.h"
#include "jpeg2000/OpenJpegPeer.h"
#include "support/TestSupport.h"

using namespace j2ktest;

namespace {

struct MessageLog {
  std::vector<std::string> lines;
  static void Record(const char* m, void* self) { static_cast<MessageLog*>(self)->lines.emplace_back(m); }
  MessageLog() { kestrelink::SetDebugOutputHandler(&Record, this); }
  ~MessageLog() { kestrelink::SetDebugOutputHandler(nullptr, nullptr); }
};

// One file a process: ctest runs the tests side by side.
std::string TempPath(const char* name) { return testing::TempDir() + std::to_string(getpid()) + "_" + name; }

std::vector<uint8_t> WriteFile(Frame& f, const std::string& path) {
  CIppImageWrapper wrapper;
  wrapper.InitJPeg2KConverter(f.width, f.height, 0, 0, f.format);
  EXPECT_TRUE(wrapper.WriteJpeg2KToFile(path.c_str(), f.Plane(0), f.Plane(1), f.Plane(2)));
  return ReadFile(path);
}

void Put32(std::vector<uint8_t>& v, uint32_t x) {
  for (int s = 24; s >= 0; s -= 8) v.push_back(uint8_t(x >> s));
}
void Put16(std::vector<uint8_t>& v, uint32_t x) {
  v.push_back(uint8_t(x >> 8));
  v.push_back(uint8_t(x));
}
void PutText(std::vector<uint8_t>& v, const char* t) { v.insert(v.end(), t, t + 4); }

// Everything before the first packet, written out from the file layout.
std::vector<uint8_t> ExpectedHead(uint32_t w, uint32_t h, uint32_t components) {
  std::vector<uint8_t> v;
  Put32(v, 12), PutText(v, "jP  "), Put32(v, 0x0D0A870A);
  Put32(v, 20), PutText(v, "ftyp"), PutText(v, "jp2 "), Put32(v, 0), PutText(v, "jp2 ");
  Put32(v, 45), PutText(v, "jp2h");
  Put32(v, 22), PutText(v, "ihdr"), Put32(v, w), Put32(v, h), Put16(v, components);
  v.insert(v.end(), {7, 7, 0, 0});
  Put32(v, 15), PutText(v, "colr");
  v.insert(v.end(), {1, 0, 0});
  Put32(v, components == 3 ? 16 : 17);
  Put32(v, 0), PutText(v, "jp2c");
  Put16(v, 0xFF4F);
  Put16(v, 0xFF51), Put16(v, 38 + 3 * components), Put16(v, 0), Put32(v, w), Put32(v, h), Put32(v, 0), Put32(v, 0);
  Put32(v, w), Put32(v, h), Put32(v, 0), Put32(v, 0), Put16(v, components);
  for (uint32_t c = 0; c < components; ++c) v.insert(v.end(), {7, 1, 1});
  Put16(v, 0xFF52), Put16(v, 12);
  v.insert(v.end(), {0, 0, 0, 1, uint8_t(components == 3 ? 1 : 0), 5, 4, 4, 0, 1});
  Put16(v, 0xFF5C), Put16(v, 19);
  v.insert(v.end(), {0x40, 8 << 3});
  for (int l = 0; l < 5; ++l) v.insert(v.end(), {9 << 3, 9 << 3, 10 << 3});
  Put16(v, 0xFF90), Put16(v, 10), Put16(v, 0), Put32(v, 0);
  v.insert(v.end(), {0, 1});
  Put16(v, 0xFF93);
  return v;
}

TEST(Jpeg2kFile, HeadersStandAsTheLayoutFixesThem) {
  struct Case {
    uint32_t format, w, h;
  } cases[] = {{100, 640, 480}, {101, 1, 1}, {200, 33, 17}, {300, 7, 90}, {400, 5, 5}, {500, 64, 3}};
  for (const Case& c : cases) {
    Frame f = MakeFrame(c.format, c.w, c.h);
    const std::vector<uint8_t> file = WriteFile(f, TempPath("j2k_head.jp2"));
    const std::vector<uint8_t> head = ExpectedHead(c.w, c.h, uint32_t(f.expected.size()));
    ASSERT_GT(file.size(), head.size() + 2) << c.format;
    EXPECT_EQ(std::vector<uint8_t>(file.begin(), file.begin() + long(head.size())), head) << c.format << " " << c.w;
    EXPECT_EQ(file[file.size() - 2], 0xFF);
    EXPECT_EQ(file.back(), 0xD9);
  }
  std::remove(TempPath("j2k_head.jp2").c_str());
}

TEST(Jpeg2kFile, ImageHeaderHoldsWidthThenHeight) {
  Frame f = MakeFrame(100, 640, 480);
  const std::vector<uint8_t> file = WriteFile(f, TempPath("j2k_ihdr.jp2"));
  ASSERT_EQ(std::string(file.begin() + 44, file.begin() + 48), "ihdr");
  EXPECT_EQ(Big32(file, 48), 640u);
  EXPECT_EQ(Big32(file, 52), 480u);
  std::remove(TempPath("j2k_ihdr.jp2").c_str());
}

// The record is the file's packets, with a little-endian count in front;
// wrapped in the file's headers and an end marker it decodes the same.
TEST(Jpeg2kFile, RecordIsTheFilesPacketsAndDecodesInTheirHeaders) {
  for (uint32_t format : {100u, 300u, 200u}) {
    Frame f = MakeFrame(format, 150, 97, format);
    const std::vector<uint8_t> record = Record(f);
    const std::vector<uint8_t> file = WriteFile(f, TempPath("j2k_record.jp2"));
    const size_t headers = ExpectedHead(150, 97, uint32_t(f.expected.size())).size();
    ASSERT_EQ(record.size() - 4 + headers + 2, file.size()) << format;
    EXPECT_TRUE(std::equal(record.begin() + 4, record.end(), file.begin() + long(headers))) << format;

    std::vector<uint8_t> stream(file.begin() + long(kCodestreamOffset), file.begin() + long(headers));
    stream.insert(stream.end(), record.begin() + 4, record.end());
    stream.insert(stream.end(), {0xFF, 0xD9});
    const j2kpeer::Decoded d = j2kpeer::OpenJpegDecode(stream.data(), stream.size(), false);
    ASSERT_TRUE(d.ok) << format;
    for (size_t c = 0; c < f.expected.size(); ++c) EXPECT_EQ(d.components[c], f.expected[c]) << format;
  }
  std::remove(TempPath("j2k_record.jp2").c_str());
}

// 500 is BGR24 with a fourth byte; 400 takes its bytes the other way round,
// which exchanges components 0 and 2.
TEST(Jpeg2kFile, FourByteAndInOrderLayoutsMatchBgr24) {
  Frame bgr = MakeFrame(200, 45, 38);
  Frame bgrx = bgr, inOrder = bgr;
  bgrx.format = 500;
  bgrx.planes[2].clear();
  inOrder.format = 400;
  for (size_t i = 0; i < size_t(45) * 38; ++i) {
    const uint8_t* p = &bgr.planes[2][3 * i];
    bgrx.planes[2].insert(bgrx.planes[2].end(), {p[0], p[1], p[2], uint8_t(i * 7)});
    std::swap(inOrder.planes[2][3 * i], inOrder.planes[2][3 * i + 2]);
  }
  EXPECT_EQ(Record(bgrx), Record(bgr));
  EXPECT_EQ(Record(inOrder), Record(bgr));
}

// A flat 1x1 frame of 128 is one zero coefficient a component: each of the
// six resolutions' packets is its "not empty" bit alone (80); in the first,
// the one code-block's inclusion bit 0 follows it (bits 10, also 80).
TEST(Jpeg2kFile, OnePixelOfMidGreyIsSixEmptyPacketsAComponent) {
  for (uint32_t format : {100u, 200u}) {
    Frame f = MakeFrame(format, 1, 1);
    std::fill(f.planes[2].begin(), f.planes[2].end(), 128);
    const size_t packets = 6 * f.expected.size();
    std::vector<uint8_t> expected(4 + packets, 0x80);  // the count, little-endian, then the packets
    expected[0] = uint8_t(packets);
    expected[1] = expected[2] = expected[3] = 0;
    EXPECT_EQ(Record(f), expected) << format;
  }
}

// Code-blocks are coded over the team in any order; the record is the same.
TEST(Jpeg2kFile, RecordDoesNotDependOnTheTeam) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    Frame f = MakeFrame(200, 301, 257, 11);
    std::vector<uint8_t> alone, team;
    {
      testsupport::ScopedTeam one(1);
      alone = Record(f);
    }
    {
      testsupport::ScopedTeam two(2);
      team = Record(f);
    }
    EXPECT_EQ(alone, team) << kestrelink::VariantName(variant);
  }
}

TEST(Jpeg2kFile, WriteReplacesAnExistingFile) {
  const std::string path = TempPath("j2k_replace.jp2");
  if (std::FILE* f = std::fopen(path.c_str(), "wb")) {
    std::vector<uint8_t> junk(100000, 0xAB);
    std::fwrite(junk.data(), 1, junk.size(), f);
    std::fclose(f);
  }
  Frame f = MakeFrame(100, 8, 8);
  const std::vector<uint8_t> file = WriteFile(f, path);
  ASSERT_LT(file.size(), 1000u);
  EXPECT_EQ(file.back(), 0xD9);
  std::remove(path.c_str());
}

TEST(Jpeg2kFile, MessagesAndAnswers) {
  MessageLog log;
  CIppImageWrapper wrapper;
  uint8_t buffer[64] = {};
  EXPECT_FALSE(wrapper.EncodeJpeg2K(buffer, buffer, buffer, buffer));
  EXPECT_FALSE(wrapper.WriteJpeg2KToFile(TempPath("j2k_never.jp2").c_str(), buffer, buffer, buffer));
  EXPECT_FALSE(wrapper.DecodeJpeg2K(buffer, buffer, buffer, buffer));
  EXPECT_EQ(log.lines, std::vector<std::string>(3, "Jpeg2K Converter has to be initialized first."));

  log.lines.clear();
  wrapper.InitJPeg2KConverter(4, 4, 0, 0, 100);
  EXPECT_TRUE(wrapper.WriteJpeg2KToFile("/no-such-directory/x.jp2", buffer, buffer, buffer));
  EXPECT_EQ(log.lines, std::vector<std::string>{"Jpeg2kconversion - Error creating file."});
}

TEST(Jpeg2kFile, DecodeGivesTheFlatImageOfTheSettings) {
  struct Case {
    uint32_t format;
    size_t bytes0, bytes2;  // bytes a pixel written to out0 and out2
  } cases[] = {{100, 0, 1}, {300, 1, 1}, {400, 0, 3}, {500, 0, 3}, {200, 0, 3}};
  for (const Case& c : cases) {
    CIppImageWrapper wrapper;
    wrapper.InitJPeg2KConverter(21, 11, 0, 0, c.format);
    const size_t n = 21 * 11;
    for (int attempt = 0; attempt < 2; ++attempt) {
      std::vector<uint8_t> out0(n + 8, 0x11), out1(n + 8, 0x11), out2(4 * n + 8, 0x11);
      std::vector<uint8_t> in(64, uint8_t(attempt * 99));
      ASSERT_TRUE(wrapper.DecodeJpeg2K(attempt ? in.data() : nullptr, out0.data(), out1.data(), out2.data()));
      for (size_t i = 0; i < out2.size(); ++i)
        ASSERT_EQ(out2[i], i < n * c.bytes2 ? 128 : 0x11) << c.format << " " << i;
      for (size_t i = 0; i < out0.size(); ++i) ASSERT_EQ(out0[i], i < n * c.bytes0 ? 128 : 0x11) << c.format;
    }
  }
}

}  // namespace
