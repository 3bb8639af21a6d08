#pragma once
// Reads bits of an unescaped payload, most significant first, with the
// Exp-Golomb codes of H.264. Reading past the end gives zeros and sets Overrun.
#include <cstddef>
#include <cstdint>

namespace UMC {

class BitReader {
 public:
  BitReader(const uint8_t* data, size_t size) : m_data(data), m_bits(size * 8) {}

  uint32_t Bit() {
    if (m_position >= m_bits) {
      m_overrun = true;
      return 0;
    }
    const uint32_t bit = (m_data[m_position >> 3] >> (7 - (m_position & 7))) & 1;
    ++m_position;
    return bit;
  }
  uint32_t Bits(int count) {
    uint32_t value = 0;
    for (int i = 0; i < count; ++i) value = (value << 1) | Bit();
    return value;
  }
  uint32_t Ue() {
    int zeros = 0;
    while (Bit() == 0) {
      if (++zeros > 31 || m_overrun) {
        m_overrun = true;
        return 0;
      }
    }
    return zeros == 0 ? 0 : ((1u << zeros) - 1) + Bits(zeros);
  }
  int32_t Se() {
    const uint32_t code = Ue();
    return code & 1 ? int32_t((code + 1) / 2) : -int32_t(code / 2);
  }
  bool Overrun() const { return m_overrun; }
  size_t Position() const { return m_position; }

 private:
  const uint8_t* m_data;
  size_t m_bits;
  size_t m_position = 0;
  bool m_overrun = false;
};

}  // namespace UMC
