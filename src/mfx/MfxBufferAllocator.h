#pragma once
// Buffer allocators the run-time calls back into. A system-memory block is
// laid out as:
//   offset 0   u32  id "BUFF"
//   offset 4   u32  size asked for
//   offset 8   u16  memory type asked for
//   offset 32       the caller's bytes, zeroed
#include <mfx/mfxvideo.h>

class MFXBufferAllocator : public mfxBufferAllocator {
 public:
  MFXBufferAllocator();
  virtual ~MFXBufferAllocator() = default;
  virtual mfxStatus AllocBuffer(mfxU32 size, mfxU16 type, mfxMemId* mid) = 0;
  virtual mfxStatus LockBuffer(mfxMemId mid, mfxU8** ptr) = 0;
  virtual mfxStatus UnlockBuffer(mfxMemId mid) = 0;
  virtual mfxStatus FreeBuffer(mfxMemId mid) = 0;
};

class SysMemBufferAllocator : public MFXBufferAllocator {
 public:
  static constexpr mfxU32 kHeaderBytes = 32;
  mfxStatus AllocBuffer(mfxU32 size, mfxU16 type, mfxMemId* mid) override;
  mfxStatus LockBuffer(mfxMemId mid, mfxU8** ptr) override;
  mfxStatus UnlockBuffer(mfxMemId mid) override;
  mfxStatus FreeBuffer(mfxMemId mid) override;
};
