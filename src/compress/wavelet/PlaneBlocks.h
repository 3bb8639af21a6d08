#pragma once
// The per-plane flow that the block coders share: every block coded in
// parallel into its own bytes and laid out in grid order behind its length;
// and back, each block decoded in parallel from its span of the frame. A
// coder brings a factory of per-thread state, so scratch is made once a
// thread, not once a block.
#include <cstdint>
#include <cstring>
#include <vector>

#include "compress/wavelet/WaveletBlocks.h"
#include "compress/wavelet/WaveletFrame.h"
#include "platform/OpenMP.h"

namespace kestrelink::wavelet {

// makeCoder() gives a callable uint32_t(WaveletBlock&, uint8_t* buffer) that
// codes one block into a buffer of `room` bytes and answers the length.
template <class MakeCoder>
void CodePlaneBlocks(WaveletPlane& plane, uint32_t room, std::vector<std::vector<uint8_t>>& store,
                     MakeCoder makeCoder) {
  const int64_t count = plane.blockCount;
  store.resize(size_t(count));
#pragma omp parallel num_threads(platform::TeamSize())
  {
    std::vector<uint8_t> scratch(room);
    auto code = makeCoder();
#pragma omp for schedule(static)
    for (int64_t b = 0; b < count; ++b) {
      const uint32_t length = code(*plane.blocks[size_t(b)], scratch.data());
      store[size_t(b)].assign(scratch.data(), scratch.data() + (length < room ? length : room));
    }
  }
}

// Appends the blocks' data at `total`, each behind its 16-bit length.
inline void LayOutBlocks(uint8_t* frame, uint32_t& total, const std::vector<std::vector<uint8_t>>& store) {
  for (const std::vector<uint8_t>& data : store) PutBlock(frame, total, data.data(), uint16_t(data.size()));
}

// makeDecoder() gives a callable void(WaveletBlock&, const BlockSpan&) that
// fills one block, already zeroed, from its data. False when the frame ends
// before the plane's last block.
template <class MakeDecoder>
bool DecodePlaneBlocks(const uint8_t* frame, uint32_t bound, uint32_t& offset, WaveletPlane& plane,
                       std::vector<BlockSpan>& spans, MakeDecoder makeDecoder) {
  spans.resize(size_t(plane.blockCount));
  if (!FindBlocks(frame, bound, offset, spans)) return false;
  const int64_t count = plane.blockCount;
#pragma omp parallel num_threads(platform::TeamSize())
  {
    auto decode = makeDecoder();
#pragma omp for schedule(static)
    for (int64_t b = 0; b < count; ++b) {
      WaveletBlock& block = *plane.blocks[size_t(b)];
      std::memset(block.samples, 0, sizeof block.samples);
      decode(block, spans[size_t(b)]);
    }
  }
  return true;
}

// The arithmetic encoder's writer reports every byte it stores at or past
// the nominal buffer size; the fast writers report afterwards through this.
void ReportOverCapacity(uint32_t produced, uint32_t nominal);

// "*********Encode length is %d**************" to the debug output.
void ReportEncodeLength(uint32_t total);

}  // namespace kestrelink::wavelet
