// The coder object: its fields, InitCompress, unknown methods, null
// pointers and totals below 4, for every method.
#include <gtest/gtest.h>

#include "CompressTestSupport.h"

namespace {

using namespace compresstest;

constexpr IppCompressType kMethods[] = {IppCompressHuffman, IppCompressLZ77, IppCompressRLE};

TEST(CompressObject, StartsAsHuffmanOfSizeZeroAndCopiesBothFields) {
  CIppImageCompress a;
  EXPECT_EQ(a.m_type, IppCompressHuffman);
  EXPECT_EQ(a.m_size, 0u);
  CIppImageCompress b;
  b.InitCompress(IppCompressRLE, 1234);
  a = b;
  EXPECT_EQ(a.m_type, IppCompressRLE);
  EXPECT_EQ(a.m_size, 1234u);
}

TEST(CompressObject, InitCompressStoresBothAndAnswersTheRoom) {
  struct Case {
    int32_t type;
    uint32_t size;
    uint32_t answer;
  } cases[] = {
      {1, 100, 200}, {2, 100, 200}, {3, 100, 200}, {0, 100, 0},  {4, 100, 0},
      {-1, 7, 0},    {3, 0, 0},     {2, 0x80000001u, 2},  // the room wraps in 32 bits
  };
  for (const Case& c : cases) {
    CIppImageCompress codec;
    EXPECT_EQ(codec.InitCompress(IppCompressType(c.type), c.size), c.answer) << c.type << " " << c.size;
    EXPECT_EQ(codec.m_type, IppCompressType(c.type));
    EXPECT_EQ(codec.m_size, c.size);
  }
}

TEST(CompressObject, UnknownMethodsWriteNothing) {
  for (int32_t type : {0, 4, 100}) {
    CIppImageCompress codec;
    codec.InitCompress(IppCompressType(type), 16);
    Bytes src(16, 1), dst(40, 0xEE);
    std::string err = StderrOf([&] {
      EXPECT_EQ(codec.EncodeImage(src.data(), dst.data()), 0u);
      EXPECT_FALSE(codec.DecodeImage(Stream(Bytes{1, 2, 3}).data(), dst.data()));
    });
    EXPECT_EQ(err, "");
    EXPECT_EQ(dst, Bytes(40, 0xEE)) << type;
    EXPECT_EQ(codec.m_size, 16u);
  }
}

TEST(CompressObject, ZeroSizeWritesATotalOf4) {
  const std::string messages[] = {"Error while trying to init the frequency table for huffman. Exiting.\n", "",
                                  "Error <-6> while trying RLE encoding. Exiting.\n"};
  for (size_t m = 0; m < 3; ++m) {
    SCOPED_TRACE(MethodName(kMethods[m]));
    CIppImageCompress codec;
    EXPECT_EQ(codec.InitCompress(kMethods[m], 0), 0u);
    Bytes dst(4, 0xEE);
    uint8_t src = 0;
    const std::string err = StderrOf([&] { EXPECT_EQ(codec.EncodeImage(&src, dst.data()), 0u); });
    EXPECT_EQ(err, messages[m]);
    EXPECT_EQ(dst, (Bytes{4, 0, 0, 0}));
  }
}

TEST(CompressObject, NullPointersGetTheirMessages) {
  struct Case {
    IppCompressType type;
    const char* encodeNullSource;
    const char* decodeNullStream;
    const char* decodeNullFrame;
  } cases[] = {
      {IppCompressHuffman, "", "Error <-8> while decoding Huffman (Unpack Table)\n",
       "Error <-8> while decoding HUFFMAN\n"},
      {IppCompressLZ77, "Error while encode lz77.exiting...\n", "Error -8 while decode lz77.exiting...\n",
       "Error -8 while decode lz77.exiting...\n"},
      {IppCompressRLE, "Error <-8> while trying RLE encoding. Exiting.\n",
       "Error <-8> while trying RLE decoding. Exiting.\n", "Error <-8> while trying RLE decoding. Exiting.\n"},
  };
  const Bytes frame = CameraFrame8(40, 10, 41);
  for (const Case& c : cases) {
    SCOPED_TRACE(MethodName(c.type));
    CIppImageCompress codec;
    codec.InitCompress(c.type, uint32_t(frame.size()));
    Bytes dst(2 * frame.size() + 4, 0);
    // The answer after a failure is the room, and the total says so.
    std::string err = StderrOf([&] { EXPECT_EQ(codec.EncodeImage(nullptr, dst.data()), 2 * frame.size()); });
    EXPECT_EQ(err, c.encodeNullSource);
    EXPECT_EQ(Bytes(dst.begin(), dst.begin() + 4), (Bytes{uint8_t(2 * frame.size() + 4), 3, 0, 0}));
    // A null destination gets no total and nothing else.
    StderrOf([&] { EXPECT_EQ(codec.EncodeImage(const_cast<uint8_t*>(frame.data()), nullptr), 2 * frame.size()); });

    Bytes stream = Encode(c.type, frame), out(frame.size());
    err = StderrOf([&] { EXPECT_TRUE(codec.DecodeImage(nullptr, out.data())); });
    EXPECT_EQ(err, c.decodeNullStream);
    codec.InitCompress(c.type, uint32_t(frame.size()));
    err = StderrOf([&] { EXPECT_TRUE(codec.DecodeImage(stream.data(), nullptr)); });
    EXPECT_EQ(err, c.decodeNullFrame);
  }
}

TEST(CompressObject, TotalsBelow4AreSizeErrors) {
  const char* messages[] = {"Error <-6> while decoding Huffman (Unpack Table)\n",
                            "Error -6 while decode lz77.exiting...\n",
                            "Error <-6> while trying RLE decoding. Exiting.\n"};
  for (size_t m = 0; m < 3; ++m) {
    for (uint8_t total : {0, 1, 2, 3}) {
      SCOPED_TRACE(std::string(MethodName(kMethods[m])) + " total " + std::to_string(total));
      Decoded d;
      const std::string err =
          StderrOf([&] { d = Decode(kMethods[m], Bytes{total, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 1}, 32); });
      EXPECT_EQ(err, messages[m]);
      EXPECT_TRUE(d.result);
      EXPECT_TRUE(d.guardIntact);
      EXPECT_TRUE(d.tailIntact);
    }
  }
}

TEST(CompressObject, ADecodeRewritesTheFrameSize) {
  // A short stream shrinks m_size, and the next encode on the object codes that many bytes.
  const Bytes small(40, 'k'), frame = CameraFrame8(64, 64, 42);  // Huffman: 40 one-bit codes, no padding
  for (IppCompressType type : kMethods) {
    SCOPED_TRACE(MethodName(type));
    CIppImageCompress codec;
    codec.InitCompress(type, uint32_t(frame.size()));
    Bytes stream = Encode(type, small);
    Bytes out(frame.size());
    codec.DecodeImage(stream.data(), out.data());
    const size_t want = small.size();
    EXPECT_EQ(codec.m_size, want);
    Bytes again(2 * frame.size() + 4);
    const uint32_t payload = codec.EncodeImage(const_cast<uint8_t*>(frame.data()), again.data());
    again.resize(payload + 4);
    EXPECT_EQ(again, Encode(type, Bytes(frame.begin(), frame.begin() + std::ptrdiff_t(want))));
  }
}

}  // namespace
