#include "mfx/SysMemFrameAllocator.h"

#include <cstring>
#include <new>

#include <mfx/mfxstructures.h>

namespace {

constexpr mfxU32 kFrameId = MFX_MAKEFOURCC('F', 'R', 'M', 'E');

constexpr mfxU32 Align32(mfxU32 value) { return (value + 31) & ~mfxU32(31); }

// Bits per pixel of the layouts this allocator can hold; 0 for any other.
mfxU32 BitsPerPixel(mfxU32 fourcc) {
  switch (fourcc) {
    case MFX_FOURCC_NV12:
    case MFX_FOURCC_YV12: return 12;
    case MFX_FOURCC_YUY2: return 16;
    case MFX_FOURCC_RGB3: return 24;
    case MFX_FOURCC_RGB4: return 32;
    default: return 0;
  }
}

}  // namespace

SysMemFrameAllocator::~SysMemFrameAllocator() { Close(); }

mfxStatus SysMemFrameAllocator::Init(mfxAllocatorParams* params) {
  if (params != nullptr) return MFX_ERR_NOT_INITIALIZED;
  if (m_bufferAllocator == nullptr) {
    m_bufferAllocator = new (std::nothrow) SysMemBufferAllocator;
    if (m_bufferAllocator == nullptr) return MFX_ERR_MEMORY_ALLOC;
    m_ownsBufferAllocator = true;
  }
  return MFX_ERR_NONE;
}

mfxStatus SysMemFrameAllocator::Close() {
  if (m_bufferAllocator != nullptr) BaseFrameAllocator::Close();
  if (m_ownsBufferAllocator) delete m_bufferAllocator;
  m_bufferAllocator = nullptr;
  m_ownsBufferAllocator = false;
  return MFX_ERR_NONE;
}

mfxStatus SysMemFrameAllocator::CheckRequestType(mfxFrameAllocRequest* request) {
  const mfxStatus status = BaseFrameAllocator::CheckRequestType(request);
  if (status != MFX_ERR_NONE) return status;
  return (request->Type & MFX_MEMTYPE_SYSTEM_MEMORY) ? MFX_ERR_NONE : MFX_ERR_UNSUPPORTED;
}

mfxStatus SysMemFrameAllocator::AllocImpl(mfxFrameAllocRequest* request, mfxFrameAllocResponse* response) {
  if (m_bufferAllocator == nullptr) return MFX_ERR_NOT_INITIALIZED;
  const mfxFrameInfo& info = request->Info;
  const mfxU32 bits = BitsPerPixel(info.FourCC);
  if (bits == 0) return MFX_ERR_UNSUPPORTED;
  const mfxU32 pixelBytes = Align32(info.Width) * bits * Align32(info.Height) / 8;
  const mfxU16 count = request->NumFrameSuggested;
  auto* mids = new (std::nothrow) mfxMemId[count]();
  if (mids == nullptr) return MFX_ERR_MEMORY_ALLOC;
  mfxU16 made = 0;
  mfxStatus status = MFX_ERR_NONE;
  for (; made < count; ++made) {
    status = m_bufferAllocator->AllocBuffer(kHeaderBytes + pixelBytes, MFX_MEMTYPE_SYSTEM_MEMORY, &mids[made]);
    if (status != MFX_ERR_NONE) break;
    mfxU8* block = nullptr;
    status = m_bufferAllocator->LockBuffer(mids[made], &block);
    if (status != MFX_ERR_NONE) break;
    std::memcpy(block, &kFrameId, 4);
    std::memcpy(block + 4, &info.FourCC, 4);
    std::memcpy(block + 8, &info.Width, 2);
    std::memcpy(block + 10, &info.Height, 2);
    m_bufferAllocator->UnlockBuffer(mids[made]);
  }
  if (made < count) {
    for (mfxU16 i = 0; i < count; ++i)
      if (mids[i] != nullptr) m_bufferAllocator->FreeBuffer(mids[i]);
    delete[] mids;
    return status;
  }
  response->mids = mids;
  response->NumFrameActual = count;
  return MFX_ERR_NONE;
}

mfxStatus SysMemFrameAllocator::ReleaseResponse(mfxFrameAllocResponse* response) {
  if (m_bufferAllocator == nullptr) return MFX_ERR_NOT_INITIALIZED;
  if (response->mids != nullptr) {
    for (mfxU16 i = 0; i < response->NumFrameActual; ++i)
      if (response->mids[i] != nullptr) m_bufferAllocator->FreeBuffer(response->mids[i]);
  }
  delete[] response->mids;
  response->mids = nullptr;
  return MFX_ERR_NONE;
}

mfxStatus SysMemFrameAllocator::LockFrame(mfxMemId mid, mfxFrameData* ptr) {
  if (m_bufferAllocator == nullptr) return MFX_ERR_NOT_INITIALIZED;
  if (ptr == nullptr) return MFX_ERR_NULL_PTR;
  mfxU8* block = nullptr;
  const mfxStatus status = m_bufferAllocator->LockBuffer(mid, &block);
  if (status != MFX_ERR_NONE) return status;
  mfxU32 id = 0, fourcc = 0;
  mfxU16 width = 0, height = 0;
  std::memcpy(&id, block, 4);
  if (id != kFrameId) {
    m_bufferAllocator->UnlockBuffer(mid);
    return MFX_ERR_INVALID_HANDLE;
  }
  std::memcpy(&fourcc, block + 4, 4);
  std::memcpy(&width, block + 8, 2);
  std::memcpy(&height, block + 10, 2);
  const mfxU32 w = Align32(width), h = Align32(height);
  mfxU8* pixels = block + kHeaderBytes;
  switch (fourcc) {
    case MFX_FOURCC_NV12:
      ptr->Y = pixels;
      ptr->U = pixels + w * h;
      ptr->V = ptr->U + 1;
      ptr->Pitch = mfxU16(w);
      break;
    case MFX_FOURCC_YV12:
      ptr->Y = pixels;
      ptr->V = pixels + w * h;
      ptr->U = ptr->V + (w >> 1) * (h >> 1);
      ptr->Pitch = mfxU16(w);
      break;
    case MFX_FOURCC_YUY2:
      ptr->Y = pixels;
      ptr->U = pixels + 1;
      ptr->V = pixels + 3;
      ptr->Pitch = mfxU16(2 * w);
      break;
    case MFX_FOURCC_RGB3:
      ptr->B = pixels;
      ptr->G = pixels + 1;
      ptr->R = pixels + 2;
      ptr->Pitch = mfxU16(3 * w);
      break;
    case MFX_FOURCC_RGB4:
      ptr->B = pixels;
      ptr->G = pixels + 1;
      ptr->R = pixels + 2;
      ptr->A = pixels + 3;
      ptr->Pitch = mfxU16(4 * w);
      break;
    default:
      m_bufferAllocator->UnlockBuffer(mid);
      return MFX_ERR_UNSUPPORTED;
  }
  return MFX_ERR_NONE;
}

mfxStatus SysMemFrameAllocator::UnlockFrame(mfxMemId mid, mfxFrameData* ptr) {
  if (m_bufferAllocator == nullptr) return MFX_ERR_NOT_INITIALIZED;
  const mfxStatus status = m_bufferAllocator->UnlockBuffer(mid);
  if (ptr != nullptr) {
    ptr->Y = ptr->U = ptr->V = ptr->A = nullptr;
    ptr->Pitch = 0;
  }
  return status;
}

mfxStatus SysMemFrameAllocator::GetFrameHDL(mfxMemId, mfxHDL*) { return MFX_ERR_UNSUPPORTED; }
