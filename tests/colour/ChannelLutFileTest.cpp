// Channel-table text files: the line syntax case by case (each row says
// which entries it sets), comments, long lines, refusals, and a saved file
// read back.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "BayerTestSupport.h"

namespace {

using bayertest::Rgb;
using testsupport::TempFile;

// An object set for the predefined file, on a 16-bit image one row of 65536
// pixels wide, so that correcting the image whose pixel i is (i, i, i) shows
// every table entry.
constexpr uint32_t kEntries = 65536;
void Prepare(CIppBayerCorrector& c) {
  ASSERT_TRUE(c.SetImageInfo4CB(kEntries, 1, 48, 16, 200, true));
  c.SetCBAlgorithm(CB_ALG_PREDEFINED_FILE);
}

// Entries that differ from the identity.
std::map<int, Rgb> Changes(CIppBayerCorrector& c) {
  std::vector<uint16_t> image(3 * kEntries);
  for (uint32_t i = 0; i < kEntries; ++i) image[3 * i] = image[3 * i + 1] = image[3 * i + 2] = uint16_t(i);
  std::map<int, Rgb> out;
  EXPECT_TRUE(c.BGRApplyColorBalance(image.data(), false));
  for (int i = 0; i < int(kEntries); ++i) {
    const Rgb v{image[3 * i + 2], image[3 * i + 1], image[3 * i]};
    if (v != Rgb({i, i, i})) out[i] = v;
  }
  return out;
}

// Entries lo .. hi-1 set to (r, g, b), -1 keeping the identity.
std::map<int, Rgb> Span(int lo, int hi, int r, int g, int b) {
  std::map<int, Rgb> out;
  for (int i = lo; i < hi; ++i) {
    const Rgb v{r < 0 ? i : r, g < 0 ? i : g, b < 0 ? i : b};
    if (v != Rgb({i, i, i})) out[i] = v;
  }
  return out;
}

TEST(ChannelLutFile, LineSyntax) {
  struct Case {
    const char* text;
    std::map<int, Rgb> expected;
  } cases[] = {
      {"[10-20],1,2,3\n", Span(10, 20, 1, 2, 3)},
      {"[20-10],1,2,3\n", Span(10, 20, 1, 2, 3)},
      {"[-5],0,,9\n", Span(0, 5, 0, -1, 9)},
      {"[5-],7,7,7\n", Span(5, 65536, 7, 7, 7)},
      {"70000,1,1,1\n", {}},
      {"[5-5],1,2,3\n", Span(5, 6, 1, 2, 3)},
      {"[5-7],1,2,3\n", Span(5, 7, 1, 2, 3)},
      {"12,100,200,300\n", Span(12, 13, 100, 200, 300)},
      {"  12 ,  100,  200 , 300", Span(12, 13, 100, 200, 300)},
      {"12,100\n", Span(12, 13, 100, -1, -1)},
      {"12\n", {}},
      {"12,-1,70000,5\n", Span(12, 13, -1, -1, 5)},
      {"12,x,0,-0\n", Span(12, 13, -1, 0, -1)},
      {"12,65535,65536,+4\n", Span(12, 13, 65535, -1, 4)},
      {"# 12,1,1,1\n", {}},
      {"   #12,1,1,1\n", {}},
      {"\t12,1,1,1\n", {}},
      {"12\t,1,1,1\n", Span(12, 13, 1, 1, 1)},
      {"[ 3 - 6 ],1,1,1\n", Span(3, 6, 1, 1, 1)},
      {"[-],1,1,1\n", {}},
      {"[a-b],1,1,1\n", {}},
      {"x[2-4],1,1,1\n", Span(2, 4, 1, 1, 1)},
      {"[2-4,1,1,1\n", {}},
      {",1,1,1\n", {}},
      {"[65535-],9,9,9\n", Span(65535, 65536, 9, 9, 9)},
      {"1,1,1,1\n1,2,2,2\n", Span(1, 2, 2, 2, 2)},
      {"3,4,5,6\r\n4,5,6,7", []{ auto m = Span(3, 4, 4, 5, 6); m[4] = {5, 6, 7}; return m; }()},
      {"", {}},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(std::string("file \"") + k.text + "\"");
    TempFile file("channel_lut.txt", k.text);
    CIppBayerCorrector c;
    Prepare(c);
    ASSERT_TRUE(c.SetPredefinedLUTFile(file.path()));
    EXPECT_EQ(Changes(c), k.expected);
  }
}

TEST(ChannelLutFile, LongLinesAreReadIn259CharacterPieces) {
  // 255 blanks and "2,1," fill the first piece; "7,8,8,8" reads as a line of its own.
  const std::string text = std::string(255, ' ') + "2,1," + "7,8,8,8\n";
  TempFile file("channel_lut_long.txt", text);
  CIppBayerCorrector c;
  Prepare(c);
  ASSERT_TRUE(c.SetPredefinedLUTFile(file.path()));
  auto expected = Span(2, 3, 1, -1, -1);
  expected[7] = {8, 8, 8};
  EXPECT_EQ(Changes(c), expected);
}

TEST(ChannelLutFile, RefusalsAndIdentityReset) {
  TempFile file("channel_lut_refusal.txt", "1,9,9,9\n");
  CIppBayerCorrector c;
  ASSERT_TRUE(c.SetImageInfo4CB(kEntries, 1, 48, 16, 200, true));
  c.SetColorBalance(3, 3, 3);
  ASSERT_TRUE(c.CheckFormat4CB(kEntries, 1, 48, 16, 200, true));  // manual table, every entry moved
  EXPECT_FALSE(c.SetPredefinedLUTFile(file.path()));       // algorithm is not the file's
  EXPECT_EQ(Changes(c)[1], Rgb({4, 4, 4}));
  c.SetCBAlgorithm(CB_ALG_PREDEFINED_FILE);
  EXPECT_FALSE(c.SetPredefinedLUTFile("/nonexistent/kestrelink/table.txt"));
  EXPECT_TRUE(Changes(c).empty());  // reset to the identity before the open failed
  EXPECT_FALSE(c.SetPredefinedLUTFile(nullptr));
}

TEST(ChannelLutFile, SavedTablesReadBack) {
  CIppBayerCorrector c;
  c.SetColorBalance(-20, 5, 300);
  ASSERT_TRUE(c.SetImageInfo4CB(1, 1, 48, 12, 200, true));
  TempFile saved("channel_lut_saved.txt");
  ASSERT_TRUE(c.SetAutoCorrectionLUTSavingFile(saved.path()));
  const std::string text = testsupport::ReadFile(saved.path());
  EXPECT_EQ(text.substr(0, 24), "0,0,5,300\n1,0,6,301\n2,0,");
  EXPECT_EQ(text.substr(text.size() - 20), "4095,4075,4095,4095\n");
  CIppBayerCorrector d;
  Prepare(d);
  ASSERT_TRUE(d.SetPredefinedLUTFile(saved.path()));
  std::map<int, Rgb> expected;
  for (int i = 0; i < 4096; ++i) {
    const Rgb v{std::max(i - 20, 0), std::min(i + 5, 4095), std::min(i + 300, 4095)};
    if (v != Rgb({i, i, i})) expected[i] = v;
  }
  EXPECT_EQ(Changes(d), expected);  // entries from 4096 up stay the identity
}

TEST(ChannelLutFile, SavingNeedsADepth) {
  CIppBayerCorrector c;
  TempFile saved("channel_lut_nodepth.txt");
  EXPECT_FALSE(c.SetAutoCorrectionLUTSavingFile(saved.path()));  // depth 0 before any set-up
  ASSERT_TRUE(c.SetImageInfo4CB(1, 1, 8, 8, 100, false));
  EXPECT_FALSE(c.SetAutoCorrectionLUTSavingFile("/nonexistent/kestrelink/out.txt"));
}

}  // namespace
