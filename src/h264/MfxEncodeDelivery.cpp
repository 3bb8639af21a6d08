// The queued encode path: frames go into tasks, and a delivery thread syncs
// each task and hands its bitstream to the notifier. The encoder of this
// library drives frames synchronously and never starts it.
#include <chrono>
#include <cstring>
#include <new>

#include "h264/MfxEncodePipeline.h"

namespace kestrelink::h264 {

namespace {
constexpr int kStopped = 3807;  // the thread's answer to a stop request
constexpr int kFailed = 1;
}  // namespace

void MfxEncodePipeline::StopThread() {
  if (!m_thread.joinable()) return;
  m_stopRequested = true;
  m_thread.join();
  m_stopRequested = false;
}

mfxFrameSurface1* MfxEncodePipeline::FreeVppSurface() {
  for (uint32_t i = 0; i < m_vppSurfaceCount; ++i)
    if (m_vppSurfaces[i].Data.Locked == 0) return &m_vppSurfaces[i];
  return nullptr;
}

mfxStatus MfxEncodePipeline::EncodeFrame(mfxFrameSurface1* surface) {
  std::lock_guard<std::mutex> lock(m_lock);
  if (!m_encode) return MFX_ERR_NOT_INITIALIZED;
  auto task = std::make_unique<Task>();
  const mfxFrameInfo& info = m_encParams.mfx.FrameInfo;
  uint32_t bytes = uint32_t(m_encParams.mfx.BufferSizeInKB) * 1000;
  if (bytes == 0) bytes = uint32_t(info.Width) * info.Height * 4;
  task->data.reset(new (std::nothrow) uint8_t[bytes]);
  if (!task->data) return MFX_ERR_MEMORY_ALLOC;
  task->bitstream.Data = task->data.get();
  task->bitstream.MaxLength = bytes;

  mfxFrameSurface1* input = surface;
  if (m_useVpp) {
    mfxFrameSurface1* out = FreeVppSurface();
    if (out == nullptr) return MFX_ERR_MORE_SURFACE;
    mfxSyncPoint vppSync = nullptr;
    const mfxStatus vpp = m_vpp->RunFrameVPPAsync(surface, out, nullptr, &vppSync);
    if (vpp < MFX_ERR_NONE) return vpp;
    input = out;
  }
  m_pendingFrames.push_back(surface);
  const mfxStatus status = m_encode->EncodeFrameAsync(nullptr, input, &task->bitstream, &task->sync);
  if (status < MFX_ERR_NONE && status != MFX_ERR_MORE_DATA) return status;
  m_tasks.push_back(std::move(task));
  return MFX_ERR_NONE;
}

int MfxEncodePipeline::DeliveryLoop() {
  while (!m_stopRequested) {
    bool idle = true;
    {
      std::lock_guard<std::mutex> lock(m_lock);
      for (auto it = m_pendingFrames.begin(); it != m_pendingFrames.end(); ++it) {
        if ((*it)->Data.Locked == 0) {
          m_pendingFrames.erase(it);
          break;
        }
      }
      if (!m_tasks.empty()) {
        Task& task = *m_tasks.front();
        const mfxStatus status = m_session.SyncOperation(task.sync, 0);
        if (status == MFX_ERR_NONE && task.bitstream.DataLength > 0 && m_notifier != nullptr)
          m_notifier->OnBitstream(&task.bitstream);
        if (status == MFX_ERR_NONE || status == MFX_ERR_MORE_DATA) {
          m_tasks.pop_front();
          idle = false;
        } else if (status != MFX_WRN_IN_EXECUTION) {
          m_encode->Close();
          if (!m_pendingFrames.empty()) m_pendingFrames.pop_front();
          m_stopRequested = true;
          return kFailed;
        }
      }
    }
    if (idle) std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return kStopped;
}

}  // namespace kestrelink::h264
