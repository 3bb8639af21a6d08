#pragma once
// Frames in system memory, each one buffer of its buffer allocator:
//   offset 0   u32  id "FRME"
//   offset 4   u32  FourCC
//   offset 8   u16  width, u16 height (as requested)
//   offset 96       pixels: width and height each rounded up to 32, planes by FourCC
#include "mfx/MfxBufferAllocator.h"
#include "mfx/MfxFrameAllocator.h"

class SysMemFrameAllocator : public BaseFrameAllocator {
 public:
  static constexpr mfxU32 kHeaderBytes = 96;
  ~SysMemFrameAllocator() override;
  // Only without parameters: the allocator makes and owns its buffer allocator.
  mfxStatus Init(mfxAllocatorParams* params) override;
  mfxStatus Close() override;
  mfxStatus LockFrame(mfxMemId mid, mfxFrameData* ptr) override;
  mfxStatus UnlockFrame(mfxMemId mid, mfxFrameData* ptr) override;
  mfxStatus GetFrameHDL(mfxMemId mid, mfxHDL* handle) override;

 protected:
  mfxStatus CheckRequestType(mfxFrameAllocRequest* request) override;
  mfxStatus ReleaseResponse(mfxFrameAllocResponse* response) override;
  mfxStatus AllocImpl(mfxFrameAllocRequest* request, mfxFrameAllocResponse* response) override;

 private:
  MFXBufferAllocator* m_bufferAllocator = nullptr;
  bool m_ownsBufferAllocator = false;
};
