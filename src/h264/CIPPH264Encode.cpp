// The software back-end's encoding: one frame in, one encoded frame record out.
#include <cstring>

#include "h264/CIPPH264Conversion.h"
#include "h264/EncodedFrameRecord.h"
#include "h264/H264Log.h"

namespace rec = kestrelink::h264;

// The codec opens on the first frame; a failure leaves it to try again on the next.
bool CIPPH264Conversion::OpenEncoder() {
  m_encoderParams->numThreads = m_encoderThreads;
  m_lastStatus = m_encoder->Init(m_encoderParams.get());
  m_lastStatus = m_encoder->GetInfo(m_encoderParams.get());  // only this status decides
  m_framesSinceKey = 0;
  if (m_lastStatus != UMC::UMC_OK) {
    rec::Log("Init H264 Encoder Error ================%d", m_lastStatus);
    return false;
  }
  m_sourceFrame->Init(int32_t(m_width), int32_t(m_height), UMC::YUV420, int32_t(m_bitDepth));
  m_needsOpen = false;
  return true;
}

bool CIPPH264Conversion::EncodeImage(void* record, void* plane0, void* plane1, void* plane2) {
  if (!m_encoder) return false;
  if (m_needsOpen && !OpenEncoder()) return false;
  const size_t capacity = size_t(m_width) * m_height * (m_format != H264_SOURCE_MONO ? 2 : 1);
  std::memset(record, 0, size_t(m_width) * m_height * 2);

  m_sourceFrame->SetPlanePointer(plane0, 0);
  if (m_format != H264_SOURCE_MONO) {
    m_sourceFrame->SetPlanePointer(plane1, 1);
    m_sourceFrame->SetPlanePointer(plane2, 2);
  }
  uint8_t* payload = static_cast<uint8_t*>(record) + rec::kRecordHeaderBytes;
  m_encodedData->SetBufferPointer(payload, capacity);

  m_lastStatus = m_encoder->GetFrame(m_sourceFrame.get(), m_encodedData.get());
  if (m_lastStatus != UMC::UMC_OK) rec::Log("H264 Encoder Encoding ================%d", m_lastStatus);
  const uint32_t encoded = uint32_t(m_encodedData->GetDataSize());

  uint16_t gopField = 0;
  if (rec::IsKeyRecord(record)) {
    m_framesSinceKey = 0;
    gopField = uint16_t(m_encoderParams->keyFrameInterval);
  } else {
    ++m_framesSinceKey;
  }
  rec::WriteRecordHeader(record, encoded, gopField, m_framesSinceKey);
  return true;  // even after a failed frame: the record says what the encoder left
}
