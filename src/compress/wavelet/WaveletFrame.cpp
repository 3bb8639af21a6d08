// Reading and writing the wavelet frame's length fields and block records.
#include "compress/wavelet/WaveletFrame.h"

#include <cstring>

namespace kestrelink::wavelet {

uint32_t ReadFrameTotal(const uint8_t* frame) {
  return uint32_t(frame[0]) | uint32_t(frame[1]) << 8 | uint32_t(frame[2]) << 16 | uint32_t(frame[3]) << 24;
}

void WriteFrameTotal(uint8_t* frame, uint32_t total) {
  for (int i = 0; i < 4; ++i) frame[i] = uint8_t(total >> (8 * i));
}

uint32_t FrameBound(const uint8_t* frame, uint32_t srcBytes) {
  if (!frame || srcBytes < kFrameHeaderBytes) return 0;
  const uint32_t total = ReadFrameTotal(frame);
  if (total < kFrameHeaderBytes) return 0;
  return total < srcBytes ? total : srcBytes;
}

bool FindBlocks(const uint8_t* frame, uint32_t bound, uint32_t& offset, std::span<BlockSpan> blocks) {
  for (BlockSpan& block : blocks) {
    if (uint64_t(offset) + kBlockHeaderBytes > bound) return false;
    const uint32_t size = uint32_t(frame[offset]) | uint32_t(frame[offset + 1]) << 8;
    offset += kBlockHeaderBytes;
    if (uint64_t(offset) + size > bound) return false;
    block.data = frame + offset;
    block.size = size;
    offset += size;
  }
  return true;
}

void PutBlock(uint8_t* frame, uint32_t& offset, const uint8_t* data, uint16_t size) {
  frame[offset] = uint8_t(size);
  frame[offset + 1] = uint8_t(size >> 8);
  if (size) std::memcpy(frame + offset + kBlockHeaderBytes, data, size);
  offset += kBlockHeaderBytes + size;
}

}  // namespace kestrelink::wavelet
