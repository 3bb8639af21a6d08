#pragma once
// The body of the lossless decoder fuzz targets. Input: two bytes of frame
// size (15 bits; the top bit asks for a total below 4), then the payload.
// The payload is decoded into a frame of exactly that size, so a write past
// it is caught; m_size must not grow past it. The input's payload as a frame
// must then round-trip through encode and decode.
#include <kestrelink/CIppImageCompress.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

inline int FuzzLosslessDecoder(IppCompressType type, const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  static CIppImageCompress codec;  // one thread setup for the whole run
  const uint32_t frame = uint32_t(data[0]) | uint32_t(data[1] & 0x7F) << 8;
  const size_t payload = size - 2;
  std::vector<uint8_t> stream(payload + 4);
  const uint32_t total = (data[1] & 0x80) ? uint32_t(payload % 4) : uint32_t(payload + 4);
  for (int i = 0; i < 4; ++i) stream[size_t(i)] = uint8_t(total >> (8 * i));
  if (payload) std::memcpy(stream.data() + 4, data + 2, payload);

  std::unique_ptr<uint8_t[]> out(new uint8_t[frame ? frame : 1]);
  codec.InitCompress(type, frame);
  codec.DecodeImage(stream.data(), out.get());
  if (codec.m_size > frame) std::abort();

  // Round trip: the payload bytes as a frame.
  const uint32_t n = uint32_t(payload);
  std::vector<uint8_t> raw(data + 2, data + size), coded(size_t(codec.InitCompress(type, n)) + 4);
  const uint32_t length = codec.EncodeImage(raw.data(), coded.data());
  if (n == 0 || length == 2 * n) return 0;  // the room as the answer: the coder refused (Huffman on tiny inputs)
  std::unique_ptr<uint8_t[]> back(new uint8_t[n]);
  codec.InitCompress(type, n);
  codec.DecodeImage(coded.data(), back.get());
  if (codec.m_size != n || std::memcmp(back.get(), raw.data(), n) != 0) std::abort();
  return 0;
}
