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
uint32_t NominalBlockBytes() { return 2 * uint32_t(kBlockSamples) + 2; }

}  // namespace

bool CSpeckCompressor::SetInteger(bool isInteger) {
  if (!isInteger) return false;
  m_isInteger = true;
  return true;
}

uint32_t CSpeckCompressor::MaxFrameBytes(int planeCount, WaveletPlane** planes) {
  return MaxBlockFrameBytes(planeCount, planes, Speck1BlockBound());
}

bool CSpeckCompressor::Encode(int planeCount, WaveletPlane** planes, void* dst) {
  const int levels = m_owner->m_levels;
  const uint32_t nominal = NominalBlockBytes(), room = Speck1BlockBound();
  EncodeBlockFrame(planeCount, planes, dst, room, m_blockData, [&](int) {
    return [&, scratch = std::make_shared<Speck1Scratch>()](WaveletBlock& block, uint8_t* buffer) {
      ArithmeticEncoder encoder(buffer, nominal, room);
      EncodeSpeck1Block(encoder, levels, block.rows, *scratch);
      encoder.FinishEncoder();
      return encoder.Length();
    };
  });
  return true;
}

bool CSpeckCompressor::Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) {
  const int levels = m_owner->m_levels;
  return DecodeBlockFrame(src, srcBytes, planeCount, planes, m_spans, [&](int) {
    return [levels, scratch = std::make_shared<Speck1Scratch>()](WaveletBlock& block, const BlockSpan& span) {
      ArithmeticDecoder decoder(span.data, span.size);
      DecodeSpeck1Block(decoder, levels, block.rows, *scratch);
    };
  });
}
