#pragma once
// The software back-end for every depth the library's own codec doesn't
// take, over a general JPEG library (IjlCore): 4-channel YCbCrA with 2 x 2
// chroma, 4:2:2 YCbCr sources, and three channels without colour transform.
#include "jpeg/front/CJpegConversionBase.h"
#include "jpeg/front/IjlCore.h"

class CIjlJpegConversion : public CJpegConversionBase {
 public:
  bool Encode(void* plane0, void* plane1, void* plane2, void* dst, int* encodedSize, void* extra) override;
  bool Decode(void* src, void* dst) override;
  bool WriteFile(const char* path, void* plane0, void* plane1, void* plane2, void* metadata,
                 unsigned short metadataSize) override;
  bool WriteFileU(const unsigned short* path, void* plane0, void* plane1, void* plane2, void* metadata,
                  unsigned short metadataSize) override;
  bool DecodeRtsp(int size, void* src, void* dst, int unused, int& used) override;

  int Status() const { return m_status; }

 private:
  // Fills the frame side of m_properties for format (100 ... 900).
  bool DescribeFrame(int32_t format, uint8_t* frame, int width, int height);
  bool WriteFileAt(const char* path8, void* plane0, void* plane1, void* plane2);

  kestrelink::jpegfront::IjlProperties m_properties;
  int m_status = 0;
};
