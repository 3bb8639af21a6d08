#pragma once
// Zerotree coding of every block into the wavelet frame, through an integer
// or a float coder chosen by SetInteger. Not built by Initialize's factory.
#include <memory>
#include <vector>

#include "compress/wavelet/Compressor.h"
#include "compress/wavelet/PlaneBlocks.h"
#include "compress/wavelet/EzwCoder.h"
#include "compress/wavelet/WaveletFrame.h"

class CEZWCompressor : public CCompressor, public CWaveletDebug {
 public:
  bool Encode(int planeCount, WaveletPlane** planes, void* dst) override;
  bool Decode(const void* src, uint32_t srcBytes, int planeCount, WaveletPlane** planes) override;
  // Creates the integer coder for true, the float coder for false.
  bool SetInteger(bool isInteger) override;
  uint32_t MaxFrameBytes(int planeCount, WaveletPlane** planes) override;
  ~CEZWCompressor() override = default;

 private:
  template <class T>
  bool EncodeWith(const CEZWCoder<T>& coder, int planeCount, WaveletPlane** planes, void* dst);
  template <class T>
  bool DecodeWith(const CEZWCoder<T>& coder, const void* src, uint32_t srcBytes, int planeCount,
                  WaveletPlane** planes);

  std::unique_ptr<CIntegerEZWCoder> m_integerCoder;
  std::unique_ptr<CFloatEZWCoder> m_floatCoder;
  kestrelink::wavelet::BlockStore m_blockData;
  std::vector<kestrelink::wavelet::BlockSpan> m_spans;
};
