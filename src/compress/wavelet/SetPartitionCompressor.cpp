// Frames of the set-partition coder: blocks coded in parallel, each into its
// own buffer, then laid out in grid order behind their lengths.
#include "compress/wavelet/SetPartitionCompressor.h"

#include "compress/wavelet/WaveletCompression.h"
#include "compress/wavelet/StreamBits.h"
#include "compress/wavelet/PlaneBlocks.h"
#include "compress/wavelet/WaveletFrame.h"

using namespace kestrelink::wavelet;

namespace {

// The nominal buffer of a block; past it the writer reports each byte, and
// its room goes on to the block's worst case.
uint32_t NominalBlockBytes() { return 2 * uint32_t(kBlockSamples) + 2; }

}  // namespace

bool CSpeck2Compressor::SetInteger(bool isInteger) {
  if (!isInteger) return false;
  m_isInteger = true;
  m_coder = std::make_unique<CSpeck2Coder>();
  for (auto& t : m_mortonTables) t.reset();
  for (auto& t : m_positionTables) t.reset();
  return true;
}

void CSpeck2Compressor::BuildTables(int plane) {
  if (!m_mortonTables[plane]) {
    m_mortonTables[plane] = std::make_unique<uint32_t[]>(kBlockSamples);
    BuildMortonTable(m_mortonTables[plane].get());
  }
  if (!m_positionTables[plane]) {
    m_positionTables[plane] = std::make_unique<MortonPosition[]>(kBlockSamples);
    BuildPositionTable(m_positionTables[plane].get());
  }
}

uint32_t CSpeck2Compressor::MaxFrameBytes(int planeCount, WaveletPlane** planes) {
  return MaxBlockFrameBytes(planeCount, planes, Speck2BlockBound());
}

bool CSpeck2Compressor::Encode(int planeCount, WaveletPlane** planes, void* dst) {
  const int levels = m_owner->m_levels;
  for (int p = 0; p < planeCount && p < 3; ++p) BuildTables(p);
  const uint32_t nominal = NominalBlockBytes(), room = Speck2BlockBound();
  EncodeBlockFrame(planeCount, planes, dst, room, m_blockData, [&](int p) {
    return [&, morton = m_mortonTables[p].get()](WaveletBlock& block, uint8_t* buffer) {
      StreamBitWriter writer(buffer, room);
      EncodeSpeck2Block(writer, 100, levels, morton, block.rows);
      writer.FinishEncoder();
      ReportOverCapacity(writer.Produced(), nominal);
      return writer.Length();
    };
  });
  return true;
}

bool CSpeck2Compressor::Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) {
  const int levels = m_owner->m_levels;
  for (int p = 0; p < planeCount && p < 3; ++p) BuildTables(p);
  return DecodeBlockFrame(src, srcBytes, planeCount, planes, m_spans, [&](int p) {
    return [levels, morton = m_mortonTables[p].get(), positions = m_positionTables[p].get()](
               WaveletBlock& block, const BlockSpan& span) {
      StreamBitReader reader(span.data, span.size);
      DecodeSpeck2Block(reader, 100, levels, morton, positions, block.rows);
    };
  });
}
