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
uint32_t NominalBlockBytes(const WaveletPlane& plane) { return uint32_t(plane.blockSamples) + 2; }
uint32_t BlockRoom(const WaveletPlane& plane) { return uint32_t(plane.blockSamples) + 64; }

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
  uint64_t total = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p)
    total += uint64_t(planes[p]->blockCount) * (kBlockHeaderBytes + BlockRoom(*planes[p]));
  return total > UINT32_MAX ? UINT32_MAX : uint32_t(total);
}

template <class T>
bool CEZWCompressor::EncodeWith(const CEZWCoder<T>& coder, int planeCount, WaveletPlane** planes, void* dst) {
  auto* out = static_cast<uint8_t*>(dst);
  const EZWShape shape(kBlockSide, kBlockSide, m_owner->m_levels);
  const uint32_t limit = ModelLimit(m_owner->m_pixelBits);
  uint32_t total = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p) {
    WaveletPlane& plane = *planes[p];
    const uint32_t nominal = NominalBlockBytes(plane), room = BlockRoom(plane);
    const uint32_t budget = uint32_t(plane.blockSamples) * 100 / 100;
    CodePlaneBlocks(plane, room, m_blockData, [&] {
      return [&, scratch = std::make_shared<typename CEZWCoder<T>::Scratch>(shape)](WaveletBlock& block,
                                                                                    uint8_t* buffer) {
        ArithmeticEncoder encoder(buffer, nominal, room);
        coder.EncodeBlock(encoder, block.rows, *scratch, budget, limit);
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

template <class T>
bool CEZWCompressor::DecodeWith(const CEZWCoder<T>& coder, const void* src, uint32_t srcBytes, int planeCount,
                                WaveletPlane** planes) {
  const auto* frame = static_cast<const uint8_t*>(src);
  const uint32_t bound = FrameBound(frame, srcBytes);
  if (bound == 0) return false;
  const EZWShape shape(kBlockSide, kBlockSide, m_owner->m_levels);
  const uint32_t limit = ModelLimit(m_owner->m_pixelBits);
  const int ratio = m_owner->m_decodeRatio;
  uint32_t offset = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p) {
    WaveletPlane& plane = *planes[p];
    const int64_t share = int64_t(plane.blockSamples) * ratio / 100;
    const uint32_t budget = share < 0 ? 0 : share > UINT32_MAX ? UINT32_MAX : uint32_t(share);
    const bool ok = DecodePlaneBlocks(frame, bound, offset, plane, m_spans, [&] {
      return [&, scratch = std::make_shared<typename CEZWCoder<T>::Scratch>(shape)](WaveletBlock& block,
                                                                                    const BlockSpan& span) {
        // Fewer than 3 bytes hold no more than a flat block's exponent, and
        // would leave the decoder's interval empty: the block is zero.
        if (span.size < 3) return;
        ArithmeticDecoder decoder(span.data, span.size);
        coder.DecodeBlock(decoder, block.rows, *scratch, budget, limit);
      };
    });
    if (!ok) return false;
  }
  return true;
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
