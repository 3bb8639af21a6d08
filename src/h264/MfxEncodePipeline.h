#pragma once
// The Media SDK side of the hardware encoder: the session, the encode and
// processing components, the allocator, and the frame loop. The encoder
// drives it one frame at a time (EncodeOneFrame); the queued path with its
// delivery thread serves a client that passes a notifier.
#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

#include <mfx/mfxstructures.h>

#include "h264/INotifier.h"
#include "mfx/MfxFrameAllocator.h"
#include "mfx/MfxVideoSession.h"

namespace kestrelink::h264 {

// A buffer that the encoder owns and the pipeline may replace.
struct WorkBuffer {
  std::unique_ptr<uint8_t[]> data;
  uint32_t size = 0;
};

class MfxEncodePipeline {
 public:
  // Opens a session on MFX_IMPL_AUTO.
  MfxEncodePipeline();
  ~MfxEncodePipeline();
  MfxEncodePipeline(const MfxEncodePipeline&) = delete;
  MfxEncodePipeline& operator=(const MfxEncodePipeline&) = delete;

  // Closes what is open and opens a session on impl (API 1.1), which counts
  // only if it can encode a frame of width by height. 0 or the failing status.
  mfxStatus ResetSession(mfxIMPL impl, uint32_t width, uint32_t height);
  mfxStatus Init(mfxVideoParam* encParams, mfxVideoParam* vppParams, INotifier* notifier);
  // Encodes one frame into the work buffer, waits for it and copies it to the
  // bitstream's Data, without a leading access unit delimiter.
  mfxStatus EncodeOneFrame(mfxFrameSurface1* surface, mfxBitstream* bitstream, WorkBuffer& work);
  // The queued path: the frame goes into a task that the delivery thread
  // syncs and hands to the notifier.
  mfxStatus EncodeFrame(mfxFrameSurface1* surface);
  // Installs a client's allocator; the pipeline doesn't own it.
  void SetAllocator(MFXFrameAllocator* allocator, bool videoMemory);

  mfxSession Session() const { return m_session; }
  bool HasEncoder() const { return m_encode != nullptr; }
  bool PartialAcceleration() const { return m_partialAcceleration; }
  bool DeliveryRunning() const { return m_thread.joinable(); }

 private:
  struct Task {
    mfxBitstream bitstream{};
    std::unique_ptr<uint8_t[]> data;
    mfxSyncPoint sync = nullptr;
  };

  void FreeAll();       // closes the components, drops queues and surfaces
  void FreeSurfaces();  // the processing surfaces and the own allocator's frames
  void StopThread();
  int DeliveryLoop();
  mfxFrameSurface1* FreeVppSurface();

  mfxVideoParam m_encParams{};
  mfxVideoParam m_vppParams{};
  mfxExtBuffer* m_extBuffers[1] = {};
  mfxExtVPPDoNotUse m_doNotUse{};
  mfxU32 m_doNotUseList[2] = {};
  MFXVideoSession m_session;
  std::unique_ptr<MFXVideoENCODE> m_encode;
  std::unique_ptr<MFXVideoVPP> m_vpp;
  std::list<mfxFrameSurface1*> m_pendingFrames;
  std::list<std::unique_ptr<Task>> m_tasks;
  std::unique_ptr<mfxFrameSurface1[]> m_vppSurfaces;
  uint32_t m_vppSurfaceCount = 0;
  MFXFrameAllocator* m_allocator = nullptr;
  bool m_ownsAllocator = false;
  bool m_videoMemoryAllocator = false;
  mfxFrameAllocResponse m_allocResponse{};
  INotifier* m_notifier = nullptr;
  std::thread m_thread;
  std::atomic<bool> m_stopRequested{false};
  std::mutex m_lock;
  bool m_useVpp = false;
  uint32_t m_maxPending = 0;
  bool m_partialAcceleration = false;
};

}  // namespace kestrelink::h264
