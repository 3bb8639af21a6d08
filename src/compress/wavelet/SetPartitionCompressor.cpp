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
uint32_t NominalBlockBytes(const WaveletPlane& plane) { return 2 * uint32_t(plane.blockSamples) + 2; }

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
  uint64_t total = kFrameHeaderBytes;
  for (int p = 0; p < planeCount; ++p) total += uint64_t(planes[p]->blockCount) * (2 + Speck2BlockBound());
  return total > UINT32_MAX ? UINT32_MAX : uint32_t(total);
}

bool CSpeck2Compressor::Encode(int planeCount, WaveletPlane** planes, void* dst) {
  auto* out = static_cast<uint8_t*>(dst);
  const int levels = m_owner->m_levels;
  uint32_t total = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p) {
    WaveletPlane& plane = *planes[p];
    BuildTables(p);
    const uint32_t* morton = m_mortonTables[p].get();
    const uint32_t nominal = NominalBlockBytes(plane), room = Speck2BlockBound();
    CodePlaneBlocks(plane, room, m_blockData, [&] {
      return [&](WaveletBlock& block, uint8_t* buffer) {
        StreamBitWriter writer(buffer, room);
        EncodeSpeck2Block(writer, 100, levels, morton, block.rows);
        writer.FinishEncoder();
        ReportOverCapacity(writer.Produced(), nominal);
        return writer.Length();
      };
    });
    LayOutBlocks(out, total, m_blockData);
  }
  ReportEncodeLength(total);
  WriteFrameTotal(out, total);
  return true;
}

bool CSpeck2Compressor::Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) {
  const auto* frame = static_cast<const uint8_t*>(src);
  const uint32_t bound = FrameBound(frame, srcBytes);
  if (bound == 0) return false;
  const int levels = m_owner->m_levels;
  uint32_t offset = kFrameHeaderBytes;
  for (int p = 0; p < planeCount && p < 3; ++p) {
    WaveletPlane& plane = *planes[p];
    BuildTables(p);
    const uint32_t* morton = m_mortonTables[p].get();
    const MortonPosition* positions = m_positionTables[p].get();
    const bool ok = DecodePlaneBlocks(frame, bound, offset, plane, m_spans, [&] {
      return [&](WaveletBlock& block, const BlockSpan& span) {
        // Fewer than 3 bytes hold no more than an empty block's top field
        // (FF D0), and would stop the decoder's start early: the block is zero.
        if (span.size < 3) return;
        StreamBitReader reader(span.data, span.size);
        DecodeSpeck2Block(reader, 100, levels, morton, positions, block.rows);
      };
    });
    if (!ok) return false;
  }
  return true;
}
