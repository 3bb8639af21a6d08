// LZSS streams: exact tokens of hand-worked inputs, the match search rules
// against a plain model of them, round trips across 64 KiB rounds, and the
// decoder's bound.
#include <gtest/gtest.h>

#include <string>

#include "CompressTestSupport.h"
#include "support/TestSupport.h"

namespace {

using namespace compresstest;

std::string Literal(uint8_t b) { return BitsOf(1, 1) + BitsOf(b, 8); }
std::string Match(uint32_t offset, uint32_t length) { return BitsOf(0, 1) + BitsOf(offset, 15) + BitsOf(length - 3, 8); }
std::string Literals(const std::string& text) {
  std::string bits;
  for (char c : text) bits += Literal(uint8_t(c));
  return bits;
}
Bytes Text(const std::string& s) { return Bytes(s.begin(), s.end()); }

// The tokens as the search rules state them, by brute force: at each
// position the earlier positions with the same next three bytes, most
// recent first, at most 16 of them and all less than 32768 back; a
// candidate wins only when strictly longer; a match of 3 or more is taken
// at once; the last two bytes are literals.
std::string ModelTokens(const Bytes& in) {
  const size_t n = in.size();
  std::string bits;
  size_t p = 0;
  while (p < n) {
    size_t best = 2, offset = 0;
    if (n - p >= 3) {
      const size_t limit = std::min<size_t>(258, n - p);
      int looked = 0;
      for (size_t q = p; q-- > 0 && p - q < 32768 && looked < 16;) {
        if (in[q] != in[p] || in[q + 1] != in[p + 1] || in[q + 2] != in[p + 2]) continue;
        ++looked;
        size_t len = 0;
        while (len < limit && in[q + len] == in[p + len]) ++len;
        if (len > best) {
          best = len;
          offset = p - q;
          if (len == limit) break;
        }
      }
    }
    if (best >= 3) {
      bits += Match(uint32_t(offset), uint32_t(best));
      p += best;
    } else {
      bits += Literal(in[p]);
      ++p;
    }
  }
  return bits;
}

TEST(Lzss, HandWorkedTokens) {
  struct Case {
    const char* name;
    Bytes input;
    std::string bits;
  } cases[] = {
      {"a match that overlaps itself up to the end", Text("abcabcabcabc"), Literals("abc") + Match(3, 9)},
      {"the last two bytes are literals", Text("abcab"), Literals("abcab")},
      {"of equal lengths the nearest wins", Text("abcdabceabcf"),
       Literals("abcd") + Match(4, 3) + Literals("e") + Match(4, 3) + Literals("f")},
      {"a longer match further back wins", Text("xyzQQxyzRRxyzQQ!"),
       Literals("xyzQQ") + Match(5, 3) + Literals("RR") + Match(10, 5) + Literals("!")},
      {"one byte", Text("z"), Literals("z")},
      {"two bytes", Text("zz"), Literals("zz")},
      // A match may cover the last two bytes; only a start there is a literal.
      {"a run", Bytes(300, 7), Literal(7) + Match(1, 258) + Match(1, 41)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Payload(Encode(IppCompressLZ77, c.input)), PackBits(c.bits));
    EXPECT_EQ(ModelTokens(c.input), c.bits);  // the model agrees with the hand
  }
}

TEST(Lzss, SixteenCandidatesAtMost) {
  // "abc" + 8 bytes that match 8 further, then k occurrences of "abc" each
  // followed by its own byte, then the long match again. With 15 in between
  // the far one is the 16th candidate and wins; with 16 it is not looked at.
  for (int between : {15, 16}) {
    Bytes in = Text("abcQRSTUVWX");
    for (int k = 0; k < between; ++k) in = Concat(in, Bytes{'a', 'b', 'c', uint8_t(0x80 + k)});
    in = Concat(in, Text("abcQRSTUVWX"));
    const std::string model = ModelTokens(in);
    const size_t far = in.size() - 11;
    const std::string tail = between == 15 ? Match(uint32_t(far), 11) : Match(4, 3) + Match(uint32_t(far), 8);
    ASSERT_EQ(model.substr(model.size() - tail.size()), tail) << between;
    EXPECT_EQ(Payload(Encode(IppCompressLZ77, in)), PackBits(model)) << between;
  }
}

TEST(Lzss, WindowEndsBelow32768Back) {
  for (size_t distance : {32767u, 32768u}) {
    Bytes in(distance + 3);
    std::mt19937 rng(3);
    for (auto& b : in) b = uint8_t(rng() % 4);  // filler never holds the key
    const Bytes key{0xF1, 0xF2, 0xF3};
    std::copy(key.begin(), key.end(), in.begin());
    std::copy(key.begin(), key.end(), in.begin() + std::ptrdiff_t(distance));
    const std::string model = ModelTokens(in);
    const std::string tail = distance < 32768 ? Match(uint32_t(distance), 3) : Literals("\xF1\xF2\xF3");
    ASSERT_EQ(model.substr(model.size() - tail.size()), tail) << distance;
    EXPECT_EQ(Payload(Encode(IppCompressLZ77, in)), PackBits(model)) << distance;
  }
}

TEST(Lzss, TokensFollowTheSearchRulesOnVariedData) {
  struct Case {
    const char* name;
    Bytes input;
  } cases[] = {
      {"random bytes", testsupport::RandomBytes(5000, 1)},
      {"four-letter alphabet", [] {
         Bytes b = testsupport::RandomBytes(20000, 2);
         for (auto& x : b) x &= 3;
         return b;
       }()},
      {"12-bit camera frame", CameraFrame12(96, 64, 3)},
      {"8-bit camera frame", CameraFrame8(128, 96, 4)},
      {"repeated phrases", Repeat(Text("the quick brown fox "), 300)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    EXPECT_EQ(Payload(Encode(IppCompressLZ77, c.input)), PackBits(ModelTokens(c.input)));
  }
}

TEST(Lzss, RandomBytesCostNineBitsEach) {
  for (size_t n : {1u, 2u, 3u, 1000u, 100001u}) {
    const Bytes in = testsupport::RandomBytes(n, uint32_t(n));
    const Bytes stream = Encode(IppCompressLZ77, in);
    EXPECT_LE(stream.size() - 4, (9 * n + 7) / 8) << n;
    EXPECT_LE(stream.size() - 4, 2 * n) << n;
  }
}

TEST(Lzss, RoundTripsAcrossRounds) {
  struct Case {
    const char* name;
    Bytes input;
  } cases[] = {
      {"random, several output rounds", testsupport::RandomBytes(300000, 5)},
      {"zeros: long matches cut by the rounds", Bytes(1 << 20, 0)},
      {"12-bit camera frame", CameraFrame12(640, 480, 6)},
      {"8-bit camera frame", CameraFrame8(640, 480, 7)},
      {"one byte", Bytes{42}},
      {"two bytes", Bytes{42, 42}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ExpectRoundTrip(IppCompressLZ77, c.input);
  }
}

TEST(Lzss, DecoderStopsAtTheFrameSize) {
  const Bytes frame = CameraFrame12(200, 100, 8);
  const Bytes stream = Encode(IppCompressLZ77, frame);
  std::string err;
  for (uint32_t size : {39999u, 20000u, 1u}) {
    Decoded d;
    err = StderrOf([&] { d = Decode(IppCompressLZ77, stream, size); });
    EXPECT_EQ(d.size, size);
    EXPECT_TRUE(std::equal(d.bytes.begin(), d.bytes.end(), frame.begin())) << size;
    EXPECT_TRUE(d.guardIntact) << size;
    EXPECT_EQ(err, "Error 33 while decode lz77.exiting...\n") << size;
  }
  // A shorter stream than the frame: what it holds, and m_size says so.
  const Bytes half = Encode(IppCompressLZ77, Bytes(frame.begin(), frame.begin() + 1000));
  Decoded d;
  err = StderrOf([&] { d = Decode(IppCompressLZ77, half, uint32_t(frame.size())); });
  EXPECT_EQ(err, "");
  EXPECT_EQ(d.size, 1000u);
  EXPECT_TRUE(d.tailIntact);
}

TEST(Lzss, MatchesBeforeTheFirstByteAreRefused) {
  struct Case {
    const char* name;
    std::string bits;
    uint32_t decoded;
  } cases[] = {
      {"offset past the output", Literals("ab") + Match(3, 3), 2},
      {"offset 0", Literals("a") + Match(0, 5), 1},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Decoded d;
    const std::string err = StderrOf([&] { d = Decode(IppCompressLZ77, Stream(PackBits(c.bits)), 100); });
    EXPECT_EQ(err, "Error -5 while decode lz77.exiting...\n");
    EXPECT_EQ(d.size, c.decoded);
    EXPECT_TRUE(d.tailIntact);
  }
}

TEST(Lzss, PaddingAndCutTokensEndTheStream) {
  // Seven one-bits of padding are no literal (9 bits); 14 bits are no match.
  const Bytes padded = PackBits(Literals("a") + "1111111");
  Decoded d = Decode(IppCompressLZ77, Stream(padded), 10);
  EXPECT_EQ(d.bytes, Text("a"));
  const Bytes cut = PackBits(Literals("ab") + Match(1, 3).substr(0, 14));
  d = Decode(IppCompressLZ77, Stream(cut), 10);
  EXPECT_EQ(d.bytes, Text("ab"));
}

}  // namespace
