// RLE streams: exact bytes of hand-worked inputs, the decoder's trailing
// bytes and bound, round trips, on every processor variant.
#include <gtest/gtest.h>

#include "CompressTestSupport.h"
#include "support/TestSupport.h"

namespace {

using namespace compresstest;

Bytes Text(const std::string& s) { return Bytes(s.begin(), s.end()); }

TEST(Rle, HandWorkedStreams) {
  struct Case {
    const char* name;
    Bytes frame;
    Bytes payload;
  } cases[] = {
      {"no pairs", Text("abc"), Text("abc")},
      {"a pair costs a count", Text("aab"), Bytes{'a', 'a', 0, 'b'}},
      {"pairs reach 1.5 times", Text("aabbcc"), Bytes{'a', 'a', 0, 'b', 'b', 0, 'c', 'c', 0}},
      {"one byte", Text("a"), Text("a")},
      {"257 in one triple", Bytes(257, 'x'), Bytes{'x', 'x', 255}},
      {"258: a triple and a lone byte", Bytes(258, 'x'), Bytes{'x', 'x', 255, 'x'}},
      {"259: two triples", Bytes(259, 'x'), Bytes{'x', 'x', 255, 'x', 'x', 0}},
      {"1000 equal: three full triples and the rest", Bytes(1000, 'q'),
       Bytes{'q', 'q', 255, 'q', 'q', 255, 'q', 'q', 255, 'q', 'q', 227}},
      {"run between literals", Concat(Text("ab"), Concat(Bytes(5, 'c'), Text("d"))),
       Bytes{'a', 'b', 'c', 'c', 3, 'd'}},
  };
  OnEveryVariant([&] {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.name);
      EXPECT_EQ(Encode(IppCompressRLE, c.frame), Stream(c.payload));
      const Decoded d = Decode(IppCompressRLE, Stream(c.payload), uint32_t(c.frame.size()));
      EXPECT_EQ(d.bytes, c.frame);
    }
  });
}

TEST(Rle, LastOneOrTwoBytesDecodeAsLiterals) {
  struct Case {
    const char* name;
    Bytes payload;
    Bytes frame;
  } cases[] = {
      {"a lone pair", Bytes{'a', 'a'}, Text("aa")},
      {"a pair after a literal", Bytes{'x', 'a', 'a'}, Text("xaa")},
      {"a triple, then a pair", Bytes{'b', 'b', 1, 'a', 'a'}, Text("bbbaa")},
      {"a triple, then one byte", Bytes{'b', 'b', 0, 'z'}, Text("bbz")},
  };
  OnEveryVariant([&] {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.name);
      const Decoded d = Decode(IppCompressRLE, Stream(c.payload), 100);
      EXPECT_EQ(d.size, c.frame.size());
      EXPECT_EQ(d.bytes, c.frame);
      EXPECT_TRUE(d.tailIntact);
    }
  });
}

TEST(Rle, RoundTrips) {
  Bytes pairs;
  for (int i = 0; i < 5000; ++i) pairs.insert(pairs.end(), 2, uint8_t(i * 37));
  struct Case {
    const char* name;
    Bytes frame;
  } cases[] = {
      {"random bytes", testsupport::RandomBytes(70001, 31)},
      {"12-bit camera frame", CameraFrame12(320, 240, 32)},
      {"8-bit camera frame", CameraFrame8(321, 240, 33)},
      {"pairs: the worst case", pairs},
      {"zeros", Bytes(100000, 0)},
      {"two bytes", Bytes{9, 9}},
  };
  OnEveryVariant([&] {
    for (const Case& c : cases) {
      SCOPED_TRACE(c.name);
      EXPECT_LE(Encode(IppCompressRLE, c.frame).size() - 4, c.frame.size() * 3 / 2 + 1);
      ExpectRoundTrip(IppCompressRLE, c.frame);
    }
  });
}

TEST(Rle, DecoderFillsTheFrameAndStopsQuietly) {
  const Bytes frame = CameraFrame8(100, 100, 34);
  const Bytes stream = Encode(IppCompressRLE, frame);
  for (uint32_t size : {1u, 777u, 9999u}) {
    Decoded d;
    const std::string err = StderrOf([&] { d = Decode(IppCompressRLE, stream, size); });
    EXPECT_EQ(err, "") << size;
    EXPECT_EQ(d.size, size);
    EXPECT_TRUE(std::equal(d.bytes.begin(), d.bytes.end(), frame.begin())) << size;
    EXPECT_TRUE(d.guardIntact) << size;
  }
  // A run cut by the frame size fills it to the last byte.
  const Decoded d = Decode(IppCompressRLE, Stream(Bytes{'r', 'r', 200}), 50);
  EXPECT_EQ(d.bytes, Bytes(50, 'r'));
  EXPECT_TRUE(d.guardIntact);
}

TEST(Rle, SizeErrorsArePrinted) {
  CIppImageCompress codec;
  EXPECT_EQ(codec.InitCompress(IppCompressRLE, 0), 0u);
  Bytes dst(4, 0xEE);
  uint8_t src = 1;
  std::string err = StderrOf([&] { EXPECT_EQ(codec.EncodeImage(&src, dst.data()), 0u); });
  EXPECT_EQ(err, "Error <-6> while trying RLE encoding. Exiting.\n");
  EXPECT_EQ(dst, (Bytes{4, 0, 0, 0}));

  Decoded d;
  err = StderrOf([&] { d = Decode(IppCompressRLE, Stream(Bytes{}), 10); });
  EXPECT_EQ(err, "Error <-6> while trying RLE decoding. Exiting.\n");
  EXPECT_EQ(d.size, 10u);  // the kernel refused before decoding: m_size stands
}

}  // namespace
