#pragma once
// The software H.264 back-end: fills the codecs' parameters with a fixed
// recipe, wraps the caller's planes and buffers in VideoData and MediaData
// views (no copies), and turns the codecs' calls into encoded frame records
// and back. One object works as encoder or decoder, as the last Initialize
// chose; the live-stream calls use the decoder side without Initialize.
#include <cstdint>
#include <memory>

#include "h264/CH264ConversionBase.h"
#include "h264/H264DecoderParams.h"
#include "h264/H264EncoderParams.h"
#include "h264/H264VideoDecoder.h"
#include "h264/H264VideoEncoder.h"
#include "umc/MediaData.h"
#include "umc/VideoData.h"
#include "umc/VideoProcessing.h"

class CIPPH264Conversion : public CH264ConversionBase {
 public:
  CIPPH264Conversion() = default;
  ~CIPPH264Conversion() override;

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

  // The quantiser of the last encoded frame (0 before the first).
  int32_t LastQuantiser() const { return m_encoder ? m_encoder->LastQuantiser() : 0; }

 private:
  bool OpenEncoder();
  bool RestartDecoder(uint32_t frameIndex);
  // Makes the decoder read the headers in m_bitstream and sizes m_outputFrame
  // by them; the status of the first step that failed.
  UMC::Status StartDecoder();

  H264EndoerSorceFormat m_format = H264_SOURCE_YUV_PLANAR;
  bool m_encoderMode = true;
  bool m_needsOpen = false;
  bool m_initialized = false;
  uint32_t m_width = 0, m_height = 0;
  uint32_t m_bitDepth = 8;
  int32_t m_lastStatus = 0;
  std::unique_ptr<UMC::H264EncoderParams> m_encoderParams;
  std::unique_ptr<UMC::H264VideoEncoder> m_encoder;
  std::unique_ptr<UMC::VideoData> m_sourceFrame;
  std::unique_ptr<UMC::MediaData> m_encodedData;
  std::unique_ptr<UMC::H264VideoDecoder> m_decoder;
  std::unique_ptr<UMC::MediaData> m_bitstream;
  std::unique_ptr<UMC::VideoData> m_outputFrame;
  std::unique_ptr<UMC::VideoProcessing> m_postProcessing;
  uint16_t m_framesSinceKey = 0;
  int32_t m_lastDecodedIndex = 0;
  UMC::H264VideoDecoderParams m_decoderParams;
  int32_t m_encoderThreads = 1;
  bool m_rtspDecoderReady = false;
};
