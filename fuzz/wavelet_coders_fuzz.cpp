// The wavelet codec's other block coders (zerotree, integer and float; list
// set partitioning; quantiser plus Huffman) decoding arbitrary frames.
// Input: one byte of set-up (coder in bits 0-1, levels 1 to 4 in bits 2-3,
// 12-bit pixels in bit 4, decode ratio 100 or 30 in bit 5), one byte of
// width (1 to 96), one of height (1 to 96), then the frame. The decoder
// reads only the frame's bytes and writes only the image.
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "compress/wavelet/WaveletCompression.h"

using namespace kestrelink::wavelet;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 3) return 0;
  static const CoderKind kinds[4] = {CoderKind::Ezw, CoderKind::Ezw, CoderKind::Speck, CoderKind::Simple};
  const int pick = data[0] & 3;
  const int levels = 1 + ((data[0] >> 2) & 3);
  const int bits = (data[0] & 16) ? 12 : 8;
  const int width = 1 + data[1] % 96, height = 1 + data[2] % 96;
  CMonoWaveletCpmpression codec;
  if (!codec.Setup(100, width, height, bits, bits, levels, 1, MakeCoder(kinds[pick]))) return 0;
  if (pick == 1) codec.m_compressor->SetInteger(false);  // the float zerotree coder
  codec.m_decodeRatio = (data[0] & 32) ? 30 : 100;
  const size_t frameBytes = size - 3;
  std::vector<uint8_t> frame(data + 3, data + size);
  std::vector<uint8_t> image(size_t(width) * size_t(height) * (bits == 8 ? 1 : 2));
  codec.DecodeFrame(frame.data(), uint32_t(frameBytes), image.data());
  return 0;
}
