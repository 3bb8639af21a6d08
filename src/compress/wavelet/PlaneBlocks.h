#pragma once
// The per-plane flow that the block coders share: every block coded in
// parallel into its own bytes and laid out in grid order behind its length;
// and back, each block decoded in parallel from its span of the frame. A
// coder brings a factory of per-thread state, so scratch is made once a
// thread, not once a block.
#include <omp.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "compress/wavelet/WaveletBlocks.h"
#include "compress/wavelet/WaveletFrame.h"
#include "platform/OpenMP.h"

namespace kestrelink::wavelet {

// The arithmetic encoder's writer reports every byte it stores at or past
// the nominal buffer size; the fast writers report afterwards through this.
void ReportOverCapacity(uint32_t produced, uint32_t nominal);

// The most bytes a frame can take when a block's data take at most `room`.
uint32_t MaxBlockFrameBytes(int planeCount, WaveletPlane** planes, uint32_t room);

// "*********Encode length is %d**************" to the debug output.
void ReportEncodeLength(uint32_t total);

// Each block's coded bytes between the parallel coding and the frame, and
// one coding buffer a thread; all kept from frame to frame, so coding a
// frame allocates nothing once the first has been coded.
struct BlockStore {
  std::vector<std::vector<uint8_t>> blocks;
  std::vector<std::vector<uint8_t>> threadBuffers;
};

// makeCoder() gives a callable uint32_t(WaveletBlock&, uint8_t* buffer) that
// codes one block into a buffer of `room` bytes and answers the length.
template <class MakeCoder>
void CodePlaneBlocks(WaveletPlane& plane, uint32_t room, BlockStore& store, MakeCoder makeCoder) {
  const int64_t count = plane.blockCount;
  const int team = platform::TeamSize();
  store.blocks.resize(size_t(count));
  store.threadBuffers.resize(size_t(team));
  for (std::vector<uint8_t>& buffer : store.threadBuffers)
    if (buffer.size() < room) buffer.resize(room);
#pragma omp parallel num_threads(team)
  {
    uint8_t* scratch = store.threadBuffers[size_t(omp_get_thread_num())].data();
    auto code = makeCoder();
#pragma omp for schedule(static)
    for (int64_t b = 0; b < count; ++b) {
      const uint32_t length = code(*plane.blocks[size_t(b)], scratch);
      store.blocks[size_t(b)].assign(scratch, scratch + (length < room ? length : room));
    }
  }
}

// Appends the blocks' data at `total`, each behind its 16-bit length.
inline void LayOutBlocks(uint8_t* frame, uint32_t& total, const BlockStore& store) {
  for (const std::vector<uint8_t>& data : store.blocks) PutBlock(frame, total, data.data(), uint16_t(data.size()));
}

// makeDecoder() gives a callable void(WaveletBlock&, const BlockSpan&) that
// fills one block, already zeroed, from its data. A block of fewer than 3
// bytes holds no more than an empty block's first field, and would leave the
// arithmetic decoder's interval empty: it stays zero. False when the frame
// ends before the plane's last block.
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
      if (spans[size_t(b)].size >= 3) decode(block, spans[size_t(b)]);
    }
  }
  return true;
}

// A whole frame: each plane's blocks coded by makeCoder(plane)'s coders
// (see CodePlaneBlocks) and laid out behind the frame's total.
template <class MakeCoder>
void EncodeBlockFrame(int planeCount, WaveletPlane** planes, void* dst, uint32_t room, BlockStore& store,
                      MakeCoder makeCoder) {
  auto* out = static_cast<uint8_t*>(dst);
  uint32_t total = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p) {
    CodePlaneBlocks(*planes[p], room, store, [&] { return makeCoder(p); });
    LayOutBlocks(out, total, store);
  }
  ReportEncodeLength(total);
  WriteFrameTotal(out, total);
}

// A whole frame of at most srcBytes bytes back into the planes' blocks
// through makeDecoder(plane)'s decoders (see DecodePlaneBlocks). False when
// the frame is too short for its blocks.
template <class MakeDecoder>
bool DecodeBlockFrame(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes,
                      std::vector<BlockSpan>& spans, MakeDecoder makeDecoder) {
  const auto* frame = static_cast<const uint8_t*>(src);
  const uint32_t bound = FrameBound(frame, srcBytes);
  if (bound == 0) return false;
  uint32_t offset = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p)
    if (!DecodePlaneBlocks(frame, bound, offset, *planes[p], spans, [&] { return makeDecoder(p); })) return false;
  return true;
}

}  // namespace kestrelink::wavelet
