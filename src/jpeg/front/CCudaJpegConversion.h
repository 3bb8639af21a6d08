#pragma once
// The GPU back-end: 8-bit mono frames of at least 128 x 128 encoded by the
// companion library, one encoder of the process at a time. Decoding goes
// through the library's own codec.
#include <cstdint>

#include "jpeg/front/CJpegConversionBase.h"

class CCudaJpegConversion : public CJpegConversionBase {
 public:
  ~CCudaJpegConversion() override;

  bool Init(uint32_t width, uint32_t height, uint32_t bitCount, uint32_t sampleBits, int32_t format,
            int32_t quality) override;
  // Leaves the size word alone: the length comes back through encodedSize.
  bool Encode(void* plane0, void* plane1, void* plane2, void* dst, int* encodedSize, void* extra) override;
  bool Decode(void* src, void* dst) override;
  bool WriteFile(const char* path, void* plane0, void* plane1, void* plane2, void* metadata,
                 unsigned short metadataSize) override;
  bool WriteFileU(const unsigned short* path, void* plane0, void* plane1, void* plane2, void* metadata,
                  unsigned short metadataSize) override;
  bool DecodeRtsp(int size, void* src, void* dst, int unused, int& used) override;

  int32_t DeviceIndex() const { return m_deviceIndex; }

 private:
  bool FrameFits() const;

  int32_t m_deviceIndex = -1;
  uint64_t m_encoderHandle = 0;
};
