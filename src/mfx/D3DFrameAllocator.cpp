#include "mfx/D3DFrameAllocator.h"

D3DFrameAllocator::~D3DFrameAllocator() { ReleaseResources(); }

mfxStatus D3DFrameAllocator::Init(mfxAllocatorParams*) { return MFX_ERR_UNSUPPORTED; }

mfxStatus D3DFrameAllocator::Close() {
  ReleaseResources();
  return MFX_ERR_NONE;
}

mfxStatus D3DFrameAllocator::CheckRequestType(mfxFrameAllocRequest*) { return MFX_ERR_UNSUPPORTED; }
mfxStatus D3DFrameAllocator::AllocImpl(mfxFrameAllocRequest*, mfxFrameAllocResponse*) { return MFX_ERR_UNSUPPORTED; }
mfxStatus D3DFrameAllocator::ReleaseResponse(mfxFrameAllocResponse*) { return MFX_ERR_UNSUPPORTED; }
mfxStatus D3DFrameAllocator::LockFrame(mfxMemId, mfxFrameData*) { return MFX_ERR_UNSUPPORTED; }
mfxStatus D3DFrameAllocator::UnlockFrame(mfxMemId, mfxFrameData*) { return MFX_ERR_UNSUPPORTED; }
mfxStatus D3DFrameAllocator::GetFrameHDL(mfxMemId, mfxHDL*) { return MFX_ERR_UNSUPPORTED; }
void D3DFrameAllocator::ReleaseResources() {}
