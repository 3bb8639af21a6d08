// Frames of the list set-partition coder: blocks coded in parallel, each
// into its own buffer, then laid out in grid order behind their lengths.
#include "compress/wavelet/ListPartitionCompressor.h"

#include <memory>

#include "compress/wavelet/ListPartitionCoder.h"
#include "compress/wavelet/PlaneBlocks.h"
#include "compress/wavelet/WaveletCompression.h"

using namespace kestrelink::wavelet;

namespace {

// The nominal buffer of a block; past it the writer reports each byte.
uint32_t NominalBlockBytes(const WaveletPlane& plane) { return 2 * uint32_t(plane.blockSamples) + 2; }

}  // namespace

bool CSpeckCompressor::SetInteger(bool isInteger) {
  if (!isInteger) return false;
  m_isInteger = true;
  return true;
}

uint32_t CSpeckCompressor::MaxFrameBytes(int planeCount, WaveletPlane** planes) {
  uint64_t total = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p)
    total += uint64_t(planes[p]->blockCount) * (kBlockHeaderBytes + Speck1BlockBound());
  return total > UINT32_MAX ? UINT32_MAX : uint32_t(total);
}

bool CSpeckCompressor::Encode(int planeCount, WaveletPlane** planes, void* dst) {
  auto* out = static_cast<uint8_t*>(dst);
  const int levels = m_owner->m_levels;
  uint32_t total = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p) {
    WaveletPlane& plane = *planes[p];
    const uint32_t nominal = NominalBlockBytes(plane), room = Speck1BlockBound();
    CodePlaneBlocks(plane, room, m_blockData, [&] {
      return [&, scratch = std::make_shared<Speck1Scratch>()](WaveletBlock& block, uint8_t* buffer) {
        ArithmeticEncoder encoder(buffer, nominal, room);
        EncodeSpeck1Block(encoder, levels, block.rows, *scratch);
        encoder.FinishEncoder();
        return encoder.Length();
      };
    });
    LayOutBlocks(out, total, m_blockData);
  }
  ReportEncodeLength(total);
  WriteFrameTotal(out, total);
  return true;
}

bool CSpeckCompressor::Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) {
  const auto* frame = static_cast<const uint8_t*>(src);
  const uint32_t bound = FrameBound(frame, srcBytes);
  if (bound == 0) return false;
  const int levels = m_owner->m_levels;
  uint32_t offset = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p) {
    const bool ok = DecodePlaneBlocks(frame, bound, offset, *planes[p], m_spans, [&] {
      return [&, scratch = std::make_shared<Speck1Scratch>()](WaveletBlock& block, const BlockSpan& span) {
        // Fewer than 3 bytes hold no more than an empty block's top field and
        // would leave the decoder's interval empty: the block is zero.
        if (span.size < 3) return;
        ArithmeticDecoder decoder(span.data, span.size);
        DecodeSpeck1Block(decoder, levels, block.rows, *scratch);
      };
    });
    if (!ok) return false;
  }
  return true;
}
