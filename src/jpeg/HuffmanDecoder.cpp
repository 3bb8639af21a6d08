#include "jpeg/HuffmanDecoder.h"

#include <cstring>

namespace kestrelink::jpeg {

bool CJPEGDecoderHuffmanTable::Init(const uint8_t bits[16], const uint8_t* values, int count) {
  m_defined = false;
  int total = 0;
  for (int i = 0; i < 16; ++i) total += bits[i];
  if (total > 256 || total > count) return false;
  std::memset(m_fast, 0, sizeof m_fast);
  std::memset(m_fastAc, 0, sizeof m_fastAc);
  std::memset(m_values, 0, sizeof m_values);
  std::memcpy(m_values, values, size_t(total));
  uint32_t code = 0;
  int k = 0;
  for (int len = 1; len <= 16; ++len) {
    m_valueOffset[len] = k - int32_t(code);
    const int n = bits[len - 1];
    for (int i = 0; i < n; ++i, ++k, ++code) {
      if (code >= (1u << len)) return false;  // more codes than the length allows
      if (len <= kLookBits) {
        const uint32_t first = code << (kLookBits - len), span = 1u << (kLookBits - len);
        for (uint32_t j = 0; j < span; ++j) {
          m_fast[first + j] = uint16_t((len << 8) | values[k]);
          // A short code with its magnitude bits inside the lookahead.
          const int run = values[k] >> 4, size = values[k] & 15;
          if (size && len + size <= kLookBits) {
            const uint32_t magnitude = ((first + j) >> (kLookBits - len - size)) & ((1u << size) - 1);
            const int32_t v = CJPEGDecoderHuffmanState::Extend(magnitude, size);
            m_fastAc[first + j] = v * 65536 + (run << 8) + (len + size);
          }
        }
      }
    }
    m_maxCode[len] = n ? int32_t(code) - 1 : -1;
    code <<= 1;
  }
  m_maxCode[17] = INT32_MAX;
  m_defined = true;
  return true;
}

}  // namespace kestrelink::jpeg
