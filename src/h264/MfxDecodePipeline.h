#pragma once
// The Media SDK side of the hardware decoder: session, decode component and
// its pool of system-memory surfaces.
#include <cstdint>
#include <memory>
#include <mutex>

#include <mfx/mfxstructures.h>

#include "mfx/MfxFrameAllocator.h"
#include "mfx/MfxVideoSession.h"

namespace kestrelink::h264 {

class MfxDecodePipeline {
 public:
  MfxDecodePipeline() = default;
  ~MfxDecodePipeline();
  MfxDecodePipeline(const MfxDecodePipeline&) = delete;
  MfxDecodePipeline& operator=(const MfxDecodePipeline&) = delete;

  // Opens a session on impl (API 1.1) with the allocator installed.
  mfxStatus ResetSession(mfxIMPL impl, MFXFrameAllocator* allocator);
  // Reads the stream's header (or takes the size given), allocates surfaces and starts decoding.
  mfxStatus Open(mfxBitstream* bitstream, uint32_t width, uint32_t height);
  // One decoded frame in *out, synced.
  mfxStatus DecodeFrame(mfxBitstream* bitstream, mfxFrameSurface1** out);
  void Close();
  bool IsOpen() const { return m_decode != nullptr && m_surfaceCount > 0; }
  bool IsHardware();

 private:
  mfxStatus AllocSurfaces();
  void FreeSurfaces();
  mfxFrameSurface1* FreeSurface();

  MFXVideoSession m_session;
  std::unique_ptr<MFXVideoDECODE> m_decode;
  std::unique_ptr<mfxFrameSurface1[]> m_surfaces;
  mfxFrameAllocResponse m_allocResponse{};
  uint32_t m_surfaceCount = 0;
  bool m_headerParsed = false;
  uint32_t m_decodeFlags = 0;
  mfxVideoParam m_params{};
  MFXFrameAllocator* m_allocator = nullptr;
  uint32_t m_extraSurfaces = 1;
  std::mutex m_lock;
  bool m_partialAcceleration = false;
};

}  // namespace kestrelink::h264
