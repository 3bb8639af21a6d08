// The software back-end's live-stream path: Annex B bytes in any pieces, no
// records and no frame numbers; the image size comes from the stream.
#include "h264/CIPPH264Conversion.h"
#include "h264/H264Log.h"

namespace rec = kestrelink::h264;

bool CIPPH264Conversion::InitWithRTSP() {
  m_outputFrame = std::make_unique<UMC::VideoData>();
  m_bitstream = std::make_unique<UMC::MediaData>();
  m_postProcessing = std::make_unique<UMC::VideoProcessing>();
  m_decoder = std::make_unique<UMC::H264VideoDecoder>();
  m_decoderParams.m_pPostProcessing = nullptr;  // the new decoder makes its own at the first start
  m_rtspDecoderReady = false;
  return true;
}

int CIPPH264Conversion::DecodeImageFromRTSP(int inputSize, void* input, void* image, int imageSize, int& consumed) {
  if (!m_decoder || !m_bitstream || !m_outputFrame || !m_postProcessing) return -1;
  const size_t size = input && inputSize > 0 ? size_t(inputSize) : 0;
  const auto taken = [&] { return int(size - m_bitstream->GetDataSize()); };
  // Fewer than 4 bytes hold no start code and unit header, and the decoder
  // would drop them; they may be the front of the next unit: left for the caller.
  if (size < 4) {
    consumed = 0;
    return 0;
  }
  m_bitstream->Reset();
  m_bitstream->SetBufferPointer(static_cast<uint8_t*>(input), size);
  m_bitstream->SetDataSize(size);
  m_bitstream->SetFlags(0);

  if (!m_rtspDecoderReady) {
    const UMC::Status status = StartDecoder();
    if (status != UMC::UMC_OK) {
      rec::Log("Video Decoder creation failed\n");
      consumed = taken();  // what was dropped before a sequence parameter set
      m_bitstream->Reset();
      return -1;
    }
    m_rtspDecoderReady = m_lastStatus == UMC::UMC_OK;
    consumed = taken();
    if (m_bitstream->GetDataSize() < 4) return 0;  // headers alone, or too little behind them
  }
  if (!m_rtspDecoderReady) return -1;

  m_outputFrame->SetBufferPointer(static_cast<uint8_t*>(image), imageSize > 0 ? size_t(imageSize) : 0);
  // No flush after UMC_ERR_NOT_ENOUGH_DATA: a picture is all of its slices,
  // and what the splitter has gathered is finished only when the next access
  // unit begins. Pictures the decoder already holds were offered by GetFrame.
  m_lastStatus = m_decoder->GetFrame(m_bitstream.get(), m_outputFrame.get());
  consumed = taken();
  return m_lastStatus == UMC::UMC_OK ? 1 : 0;
}

bool CIPPH264Conversion::UnInitWithRTSP() {
  m_postProcessing.reset();
  m_decoder.reset();
  m_bitstream.reset();
  m_outputFrame.reset();
  m_decoderParams.m_pPostProcessing = nullptr;
  m_rtspDecoderReady = false;
  return true;
}
