#pragma once
// The arithmetic decoder, fed only equal-probability symbols (single bits
// and groups of up to 8 bits), hands back the stream's bits as they stand,
// most significant first, with zeros past the end: its interval is
// [0, 65535] or a dyadic part of it, and its pauses where the stream ends
// only delay renormalisation. This reader gives the same bits directly,
// for the block coder's decoder; a test holds the two to the same answers.
// It needs a stream of at least 3 bytes, as the arithmetic decoder does to
// start at all.
#include <cstdint>
#include <cstring>

namespace kestrelink::wavelet {

class StreamBitReader {
 public:
  StreamBitReader(const uint8_t* data, uint32_t size) : m_data(data), m_size(size) { Refill(); }

  uint32_t DecodeBit() {
    if (m_count < 1) Refill();
    const uint32_t bit = uint32_t(m_window >> 63);
    m_window <<= 1;
    --m_count;
    return bit;
  }
  // n bits (n <= 32), the lowest byte first as the encoder wrote them.
  uint32_t DecodeBits(int n) {
    uint32_t value = 0;
    int shift = 0;
    for (; n > 8; n -= 8, shift += 8) value |= Take(8) << shift;
    if (n >= 1) value |= Take(uint32_t(n)) << shift;
    return value;
  }
  // The next n bits (1 <= n <= 32) as one value, first bit on top, left
  // unread; Skip then passes over some of them.
  uint32_t Peek(uint32_t n) {
    if (m_count < int(n)) Refill();
    return uint32_t(m_window >> (64 - n));
  }
  void Skip(uint32_t n) {
    m_window <<= n;
    m_count -= int(n);
  }
  // The next n bits (1 <= n <= 32) as one value, first bit on top.
  uint32_t Take(uint32_t n) {
    if (m_count < int(n)) Refill();
    const uint32_t v = uint32_t(m_window >> (64 - n));
    m_window <<= n;
    m_count -= int(n);
    return v;
  }

 private:
  // Tops the window up to at least 57 bits; zeros past the end.
  void Refill() {
    const uint32_t room = uint32_t(64 - m_count) / 8;
    uint64_t fresh = 0;
    if (m_next + 8 <= m_size) {
      uint64_t word;
      std::memcpy(&word, m_data + m_next, 8);
      fresh = __builtin_bswap64(word);
    } else {
      for (uint32_t i = 0; i < 8; ++i)
        fresh |= uint64_t(m_next + i < m_size ? m_data[m_next + i] : 0) << (56 - 8 * i);
    }
    fresh = room ? (fresh >> (64 - 8 * room)) << (64 - 8 * room) : 0;
    m_window |= m_count >= 64 ? 0 : fresh >> m_count;
    m_count += int(8 * room);
    m_next += room;
  }

  const uint8_t* m_data;
  uint32_t m_size;
  uint32_t m_next = 0;     // next byte to load
  uint64_t m_window = 0;   // unread bits at the top
  int m_count = 0;         // bits in the window
};

}  // namespace kestrelink::wavelet

namespace kestrelink::wavelet {

// The encoder's side: equal-probability symbols leave the arithmetic
// encoder's interval at [0, 65535] with nothing pending, so each symbol's
// bits go out as they stand, and FinishEncoder adds the bits 0 1 and zero
// padding. This writer does that directly into `room` bytes; past them it
// drops bytes and counts them.
class StreamBitWriter {
 public:
  StreamBitWriter(uint8_t* buffer, uint32_t room) : m_buffer(buffer), m_room(room) {}

  void EncodeBit(uint32_t bit) { Put(bit & 1, 1); }
  // The lowest byte first, each group of 8 (and the rest) most significant
  // bit first.
  void EncodeBits(uint32_t value, int n) {
    for (; n > 8; n -= 8, value >>= 8) Put(value & 0xFF, 8);
    if (n >= 1) Put(value & ((1u << n) - 1), uint32_t(n));
  }
  void FinishEncoder() {
    Put(1, 2);  // the bits 0 1
    while (m_count > 0) {
      Store(uint8_t(m_acc >> 56));
      m_acc <<= 8;
      m_count = m_count > 8 ? m_count - 8 : 0;
    }
  }
  // Bytes written, at most the room; and all bytes, stored or not.
  uint32_t Length() const { return m_position < m_room ? m_position : m_room; }
  uint32_t Produced() const { return m_position; }

  // The low n bits of `bits` (1 <= n <= 32), most significant first.
  void Put(uint32_t bits, uint32_t n) {
    m_acc |= uint64_t(bits) << (64 - m_count - n);
    m_count += n;
    if (m_count >= 32) {
      Store(uint8_t(m_acc >> 56));
      Store(uint8_t(m_acc >> 48));
      Store(uint8_t(m_acc >> 40));
      Store(uint8_t(m_acc >> 32));
      m_acc <<= 32;
      m_count -= 32;
    }
  }

 private:
  void Store(uint8_t byte) {
    if (m_position < m_room) m_buffer[m_position] = byte;
    ++m_position;
  }

  uint8_t* m_buffer;
  uint32_t m_room;
  uint32_t m_position = 0;
  uint64_t m_acc = 0;  // pending bits at the top
  uint32_t m_count = 0;
};

}  // namespace kestrelink::wavelet
