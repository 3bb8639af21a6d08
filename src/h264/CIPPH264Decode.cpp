// The software back-end's record decoding, under the frame-index rules.
#include "h264/AnnexB.h"
#include "h264/CIPPH264Conversion.h"
#include "h264/EncodedFrameRecord.h"
#include "h264/H264Log.h"

namespace rec = kestrelink::h264;

UMC::Status CIPPH264Conversion::StartDecoder() {
  m_decoderParams.m_pData = m_bitstream.get();
  m_decoderParams.numThreads = 1;
  m_decoderParams.info.streamType = UMC::kH264VideoStream;
  m_decoderParams.lFlags = 0;
  m_decoderParams.playbackRate = 0.0;
  UMC::Status status = m_decoder->Init(&m_decoderParams);
  if (status != UMC::UMC_OK) return status;
  UMC::H264VideoDecoderParams stream;
  status = m_decoder->GetInfo(&stream);
  if (status != UMC::UMC_OK) return status;
  UMC::VideoProcessingParams processing;
  processing.interpolationMethod = 1;
  processing.deinterlacingMethod = 0;
  m_postProcessing->SetParams(&processing);
  m_decoderParams.m_pPostProcessing = m_postProcessing.get();
  m_outputFrame->SetAlignment(4);
  m_lastStatus = m_outputFrame->Init(stream.info.width, stream.info.height, UMC::RGB24, 0);
  return UMC::UMC_OK;
}

bool CIPPH264Conversion::RestartDecoder(uint32_t frameIndex) {
  m_decoder.reset();
  const uint8_t* payload = static_cast<const uint8_t*>(m_bitstream->GetDataPointer());
  const size_t startCode = UMC::StartCodeLength(payload, 4);
  if (UMC::NalTypeOf(payload[startCode]) != UMC::NAL_SPS) {
    m_lastDecodedIndex = 0;
    return true;  // no decoder now: the index rule below answers false
  }
  m_decoder = std::make_unique<UMC::H264VideoDecoder>();
  const UMC::Status status = StartDecoder();
  if (status != UMC::UMC_OK) {
    rec::Log("Video Decoder creation failed\n");
    m_bitstream->Reset();
    return false;
  }
  m_lastDecodedIndex = int32_t(frameIndex);
  return true;
}

bool CIPPH264Conversion::DecodeImage(uint32_t frameIndex, void* record, void* image) {
  if (m_encoderMode || frameIndex == 0 || !m_initialized || !record) return false;
  uint8_t* payload = static_cast<uint8_t*>(record) + rec::kRecordHeaderBytes;
  if (UMC::StartCodeLength(payload, 4) == 0) return false;

  // The decoder is offered recordSize bytes from the payload on: 8 past its
  // end, so a record must be followed by 8 readable bytes.
  m_bitstream->Reset();
  m_bitstream->SetBufferPointer(payload, rec::RecordSize(record));
  m_bitstream->SetDataSize(rec::RecordSize(record));
  m_bitstream->SetFlags(UMC::MediaData::kWholeUnits);

  const bool sequential = frameIndex != 1 && m_lastDecodedIndex != 0 && frameIndex == uint32_t(m_lastDecodedIndex) + 1;
  if (!sequential && !RestartDecoder(frameIndex)) return false;
  if (m_lastDecodedIndex <= 0 || !m_decoder) return false;

  const size_t capacity = size_t((m_height + 15) & ~15u) * m_width * 3;
  m_outputFrame->SetBufferPointer(static_cast<uint8_t*>(image), capacity);
  m_lastStatus = m_decoder->GetFrame(m_bitstream.get(), m_outputFrame.get());
  while (m_lastStatus == UMC::UMC_ERR_NOT_ENOUGH_DATA) m_lastStatus = m_decoder->GetFrame(nullptr, m_outputFrame.get());
  m_lastDecodedIndex = int32_t(frameIndex);
  return m_lastStatus == UMC::UMC_OK;
}

void CIPPH264Conversion::ReleaseDecodeResource() {
  m_lastDecodedIndex = 0;
  if (m_decoder) {
    if (m_bitstream) m_bitstream->Close();
    m_decoder.reset();
  }
}
