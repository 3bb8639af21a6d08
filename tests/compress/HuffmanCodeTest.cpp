// Huffman code lengths from counts and the codes from lengths, on
// hand-worked cases, and the failures of each.
#include <gtest/gtest.h>

#include <array>
#include <map>

#include "compress/CompressStatus.h"
#include "compress/HuffmanCode.h"

namespace {

using kestrelink::compress::AssignCodes;
using kestrelink::compress::BuildCodeLengths;
using kestrelink::compress::HuffmanCode;
using Table = std::array<Ipp32s, 256>;

Table From(const std::map<int, Ipp32s>& entries) {
  Table t{};
  for (const auto& [symbol, value] : entries) t[size_t(symbol)] = value;
  return t;
}

TEST(HuffmanCodeLengths, HandWorkedCounts) {
  struct Case {
    const char* name;
    std::map<int, Ipp32s> counts;
    std::map<int, Ipp32s> lengths;
  } cases[] = {
      // c+b = 3 merges with a = 4.
      {"4, 2, 1", {{'a', 4}, {'b', 2}, {'c', 1}}, {{'a', 1}, {'b', 2}, {'c', 2}}},
      // 1+1 = 2 goes behind the two 2s, so 2+2 merge next: all lengths 2
      // (in front of them it would give 3, 3, 2, 1).
      {"sum behind equal weights", {{1, 1}, {2, 1}, {3, 2}, {4, 2}}, {{1, 2}, {2, 2}, {3, 2}, {4, 2}}},
      {"one symbol", {{200, 77}}, {{200, 1}}},
      {"two symbols", {{0, 1}, {255, 1000}}, {{0, 1}, {255, 1}}},
      // Powers of two: every merge takes the last sum and the next symbol.
      {"skewed", {{1, 1}, {2, 2}, {3, 4}, {4, 8}, {5, 16}}, {{1, 4}, {2, 4}, {3, 3}, {4, 2}, {5, 1}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Table lengths;
    ASSERT_EQ(BuildCodeLengths(From(c.counts).data(), lengths.data()), ippStsNoErr);
    EXPECT_EQ(lengths, From(c.lengths));
  }
}

TEST(HuffmanCodeLengths, FibonacciCountsPast32BitsFail) {
  // Fibonacci counts chain every merge: n symbols give a longest code of n - 1.
  auto fibonacci = [](int n) {
    Table t{};
    Ipp32s a = 1, b = 1;
    for (int i = 0; i < n; ++i) {
      t[size_t(i)] = a;
      const Ipp32s next = a + b;
      a = b;
      b = next;
    }
    return t;
  };
  Table lengths;
  ASSERT_EQ(BuildCodeLengths(fibonacci(33).data(), lengths.data()), ippStsNoErr);
  EXPECT_EQ(*std::max_element(lengths.begin(), lengths.end()), 32);
  EXPECT_EQ(BuildCodeLengths(fibonacci(34).data(), lengths.data()), kestrelink::compress::kStsCodeLength);
}

TEST(HuffmanCodeLengths, CountsOutOfRangeFail) {
  Table lengths;
  EXPECT_EQ(BuildCodeLengths(Table{}.data(), lengths.data()), kestrelink::compress::kStsCountRange);
  EXPECT_EQ(BuildCodeLengths(From({{1, 0x40000000}, {2, 0x40000000}}).data(), lengths.data()),
            kestrelink::compress::kStsCountRange);
  EXPECT_EQ(BuildCodeLengths(From({{1, 0x40000000}, {2, 0x3FFFFFFF}}).data(), lengths.data()), ippStsNoErr);
  EXPECT_EQ(BuildCodeLengths(From({{1, 5}, {2, -1}}).data(), lengths.data()), kestrelink::compress::kStsCountRange);
}

TEST(HuffmanCodes, LongestLengthsAndHighestSymbolsGetTheSmallestCodes) {
  struct Case {
    const char* name;
    std::map<int, Ipp32s> lengths;
    std::map<int, uint32_t> codes;
  } cases[] = {
      {"four of length 2", {{1, 2}, {2, 2}, {3, 2}, {4, 2}}, {{4, 0b00}, {3, 0b01}, {2, 0b10}, {1, 0b11}}},
      {"1, 2, 2", {{'a', 1}, {'b', 2}, {'c', 2}}, {{'c', 0b00}, {'b', 0b01}, {'a', 0b1}}},
      {"3, 3, 2, 1", {{10, 3}, {20, 3}, {30, 2}, {40, 1}}, {{20, 0b000}, {10, 0b001}, {30, 0b01}, {40, 0b1}}},
      {"a lone symbol", {{9, 1}}, {{9, 0}}},
      // 32-bit lengths: the count walks the whole range of 32 bits.
      {"two of 32", {{0, 32}, {1, 32}, {2, 31}, {3, 30}, {4, 29}, {5, 28}, {6, 27}, {7, 26}, {8, 25}, {9, 24},
                     {10, 23}, {11, 22}, {12, 21}, {13, 20}, {14, 19}, {15, 18}, {16, 17}, {17, 16}, {18, 15},
                     {19, 14}, {20, 13}, {21, 12}, {22, 11}, {23, 10}, {24, 9}, {25, 8}, {26, 7}, {27, 6},
                     {28, 5}, {29, 4}, {30, 3}, {31, 2}, {32, 1}},
       {{1, 0}, {0, 1}, {2, 1}, {3, 1}, {31, 1}, {32, 1}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    HuffmanCode code;
    ASSERT_EQ(AssignCodes(From(c.lengths).data(), code), ippStsNoErr);
    for (const auto& [symbol, value] : c.codes) EXPECT_EQ(code.codes[symbol], value) << "symbol " << symbol;
  }
}

TEST(HuffmanCodes, LengthsThatMakeNoPrefixCodeFail) {
  struct Case {
    const char* name;
    std::map<int, Ipp32s> lengths;
    IppStatus status;
  } cases[] = {
      {"three of length 1", {{1, 1}, {2, 1}, {3, 1}}, kestrelink::compress::kStsCodeLength},
      // 000 and then 0 at length 1: the short code begins the long one.
      {"a shorter code after a half-used length", {{1, 1}, {2, 3}}, kestrelink::compress::kStsCodeLength},
      {"length 33", {{1, 33}, {2, 1}}, kestrelink::compress::kStsCodeLength},
      {"negative length", {{1, -1}, {2, 1}}, kestrelink::compress::kStsCodeLength},
      {"no symbol", {}, kestrelink::compress::kStsCountRange},
  };
  for (const Case& c : cases) {
    HuffmanCode code;
    EXPECT_EQ(AssignCodes(From(c.lengths).data(), code), c.status) << c.name;
  }
}

}  // namespace
