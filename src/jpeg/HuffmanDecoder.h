#pragma once
// Huffman decoding: tables with a 11-bit lookahead (and, for AC tables, a
// second lookahead that decodes a short code together with its magnitude
// bits and run), and the bit reader over the input stream. The reader stops
// at a marker and feeds zero bits from there, so that the marker stays in the
// stream for the marker loop; running off the end of the stream is noted.
#include <cstdint>

#include "jpeg/BitStreamInput.h"

namespace kestrelink::jpeg {

class CJPEGDecoderHuffmanTable {
 public:
  static constexpr int kLookBits = 11;
  // False if the counts name more than 256 values or overrun the code space.
  bool Init(const uint8_t bits[16], const uint8_t* values, int count);
  bool m_defined = false;
  uint16_t m_fast[1 << kLookBits] = {};   // (length << 8) | symbol; 0: longer code
  int32_t m_fastAc[1 << kLookBits] = {};  // value << 16 | run << 8 | bits used; 0: none
  int32_t m_maxCode[18] = {};             // largest code of each length, -1 if none
  int32_t m_valueOffset[17] = {};         // index of a length's first value minus its first code
  uint8_t m_values[256] = {};
};

class CJPEGDecoderHuffmanState {
 public:
  void Start(CBitStreamInput* in) {
    m_in = in;
    m_acc = 0;
    m_bits = 0;
    m_atMarker = false;
  }
  // Drops the bits left in the buffer (they pad the last byte before a marker).
  void Restart() {
    m_acc = 0;
    m_bits = 0;
    m_atMarker = false;
  }
  void Fill() {
    // Eight bytes at once when none of them is 0xFF (no stuffing, no marker).
    if (!m_atMarker && m_in->Available() >= 8) {
      uint64_t w;
      __builtin_memcpy(&w, m_in->Current(), 8);
      if ((((~w) - 0x0101010101010101ull) & w & 0x8080808080808080ull) == 0) {
        const int bytes = (64 - m_bits) >> 3;
        w = __builtin_bswap64(w) >> (64 - 8 * bytes);
        m_acc |= w << (64 - m_bits - 8 * bytes);
        m_bits += 8 * bytes;
        m_in->Advance(uint32_t(bytes));
        return;
      }
    }
    while (m_bits <= 56) {
      uint64_t b = 0;
      if (!m_atMarker) {
        if (m_in->Available() < 2) m_in->Ensure(2);
        const uint32_t avail = m_in->Available();
        const uint8_t* p = m_in->Current();
        if (avail == 0) {
          m_atMarker = true;
          m_ranOut = true;
        } else if (p[0] != 0xFF) {
          b = p[0];
          m_in->Advance(1);
        } else if (avail >= 2 && p[1] == 0) {
          b = 0xFF;
          m_in->Advance(2);
        } else if (avail >= 2 && p[1] == 0xFF) {
          m_in->Advance(1);  // a fill byte before a marker
          continue;
        } else {
          m_atMarker = true;
          if (avail < 2) m_ranOut = true;
        }
      }
      m_acc |= b << (56 - m_bits);
      m_bits += 8;
    }
  }
  uint32_t Peek(int n) const { return uint32_t(m_acc >> (64 - n)); }
  void Skip(int n) {
    m_acc <<= n;
    m_bits -= n;
  }
  // `n` bits (0 .. 16) as an unsigned value.
  uint32_t Bits(int n) {
    if (n == 0) return 0;
    if (m_bits < n) Fill();
    const uint32_t v = Peek(n);
    Skip(n);
    return v;
  }
  // The signed value of `n` magnitude bits.
  static int32_t Extend(uint32_t v, int n) {
    return n == 0 ? 0 : (v < (1u << (n - 1)) ? int32_t(v) - int32_t((1u << n) - 1) : int32_t(v));
  }
  int Decode(const CJPEGDecoderHuffmanTable& t) {
    if (m_bits < 16) Fill();
    const uint16_t e = t.m_fast[Peek(CJPEGDecoderHuffmanTable::kLookBits)];
    if (e) {
      Skip(e >> 8);
      return e & 0xFF;
    }
    const uint32_t code16 = Peek(16);
    for (int len = CJPEGDecoderHuffmanTable::kLookBits + 1; len <= 16; ++len) {
      const int32_t code = int32_t(code16 >> (16 - len));
      if (code <= t.m_maxCode[len]) {
        Skip(len);
        return t.m_values[(t.m_valueOffset[len] + code) & 0xFF];
      }
    }
    Skip(16);  // no such code: a damaged stream; decoding goes on with zeros
    m_badCode = true;
    return 0;
  }

  CBitStreamInput* m_in = nullptr;
  uint64_t m_acc = 0;
  int m_bits = 0;
  bool m_atMarker = false;
  bool m_ranOut = false;
  bool m_badCode = false;
};

}  // namespace kestrelink::jpeg
