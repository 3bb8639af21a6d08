#include <kestrelink/CJpegConversion.h>

#include "jpeg/front/CCudaJpegConversion.h"
#include "jpeg/front/CIjlJpegConversion.h"
#include "jpeg/front/CIntelJpegConversion.h"
#include "jpeg/front/FrontLog.h"
#include "jpeg/front/JpegFormats.h"

CJpegConversion::CJpegConversion() : m_backend(nullptr) {}

CJpegConversion::~CJpegConversion() { delete m_backend; }

int CJpegConversion::InitConverter(uint32_t width, uint32_t height, uint32_t bitCount, uint32_t sampleBits,
                                   uint32_t format, int quality, bool software) {
  if (!kestrelink::jpegfront::FormatAccepted(format, bitCount, sampleBits)) return 0;
  delete m_backend;
  m_backend = nullptr;
  if (software) {
    if (bitCount == 8 || bitCount == 24) {
      m_backend = new CIntelJpegConversion();
    } else {
      m_backend = new CIjlJpegConversion();
    }
    // A failed Init keeps the back-end.
    return m_backend->Init(width, height, bitCount, sampleBits, int32_t(format), quality) ? 1 : 0;
  }
  m_backend = new CCudaJpegConversion();
  if (m_backend->Init(width, height, bitCount, sampleBits, int32_t(format), quality)) return 2;
  kestrelink::jpegfront::Log("Apply cuda JPEG encoding failed");
  delete m_backend;
  m_backend = nullptr;
  return 0;
}

// The forwarding calls need a back-end; without one they answer false.
bool CJpegConversion::EncodeJpeg(void* plane0, void* plane1, void* plane2, void* dst, int* encodedSize,
                                 void* extra) {
  return m_backend != nullptr && m_backend->Encode(plane0, plane1, plane2, dst, encodedSize, extra);
}

bool CJpegConversion::DecodeJpeg(void* src, void* dst) { return m_backend != nullptr && m_backend->Decode(src, dst); }

bool CJpegConversion::GetDecodeImageInfo(uint32_t format, uint32_t bitCount, uint32_t, uint32_t& outFormat,
                                         uint32_t& outBitCount, uint32_t& outSampleBits) {
  const kestrelink::jpegfront::DecodeInfo info = kestrelink::jpegfront::DecodeImageInfo(format, bitCount);
  outFormat = info.format;
  outBitCount = info.bitCount;
  outSampleBits = info.sampleBits;
  return info.format != 0;
}

bool CJpegConversion::WriteJpegToFile(const char* path, void* plane0, void* plane1, void* plane2, void* metadata,
                                      unsigned short metadataSize) {
  return m_backend != nullptr && m_backend->WriteFile(path, plane0, plane1, plane2, metadata, metadataSize);
}

bool CJpegConversion::WriteJpegToFileU(const unsigned short* path, void* plane0, void* plane1, void* plane2,
                                       void* metadata, unsigned short metadataSize) {
  return m_backend != nullptr && m_backend->WriteFileU(path, plane0, plane1, plane2, metadata, metadataSize);
}

bool CJpegConversion::SetDecodeWithRTSP() {
  delete m_backend;
  m_backend = new CIntelJpegConversion();
  return true;
}

bool CJpegConversion::DecodeJpegFromRTSP(int size, void* src, void* dst, int, int& used) {
  // The current value of used stands in for the fourth argument.
  return m_backend != nullptr && m_backend->DecodeRtsp(size, src, dst, used, used);
}
