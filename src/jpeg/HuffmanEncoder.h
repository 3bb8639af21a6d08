#pragma once
// Huffman coding of the encoder: code tables from the 16 length counts and
// the values of a DHT segment, the optimal table of a symbol count (the
// standard's Annex K.2 procedure), and a bit writer with a 64-bit buffer that
// stuffs a zero after each 0xFF byte four bytes at a time.
#include <cstdint>

#include "jpeg/BitStreamOutput.h"

namespace kestrelink::jpeg {

class CJPEGEncoderHuffmanTable {
 public:
  // Builds the codes; false if the counts overrun the code space or name
  // more than 256 values.
  bool Init(const uint8_t bits[16], const uint8_t* values, int count);
  uint8_t m_bits[16] = {};
  uint8_t m_values[256] = {};
  int m_count = 0;
  uint32_t m_code[256] = {};
  uint8_t m_length[256] = {};  // 0: the symbol has no code
};

// Code lengths limited to 16 bits for the counts of symbols 0 .. 255, in the
// DHT form (16 counts, values in order of length). Symbols with a count of 0
// get no code; no code is all ones.
void BuildOptimalHuffman(const uint32_t freq[256], uint8_t bits[16], uint8_t values[256], int& count);

// Bits waiting in the low `m_count` bits of `m_acc`; bytes go straight into
// the output's buffer, which the coder reserves before each block.
class CJPEGEncoderHuffmanState {
 public:
  void Reset() {
    m_acc = 0;
    m_count = 0;
  }
  // Appends the low `len` bits of `code` (len <= 32; `m_out` must have room).
  void Put(uint32_t code, uint32_t len) {
    m_acc = (m_acc << len) | code;
    m_count += len;
    if (m_count >= 32) {
      m_count -= 32;
      Emit32(uint32_t(m_acc >> m_count));
    }
  }
  // Pads the last byte with one bits and writes it.
  void PadToByte();
  // The bits not yet written: `PendingCount()` of them, in the low bits of
  // `PendingBits()`.
  uint32_t PendingCount() const { return m_count; }
  uint64_t PendingBits() const { return m_acc & ((uint64_t(1) << m_count) - 1); }

  uint8_t* m_out = nullptr;

 private:
  void Emit32(uint32_t w) {
    const uint32_t inverted = ~w;
    if (((inverted - 0x01010101u) & w & 0x80808080u) == 0) {  // no byte is 0xFF
      w = __builtin_bswap32(w);
      __builtin_memcpy(m_out, &w, 4);
      m_out += 4;
      return;
    }
    for (int s = 24; s >= 0; s -= 8) {
      const uint8_t b = uint8_t(w >> s);
      *m_out++ = b;
      if (b == 0xFF) *m_out++ = 0;
    }
  }
  uint64_t m_acc = 0;
  uint32_t m_count = 0;
};

// Number of magnitude bits of a coefficient difference (0 for 0).
inline uint32_t MagnitudeBits(int32_t v) {
  const uint32_t a = uint32_t(v < 0 ? -v : v);
  return a ? 32 - __builtin_clz(a) : 0;
}

// Bits that follow a magnitude category: the value, or for a negative one
// the value minus 1, in the low `n` bits.
inline uint32_t MagnitudeCode(int32_t v, uint32_t n) { return uint32_t(v < 0 ? v - 1 : v) & ((1u << n) - 1); }

// Bitmask of the nonzero coefficients of a block in zigzag order.
uint64_t NonzeroMask(const int16_t zigzag[64]);

// Codes one block of a sequential scan: the DC difference from `lastDc`,
// then runs and levels, EOB unless the last coefficient is nonzero. At most
// 1024 bytes go out.
void EncodeBlock(CJPEGEncoderHuffmanState& state, const int16_t zigzag[64], int32_t& lastDc,
                 const CJPEGEncoderHuffmanTable& dc, const CJPEGEncoderHuffmanTable& ac);

// Counts the symbols the same block would code, for an optimised table.
void CountBlock(const int16_t zigzag[64], int32_t& lastDc, uint32_t dcFreq[256], uint32_t acFreq[256]);

}  // namespace kestrelink::jpeg
