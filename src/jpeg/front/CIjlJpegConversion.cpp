#include "jpeg/front/CIjlJpegConversion.h"

#include <cstring>
#include <string>

#include "jpeg/front/CodecDecode.h"
#include "jpeg/front/FrontLog.h"
#include "jpeg/front/WidePath.h"
#include "jpeg/front/JpegFormats.h"
#include "platform/OpenMP.h"

using namespace kestrelink::jpegfront;

bool CIjlJpegConversion::DescribeFrame(int32_t format, uint8_t* frame, int width, int height) {
  IjlProperties& p = m_properties;
  p = IjlProperties{};
  p.dibBytes = frame;
  p.dibWidth = width;
  p.dibHeight = height;
  p.quality = m_quality;
  switch (format) {
    case 100:  // grey, one channel
      p.dibChannels = 1, p.dibColour = kIjlGray, p.jpgChannels = 1, p.jpgColour = kIjlGray;
      p.jpgSampling = kIjlSamplingNone;
      return true;
    case 200:
      p.dibChannels = 3, p.dibColour = kIjlBgr, p.jpgChannels = 3, p.jpgColour = kIjlYcbcr, p.jpgSampling = kIjl444;
      return true;
    case 400:
      p.dibChannels = 3, p.dibColour = kIjlRgb, p.jpgChannels = 3, p.jpgColour = kIjlYcbcr, p.jpgSampling = kIjl444;
      return true;
    case 500:
      // The normalised BGRx frame goes in as RGBA, byte 0 first: a settled
      // behaviour of the format; decoding gives the bytes back in order.
      p.dibChannels = 4, p.dibColour = kIjlRgba, p.jpgChannels = 4, p.jpgColour = kIjlYcbcra, p.jpgSampling = kIjl411;
      return true;
    case 600:
      p.dibChannels = 3, p.dibColour = kIjlYcbcr, p.dibSampling = kIjl422, p.jpgChannels = 3;
      p.jpgColour = kIjlYcbcr, p.jpgSampling = kIjl422;
      return true;
    case 900:
      p.dibChannels = 3, p.dibColour = kIjlOther, p.jpgChannels = 3, p.jpgColour = kIjlOther, p.jpgSampling = kIjl444;
      return true;
    default:
      return false;
  }
}

bool CIjlJpegConversion::Encode(void* plane0, void* plane1, void* plane2, void* dst, int*, void*) {
  kestrelink::platform::SetBlockTimeZero();
  if (!Normalise(plane0, plane1, plane2)) return false;
  if (!DescribeFrame(m_encodeFormat, m_buffer, int(m_width), int(m_height))) return false;
  auto* out = static_cast<uint8_t*>(dst);
  m_properties.jpgBytes = out + 4;
  // Room for the stream: the frame's JPEG channels at a byte each.
  m_properties.jpgSizeBytes = uint32_t(m_properties.jpgChannels) * m_width * m_height;
  m_status = IjlWrite(m_properties, kIjlWriteBuffer);
  if (m_status != kIjlOk) {
    Log("Quillcast - EncodeJpegData - error IJL = %d", m_status);
    return false;
  }
  const uint32_t sizeWord = m_properties.jpgSizeBytes + 4;  // counts itself
  std::memcpy(out, &sizeWord, 4);
  return true;
}

bool CIjlJpegConversion::Decode(void* src, void* dst) {
  const DecodeInfo info = DecodeImageInfo(uint32_t(m_format), m_bitCount);
  // Mono is read without colour transform, like "other".
  if (!DescribeFrame(int32_t(info.format), static_cast<uint8_t*>(dst), 0, 0)) return false;
  uint32_t size = 0;
  std::memcpy(&size, src, 4);
  m_properties.jpgBytes = static_cast<uint8_t*>(src) + 4;
  m_properties.jpgSizeBytes = kestrelink::jpegfront::StreamBytes(size);
  m_status = IjlRead(m_properties, kIjlReadParamsBuffer);
  if (m_status != kIjlOk) {
    Log("Quillcast - JpegConversion - error read parametre = %d", m_status);
    return false;
  }
  m_status = IjlRead(m_properties, kIjlReadImageBuffer);
  if (m_status != kIjlOk) {
    Log("Quillcast - JpegConversion - error IJL = %d", m_status);
    return false;
  }
  return true;
}

bool CIjlJpegConversion::WriteFileAt(const char* path8, void* plane0, void* plane1, void* plane2) {
  kestrelink::platform::SetBlockTimeZero();
  if (!Normalise(plane0, plane1, plane2)) return false;
  if (!DescribeFrame(m_encodeFormat, m_buffer, int(m_width), int(m_height))) return false;
  m_properties.jpgFile = path8;
  m_status = IjlWrite(m_properties, kIjlWriteFile);
  if (m_status != kIjlOk) {
    Log("Quillcast - JpegConversion - error IJL = %d", m_status);
    return false;
  }
  return true;
}

// Metadata is not written by this back-end.
bool CIjlJpegConversion::WriteFile(const char* path, void* plane0, void* plane1, void* plane2, void*,
                                   unsigned short) {
  return WriteFileAt(path, plane0, plane1, plane2);
}

bool CIjlJpegConversion::WriteFileU(const unsigned short* path, void* plane0, void* plane1, void* plane2, void*,
                                    unsigned short) {
  const std::string path8 = kestrelink::jpegfront::WidePathToUtf8(path);
  return WriteFileAt(path8.c_str(), plane0, plane1, plane2);
}

bool CIjlJpegConversion::DecodeRtsp(int, void*, void*, int, int& used) {
  used = 0;
  return false;
}
