#pragma once
// The coder that Initialize builds (coderType 1): every block through
// CSpeck2Coder at 100 percent of its planes, into the wavelet frame.
#include <memory>
#include <vector>

#include "compress/wavelet/Compressor.h"
#include "compress/wavelet/PlaneBlocks.h"
#include "compress/wavelet/MortonTables.h"
#include "compress/wavelet/WaveletFrame.h"
#include "compress/wavelet/SetPartitionCoder.h"

class CSpeck2Compressor : public CCompressor {
 public:
  bool Encode(int planeCount, WaveletPlane** planes, void* dst) override;
  bool Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) override;
  // Refuses false: the coder works on integer samples only.
  bool SetInteger(bool isInteger) override;
  uint32_t MaxFrameBytes(int planeCount, WaveletPlane** planes) override;

 private:
  void BuildTables(int plane);

  std::unique_ptr<CSpeck2Coder> m_coder;
  std::unique_ptr<uint32_t[]> m_mortonTables[3];
  std::unique_ptr<kestrelink::wavelet::MortonPosition[]> m_positionTables[3];
  // Each block's coded bytes between the parallel coding and the frame.
  kestrelink::wavelet::BlockStore m_blockData;
  std::vector<kestrelink::wavelet::BlockSpan> m_spans;
};
