#pragma once
// The bit buffers under the wavelet coders' arithmetic coder. Bits fill each
// byte from its most significant end; a partly filled last byte is padded
// with zero bits.
#include <cstdint>
#include <cstring>

namespace kestrelink::wavelet {

// Writes into a buffer of `room` bytes. `capacity` is the nominal size: a
// byte stored at or past it is reported ("OutputBit %d ******* %d\r\n") and
// kept all the same while the room lasts; past the room it is dropped.
class BitWriter {
 public:
  BitWriter(uint8_t* buffer, uint32_t capacity, uint32_t room)
      : m_buffer(buffer), m_capacity(capacity), m_room(room) {}

  void PutBit(uint32_t bit) {
    m_acc = (m_acc << 1) | (bit & 1);
    if (++m_count == 8) StoreByte();
  }
  // The low n bits of value (n <= 16), most significant first.
  void PutBits(uint32_t value, uint32_t n) {
    m_acc = (m_acc << n) | (value & ((1u << n) - 1));
    m_count += n;
    while (m_count >= 8) StoreByte();
  }
  // Stores a partly filled byte.
  void Flush() {
    if (m_count) PutBits(0, 8 - m_count);
  }
  // Bytes stored, at most the room.
  uint32_t Position() const { return m_position < m_room ? m_position : m_room; }
  const uint8_t* Data() const { return m_buffer; }

 private:
  void StoreByte();

  uint8_t* m_buffer;
  uint32_t m_capacity, m_room;
  uint32_t m_position = 0;
  uint64_t m_acc = 0;  // bits not yet stored, in the low m_count bits
  uint32_t m_count = 0;
};

// Reads a buffer of `size` bytes it does not own; bytes past the end read
// as 0. The end flag goes up for the one read that fetches the last byte, and
// again on each fetch past the end.
class BitReader {
 public:
  BitReader(const uint8_t* buffer, uint32_t size) : m_buffer(buffer), m_size(size) {}

  uint32_t ReadBit() {
    // A fetch happens at each byte boundary; it raises the flag when it takes
    // the last byte or one past the end.
    const uint64_t byte = m_bit >> 3;
    m_end = (m_bit & 7) == 0 && byte + 1 >= m_size;
    const uint32_t bit = byte < m_size ? (m_buffer[byte] >> (7 - (m_bit & 7))) & 1 : 0;
    ++m_bit;
    return bit;
  }
  // n reads (1 <= n <= 16) that raise no flag, as one value, first read on
  // top.
  uint32_t ReadBits(uint32_t n) {
    const uint64_t byte = m_bit >> 3;
    uint32_t v;
    if (byte + 8 <= m_size) {
      uint64_t word;
      std::memcpy(&word, m_buffer + byte, 8);
      v = uint32_t((__builtin_bswap64(word) << (m_bit & 7)) >> (64 - n));
      m_bit += n;
    } else {
      v = 0;
      for (uint32_t i = 0; i < n; ++i) v = (v << 1) | ReadBit();
    }
    m_end = false;
    return v;
  }
  bool EndFlag() const { return m_end; }
  // Reads that can follow before one raises the end flag.
  uint64_t ReadsBeforeEnd() const {
    if (m_size == 0) return 0;
    const uint64_t flagged = uint64_t(m_size - 1) * 8;  // the read that fetches the last byte
    if (m_bit <= flagged) return flagged - m_bit;
    return (8 - (m_bit & 7)) & 7;  // past it, the next byte boundary
  }

 private:
  const uint8_t* m_buffer;
  uint32_t m_size;
  uint64_t m_bit = 0;  // reads so far
  bool m_end = false;
};

}  // namespace kestrelink::wavelet
