#pragma once
// The back-end interface of CJpegConversion and the normalisation every
// back-end shares: the camera frame is reduced by CIppImageConverter to one of
// the layouts the encoders take (8-bit mono, BGR24, BGRx) in a buffer the
// object owns and reuses, or borrowed as it is.
#include <kestrelink/CIppImageConverter.h>

#include <cstdint>

class CJpegConversionBase {
 public:
  CJpegConversionBase() = default;
  virtual ~CJpegConversionBase();
  CJpegConversionBase(const CJpegConversionBase&) = delete;
  CJpegConversionBase& operator=(const CJpegConversionBase&) = delete;

  virtual bool Init(uint32_t width, uint32_t height, uint32_t bitCount, uint32_t sampleBits, int32_t format,
                    int32_t quality);
  virtual bool Encode(void* plane0, void* plane1, void* plane2, void* dst, int* encodedSize, void* extra) = 0;
  virtual bool Decode(void* src, void* dst) = 0;
  virtual bool WriteFile(const char* path, void* plane0, void* plane1, void* plane2, void* metadata,
                         unsigned short metadataSize) = 0;
  virtual bool WriteFileU(const unsigned short* path, void* plane0, void* plane1, void* plane2, void* metadata,
                          unsigned short metadataSize) = 0;
  virtual bool DecodeRtsp(int size, void* src, void* dst, int unused, int& used) = 0;

  int32_t EncodeFormat() const { return m_encodeFormat; }
  const uint8_t* NormalisedFrame() const { return m_buffer; }
  uint32_t OwnedBytes() const { return m_bufferSize; }

 protected:
  // Sets m_encodeFormat (100, 200, 400, 500, 600 or 900) and m_buffer; false
  // when the frame can't be normalised.
  bool Normalise(void* plane0, void* plane1, void* plane2);

  uint32_t m_width = 0;
  uint32_t m_height = 0;
  uint32_t m_bitCount = 0;
  uint32_t m_sampleBits = 0;
  int32_t m_format = 0;
  int32_t m_encodeFormat = 0;
  int32_t m_quality = 0;
  uint8_t* m_buffer = nullptr;
  uint32_t m_bufferSize = 0;  // bytes owned in m_buffer, 0 when borrowed
  CIppImageConverter m_converter;

 private:
  bool Borrowed(void* frame);  // the frame as it is; always true
  uint8_t* Owned(uint32_t bytesPerPixel);
};
