// Plain path of the Mono16MSB, Mono16MSBSwap, Mono16PixelPacked and
// Mono16PixelPacked8448 sources, at every processor variant, against
// destinations worked out from the layouts' bit tables: rows written whole,
// one after another, so an odd width's last pair writes one pixel into the
// next row, which the next row written overwrites.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageConverter.h>

#include <functional>
#include <string>

#include "PackedMonoTestFrames.h"

namespace {

using packedtest::Pair;
using packedtest::U16;

using PairCall = std::function<bool(CIppImageConverter&, uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d,
                                    void* src, void* dst, bool flip)>;

std::vector<uint8_t> Grey(uint32_t v, int bytes) {
  if (bytes == 4) return {uint8_t(v), uint8_t(v), uint8_t(v), 0};
  if (bytes == 3) return {uint8_t(v), uint8_t(v), uint8_t(v)};
  if (bytes == 2) return {uint8_t(v), uint8_t(v >> 8)};
  return {uint8_t(v)};
}

struct PairCase {
  const char* name;
  int dstBytes;
  bool rowsAt12Bits;  // the row start ignores packedBits
  PairCall call;
  // The pair's two output values at depth d, or nothing for an idle depth.
  std::function<bool(const uint8_t* b, uint32_t d, uint32_t out[2])> pair;
};

// Top 8 bits of a pixel of depth d.
bool Narrow(Pair p, uint32_t d, uint32_t out[2]) {
  out[0] = p.p0 >> (d - 8);
  out[1] = p.p1 >> (d - 8);
  return true;
}
bool Left(Pair p, uint32_t d, uint32_t out[2]) {  // shifted to the top of 16 bits
  out[0] = (p.p0 << (16 - d)) & 0xFFFF;
  out[1] = (p.p1 << (16 - d)) & 0xFFFF;
  return true;
}
bool AsIs(Pair p, uint32_t, uint32_t out[2]) {
  out[0] = p.p0;
  out[1] = p.p1;
  return true;
}

Pair PackedPair(const uint8_t* b, uint32_t d) { return d == 12 ? packedtest::Packed12(b) : packedtest::Packed10(b); }
Pair E8448Pair(const uint8_t* b, uint32_t d) { return d == 12 ? packedtest::E8448_12(b) : packedtest::E8448_10(b); }
bool KnownDepth(uint32_t d) { return d == 10 || d == 12; }

#define PAIR_CALL(method)                                                                                  \
  [](CIppImageConverter& c, uint32_t w, uint32_t h, uint32_t bits, uint32_t d, void* s, void* o, bool f) { \
    return c.method(w, h, bits, d, s, o, f);                                                               \
  }

const std::vector<PairCase>& PairCases() {
  static const std::vector<PairCase> cases = {
      {"Mono16PixelPackedToBGRx", 4, false, PAIR_CALL(Mono16PixelPackedToBGRx),
       [](const uint8_t* b, uint32_t d, uint32_t* o) { return KnownDepth(d) && Narrow(PackedPair(b, d), d, o); }},
      {"Mono16PixelPackedToBGR24", 3, false, PAIR_CALL(Mono16PixelPackedToBGR24),
       [](const uint8_t* b, uint32_t d, uint32_t* o) { return KnownDepth(d) && Narrow(PackedPair(b, d), d, o); }},
      {"Mono16PixelPackedToMono8", 1, true, PAIR_CALL(Mono16PixelPackedToMono8),
       [](const uint8_t* b, uint32_t d, uint32_t* o) { return KnownDepth(d) && Narrow(PackedPair(b, d), d, o); }},
      {"Mono16PixelPackedToMono16", 2, false, PAIR_CALL(Mono16PixelPackedToMono16),
       [](const uint8_t* b, uint32_t d, uint32_t* o) { return KnownDepth(d) && AsIs(PackedPair(b, d), d, o); }},
      {"Mono16PixelPackedToMono16MSB", 2, false, PAIR_CALL(Mono16PixelPackedToMono16MSB),
       [](const uint8_t* b, uint32_t d, uint32_t* o) { return KnownDepth(d) && Left(PackedPair(b, d), d, o); }},
      {"Mono16PixelPacked8448ToBGRx", 4, false, PAIR_CALL(Mono16PixelPacked8448ToBGRx),
       [](const uint8_t* b, uint32_t, uint32_t* o) {
         return AsIs({b[0], b[2]}, 8, o);
       }},
      {"Mono16PixelPacked8448ToBGR24", 3, false, PAIR_CALL(Mono16PixelPacked8448ToBGR24),
       [](const uint8_t* b, uint32_t, uint32_t* o) {
         return AsIs({b[0], b[2]}, 8, o);
       }},
      {"Mono16PixelPacked8448ToMono8", 1, true, PAIR_CALL(Mono16PixelPacked8448ToMono8),
       [](const uint8_t* b, uint32_t, uint32_t* o) {
         return AsIs({b[0], b[2]}, 8, o);
       }},
      {"Mono16PixelPacked8448ToMono16", 2, false, PAIR_CALL(Mono16PixelPacked8448ToMono16),
       [](const uint8_t* b, uint32_t d, uint32_t* o) { return KnownDepth(d) && AsIs(E8448Pair(b, d), d, o); }},
      {"Mono16PixelPacked8448ToMono16MSB", 2, false, PAIR_CALL(Mono16PixelPacked8448ToMono16MSB),
       [](const uint8_t* b, uint32_t d, uint32_t* o) { return KnownDepth(d) && Left(E8448Pair(b, d), d, o); }},
  };
  return cases;
}

// The destination a pair conversion must leave, from the row rules.
std::vector<uint8_t> ExpectedPairs(const PairCase& c, const std::vector<uint8_t>& src, uint32_t w, uint32_t h,
                                   uint32_t packedBits, uint32_t d, bool flip, size_t size) {
  const uint32_t rowBits = c.rowsAt12Bits ? 12 : packedBits;
  return packedtest::RowsWrittenInOrder(size, 0xA5, h, flip, size_t(w) * c.dstBytes, [&](uint32_t r) {
    std::vector<uint8_t> row;
    for (uint64_t k = 0; k < (uint64_t(w) + 1) / 2; ++k) {
      uint32_t v[2];
      if (!c.pair(&src[packedtest::PairRowStart(r, w, rowBits) + 3 * k], d, v)) return std::vector<uint8_t>{};
      for (uint32_t value : v)
        for (uint8_t byte : Grey(value, c.dstBytes)) row.push_back(byte);
    }
    return row;
  });
}

// With a team size given, it is set once the converter is made (which sets
// its own from the registry store), and put back after.
void CheckPairs(const PairCase& c, uint32_t w, uint32_t h, uint32_t packedBits, uint32_t d, bool flip, int team = 0) {
  packedtest::ScopedTeam keep;
  CIppImageConverter conv;
  if (team) kestrelink::platform::SetTeamSize(team);
  auto src = packedtest::PairSource(w, h, c.rowsAt12Bits ? 12 : packedBits, w * 7 + h + d);
  const size_t size = size_t(w + 2) * h * c.dstBytes + 16;
  std::vector<uint8_t> dst(size, 0xA5);
  ASSERT_TRUE(c.call(conv, w, h, packedBits, d, src.data(), dst.data(), flip));
  const auto want = ExpectedPairs(c, src, w, h, packedBits, d, flip, size);
  for (size_t i = 0; i < size; ++i)
    ASSERT_EQ(dst[i], want[i]) << c.name << " w=" << w << " h=" << h << " bits=" << packedBits << " d=" << d
                               << " flip=" << flip << " at byte " << i << " (row " << i / (size_t(w) * c.dstBytes)
                               << ")";
}

TEST(PackedMonoPlain, PairLayoutsEveryVariantDepthAndWidth) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    SCOPED_TRACE(kestrelink::VariantName(variant));
    for (const auto& c : PairCases())
      for (uint32_t d : {10u, 12u})
        for (uint32_t w : {1u, 2u, 3u, 8u, 15u, 16u, 17u, 31u, 33u, 64u, 65u, 100u, 130u})
          for (bool flip : {false, true}) CheckPairs(c, w, 5, 12, d, flip);
  }
}

TEST(PackedMonoPlain, OddWidthsOverlapLikeRowsInOrderWhateverTheTeam) {
  // An odd width's last pair writes one pixel into the next row, which the
  // next row overwrites; flipped, the next row is written first.
  for (int team : {1, 2, 3, 4})
    for (const auto& c : PairCases())
      for (uint32_t h : {1u, 2u, 3u, 7u, 9u})
        for (bool flip : {false, true}) {
          CheckPairs(c, 5, h, 12, 12, flip, team);
          CheckPairs(c, 1, h, 12, 10, flip, team);
        }
}

TEST(PackedMonoPlain, RowStartsFollowPackedBitsExceptForMono8) {
  // packedBits moves the rows of every target but Mono8, whose rows lie 12
  // bits a pixel apart whatever the argument says.
  for (const auto& c : PairCases())
    for (uint32_t bits : {0u, 12u, 13u, 16u, 24u})
      for (bool flip : {false, true}) CheckPairs(c, 16, 4, bits, 12, flip);
}

TEST(PackedMonoPlain, IdleDepthsLeaveTheDestinationAlone) {
  // Other depths run the pair loop idle and answer true; the 8448 Mono16
  // target alone refuses them.
  for (const auto& c : PairCases())
    for (uint32_t d : {0u, 8u, 11u, 14u, 16u}) {
      CIppImageConverter conv;
      auto src = packedtest::PairSource(16, 4, 12, d);
      std::vector<uint8_t> dst(16 * 4 * 4 + 16, 0x5A);
      const bool refuses = std::string(c.name) == "Mono16PixelPacked8448ToMono16";
      EXPECT_EQ(c.call(conv, 16, 4, 12, d, src.data(), dst.data(), false), !refuses) << c.name << " d=" << d;
      uint32_t v[2];
      const bool writes = c.pair(src.data(), d, v);
      for (size_t i = 0; i < dst.size() && !writes; ++i) ASSERT_EQ(dst[i], 0x5A) << c.name << " d=" << d;
    }
}

TEST(PackedMonoPlain, EdgeCaseExamples) {
  CIppImageConverter conv;
  uint8_t packed[3] = {0x34, 0x12, 0xAB};
  uint16_t words[2] = {};
  ASSERT_TRUE(conv.Mono16PixelPackedToMono16(2, 1, 12, 12, packed, words, false));
  EXPECT_EQ(words[0], 0x234);
  EXPECT_EQ(words[1], 0xAB1);
  uint8_t e8448[3] = {0xAB, 0x21, 0xCD};
  ASSERT_TRUE(conv.Mono16PixelPacked8448ToMono16(2, 1, 12, 12, e8448, words, false));
  EXPECT_EQ(words[0], 0xAB1);
  EXPECT_EQ(words[1], 0xCD2);
  EXPECT_FALSE(conv.Mono16PixelPacked8448ToMono16(2, 1, 12, 14, e8448, words, false));
  words[0] = words[1] = 0x7777;
  EXPECT_TRUE(conv.Mono16PixelPackedToMono16(2, 1, 12, 14, packed, words, false));
  EXPECT_EQ(words[0], 0x7777);
  EXPECT_EQ(words[1], 0x7777);
  // Mono16MSB to Mono8 takes the high byte and doesn't look at d.
  uint16_t msb[2] = {0xABC0, 0x1234};
  uint8_t bytes[2];
  ASSERT_TRUE(conv.Mono16MSBToMono8(2, 1, 10, msb, bytes, false));
  EXPECT_EQ(bytes[0], 0xAB);
  EXPECT_EQ(bytes[1], 0x12);
  // A swapped word at d = 16 is a full byte swap; at d = 12 the top 12 bits
  // of the swapped word.
  uint8_t swapped[4] = {0xAB, 0xCD, 0x12, 0x34};  // words 0xCDAB, 0x3412
  ASSERT_TRUE(conv.Mono16MSBSwapToMono16(2, 1, 16, swapped, words, false));
  EXPECT_EQ(words[0], 0xABCD);
  EXPECT_EQ(words[1], 0x1234);
  ASSERT_TRUE(conv.Mono16MSBSwapToMono16(2, 1, 12, swapped, words, false));
  EXPECT_EQ(words[0], 0xABC);
  EXPECT_EQ(words[1], 0x123);
}

// --- Mono16MSB and Mono16MSBSwap -------------------------------------------

using WordCall = std::function<bool(CIppImageConverter&, uint32_t w, uint32_t h, uint32_t d, void*, void*, bool)>;

struct WordCase {
  const char* name;
  int dstBytes;
  WordCall call;
  std::function<uint32_t(uint32_t s, uint32_t d)> value;
};

#define WORD_CALL(method)                                                                   \
  [](CIppImageConverter& c, uint32_t w, uint32_t h, uint32_t d, void* s, void* o, bool f) { \
    return c.method(w, h, d, s, o, f);                                                      \
  }
#define WORD_CALL_NO_DEPTH(method)                                                        \
  [](CIppImageConverter& c, uint32_t w, uint32_t h, uint32_t, void* s, void* o, bool f) { \
    return c.method(w, h, s, o, f);                                                       \
  }

// A swapped word's sample: ((s & 255) << (d - 8)) | (s >> (24 - d)).
uint32_t SwappedSample(uint32_t s, uint32_t d) { return (((s & 255) << (d - 8)) | (s >> (24 - d))) & 0xFFFF; }

const std::vector<WordCase>& WordCases() {
  static const std::vector<WordCase> cases = {
      {"Mono16MSBToBGRx", 4, WORD_CALL(Mono16MSBToBGRx), [](uint32_t s, uint32_t) { return s >> 8; }},
      {"Mono16MSBToBGR24", 3, WORD_CALL(Mono16MSBToBGR24), [](uint32_t s, uint32_t) { return s >> 8; }},
      {"Mono16MSBToMono8", 1, WORD_CALL(Mono16MSBToMono8), [](uint32_t s, uint32_t) { return s >> 8; }},
      {"Mono16MSBToMono16", 2, WORD_CALL(Mono16MSBToMono16), [](uint32_t s, uint32_t d) { return s >> (16 - d); }},
      {"Mono16MSBToMono16MSB", 2, WORD_CALL_NO_DEPTH(Mono16MSBToMono16MSB), [](uint32_t s, uint32_t) { return s; }},
      {"Mono16MSBSwapToBGRx", 4, WORD_CALL(Mono16MSBSwapToBGRx), [](uint32_t s, uint32_t) { return s & 255; }},
      {"Mono16MSBSwapToBGR24", 3, WORD_CALL(Mono16MSBSwapToBGR24), [](uint32_t s, uint32_t) { return s & 255; }},
      {"Mono16MSBSwapToMono8", 1, WORD_CALL(Mono16MSBSwapToMono8), [](uint32_t s, uint32_t) { return s & 255; }},
      {"Mono16MSBSwapToMono16", 2, WORD_CALL(Mono16MSBSwapToMono16), SwappedSample},
      {"Mono16MSBSwapToMono16MSB", 2, WORD_CALL_NO_DEPTH(Mono16MSBSwapToMono16MSB),
       [](uint32_t s, uint32_t) { return (s >> 8) | (s & 255) << 8; }},
  };
  return cases;
}

TEST(PackedMonoPlain, MsbAndSwappedWordsEveryVariantDepthAndWidth) {
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    SCOPED_TRACE(kestrelink::VariantName(variant));
    for (const auto& c : WordCases())
      for (uint32_t d : {8u, 10u, 12u, 14u, 16u})
        for (uint32_t w : {1u, 7u, 8u, 15u, 16u, 17u, 31u, 33u, 65u, 100u})
          for (bool flip : {false, true}) {
            CIppImageConverter conv;
            const uint32_t h = 3;
            const auto src = testsupport::RandomWords(size_t(w) * h, 65536, w + d);
            const size_t size = size_t(w) * h * c.dstBytes + 16;
            std::vector<uint8_t> dst(size, 0xA5);
            ASSERT_TRUE(c.call(conv, w, h, d, const_cast<uint8_t*>(src.data()), dst.data(), flip));
            const auto want =
                packedtest::RowsWrittenInOrder(size, 0xA5, h, flip, size_t(w) * c.dstBytes, [&](uint32_t r) {
                  std::vector<uint8_t> row;
                  for (uint32_t x = 0; x < w; ++x)
                    for (uint8_t b : Grey(c.value(testsupport::Word(src, size_t(r) * w + x), d), c.dstBytes))
                      row.push_back(b);
                  return row;
                });
            ASSERT_EQ(dst, want) << c.name << " w=" << w << " d=" << d << " flip=" << flip;
          }
  }
}

TEST(PackedMonoPlain, ZeroSizesTouchNothing) {
  CIppImageConverter conv;
  std::vector<uint8_t> src(256, 1), dst(256, 0x5A);
  for (const auto& c : PairCases()) {
    EXPECT_TRUE(c.call(conv, 16, 0, 12, 12, src.data(), dst.data(), false)) << c.name;
    EXPECT_TRUE(c.call(conv, 0, 4, 12, 12, src.data(), dst.data(), true)) << c.name;
  }
  for (const auto& c : WordCases()) {
    EXPECT_TRUE(c.call(conv, 16, 0, 12, src.data(), dst.data(), false)) << c.name;
    EXPECT_TRUE(c.call(conv, 0, 4, 12, src.data(), dst.data(), true)) << c.name;
  }
  for (uint8_t b : dst) ASSERT_EQ(b, 0x5A);
}

}  // namespace
