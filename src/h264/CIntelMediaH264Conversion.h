#pragma once
// The hardware H.264 back-end: one Media SDK encoder (or decoder) driven one
// frame at a time, writing the same encoded frame records as the software
// back-end. UnInitialize frees the codec but leaves the object initialised, a
// settled behaviour of the back-end: Initialize with unchanged values then
// keeps it codec-less, and EncodeImage answers false.
#include <cstdint>

#include "h264/CH264ConversionBase.h"

class CIntelMediaEncoder;
class CIntelMediaDecoder;

class CIntelMediaH264Conversion : public CH264ConversionBase {
 public:
  CIntelMediaH264Conversion() = default;
  ~CIntelMediaH264Conversion() override;
  CIntelMediaH264Conversion(const CIntelMediaH264Conversion&) = delete;
  CIntelMediaH264Conversion& operator=(const CIntelMediaH264Conversion&) = delete;

  bool Initialize(bool encoder, uint32_t width, uint32_t height, H264EndoerSorceFormat format, int gopSize,
                  int bitRate, uint32_t bitDepth, int reserved) override;
  bool UnInitialize() override;
  bool SetParamers(H264PARAM_TYPE type, int value) override;
  bool EncodeImage(void* record, void* plane0, void* plane1, void* plane2) override;
  bool DecodeImage(uint32_t frameIndex, void* record, void* image) override;
  uint32_t GetLastDecodeFrameIndex() override;
  void ReleaseDecodeResource() override;
  bool InitWithRTSP() override;
  int DecodeImageFromRTSP(int inputSize, void* input, void* image, int imageSize, int& consumed) override;
  bool UnInitWithRTSP() override;

  CIntelMediaEncoder* Encoder() const { return m_encoder; }

 private:
  CIntelMediaEncoder* m_encoder = nullptr;
  CIntelMediaDecoder* m_decoder = nullptr;
  bool m_initialized = false;
  uint32_t m_width = 0, m_height = 0;
  uint32_t m_bitDepth = 8;
  bool m_encoderMode = true;
  H264EndoerSorceFormat m_format = H264_SOURCE_YUV_PLANAR;
  bool m_needsOpen = true;
  uint32_t m_lastDecodedIndex = 0;
  uint16_t m_framesSinceKey = 0;
};
