// The LUT text grammar, line by line, on small tables.
#include <gtest/gtest.h>

#include <numeric>
#include <string>

#include "convert/LutFile.h"
#include "support/TestSupport.h"

namespace {

using kestrelink::lutfile::LutTarget;

// Three tables of n entries, identity start, flags clear.
struct Tables {
  explicit Tables(uint32_t n, int channels = 3) : n(n) {
    for (int c = 0; c < 3; ++c) {
      t[c].resize(n);
      std::iota(t[c].begin(), t[c].end(), uint16_t(0));
      f[c].assign(n, 0);
    }
    target.channels = channels;
    target.size = n;
    for (int c = 0; c < 3; ++c) {
      target.table[c] = t[c].data();
      target.flags[c] = f[c].data();
    }
  }
  void Parse(const std::string& text) { kestrelink::lutfile::ParseBuffer(text.data(), text.size(), target); }
  // Rows whose flag is set in table c.
  std::vector<uint32_t> Flagged(int c) const {
    std::vector<uint32_t> rows;
    for (uint32_t i = 0; i < n; ++i)
      if (f[c][i]) rows.push_back(i);
    return rows;
  }
  uint32_t n;
  std::vector<uint16_t> t[3];
  std::vector<uint8_t> f[3];
  LutTarget target;
};

TEST(LutFile, PlainIndexSetsEachTableAndItsFlag) {
  Tables tb(16);
  tb.Parse("5,1,2,3,\n");
  EXPECT_EQ(tb.t[0][5], 1);
  EXPECT_EQ(tb.t[1][5], 2);
  EXPECT_EQ(tb.t[2][5], 3);
  EXPECT_EQ(tb.Flagged(0), std::vector<uint32_t>{5});
  EXPECT_EQ(tb.t[0][6], 6);  // untouched rows keep the identity
}

TEST(LutFile, FieldsAreIndependentlyOptional) {
  Tables tb(16);
  tb.Parse("2,,7\n3, x ,, 9\n4\n");
  EXPECT_EQ(tb.Flagged(0), std::vector<uint32_t>{});
  EXPECT_EQ(tb.Flagged(1), std::vector<uint32_t>{2});
  EXPECT_EQ(tb.t[1][2], 7);
  EXPECT_EQ(tb.Flagged(2), std::vector<uint32_t>{3});
  EXPECT_EQ(tb.t[2][3], 9);
}

TEST(LutFile, RangesTouchFromUpToButNotIncludingTo) {
  struct Row {
    const char* line;
    std::vector<uint32_t> rows;
  };
  const Row cases[] = {
      {"[3-5],7,8,9,", {3, 4}},
      {"[3-3],7", {3}},
      {"3,7", {3}},
      {"[5-3],7", {3, 4}},                // swapped ends
      {"[-3],7", {0, 1, 2}},              // unset from is 0
      {"[13-],7", {13, 14, 15}},          // unset to is the table size
      {"  [ 2 - 4 ] ,7", {2, 3}},         // spaces before numbers
      {"[14-40],7", {14, 15}},            // rows past the table are skipped
      {"[40-50],7", {}},
  };
  for (const auto& c : cases) {
    Tables tb(16);
    tb.Parse(c.line);
    EXPECT_EQ(tb.Flagged(0), c.rows) << c.line;
  }
}

TEST(LutFile, AnIndexThatIsNotADigitIsARangeAndAMalformedRangeIsTheWholeTable) {
  // Without '[', '-' and ']' in that order both ends are unset: 0 .. N.
  for (const char* line : {"x,7", "]-[,7", "[3,7", "-5,7", " ,7", "[3]-,7"}) {
    Tables tb(8);
    tb.Parse(line);
    EXPECT_EQ(tb.Flagged(0).size(), 8u) << line;
    EXPECT_EQ(tb.t[0][0], 7) << line;
  }
}

TEST(LutFile, CommentsBlankLinesAndLinesWithoutValuesDoNothing) {
  Tables tb(8);
  tb.Parse("# 1,2,3\n   # 2,5\n\n3\n4,\n[1-6]\n,,,\n");
  for (int c = 0; c < 3; ++c) EXPECT_TRUE(tb.Flagged(c).empty());
}

TEST(LutFile, ValuesAreTestedAgainstTheTableSize) {
  Tables tb(4096);
  tb.Parse("7,5000,4095,4096\n");
  EXPECT_FALSE(tb.f[0][7]);
  EXPECT_EQ(tb.t[0][7], 7);
  EXPECT_TRUE(tb.f[1][7]);
  EXPECT_EQ(tb.t[1][7], 4095);
  EXPECT_FALSE(tb.f[2][7]);
}

TEST(LutFile, NumbersIgnoreTrailingJunkAndSaturateWhenHuge) {
  Tables tb(16);
  tb.Parse("2abc,9xyz\n99999999999999999999999999,1\n3,99999999999999999999999\n");
  EXPECT_EQ(tb.t[0][2], 9);
  EXPECT_EQ(tb.Flagged(0), std::vector<uint32_t>{2});
}

TEST(LutFile, MonoTakesTheFirstValueOnly) {
  Tables tb(16, 1);
  tb.Parse("4,11,12,13\n");
  EXPECT_EQ(tb.t[0][4], 11);
  EXPECT_EQ(tb.t[1][4], 4);
  EXPECT_TRUE(tb.Flagged(1).empty());
}

TEST(LutFile, CarriageReturnsAndFifthFieldsAreHarmless) {
  Tables tb(16);
  tb.Parse("1,2,3,4,5,6\r\n2,9\r\n");
  EXPECT_EQ(tb.t[2][1], 4);
  EXPECT_EQ(tb.t[0][2], 9);
}

TEST(LutFile, LongLinesContinueAsTheNextLine) {
  // 259 characters make a line; what follows is read as a line of its own.
  Tables tb(16);
  std::string line = "1,2" + std::string(257, ' ') + "3,4\n";
  ASSERT_EQ(line.size(), 264u);
  tb.Parse(line);
  EXPECT_EQ(tb.t[0][1], 2);  // "1,2   ..." up to 259 characters
  EXPECT_EQ(tb.t[0][3], 4);  // the tail "3,4"
}

TEST(LutFile, GarbageNeverEscapesTheTable) {
  for (uint32_t seed = 0; seed < 200; ++seed) {
    auto bytes = testsupport::RandomBytes(2000, seed);
    for (auto& b : bytes)  // mostly the grammar's own characters
      if (b % 3) b = "0123456789[]-,# \n"[b % 17];
    Tables tb(16);
    tb.Parse(std::string(bytes.begin(), bytes.end()));
    for (int c = 0; c < 3; ++c)
      for (uint32_t i = 0; i < 16; ++i) {
        if (tb.f[c][i])
          ASSERT_LT(tb.t[c][i], 16) << "seed " << seed;  // a written value is below the size
        else
          ASSERT_EQ(tb.t[c][i], i) << "seed " << seed;   // an unwritten one keeps its start
      }
  }
}

TEST(LutFile, NulBytesEndTheLineAsAStringWould) {
  Tables tb(16);
  const char text[] = "1,5\0,6\n2,7\n";
  tb.Parse(std::string(text, sizeof text - 1));
  EXPECT_EQ(tb.t[0][1], 5);
  EXPECT_FALSE(tb.f[1][1]);
  EXPECT_EQ(tb.t[0][2], 7);
}

TEST(LutFile, MissingFileIsReported) {
  EXPECT_FALSE(kestrelink::lutfile::ParseFile("/nonexistent/lut.txt", LutTarget{}));
  EXPECT_FALSE(kestrelink::lutfile::ParseFile("", LutTarget{}));
}

TEST(LutFile, ColourExportWritesEveryRowWithATrailingComma) {
  const uint16_t a[3] = {0, 10, 20}, b[3] = {1, 11, 21}, c[3] = {2, 12, 22};
  const uint16_t* const tables[3] = {a, b, c};
  testsupport::TempFile file("colour-export.txt");
  ASSERT_TRUE(kestrelink::lutfile::WriteColorFile(file.path(), tables, 3));
  EXPECT_EQ(testsupport::ReadFile(file.path()), "0,0,1,2,\n1,10,11,12,\n2,20,21,22,\n");
  EXPECT_FALSE(kestrelink::lutfile::WriteColorFile("/nonexistent/dir/x.txt", tables, 3));
}

}  // namespace
