#pragma once
// The video-memory allocator. This platform has no video-memory surfaces to
// give, so every request is refused; nothing hands it to a pipeline.
#include "mfx/MfxFrameAllocator.h"

struct D3DAllocatorParams : mfxAllocatorParams {
  void* manager = nullptr;
};

class D3DFrameAllocator : public BaseFrameAllocator {
 public:
  ~D3DFrameAllocator() override;
  mfxStatus Init(mfxAllocatorParams* params) override;
  mfxStatus Close() override;
  mfxStatus LockFrame(mfxMemId mid, mfxFrameData* ptr) override;
  mfxStatus UnlockFrame(mfxMemId mid, mfxFrameData* ptr) override;
  mfxStatus GetFrameHDL(mfxMemId mid, mfxHDL* handle) override;

 protected:
  mfxStatus CheckRequestType(mfxFrameAllocRequest* request) override;
  mfxStatus ReleaseResponse(mfxFrameAllocResponse* response) override;
  mfxStatus AllocImpl(mfxFrameAllocRequest* request, mfxFrameAllocResponse* response) override;
  virtual void ReleaseResources();
};
