#include "jpeg/front/CJpegConversionBase.h"

CJpegConversionBase::~CJpegConversionBase() {
  if (m_bufferSize != 0) delete[] m_buffer;
}

bool CJpegConversionBase::Init(uint32_t width, uint32_t height, uint32_t bitCount, uint32_t sampleBits,
                               int32_t format, int32_t quality) {
  m_width = width;
  m_height = height;
  m_bitCount = bitCount;
  m_sampleBits = sampleBits;
  m_format = format;
  m_quality = quality;
  return true;
}

bool CJpegConversionBase::Borrowed(void* frame) {
  if (m_bufferSize != 0) delete[] m_buffer;
  m_bufferSize = 0;
  m_buffer = static_cast<uint8_t*>(frame);
  return true;
}

uint8_t* CJpegConversionBase::Owned(uint32_t bytesPerPixel) {
  // Sizes are 32-bit, as the frames' own.
  const uint32_t bytes = m_width * m_height * bytesPerPixel;
  if (m_bufferSize == 0 || m_bufferSize < bytes) {
    if (m_bufferSize != 0) delete[] m_buffer;
    // Zeroed: a few conversions leave bytes of the frame as they found them.
    m_buffer = new uint8_t[bytes == 0 ? 1 : bytes]();
    m_bufferSize = bytes == 0 ? 1 : bytes;
  }
  return m_buffer;
}

bool CJpegConversionBase::Normalise(void* plane0, void* plane1, void* plane2) {
  CIppImageConverter& c = m_converter;
  const uint32_t w = m_width, h = m_height;
  switch (m_format) {
    case 100: case 101:
      m_encodeFormat = 100;
      if (m_bitCount == 8) return Borrowed(plane2);
      return c.Mono16ToMono8(w, h, m_sampleBits, plane2, Owned(1), false);
    case 112: case 113: case 114: case 115:
      m_encodeFormat = 100;
      return c.Mono16ToMono8(w, h, m_sampleBits, plane2, Owned(1), false);
    case 123:
      m_encodeFormat = 200;
      return c.BGR10PixelPackedToBGR24(w, h, plane2, Owned(3), false);
    case 124:
      m_encodeFormat = 200;
      return c.BGR10PixelPackedPhoenixToBGR24(w, h, plane2, Owned(3), false);
    case 125:
      m_encodeFormat = 200;
      return c.RGB10PixelPackedPhoenixToBGR24(w, h, plane2, Owned(3), false);
    case 200:
      m_encodeFormat = 200;
      if (m_bitCount == 24) return Borrowed(plane2);
      return c.BGR48ToBGR24(w, h, m_sampleBits, plane2, Owned(3), false);
    case 300:
      m_encodeFormat = 500;
      if (m_bitCount == 24) return c.BGR24PToBGRx(w, h, plane0, plane1, plane2, Owned(4), false);
      if (m_sampleBits == 30) return c.BGR30PToBGRx(w, h, plane0, plane1, plane2, Owned(4), false);
      if (m_sampleBits == 36) return c.BGR36PToBGRx(w, h, plane0, plane1, plane2, Owned(4), false);
      return c.BGR42PToBGRx(w, h, 14, plane0, plane1, plane2, Owned(4), false);  // 14 bits a plane
    case 400:
      m_encodeFormat = 400;
      if (m_bitCount != 24) return false;  // 48-bit RGB is accepted but has no reduction
      return Borrowed(plane2);
    case 500:
      m_encodeFormat = 500;
      if (m_bitCount == 32) return Borrowed(plane2);
      return c.BGR64ToBGRx(w, h, m_sampleBits, plane2, Owned(4), false);
    case 600:
      m_encodeFormat = 600;
      return Borrowed(plane2);
    case 700:
      m_encodeFormat = 200;
      return c.UVY422ToBGR24(w, h, plane2, Owned(3), false);
    case 800:
      m_encodeFormat = 200;
      return c.UVY411ToBGR24(w, h, plane2, Owned(3), false);
    case 900:
      m_encodeFormat = 900;
      return Borrowed(plane2);
    case 905:
      m_encodeFormat = 200;
      return c.BGR555PackedToBGR24(w, h, plane2, Owned(3), false);
    case 906:
      m_encodeFormat = 200;
      return c.BGR565PackedToBGR24(w, h, plane2, Owned(3), false);
    default:
      return false;
  }
}
