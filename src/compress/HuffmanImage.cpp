// The Huffman method of CIppImageCompress: the shared workers on one frame.
#include <kestrelink/CIppImageCompress.h>

#include "compress/HuffmanWorkers.h"

int32_t CIppImageCompress::EncodeHuffmanImage(void* src, void* dst, uint32_t& length) {
  return kestrelink::compress::EncodeHuffman(static_cast<const uint8_t*>(src), m_size, static_cast<uint8_t*>(dst),
                                             length);
}

int32_t CIppImageCompress::DecodeHuffmanImage(void* src, int32_t srcLen, void* dst) {
  return kestrelink::compress::DecodeHuffman(static_cast<const uint8_t*>(src), srcLen, static_cast<uint8_t*>(dst),
                                             m_size);
}
