#pragma once
// Helpers of the lossless coder tests: expected streams written out plainly
// (bit strings, nibble lists), test frames, and the coder run end to end.
#include <gtest/gtest.h>
#include <kestrelink/CIppImageCompress.h>

#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "support/TestSupport.h"

namespace compresstest {

using Bytes = std::vector<uint8_t>;

// `width` bits of `value`, most significant first, as '0' and '1'.
inline std::string BitsOf(uint64_t value, int width) {
  std::string s;
  for (int i = width - 1; i >= 0; --i) s += char('0' + ((value >> i) & 1));
  return s;
}

// A bit string packed from the top of each byte, the last byte padded with zeros.
inline Bytes PackBits(const std::string& bits) {
  Bytes out((bits.size() + 7) / 8, 0);
  for (size_t i = 0; i < bits.size(); ++i)
    if (bits[i] == '1') out[i / 8] |= uint8_t(0x80 >> (i % 8));
  return out;
}

// Nibbles packed high half first; a last half-filled byte has a zero low half.
inline Bytes PackNibbles(const std::vector<int>& nibbles) {
  Bytes out((nibbles.size() + 1) / 2, 0);
  for (size_t i = 0; i < nibbles.size(); ++i) out[i / 2] |= uint8_t(i % 2 == 0 ? nibbles[i] << 4 : nibbles[i]);
  return out;
}

// Nibble lists of packed code-length tables: `a`, then `b` `times` times.
inline std::vector<int> Then(std::vector<int> a, const std::vector<int>& b, int times = 1) {
  for (int t = 0; t < times; ++t) a.insert(a.end(), b.begin(), b.end());
  return a;
}
// A run of 34 zero lengths after the first: "0 0 32", from bank 0, or with
// the bank selector back to 0 after an earlier count of 32 took bank 26.
inline const std::vector<int> kZeroRunFromBank0 = {0, 0, 15, 6};
inline const std::vector<int> kZeroRunFromBank26 = {13, 0, 0, 15, 6};

inline Bytes Concat(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

inline Bytes Repeat(const Bytes& unit, size_t times) {
  Bytes out;
  for (size_t i = 0; i < times; ++i) out.insert(out.end(), unit.begin(), unit.end());
  return out;
}

// A 12-bit camera-like frame stored as little-endian 16-bit words: smooth
// gradients and a bright disc under a few counts of noise.
inline Bytes CameraFrame12(uint32_t w, uint32_t h, uint32_t seed) {
  std::mt19937 rng(seed);
  std::normal_distribution<double> noise(0.0, 6.0);
  Bytes out(size_t(w) * h * 2);
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x) {
      const double dx = x - w * 0.6, dy = y - h * 0.4;
      double v = 600 + 1800.0 * x / w + 900.0 * y / h + (dx * dx + dy * dy < w * h / 20.0 ? 1000 : 0) + noise(rng);
      const uint32_t s = uint32_t(v < 0 ? 0 : v > 4095 ? 4095 : v);
      const size_t i = 2 * (size_t(y) * w + x);
      out[i] = uint8_t(s);
      out[i + 1] = uint8_t(s >> 8);
    }
  return out;
}

// An 8-bit frame of the same scene.
inline Bytes CameraFrame8(uint32_t w, uint32_t h, uint32_t seed) {
  const Bytes wide = CameraFrame12(w, h, seed);
  Bytes out(size_t(w) * h);
  for (size_t i = 0; i < out.size(); ++i) out[i] = uint8_t((wide[2 * i] | wide[2 * i + 1] << 8) >> 4);
  return out;
}

// Encodes `frame` with a fresh coder; the stream is cut to its total.
inline Bytes Encode(IppCompressType type, const Bytes& frame) {
  CIppImageCompress codec;
  const uint32_t room = codec.InitCompress(type, uint32_t(frame.size()));
  Bytes stream(size_t(room) + 4);
  const uint32_t payload = codec.EncodeImage(const_cast<uint8_t*>(frame.data()), stream.data());
  stream.resize(size_t(payload) + 4);
  return stream;
}

// The payload of a stream, without its total.
inline Bytes Payload(const Bytes& stream) { return Bytes(stream.begin() + 4, stream.end()); }

// A stream with the given payload and a matching total.
inline Bytes Stream(const Bytes& payload) {
  const uint32_t total = uint32_t(payload.size() + 4);
  return Concat(Bytes{uint8_t(total), uint8_t(total >> 8), uint8_t(total >> 16), uint8_t(total >> 24)}, payload);
}

// Decoding into a buffer of `size` bytes followed by a guard of 64 bytes
// that must stay untouched.
struct Decoded {
  Bytes bytes;         // the first m_size bytes after the call
  uint32_t size;       // m_size after the call
  bool result;         // what DecodeImage answered
  bool guardIntact;    // nothing written past the `size` bytes given
  bool tailIntact;     // nothing written between the decoded bytes and the guard
};

inline Decoded Decode(IppCompressType type, const Bytes& stream, uint32_t size) {
  constexpr uint8_t kFill = 0xA5;
  CIppImageCompress codec;
  codec.InitCompress(type, size);
  Bytes buffer(size_t(size) + 64, kFill);
  Bytes in = stream;
  Decoded d;
  d.result = codec.DecodeImage(in.data(), buffer.data());
  d.size = codec.m_size;
  const size_t kept = std::min<size_t>(d.size, size);
  d.bytes.assign(buffer.begin(), buffer.begin() + kept);
  d.guardIntact = std::all_of(buffer.begin() + size, buffer.end(), [](uint8_t b) { return b == kFill; });
  d.tailIntact = std::all_of(buffer.begin() + kept, buffer.begin() + size, [](uint8_t b) { return b == kFill; });
  return d;
}

// Encodes and decodes `frame` with a fresh coder each way: the frame comes
// back whole, m_size says its size, and nothing is written past it.
inline void ExpectRoundTrip(IppCompressType type, const Bytes& frame) {
  const Decoded d = Decode(type, Encode(type, frame), uint32_t(frame.size()));
  EXPECT_EQ(d.size, frame.size());
  EXPECT_TRUE(d.bytes == frame);
  EXPECT_TRUE(d.guardIntact);
}

// Runs `body` once with every processor variant this machine can run forced.
template <class Body>
void OnEveryVariant(Body&& body) {
  for (auto v : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(v);
    SCOPED_TRACE(kestrelink::VariantName(v));
    body();
  }
}

// What `run` printed on standard error.
inline std::string StderrOf(const std::function<void()>& run) {
  ::testing::internal::CaptureStderr();
  run();
  return ::testing::internal::GetCapturedStderr();
}

inline const char* MethodName(IppCompressType type) {
  switch (type) {
    case IppCompressHuffman: return "huffman";
    case IppCompressLZ77: return "lzss";
    case IppCompressRLE: return "rle";
    default: return "unknown";
  }
}

}  // namespace compresstest
