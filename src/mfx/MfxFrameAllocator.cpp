#include "mfx/MfxFrameAllocator.h"

namespace {

MFXFrameAllocator* Self(mfxHDL pthis) { return static_cast<MFXFrameAllocator*>(pthis); }

// Slot of a shared response by the component the request comes from; -1 for none.
int SharedSlot(mfxU16 type) {
  if (type & MFX_MEMTYPE_FROM_ENCODE) return 0;
  if (type & MFX_MEMTYPE_FROM_DECODE) return 1;
  if (type & MFX_MEMTYPE_FROM_VPPIN) return 2;
  if (type & MFX_MEMTYPE_FROM_VPPOUT) return 3;
  return -1;
}

}  // namespace

MFXFrameAllocator::MFXFrameAllocator() : mfxFrameAllocator{} {
  pthis = this;
  Alloc = [](mfxHDL p, mfxFrameAllocRequest* rq, mfxFrameAllocResponse* rs) { return Self(p)->AllocFrames(rq, rs); };
  Lock = [](mfxHDL p, mfxMemId mid, mfxFrameData* d) { return Self(p)->LockFrame(mid, d); };
  Unlock = [](mfxHDL p, mfxMemId mid, mfxFrameData* d) { return Self(p)->UnlockFrame(mid, d); };
  GetHDL = [](mfxHDL p, mfxMemId mid, mfxHDL* h) { return Self(p)->GetFrameHDL(mid, h); };
  Free = [](mfxHDL p, mfxFrameAllocResponse* rs) { return Self(p)->FreeFrames(rs); };
}

mfxStatus BaseFrameAllocator::CheckRequestType(mfxFrameAllocRequest* request) {
  if (request == nullptr) return MFX_ERR_NULL_PTR;
  const mfxU16 memory =
      MFX_MEMTYPE_DXVA2_DECODER_TARGET | MFX_MEMTYPE_DXVA2_PROCESSOR_TARGET | MFX_MEMTYPE_SYSTEM_MEMORY;
  return (request->Type & memory) ? MFX_ERR_NONE : MFX_ERR_UNSUPPORTED;
}

mfxStatus BaseFrameAllocator::AllocFrames(mfxFrameAllocRequest* request, mfxFrameAllocResponse* response) {
  if (request == nullptr || response == nullptr || request->NumFrameSuggested == 0) return MFX_ERR_MEMORY_ALLOC;
  if (CheckRequestType(request) != MFX_ERR_NONE) return MFX_ERR_UNSUPPORTED;
  const int slot = SharedSlot(request->Type);
  if (!(request->Type & MFX_MEMTYPE_EXTERNAL_FRAME) || slot < 0) {
    m_responses.emplace_back();
    const mfxStatus status = AllocImpl(request, response);
    if (status != MFX_ERR_NONE) {
      m_responses.pop_back();
      return status;
    }
    m_responses.back() = *response;
    return MFX_ERR_NONE;
  }
  SharedResponse& shared = m_shared[slot];
  if (shared.references > 0) {
    if (request->NumFrameMin > shared.response.NumFrameActual) return MFX_ERR_MEMORY_ALLOC;
    *response = shared.response;
    ++shared.references;
    return MFX_ERR_NONE;
  }
  const mfxStatus status = AllocImpl(request, response);
  if (status != MFX_ERR_NONE) return status;
  shared.response = *response;
  shared.references = 1;
  return MFX_ERR_NONE;
}

mfxStatus BaseFrameAllocator::FreeFrames(mfxFrameAllocResponse* response) {
  if (response == nullptr) return MFX_ERR_NULL_PTR;
  for (SharedResponse& shared : m_shared) {
    if (shared.references > 0 && shared.response.mids == response->mids) {
      if (--shared.references > 0) return MFX_ERR_NONE;
      const mfxStatus status = ReleaseResponse(&shared.response);
      shared = SharedResponse{};
      return status;
    }
  }
  for (auto it = m_responses.begin(); it != m_responses.end(); ++it) {
    if (it->mids == response->mids) {
      const mfxStatus status = ReleaseResponse(&*it);
      m_responses.erase(it);
      return status;
    }
  }
  return MFX_ERR_INVALID_HANDLE;
}

mfxStatus BaseFrameAllocator::Close() {
  for (mfxFrameAllocResponse& response : m_responses) ReleaseResponse(&response);
  m_responses.clear();
  for (SharedResponse& shared : m_shared) {
    if (shared.references > 0) ReleaseResponse(&shared.response);
    shared = SharedResponse{};
  }
  return MFX_ERR_NONE;
}
