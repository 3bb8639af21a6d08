// Frames of the set-partition coder: blocks coded in parallel, each into its
// own buffer, then laid out in grid order behind their lengths.
#include "compress/wavelet/SetPartitionCompressor.h"

#include <cstdio>
#include <cstring>

#include "compress/wavelet/WaveletCompression.h"
#include "compress/wavelet/StreamBits.h"
#include "compress/wavelet/WaveletFrame.h"
#include "platform/DebugSink.h"
#include "platform/OpenMP.h"

using namespace kestrelink::wavelet;

namespace {

// The nominal buffer of a block; past it the writer reports each byte, and
// its room goes on to the block's worst case.
uint32_t NominalBlockBytes(const WaveletPlane& plane) { return 2 * uint32_t(plane.blockSamples) + 2; }

// The arithmetic encoder's writer reports every byte it stores at or past
// the nominal buffer size.
void ReportOverCapacity(uint32_t produced, uint32_t nominal) {
  for (uint32_t position = nominal; position < produced; ++position) {
    char line[64];
    std::snprintf(line, sizeof line, "OutputBit %d ******* %d\r\n", int(position), int(nominal));
    kestrelink::platform::OutputDebugString(line);
  }
}

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
    const int64_t count = plane.blockCount;
    m_blockData.resize(size_t(count));
    const uint32_t nominal = NominalBlockBytes(plane), room = Speck2BlockBound();
#pragma omp parallel num_threads(kestrelink::platform::TeamSize())
    {
      std::vector<uint8_t> scratch(room);
#pragma omp for schedule(static)
      for (int64_t b = 0; b < count; ++b) {
        StreamBitWriter writer(scratch.data(), room);
        EncodeSpeck2Block(writer, 100, levels, morton, plane.blocks[size_t(b)]->rows);
        writer.FinishEncoder();
        ReportOverCapacity(writer.Produced(), nominal);
        m_blockData[size_t(b)].assign(scratch.data(), scratch.data() + writer.Length());
      }
    }
    for (int64_t b = 0; b < count; ++b) {
      const std::vector<uint8_t>& data = m_blockData[size_t(b)];
      PutBlock(out, total, data.data(), uint16_t(data.size()));
    }
  }
  char line[80];
  std::snprintf(line, sizeof line, "*********Encode length is %d**************", int(total));
  kestrelink::platform::OutputDebugString(line);
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
    m_spans.resize(size_t(plane.blockCount));
    if (!FindBlocks(frame, bound, offset, m_spans)) return false;
    const uint32_t* morton = m_mortonTables[p].get();
    const MortonPosition* positions = m_positionTables[p].get();
    const int64_t count = plane.blockCount;
#pragma omp parallel for schedule(static) num_threads(kestrelink::platform::TeamSize())
    for (int64_t b = 0; b < count; ++b) {
      WaveletBlock& block = *plane.blocks[size_t(b)];
      std::memset(block.samples, 0, sizeof block.samples);
      const BlockSpan span = m_spans[size_t(b)];
      // Fewer than 3 bytes hold no more than an empty block's top field
      // (FF D0), and would stop the decoder's start early: the block is zero.
      if (span.size < 3) continue;
      StreamBitReader reader(span.data, span.size);
      DecodeSpeck2Block(reader, 100, levels, morton, positions, block.rows);
    }
  }
  return true;
}
