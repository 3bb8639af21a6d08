// Interval arithmetic of the wavelet coders' arithmetic coder. Divisions
// truncate; the decoder's renormalisation stops early when a bit read raises
// the reader's end flag, which keeps it in step with the encoder (the
// interval is only normalised a little later).
#include "compress/wavelet/ArithmeticCoder.h"

#include "compress/wavelet/FrequencyModel.h"

namespace kestrelink::wavelet {

void ArithmeticEncoder::Emit(uint32_t bit) {
  m_writer.PutBit(bit);
  ++m_bitCount;
  for (; m_pending; --m_pending) {
    m_writer.PutBit(bit ^ 1);
    ++m_bitCount;
  }
}

void ArithmeticEncoder::EncodeInterval(uint32_t lowCount, uint32_t highCount, uint32_t total) {
  m_range = m_high - m_low + 1;
  m_high = m_low + uint32_t(uint64_t(m_range) * highCount / total) - 1;
  m_low = m_low + uint32_t(uint64_t(m_range) * lowCount / total);
  for (;;) {
    if (m_high < 32768) {
      Emit(0);
    } else if (m_low >= 32768) {
      Emit(1);
      m_low -= 32768;
      m_high -= 32768;
    } else if (m_low >= 16384 && m_high < 49152) {
      ++m_pending;
      m_low -= 16384;
      m_high -= 16384;
    } else {
      break;
    }
    m_low = 2 * m_low;
    m_high = 2 * m_high + 1;
  }
}

void ArithmeticEncoder::EncodeGroup(uint32_t symbol, uint32_t bits) {
  symbol &= (1u << bits) - 1;
  if (Settled()) {
    m_writer.PutBits(symbol, bits);
    m_bitCount += bits;
  } else {
    EncodeInterval(symbol, symbol + 1, 1u << bits);
  }
}

void ArithmeticEncoder::EncodeBits(uint32_t value, int n) {
  for (; n > 8; n -= 8, value >>= 8) EncodeGroup(value, 8);
  if (n >= 1) EncodeGroup(value, uint32_t(n));
}

void ArithmeticEncoder::EncodeSymbol(AdaptiveModel& model, uint32_t symbol) {
  EncodeInterval(model.Cumulative(int(symbol) - 1), model.Cumulative(int(symbol)), model.Total());
  model.Add(symbol);
}

void ArithmeticEncoder::FinishEncoder() {
  ++m_pending;
  Emit(m_low < 16384 ? 0 : 1);
  m_writer.Flush();
}

ArithmeticDecoder::ArithmeticDecoder(const uint8_t* buffer, uint32_t size) : m_reader(buffer, size) {
  for (int i = 0; i < 16; ++i) {
    m_code = 2 * m_code + m_reader.ReadBit();
    if (m_reader.EndFlag()) return;
  }
  m_low = 0;
  m_high = 65535;
  m_range = 65536;
  m_bitCount = 16;
}

void ArithmeticDecoder::Update(uint32_t lowCount, uint32_t highCount, uint32_t total) {
  uint64_t highOffset = m_range * highCount / total;
  const uint64_t lowOffset = m_range * lowCount / total;
  // A damaged stream can narrow the interval to nothing; keep one value.
  if (highOffset <= lowOffset) highOffset = lowOffset + 1;
  m_high = m_low + highOffset - 1;
  m_low = m_low + lowOffset;
  for (;;) {
    if (m_high >= 32768) {
      if (m_low >= 32768) {
        m_low -= 32768;
        m_high -= 32768;
        m_code -= 32768;
      } else if (m_low >= 16384 && m_high < 49152) {
        m_low -= 16384;
        m_high -= 16384;
        m_code -= 16384;
      } else {
        break;
      }
    }
    m_low = 2 * m_low;
    m_high = 2 * m_high + 1;
    m_code = 2 * m_code + m_reader.ReadBit();
    if (m_reader.EndFlag()) break;
    ++m_bitCount;
  }
}

uint32_t ArithmeticDecoder::DecodeBitNarrowed() {
  m_range = m_high - m_low + 1;
  const uint32_t v = Below((2 * (m_code - m_low) + 1) / m_range, 2);
  Update(v, v + 1, 2);
  return v;
}

uint32_t ArithmeticDecoder::DecodeGroup(uint32_t bits) {
  const uint32_t t = 1u << bits;
  if (Settled() && m_reader.ReadsBeforeEnd() >= bits) {
    const uint32_t v = uint32_t(m_code >> (16 - bits));
    m_code = ((m_code << bits) & 0xFFFF) | m_reader.ReadBits(bits);
    m_bitCount += bits;
    return v;
  }
  m_range = m_high - m_low + 1;
  const uint32_t v = Below(((m_code - m_low + 1) * t - 1) / m_range, t);
  Update(v, v + 1, t);
  return v;
}

uint32_t ArithmeticDecoder::DecodeBits(int n) {
  uint32_t value = 0;
  int shift = 0;
  for (; n > 8; n -= 8, shift += 8) value |= DecodeGroup(8) << shift;
  if (n >= 1) value |= DecodeGroup(uint32_t(n)) << shift;
  return value;
}

uint32_t ArithmeticDecoder::DecodeSymbol(AdaptiveModel& model, bool update) {
  m_range = m_high - m_low + 1;
  const uint32_t total = model.Total();
  const uint32_t target = Below(((m_code - m_low + 1) * total - 1) / m_range, total);
  const uint32_t s = model.Find(target);
  Update(model.Cumulative(int(s) - 1), model.Cumulative(int(s)), total);
  if (update) model.Add(s);
  return s;
}

}  // namespace kestrelink::wavelet
