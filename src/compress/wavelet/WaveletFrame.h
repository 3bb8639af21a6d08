#pragma once
// The wavelet frame, shared by the block coders:
//
//   offset  size  field
//   0       4     total length of the frame in bytes, this field included
//   4       2     length n0 of block 0's data
//   6       n0    block 0's data
//   ...           the same pair for each following block, then for each
//                 following plane
//
// All little-endian. Blocks follow in grid order: left to right within a
// grid row, grid rows top to bottom. Nothing else is recorded: size, depth,
// levels and ratios come from the set-up on both sides.
#include <cstdint>
#include <span>

namespace kestrelink::wavelet {

inline constexpr uint32_t kFrameHeaderBytes = 4;
inline constexpr uint32_t kBlockHeaderBytes = 2;

struct BlockSpan {
  const uint8_t* data = nullptr;
  uint32_t size = 0;
};

uint32_t ReadFrameTotal(const uint8_t* frame);
void WriteFrameTotal(uint8_t* frame, uint32_t total);

// The bytes a frame may be read to: srcBytes, or less when its own total
// says so. 0 when not even the total fits.
uint32_t FrameBound(const uint8_t* frame, uint32_t srcBytes);

// Finds blocks.size() blocks from `offset` on without reading at or past
// `bound`; advances offset. False when the frame ends before the last one.
bool FindBlocks(const uint8_t* frame, uint32_t bound, uint32_t& offset, std::span<BlockSpan> blocks);

// Writes one block's length and data at `offset` and advances it.
void PutBlock(uint8_t* frame, uint32_t& offset, const uint8_t* data, uint16_t size);

}  // namespace kestrelink::wavelet
