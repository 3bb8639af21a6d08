#pragma once
#include <cstdint>

#include <kestrelink/Export.h>

class CJpegConversionBase;

// Turns one camera frame into a JPEG image and back. InitConverter checks the
// frame's format code and depth and makes one of three back-ends: the
// library's own codec for 8- and 24-bit frames, a general JPEG library for
// every other depth, or the GPU companion (8-bit mono only). Frames in any
// accepted layout are first normalised (reduced to 8-bit mono, BGR24 or BGRx)
// into a buffer the back-end keeps for the next frame.
//
// Compressed buffers begin with a 32-bit little-endian size that counts
// itself (JPEG length + 4); the JPEG stream follows. The GPU back-end leaves
// that word alone and reports the length through encodedSize.
//
// Format codes: 100, 101 mono (8 or 16 bits); 112 to 115 mono 16; 123, 124,
// 125 10-bit packed colour (48); 200 BGR (24, 48); 300 three planes (24; 48
// with sample bits 30, 36, 42); 400 RGB (24, 48); 500 BGRx (32, 64); 600
// YCbCr 4:2:2, bytes Y0 Cb Y1 Cr (16); 700 UVY422 (16); 800 UVY411; 900 three
// bytes without colour meaning (24); 905 BGR555; 906 BGR565. Packed frames
// come in plane2; format 300 reads plane0, plane1, plane2.
class KESTRELINK_API CJpegConversion {
 public:
  CJpegConversion();
  ~CJpegConversion();
  // The back-end is owned: copies would share it.
  CJpegConversion(const CJpegConversion&) = delete;
  CJpegConversion& operator=(const CJpegConversion&) = delete;

  // 0 failure, 1 software back-end ready, 2 GPU back-end ready. A refused
  // combination leaves the present back-end in place; software false asks
  // for the GPU only, with no fallback.
  int InitConverter(uint32_t width, uint32_t height, uint32_t bitCount, uint32_t sampleBits, uint32_t format,
                    int quality, bool software);
  bool EncodeJpeg(void* plane0, void* plane1, void* plane2, void* dst, int* encodedSize, void* extra);
  bool DecodeJpeg(void* src, void* dst);
  // What decoding gives for a frame of this kind: format code, bits a pixel,
  // significant bits a sample; 0, 0, 0 and false for an unknown code.
  bool GetDecodeImageInfo(uint32_t format, uint32_t bitCount, uint32_t sampleBits, uint32_t& outFormat,
                          uint32_t& outBitCount, uint32_t& outSampleBits);
  // Writes a JPEG file; metadata, when given, goes into an APP1 segment
  // behind the encoder's headers.
  bool WriteJpegToFile(const char* path, void* plane0, void* plane1, void* plane2, void* metadata,
                       unsigned short metadataSize);
  bool WriteJpegToFileU(const unsigned short* path, void* plane0, void* plane1, void* plane2, void* metadata,
                        unsigned short metadataSize);  // UTF-16 path
  // Decode-only use: a software back-end without frame parameters.
  bool SetDecodeWithRTSP();
  // Decodes one complete JPEG image of size bytes (no size word); used
  // receives the input position reached. The fourth argument is not used.
  bool DecodeJpegFromRTSP(int size, void* src, void* dst, int unused, int& used);

 private:
  [[maybe_unused]] uint64_t m_reserved;  // neither read nor cleared
  CJpegConversionBase* m_backend;
};
