#pragma once
// The software back-end over the library's own codec, for 8-bit mono and
// 24-bit colour frames. JPEGbaselineMode (default 1; 0 asks for progressive
// scans) and JPEG444Mode (default 0, 2 x 2 chroma subsampling; non-zero
// keeps full chroma) come from the current user's Software\Velmor at
// construction.
#include <mutex>

#include "jpeg/front/CJpegConversionBase.h"

namespace kestrelink::jpeg {
class CBaseStreamOutput;
}

class CIntelJpegConversion : public CJpegConversionBase {
 public:
  CIntelJpegConversion();

  bool Encode(void* plane0, void* plane1, void* plane2, void* dst, int* encodedSize, void* extra) override;
  bool Decode(void* src, void* dst) override;
  bool WriteFile(const char* path, void* plane0, void* plane1, void* plane2, void* metadata,
                 unsigned short metadataSize) override;
  bool WriteFileU(const unsigned short* path, void* plane0, void* plane1, void* plane2, void* metadata,
                  unsigned short metadataSize) override;
  bool DecodeRtsp(int size, void* src, void* dst, int unused, int& used) override;

  int32_t Use444() const { return m_use444; }
  int32_t Baseline() const { return m_baseline; }

 private:
  // Encodes m_buffer (normalised) as channels of the given source colour.
  bool EncodeTo(kestrelink::jpeg::CBaseStreamOutput* out, int channels, int32_t sourceColour);
  // WriteFile and WriteFileU after the path is opened; path8 is UTF-8.
  bool WriteFileAt(const char* path8, void* plane0, void* plane1, void* plane2, void* metadata,
                   unsigned short metadataSize);

  int32_t m_use444 = 0;
  int32_t m_baseline = 1;
  std::mutex m_lock;  // one frame at a time through Encode
};
