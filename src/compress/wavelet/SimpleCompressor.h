#pragma once
// Scalar quantiser plus Huffman coding of whole planes. Frame, little-endian:
//
//   offset          size     field
//   0               4        total length in bytes, this field included
//   4               8 each   per plane: 32-bit float maximum, 32-bit float minimum
//   4 + 8 * planes  rest     Huffman stream of the codes (code-length table,
//                            then the code bits), without a length prefix
//
// The codes lie in a raster of the block grid, one byte a code when the
// quantiser has 8 bits or fewer, else a little-endian word.
#include <vector>

#include "compress/HuffmanEntropy.h"
#include "compress/wavelet/Compressor.h"
#include "compress/wavelet/UniformQuantizer.h"

class CSimpleCompressor : public CCompressor {
 public:
  bool Encode(int planeCount, WaveletPlane** planes, void* dst) override;
  bool Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) override;
  // Sets the quantiser up from the owner's quantiser bits and encode ratio.
  bool SetInteger(bool isInteger) override;
  uint32_t MaxFrameBytes(int planeCount, WaveletPlane** planes) override;

 private:
  uint32_t CodeBytes() const { return m_quantizer.Bits() > 8 ? 2 : 1; }
  uint32_t RasterBytes(int planeCount, WaveletPlane** planes) const;

  CUniformQuatizer m_quantizer;
  CHuffmanEntropy m_entropy;
  std::vector<uint8_t> m_codes;
};
