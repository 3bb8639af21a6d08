#pragma once
// Huffman coding of a buffer without the length prefix of CIppImageCompress:
// the packed code-length table, then the code bits. The wavelet coders use
// it for their quantised planes.
#include <cstdint>

class CHuffmanEntropy {
 public:
  // Codes srcLen bytes into dst, which must hold 2 * srcLen bytes; answers
  // the bytes written (2 * srcLen after a failure, which is printed).
  virtual uint32_t EncodeBuffer(const void* src, uint32_t srcLen, void* dst);
  // Decodes srcLen coded bytes into at most dstLen bytes of dst. Answers
  // true; a failure is printed only.
  virtual bool DecodeBuffer(uint32_t srcLen, const void* src, uint32_t dstLen, void* dst);
};
