#pragma once
// The hardware back-end's decoder: Media SDK decoding into system-memory NV12
// surfaces, converted to BGR24. The front never reaches it; Decode answers
// false even after it delivered images, a settled behaviour of the back-end.
#include <cstdint>
#include <memory>

#include "h264/MfxDecodePipeline.h"
#include "mfx/SysMemFrameAllocator.h"

class CIntelMediaDecoder {
 public:
  CIntelMediaDecoder();
  ~CIntelMediaDecoder();
  CIntelMediaDecoder(const CIntelMediaDecoder&) = delete;
  CIntelMediaDecoder& operator=(const CIntelMediaDecoder&) = delete;

  bool Decode(uint32_t width, uint32_t height, uint32_t size, uint8_t* data, uint8_t* image);
  // Closes the decoder and frees the conversion planes.
  void Close();
  // An NV12 surface to BGR24 rows of width * 3 bytes; false for any other layout.
  bool Convert(const mfxFrameSurface1& surface, uint8_t* image);

 private:
  void OpenDecoder(mfxBitstream* bitstream, uint32_t width, uint32_t height);

  SysMemFrameAllocator m_allocator;
  kestrelink::h264::MfxDecodePipeline m_pipeline;
  mfxBitstream m_bitstream{};
  bool m_open = false;
  std::unique_ptr<uint8_t[]> m_planeY, m_planeU, m_planeV;
  size_t m_planeBytes = 0;
};
