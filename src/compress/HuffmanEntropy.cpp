// CHuffmanEntropy: the Huffman workers of the lossless coder on a bare
// buffer; the coder state lives for one call.
#include "compress/HuffmanEntropy.h"

#include "compress/HuffmanWorkers.h"

uint32_t CHuffmanEntropy::EncodeBuffer(const void* src, uint32_t srcLen, void* dst) {
  uint32_t length = 2 * srcLen;
  kestrelink::compress::EncodeHuffman(static_cast<const uint8_t*>(src), srcLen, static_cast<uint8_t*>(dst), length);
  return length;
}

bool CHuffmanEntropy::DecodeBuffer(uint32_t srcLen, const void* src, uint32_t dstLen, void* dst) {
  kestrelink::compress::DecodeHuffman(static_cast<const uint8_t*>(src), int32_t(srcLen), static_cast<uint8_t*>(dst),
                                      dstLen);
  return true;
}
