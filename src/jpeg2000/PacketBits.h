#pragma once
// The bit writer of packet headers, standing on a ByteStream: bits go most
// significant first, 8 to a byte, and 7 to the byte after a byte of 255 (its
// top bit stays 0). Finish pads to a byte and adds a zero byte after a
// final 255.
#include <cstdint>

#include "jpeg2000/ByteStream.h"

namespace kestrelink::j2k {

class PacketBits {
 public:
  explicit PacketBits(ByteStream& out) : m_out(out) {}

  void Put(uint32_t bit) {
    m_byte = (m_byte << 1) | (bit & 1);
    if (--m_free == 0) {
      m_out.PutByte(uint8_t(m_byte));
      m_free = m_byte == 0xFF ? 7 : 8;
      m_room = m_free;
      m_byte = 0;
    }
  }
  // The low `count` bits of value, the highest first.
  void PutBits(uint32_t value, uint32_t count) {
    while (count > 0) Put((value >> --count) & 1);
  }
  void Finish() {
    if (m_free != m_room) m_out.PutByte(uint8_t(m_byte << m_free));
    if (m_out.LastByte() == 0xFF) m_out.PutByte(0);
    m_byte = 0;
    m_free = m_room = 8;
  }

 private:
  ByteStream& m_out;
  uint32_t m_byte = 0;
  int m_free = 8;  // bits still open in the current byte
  int m_room = 8;  // bits the current byte holds in all (7 after a 255)
};

}  // namespace kestrelink::j2k
