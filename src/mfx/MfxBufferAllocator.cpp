#include "mfx/MfxBufferAllocator.h"

#include <cstdlib>
#include <cstring>

#include <mfx/mfxstructures.h>

namespace {

constexpr mfxU32 kBufferId = MFX_MAKEFOURCC('B', 'U', 'F', 'F');

MFXBufferAllocator* Self(mfxHDL pthis) { return static_cast<MFXBufferAllocator*>(pthis); }

bool IsBufferBlock(mfxMemId mid) {
  if (mid == nullptr) return false;
  mfxU32 id = 0;
  std::memcpy(&id, mid, sizeof id);
  return id == kBufferId;
}

}  // namespace

MFXBufferAllocator::MFXBufferAllocator() : mfxBufferAllocator{} {
  pthis = this;
  Alloc = [](mfxHDL p, mfxU32 size, mfxU16 type, mfxMemId* mid) { return Self(p)->AllocBuffer(size, type, mid); };
  Lock = [](mfxHDL p, mfxMemId mid, mfxU8** ptr) { return Self(p)->LockBuffer(mid, ptr); };
  Unlock = [](mfxHDL p, mfxMemId mid) { return Self(p)->UnlockBuffer(mid); };
  Free = [](mfxHDL p, mfxMemId mid) { return Self(p)->FreeBuffer(mid); };
}

mfxStatus SysMemBufferAllocator::AllocBuffer(mfxU32 size, mfxU16 type, mfxMemId* mid) {
  if (mid == nullptr) return MFX_ERR_NULL_PTR;
  if (!(type & MFX_MEMTYPE_SYSTEM_MEMORY)) return MFX_ERR_UNSUPPORTED;
  auto* block = static_cast<mfxU8*>(std::calloc(size_t(size) + kHeaderBytes, 1));
  if (block == nullptr) return MFX_ERR_MEMORY_ALLOC;
  std::memcpy(block, &kBufferId, 4);
  std::memcpy(block + 4, &size, 4);
  std::memcpy(block + 8, &type, 2);
  *mid = block;
  return MFX_ERR_NONE;
}

mfxStatus SysMemBufferAllocator::LockBuffer(mfxMemId mid, mfxU8** ptr) {
  if (ptr == nullptr) return MFX_ERR_NULL_PTR;
  if (!IsBufferBlock(mid)) return MFX_ERR_INVALID_HANDLE;
  *ptr = static_cast<mfxU8*>(mid) + kHeaderBytes;
  return MFX_ERR_NONE;
}

mfxStatus SysMemBufferAllocator::UnlockBuffer(mfxMemId mid) {
  return IsBufferBlock(mid) ? MFX_ERR_NONE : MFX_ERR_INVALID_HANDLE;
}

mfxStatus SysMemBufferAllocator::FreeBuffer(mfxMemId mid) {
  if (!IsBufferBlock(mid)) return MFX_ERR_INVALID_HANDLE;
  std::free(mid);
  return MFX_ERR_NONE;
}
