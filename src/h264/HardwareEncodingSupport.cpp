// Whether Media SDK encodes on the hardware here. The answer is asked once a
// process and kept in one word (all ones: not asked yet); two threads that
// race both do the work and store the same answer. Beside it, whether any
// run-time encodes here, which picks the front's encoder: asked once a
// process under a lock, so that fronts made side by side open one probe
// session between them.
#include "h264/HardwareEncodingSupport.h"

#include <atomic>
#include <mutex>

#include "h264/H264Log.h"
#include "h264/MediaSdkSession.h"

namespace kestrelink::h264 {

namespace {

constexpr uint32_t kNotAsked = 0xFFFFFFFF;
std::atomic<uint32_t> g_answer{kNotAsked};
std::mutex g_encodesHereLock;
uint32_t g_encodesHere = kNotAsked;  // guarded by g_encodesHereLock

// Opens a session on impl and logs as the encoder does; true when it opened
// and can encode, with its implementation in `actual`.
bool OpenAndLog(mfxIMPL impl, mfxIMPL& actual) {
  mfxVersion version{{1, 1}};
  mfxSession session = nullptr;
  const mfxStatus status = MFXInit(impl, &version, &session);
  Log("********m_mfxVideoSession.Init***** sts: %d", status);
  if (status != MFX_ERR_NONE) return false;
  actual = 0;
  const mfxStatus query = MFXQueryIMPL(session, &actual);
  Log(IsImpl(actual, MFX_IMPL_HARDWARE) ? "********Encoder run as Hardware Encoding*****sts: %d"
                                        : "********Encoder run as Software Encoding*****sts: %d",
      query);
  const bool encodes = query == MFX_ERR_NONE && QueryAvcEncoder(session, 1920, 1088) >= MFX_ERR_NONE;
  MFXClose(session);
  return encodes;
}

}  // namespace

bool HardwareEncodingSupported() {
  const uint32_t kept = g_answer.load(std::memory_order_relaxed);
  if (kept != kNotAsked) return kept != 0;
  mfxIMPL actual = 0;
  bool supported = false;
  if (OpenAndLog(MFX_IMPL_HARDWARE_ANY, actual)) {
    // A second or later adapter reports MFX_IMPL_HARDWARE2..4 and does not count.
    supported = IsImpl(actual, MFX_IMPL_HARDWARE);
  } else {
    Log("*****Try to auto detect*****");
    OpenAndLog(MFX_IMPL_AUTO, actual);  // for the log only: the answer stays false
  }
  g_answer.store(supported ? 1 : 0, std::memory_order_relaxed);
  return supported;
}

bool MediaSdkEncodesHere() {
  std::lock_guard<std::mutex> lock(g_encodesHereLock);
  if (g_encodesHere == kNotAsked) g_encodesHere = MediaSdkCanEncode(MFX_IMPL_AUTO) ? 1 : 0;
  return g_encodesHere != 0;
}

void ForgetHardwareEncodingAnswer() {
  g_answer.store(kNotAsked, std::memory_order_relaxed);
  std::lock_guard<std::mutex> lock(g_encodesHereLock);
  g_encodesHere = kNotAsked;
}

}  // namespace kestrelink::h264
