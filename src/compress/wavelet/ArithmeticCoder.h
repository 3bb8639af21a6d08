#pragma once
// The binary arithmetic coder of the wavelet coders: 16-bit interval with
// pending (straddle) bits, over the bit buffers. With equal probabilities
// (EncodeBit, EncodeBits) the interval returns to [0, 65535] after every
// symbol and the coder packs the bits as they stand; those calls take that
// road directly and fall back to the interval arithmetic otherwise.
#include <cstdint>

#include "compress/wavelet/BitBuffers.h"

namespace kestrelink::wavelet {

class AdaptiveModel;

class ArithmeticEncoder {
 public:
  ArithmeticEncoder(uint8_t* buffer, uint32_t capacity, uint32_t room) : m_writer(buffer, capacity, room) {}

  void EncodeInterval(uint32_t lowCount, uint32_t highCount, uint32_t total);
  void EncodeBit(uint32_t b) {
    if (Settled()) {
      m_writer.PutBit(b);
      ++m_bitCount;
    } else {
      EncodeInterval(b & 1, (b & 1) + 1, 2);
    }
  }
  // The lowest byte first, each group as one symbol; nothing for n < 1.
  void EncodeBits(uint32_t value, int n);
  void EncodeSymbol(AdaptiveModel& model, uint32_t symbol);
  void FinishEncoder();
  uint32_t EncodedBits() const { return m_bitCount + m_pending + 2; }
  uint32_t Length() const { return m_writer.Position(); }
  const uint8_t* Data() const { return m_writer.Data(); }

 private:
  bool Settled() const { return m_low == 0 && m_high == 65535 && m_pending == 0; }
  void EncodeGroup(uint32_t symbol, uint32_t bits);
  void Emit(uint32_t bit);

  uint32_t m_low = 0, m_high = 65535, m_range = 65536;
  uint32_t m_pending = 0, m_bitCount = 0;
  BitWriter m_writer;
};

class ArithmeticDecoder {
 public:
  // Reads the first 16 bits; stops early when the end flag rises (a stream
  // of fewer than 3 bytes), leaving the interval at [0, 0].
  ArithmeticDecoder(const uint8_t* buffer, uint32_t size);

  uint32_t DecodeBit() {
    if (Settled()) {
      // [0, 65535] halves and renormalises in one step: the code's top bit.
      const uint32_t v = uint32_t(m_code >> 15) & 1;
      m_code = ((m_code << 1) & 0xFFFF) | m_reader.ReadBit();
      if (!m_reader.EndFlag()) ++m_bitCount;
      return v;
    }
    return DecodeBitNarrowed();
  }
  uint32_t DecodeBits(int n);
  uint32_t DecodeSymbol(AdaptiveModel& model, bool update);
  uint32_t DecodedBits() const { return m_bitCount; }

 private:
  bool Settled() const { return m_low == 0 && m_high == 65535; }
  uint32_t DecodeBitNarrowed();
  uint32_t DecodeGroup(uint32_t bits);
  // Narrows to [lowCount, highCount) of total and renormalises.
  void Update(uint32_t lowCount, uint32_t highCount, uint32_t total);
  // Clamps a target from a damaged stream into the alphabet.
  static uint32_t Below(uint64_t v, uint32_t total) { return v < total ? uint32_t(v) : total - 1; }

  uint64_t m_low = 0, m_high = 0, m_range = 0, m_code = 0;
  uint32_t m_bitCount = 0;
  BitReader m_reader;
};

}  // namespace kestrelink::wavelet
