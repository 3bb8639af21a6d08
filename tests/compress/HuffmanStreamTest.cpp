// Huffman streams end to end: exact payloads of hand-worked frames, round
// trips, the messages of each failing step, and the decoder's bounds.
#include <gtest/gtest.h>

#include <map>

#include "compress/HuffmanEntropy.h"
#include "CompressTestSupport.h"
#include "support/TestSupport.h"

namespace {

using namespace compresstest;

std::string CodeBits(const Bytes& frame, const std::map<uint8_t, std::string>& codes) {
  std::string bits;
  for (uint8_t b : frame) bits += codes.at(b);
  return bits;
}

TEST(HuffmanStream, HandWorkedPayloads) {
  struct Case {
    const char* name;
    Bytes frame;
    std::vector<int> tableNibbles;
    std::map<uint8_t, std::string> codes;
  } cases[] = {
      // Lengths 1, 1: the higher symbol gets code 0.
      {"two symbols", Bytes{0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 1},
       Then(Then(Then({1, 1, 0}, kZeroRunFromBank0), kZeroRunFromBank26, 6), {13, 0, 0, 14, 0}),
       {{0, "1"}, {1, "0"}}},
      // Counts 4, 4, 8, 8: all lengths 2, codes from the highest symbol up.
      {"four symbols", Repeat(Bytes{1, 2, 3, 3, 4, 4}, 4),
       Then(Then(Then({0, 2, 2, 2, 1, 0}, kZeroRunFromBank0), kZeroRunFromBank26, 6), {13, 0, 0, 10}),
       {{1, "11"}, {2, "10"}, {3, "01"}, {4, "00"}}},
      // One value: length 1, code 0, one zero bit a byte. 127 zeros before
      // it (three runs of 34 and 25), 128 after (the first copy, then 127).
      {"one repeated byte", Bytes(1000, 0x7F),
       Then(Then(Then(Then(Then(kZeroRunFromBank0, kZeroRunFromBank26, 2), {13, 0, 0, 14, 10, 13, 1, 0}),
                      kZeroRunFromBank0),
                 kZeroRunFromBank26, 2),
            {13, 0, 0, 14, 10}),
       {{0x7F, "0"}}},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    const Bytes stream = Encode(IppCompressHuffman, c.frame);
    const Bytes want = Concat(PackNibbles(c.tableNibbles), PackBits(CodeBits(c.frame, c.codes)));
    EXPECT_EQ(Payload(stream), want);
    EXPECT_EQ(stream, Stream(want));  // the total counts itself
  }
}

TEST(HuffmanStream, RoundTrips) {
  struct Case {
    const char* name;
    Bytes frame;
  } cases[] = {
      {"random bytes", testsupport::RandomBytes(100000, 11)},
      {"12-bit camera frame", CameraFrame12(320, 240, 12)},
      {"8-bit camera frame", CameraFrame8(333, 217, 13)},
      {"random 12-bit words", testsupport::RandomWords(50001, 4096, 14)},
      {"runs", Concat(Bytes(5000, 9), Concat(Bytes(3, 1), Bytes(70000, 200)))},
      {"every value once", [] {
         Bytes b(256);
         for (int i = 0; i < 256; ++i) b[size_t(i)] = uint8_t(i);
         return b;
       }()},
      {"skewed to long codes", [] {  // counts 2^k: codes up to 20 bits
         Bytes b;
         for (int k = 0; k < 21; ++k) b.insert(b.end(), size_t(1) << k, uint8_t(k * 7));
         return b;
       }()},
      {"forty bytes of four values", Repeat(Bytes{1, 2, 3, 4, 4, 3, 4, 4}, 5)},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    ExpectRoundTrip(IppCompressHuffman, c.frame);
  }
}

TEST(HuffmanStream, EncoderFailuresKeepTheRoomAsTheAnswer) {
  struct Case {
    const char* name;
    Bytes frame;
    bool nullSource;
    std::string message;
  } cases[] = {
      {"zero size", Bytes{}, false, "Error while trying to init the frequency table for huffman. Exiting.\n"},
      // 21 bytes of table do not fit in 2 or 4.
      {"one byte", Bytes{5}, false, "Error <-6> while trying to flush code lengths. Exiting.\n"},
      {"two bytes", Bytes{5, 6}, false, "Error <-6> while trying to flush code lengths. Exiting.\n"},
      // The table fits in 22 bytes; the 11 code bits then need 2 bytes where 1 is left.
      {"last bits", Bytes{0, 1, 0, 1, 0, 1, 0, 1, 0, 1, 0}, false,
       "Error <0> while trying to finalize ecoding huffman. Exiting.\n"},
      {"null source", Bytes(100, 1), true, ""},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    CIppImageCompress codec;
    const uint32_t n = uint32_t(c.frame.size());
    EXPECT_EQ(codec.InitCompress(IppCompressHuffman, n), 2 * n);
    Bytes dst(2 * n + 4, 0);
    Bytes src = c.frame;
    src.push_back(0);  // a real pointer even for zero size
    uint32_t answer = 0;
    const std::string err =
        StderrOf([&] { answer = codec.EncodeImage(c.nullSource ? nullptr : src.data(), dst.data()); });
    EXPECT_EQ(err, c.message);
    EXPECT_EQ(answer, 2 * n);
    EXPECT_EQ(Bytes(dst.begin(), dst.begin() + 4), (Bytes{uint8_t(2 * n + 4), 0, 0, 0}));
  }
}

TEST(HuffmanStream, FibonacciCountsFailAtTheFrequencyTable) {
  // 34 values with Fibonacci counts (about 15 million bytes) need a 33-bit code.
  Bytes frame;
  uint32_t a = 1, b = 1;
  for (int k = 0; k < 34; ++k) {
    frame.insert(frame.end(), a, uint8_t(k));
    const uint32_t next = a + b;
    a = b;
    b = next;
  }
  const std::string err = StderrOf([&] { Encode(IppCompressHuffman, frame); });
  EXPECT_EQ(err, "Error while trying to init the frequency table for huffman. Exiting.\n");
}

TEST(HuffmanStream, DecoderFailuresAreReportedAndBounded) {
  const Bytes single = Payload(Encode(IppCompressHuffman, Bytes(40, 0x7F)));  // table, then 5 zero bytes
  // Three lengths of 1 ("1 1 1 0", then the zeros) can't be told apart.
  Bytes badTable = PackNibbles(Then(Then(Then({1, 1, 1, 0, 0}, kZeroRunFromBank0), kZeroRunFromBank26, 6), {13, 0, 0, 12}));
  badTable.push_back(0);
  struct Case {
    const char* name;
    Bytes stream;
    std::string message;
    uint32_t size;  // m_size after
  } cases[] = {
      {"total below 4", Bytes{3, 0, 0, 0, 0xAA}, "Error <-6> while decoding Huffman (Unpack Table)\n", 64},
      {"a table cut short", Stream(Bytes(single.begin(), single.begin() + 10)),
       "Error <-6> while decoding Huffman (Unpack Table)\n", 64},
      {"lengths that make no code", Stream(badTable), "Error <-199> while decoding Huffman (Init)\n", 64},
      // The only code is 0: a one bit is no code. Five symbols stand before it.
      {"a bit pattern that is no code", Stream(Concat(Bytes(single.begin(), single.end() - 5), Bytes{0x04})),
       "Error <-5> while decoding HUFFMAN\n", 5},
      {"a table and no code bits", Stream(Bytes(single.begin(), single.end() - 5)),
       "Error <-6> while decoding HUFFMAN\n", 64},
  };
  for (const Case& c : cases) {
    SCOPED_TRACE(c.name);
    Decoded d;
    const std::string err = StderrOf([&] { d = Decode(IppCompressHuffman, c.stream, 64); });
    EXPECT_EQ(err, c.message);
    EXPECT_TRUE(d.result);
    EXPECT_EQ(d.size, c.size);
    EXPECT_TRUE(d.guardIntact);
    EXPECT_TRUE(d.tailIntact);
  }
}

TEST(HuffmanStream, DecodeStopsAtTheFrameSizeOrWhenTheBitsRunOut) {
  const Bytes frame = CameraFrame8(200, 50, 21);
  const Bytes stream = Encode(IppCompressHuffman, frame);
  Decoded d = Decode(IppCompressHuffman, stream, 777);
  EXPECT_EQ(d.size, 777u);
  EXPECT_TRUE(std::equal(d.bytes.begin(), d.bytes.end(), frame.begin()));
  EXPECT_TRUE(d.guardIntact);

  // Two symbols, 0x00 coded 1 and 0x01 coded 0: 15 bytes leave one zero bit
  // of padding, which a larger frame size decodes as one more 0x01.
  const Bytes fifteen{0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0};
  d = Decode(IppCompressHuffman, Encode(IppCompressHuffman, fifteen), 100);
  EXPECT_EQ(d.size, 16u);
  EXPECT_EQ(d.bytes, Concat(fifteen, Bytes{1}));
  EXPECT_TRUE(d.tailIntact);
}

TEST(HuffmanEntropy, CodesABufferAsTheStreamPayload) {
  const Bytes frame = CameraFrame12(64, 48, 22);
  CHuffmanEntropy entropy;
  Bytes coded(2 * frame.size());
  const uint32_t n = entropy.EncodeBuffer(frame.data(), uint32_t(frame.size()), coded.data());
  coded.resize(n);
  EXPECT_EQ(coded, Payload(Encode(IppCompressHuffman, frame)));
  Bytes back(frame.size());
  EXPECT_TRUE(entropy.DecodeBuffer(n, coded.data(), uint32_t(back.size()), back.data()));
  EXPECT_EQ(back, frame);
  // A failure is printed and answers the room.
  std::string err = StderrOf([&] { EXPECT_EQ(entropy.EncodeBuffer(frame.data(), 0, coded.data()), 0u); });
  EXPECT_EQ(err, "Error while trying to init the frequency table for huffman. Exiting.\n");
}

}  // namespace
