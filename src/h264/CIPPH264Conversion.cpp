// Set-up and tear-down of the software back-end, for both modes.
#include "h264/CIPPH264Conversion.h"

#include "h264/H264Log.h"

namespace {

constexpr int kDefaultGopSize = 30;
constexpr int kDefaultBitRate = 5000000;

}  // namespace

CIPPH264Conversion::~CIPPH264Conversion() { UnInitialize(); }

bool CIPPH264Conversion::Initialize(bool encoder, uint32_t width, uint32_t height, H264EndoerSorceFormat format,
                                    int gopSize, int bitRate, uint32_t bitDepth, int) {
  // A second Initialize with the same set-up keeps the running codec; GOP size and bit rate are not compared.
  if (m_initialized && format == m_format && width == m_width && height == m_height && bitDepth == m_bitDepth &&
      encoder == m_encoderMode)
    return true;
  UnInitialize();
  m_format = format;
  m_width = width;
  m_height = height;
  m_bitDepth = bitDepth;
  m_encoderMode = encoder;
  m_needsOpen = true;
  m_lastDecodedIndex = 0;
  m_encoderThreads = 1;
  if (encoder) {
    kestrelink::h264::Log("H264 GOP size: %d,Bitrate is %d", gopSize, bitRate);
    m_encoderParams = std::make_unique<UMC::H264EncoderParams>();
    UMC::H264EncoderParams& p = *m_encoderParams;
    p.info.width = int32_t(width);
    p.info.height = int32_t(height);
    p.info.bitRate = bitRate == 0 ? kDefaultBitRate : bitRate;
    p.info.frameRate = 30.0;
    p.numEncodedFrames = 0;
    // 4:2:2 from planar sources and 4:0:0 from mono ones, whatever the source's own 4:2:0.
    p.chromaFormatIdc = format != H264_SOURCE_MONO ? 2 : 0;
    p.treatBAsReference = 0;
    p.numRefFrames = 0;
    p.numRefToStartCodeBSlice = 0;
    p.numSlices = 0;
    p.keyFrameMethod = 1;
    p.keyFrameInterval = gopSize == 0 ? kDefaultGopSize : gopSize;
    p.idrInterval = 1;
    p.profileIdc = 77;
    m_encoder = std::make_unique<UMC::H264VideoEncoder>();
    m_sourceFrame = std::make_unique<UMC::VideoData>();
    m_encodedData = std::make_unique<UMC::MediaData>();
  } else {
    m_outputFrame = std::make_unique<UMC::VideoData>();
    m_bitstream = std::make_unique<UMC::MediaData>();
    m_postProcessing = std::make_unique<UMC::VideoProcessing>();
  }
  m_initialized = true;
  return true;
}

bool CIPPH264Conversion::UnInitialize() {
  if (!m_initialized) return false;
  if (!m_encoderMode) {
    m_decoder.reset();
    m_postProcessing.reset();
    m_bitstream.reset();
    m_outputFrame.reset();
    m_decoderParams.m_pPostProcessing = nullptr;
  } else {
    m_encoder.reset();
    m_encoderParams.reset();
    m_sourceFrame.reset();
    m_encodedData.reset();
  }
  m_initialized = false;
  return true;
}

// Nothing can be changed: it only tells whether the encoder is set up and not yet opened.
bool CIPPH264Conversion::SetParamers(H264PARAM_TYPE, int) { return m_initialized && m_needsOpen; }

uint32_t CIPPH264Conversion::GetLastDecodeFrameIndex() { return uint32_t(m_lastDecodedIndex); }
