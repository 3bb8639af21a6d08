#include "h264/CIntelMediaH264Conversion.h"

#include <algorithm>
#include <cstring>

#include "frame/RowLoop.h"
#include "frame/StreamCopy.h"
#include "h264/CIntelMediaDecoder.h"
#include "h264/CIntelMediaEncoder.h"
#include "h264/EncodedFrameRecord.h"

namespace {

// Zeroes bytes from .. size-1 of the record, shared out over the team in
// blocks. A large clear goes with streaming stores: behind the frame's
// packing the record is out of the nearer caches anyway, and the caller
// reads back only the header and the bitstream.
void ClearRecordTail(uint8_t* record, size_t size, size_t from) {
  if (size <= from) return;
  const size_t n = size - from;
  if (n < kestrelink::kStreamCopyBytes) {
    std::memset(record + from, 0, n);
    return;
  }
  constexpr size_t kBlockBytes = size_t(1) << 18;
  kestrelink::ForEachRow(uint32_t((n + kBlockBytes - 1) / kBlockBytes), false, [&](uint32_t b, uint32_t) {
    const size_t begin = from + size_t(b) * kBlockBytes;
    kestrelink::StreamFill(record + begin, 0, std::min(kBlockBytes, size - begin));
  });
  kestrelink::StreamCopyDone();
}

}  // namespace

CIntelMediaH264Conversion::~CIntelMediaH264Conversion() { UnInitialize(); }

bool CIntelMediaH264Conversion::Initialize(bool encoder, uint32_t width, uint32_t height, H264EndoerSorceFormat format,
                                           int gopSize, int bitRate, uint32_t bitDepth, int) {
  if (m_initialized && format == m_format && width == m_width && height == m_height && bitDepth == m_bitDepth &&
      encoder == m_encoderMode)
    return true;
  UnInitialize();
  m_needsOpen = true;
  m_format = format;
  m_width = width;
  m_height = height;
  m_bitDepth = bitDepth;
  m_encoderMode = encoder;
  m_lastDecodedIndex = 0;
  m_framesSinceKey = 0;
  if (encoder) {
    m_encoder = new CIntelMediaEncoder;
    m_encoder->SetGopSize(gopSize);
    m_encoder->SetBitRate(bitRate);
  } else {
    m_decoder = new CIntelMediaDecoder;
  }
  m_initialized = true;
  return true;
}

// Frees the codec and leaves m_initialized set, a settled behaviour of this back-end.
bool CIntelMediaH264Conversion::UnInitialize() {
  delete m_encoder;
  m_encoder = nullptr;
  delete m_decoder;
  m_decoder = nullptr;
  return true;
}

bool CIntelMediaH264Conversion::SetParamers(H264PARAM_TYPE, int) { return true; }

bool CIntelMediaH264Conversion::EncodeImage(void* record, void* plane0, void* plane1, void* plane2) {
  if (m_encoder == nullptr) return false;
  m_needsOpen = false;
  auto* bytes = static_cast<uint8_t*>(record);
  const uint32_t length = m_encoder->Encode(m_width, m_height, m_format == 0, static_cast<const uint8_t*>(plane0),
                                            static_cast<const uint8_t*>(plane1), static_cast<const uint8_t*>(plane2),
                                            bytes + kestrelink::h264::kRecordHeaderBytes);
  // The record's first width * height * 2 bytes are zero but for what is
  // written: the encode wrote only its bitstream, so the clear covers the
  // rest, after it (the same bytes as clearing first), and the header is
  // written below.
  ClearRecordTail(bytes, size_t(m_width) * m_height * 2, kestrelink::h264::kRecordHeaderBytes + size_t(length));
  uint16_t gop = 0;
  if (kestrelink::h264::IsKeyRecord(bytes)) {
    m_framesSinceKey = 0;
    gop = uint16_t(m_encoder->GetGopSize());
  } else {
    ++m_framesSinceKey;
  }
  kestrelink::h264::WriteRecordHeader(bytes, length, gop, m_framesSinceKey);
  return true;
}

bool CIntelMediaH264Conversion::DecodeImage(uint32_t frameIndex, void* record, void* image) {
  if (m_decoder == nullptr || frameIndex == 0 || !m_initialized) return false;
  auto* bytes = static_cast<uint8_t*>(record);
  const uint32_t recordSize = kestrelink::h264::RecordSize(bytes);
  bool decoded = false;
  if (m_lastDecodedIndex != 0 && frameIndex == m_lastDecodedIndex + 1) {
    decoded = m_decoder->Decode(m_width, m_height, recordSize, bytes, static_cast<uint8_t*>(image));
  } else {
    m_decoder->Close();
    if (!kestrelink::h264::IsKeyRecord(bytes)) {
      m_lastDecodedIndex = 0;
      return false;
    }
    decoded = m_decoder->Decode(m_width, m_height, recordSize, bytes + kestrelink::h264::kRecordHeaderBytes,
                                static_cast<uint8_t*>(image));
  }
  m_lastDecodedIndex = decoded ? frameIndex : 0;
  return decoded;
}

uint32_t CIntelMediaH264Conversion::GetLastDecodeFrameIndex() { return m_lastDecodedIndex; }

void CIntelMediaH264Conversion::ReleaseDecodeResource() {
  m_lastDecodedIndex = 0;
  if (m_decoder != nullptr) m_decoder->Close();
}

bool CIntelMediaH264Conversion::InitWithRTSP() { return false; }
int CIntelMediaH264Conversion::DecodeImageFromRTSP(int, void*, void*, int, int&) { return -1; }
bool CIntelMediaH264Conversion::UnInitWithRTSP() { return false; }
