#pragma once
// The earlier set-partition coder with lists of sets, every block at all its
// planes, into the wavelet frame. Not built by Initialize's factory.
#include <vector>

#include "compress/wavelet/Compressor.h"
#include "compress/wavelet/PlaneBlocks.h"
#include "compress/wavelet/WaveletDebug.h"
#include "compress/wavelet/WaveletFrame.h"

class CSpeckCompressor : public CCompressor, public CWaveletDebug {
 public:
  bool Encode(int planeCount, WaveletPlane** planes, void* dst) override;
  bool Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) override;
  // Refuses false: the coder works on integer samples only.
  bool SetInteger(bool isInteger) override;
  uint32_t MaxFrameBytes(int planeCount, WaveletPlane** planes) override;
  ~CSpeckCompressor() override = default;

 private:
  kestrelink::wavelet::BlockStore m_blockData;
  std::vector<kestrelink::wavelet::BlockSpan> m_spans;
};
