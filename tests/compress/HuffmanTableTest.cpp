// The packed code-length table: exact nibbles of hand-worked tables, runs
// at and past the writer's limit, banks, and the reader's refusals.
#include <gtest/gtest.h>

#include <array>
#include <vector>

#include "compress/HuffmanKernels.h"
#include "CompressTestSupport.h"

namespace {

using compresstest::Bytes;
using compresstest::kZeroRunFromBank0;
using compresstest::kZeroRunFromBank26;
using compresstest::PackNibbles;
using compresstest::Then;
using Lengths = std::array<Ipp32s, 256>;

// Lengths from (value, first symbol, count) spans over a zero table.
Lengths Spans(std::initializer_list<std::array<int, 3>> spans) {
  Lengths l{};
  for (const auto& [value, first, count] : spans)
    for (int s = first; s < first + count; ++s) l[size_t(s)] = value;
  return l;
}

Bytes Pack(const Lengths& l, Ipp32s room = 1024) {
  Bytes out(size_t(room) + 8, 0xEE);
  Ipp32s written = room;
  EXPECT_EQ(ippsHuffLenCodeTablePack_8u(l.data(), out.data(), &written), ippStsNoErr);
  out.resize(size_t(written));
  return out;
}

TEST(HuffmanLengthTable, HandWorkedTablesPackToTheirNibbles) {
  struct Case {
    const char* name;
    Lengths lengths;
    std::vector<int> nibbles;
  } cases[] = {
      // 1, one copy (r = 1), then a 0 and 253 copies: seven runs cut at 34 and 15 left (count 13 in bank 13).
      {"two symbols of length 1", Spans({{1, 0, 2}}),
       Then(Then(Then({1, 1, 0}, kZeroRunFromBank0), kZeroRunFromBank26, 6), {13, 0, 0, 14, 0})},
      // Leading zero needs no first copy; 2 with three copies is "2 2 2 1".
      {"four symbols of length 2 after a zero", Spans({{2, 1, 4}}),
       Then(Then(Then({0, 2, 2, 2, 1, 0}, kZeroRunFromBank0), kZeroRunFromBank26, 6), {13, 0, 0, 10})},
      // 34 copies after the first fill one run exactly: "8 8 8 32".
      {"a run of 34 + 1", Spans({{8, 0, 35}}),
       Then(Then(Then({8, 8, 8, 15, 6, 13, 0}, kZeroRunFromBank0), kZeroRunFromBank26, 5), {13, 0, 0, 14, 1})},
      // Lengths 13 and 26 select banks 13 and 26; 5 goes back to bank 0.
      {"banks", Spans({{13, 0, 1}, {26, 1, 1}, {5, 2, 1}}),
       Then(Then(Then({14, 0, 15, 0, 13, 5, 0}, kZeroRunFromBank0), kZeroRunFromBank26, 6), {13, 0, 0, 12})},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Pack(c.lengths), PackNibbles(c.nibbles));
  }
}

TEST(HuffmanLengthTable, RoundTripsRunsAtAndPastTheLimit) {
  std::vector<std::pair<const char*, Lengths>> tables = {
      {"35 equal", Spans({{8, 10, 35}})},
      {"36 equal", Spans({{8, 10, 36}})},
      {"69 equal", Spans({{8, 10, 69}})},
      {"70 equal", Spans({{8, 10, 70}})},
      {"all 256 equal", Spans({{8, 0, 256}})},
      {"two equal then other", Spans({{4, 0, 2}, {5, 2, 1}, {6, 3, 3}})},
      {"runs ending at 255", Spans({{3, 200, 56}})},
      {"long lengths", Spans({{32, 0, 40}, {31, 40, 3}, {25, 43, 1}, {26, 44, 1}, {12, 45, 2}, {13, 47, 2}})},
  };
  std::mt19937 rng(7);
  for (int t = 0; t < 50; ++t) {  // random runs of random lengths
    Lengths l{};
    for (size_t s = 0; s < 256;) {
      const int value = int(rng() % 33), run = 1 + int(rng() % 80);
      for (int k = 0; k < run && s < 256; ++k) l[s++] = value;
    }
    tables.emplace_back("random runs", l);
  }
  for (const auto& [name, lengths] : tables) {
    SCOPED_TRACE(name);
    const Bytes packed = Pack(lengths);
    Bytes input = packed;
    input.push_back(0xFF);  // the reader stops at the table's own end
    Lengths back{};
    Ipp32s taken = Ipp32s(input.size());
    ASSERT_EQ(ippsHuffLenCodeTableUnpack_8u(input.data(), &taken, back.data()), ippStsNoErr);
    EXPECT_EQ(back, lengths);
    EXPECT_EQ(taken, Ipp32s(packed.size()));
  }
}

TEST(HuffmanLengthTable, ReaderStopsAtEntry255AndRefusesShortInput) {
  // "0 0 38", then six times "bank 0, 0 0 38": 280 zeros asked, 256 stored.
  const Bytes clipped = PackNibbles(Then({0, 0, 15, 12}, {13, 0, 0, 15, 12}, 6));
  Lengths back;
  back.fill(-1);
  Ipp32s taken = Ipp32s(clipped.size());
  ASSERT_EQ(ippsHuffLenCodeTableUnpack_8u(clipped.data(), &taken, back.data()), ippStsNoErr);
  EXPECT_EQ(back, Lengths{});
  EXPECT_EQ(taken, Ipp32s(clipped.size()));

  const Bytes whole = Pack(Spans({{2, 1, 4}}));
  for (size_t cut = 0; cut < whole.size(); ++cut) {
    Ipp32s size = Ipp32s(cut);
    EXPECT_EQ(ippsHuffLenCodeTableUnpack_8u(whole.data(), &size, back.data()), ippStsSizeErr) << "cut at " << cut;
  }
}

TEST(HuffmanLengthTable, WriterRefusesATableLargerThanItsRoom) {
  const Lengths l = Spans({{2, 1, 4}});  // 22 bytes
  for (Ipp32s room : {1, 10, 21}) {
    Bytes out(64);
    Ipp32s written = room;
    EXPECT_EQ(ippsHuffLenCodeTablePack_8u(l.data(), out.data(), &written), ippStsSizeErr) << room;
  }
  Bytes out(22);
  Ipp32s written = 22;
  EXPECT_EQ(ippsHuffLenCodeTablePack_8u(l.data(), out.data(), &written), ippStsNoErr);
}

}  // namespace
