// Frames of the zerotree coder. A block codes until its bits pass a budget
// of one byte a sample; decoding stops at the decode ratio's share of that,
// which gives a coarser block from the same data.
#include "compress/wavelet/EzwCompressor.h"

#include "compress/wavelet/PlaneBlocks.h"
#include "compress/wavelet/WaveletCompression.h"

using namespace kestrelink::wavelet;

namespace {

// The encoder's nominal buffer, and the room it really has: coding stops
// once the bits pass the budget, at most one symbol and the end later.
uint32_t NominalBlockBytes() { return uint32_t(kBlockSamples) + 2; }
uint32_t BlockRoom() { return uint32_t(kBlockSamples) + 64; }

// The models halve their counts past 2^pixelBits.
uint32_t ModelLimit(int pixelBits) {
  return pixelBits < 0 ? 1u : pixelBits > 31 ? 1u << 31 : 1u << pixelBits;
}

}  // namespace

bool CEZWCompressor::SetInteger(bool isInteger) {
  m_isInteger = isInteger;
  m_integerCoder.reset();
  m_floatCoder.reset();
  if (isInteger)
    m_integerCoder = std::make_unique<CIntegerEZWCoder>();
  else
    m_floatCoder = std::make_unique<CFloatEZWCoder>();
  return true;
}

uint32_t CEZWCompressor::MaxFrameBytes(int planeCount, WaveletPlane** planes) {
  return MaxBlockFrameBytes(planeCount, planes, BlockRoom());
}

template <class T>
bool CEZWCompressor::EncodeWith(const CEZWCoder<T>& coder, int planeCount, WaveletPlane** planes, void* dst) {
  const EZWShape shape(kBlockSide, kBlockSide, m_owner->m_levels);
  const uint32_t limit = ModelLimit(m_owner->m_pixelBits);
  const uint32_t nominal = NominalBlockBytes(), room = BlockRoom();
  const uint32_t budget = uint32_t(kBlockSamples) * 100 / 100;
  EncodeBlockFrame(planeCount, planes, dst, room, m_blockData, [&](int) {
    return [&, scratch = std::make_shared<typename CEZWCoder<T>::Scratch>(shape)](WaveletBlock& block,
                                                                                  uint8_t* buffer) {
      ArithmeticEncoder encoder(buffer, nominal, room);
      coder.EncodeBlock(encoder, block.rows, *scratch, budget, limit);
      encoder.FinishEncoder();
      return encoder.Length();
    };
  });
  return true;
}

template <class T>
bool CEZWCompressor::DecodeWith(const CEZWCoder<T>& coder, const void* src, uint32_t srcBytes, int planeCount,
                                WaveletPlane** planes) {
  const EZWShape shape(kBlockSide, kBlockSide, m_owner->m_levels);
  const uint32_t limit = ModelLimit(m_owner->m_pixelBits);
  const int64_t share = int64_t(kBlockSamples) * m_owner->m_decodeRatio / 100;
  const uint32_t budget = share < 0 ? 0 : share > UINT32_MAX ? UINT32_MAX : uint32_t(share);
  return DecodeBlockFrame(src, srcBytes, planeCount, planes, m_spans, [&](int) {
    return [&, scratch = std::make_shared<typename CEZWCoder<T>::Scratch>(shape)](WaveletBlock& block,
                                                                                  const BlockSpan& span) {
      ArithmeticDecoder decoder(span.data, span.size);
      coder.DecodeBlock(decoder, block.rows, *scratch, budget, limit);
    };
  });
}

bool CEZWCompressor::Encode(int planeCount, WaveletPlane** planes, void* dst) {
  if (m_integerCoder) return EncodeWith(*m_integerCoder, planeCount, planes, dst);
  if (m_floatCoder) return EncodeWith(*m_floatCoder, planeCount, planes, dst);
  return false;
}

bool CEZWCompressor::Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) {
  if (m_integerCoder) return DecodeWith(*m_integerCoder, src, srcBytes, planeCount, planes);
  if (m_floatCoder) return DecodeWith(*m_floatCoder, src, srcBytes, planeCount, planes);
  return false;
}
