#pragma once
// Frame allocators the run-time calls back into. MFXFrameAllocator routes the
// C callbacks to virtual operations; BaseFrameAllocator keeps the responses it
// gave: a list for requests without the external-frame bit, and one shared
// response for each of four kinds (encoder, decoder, processing in and out)
// for requests with it, handed out again while it holds enough frames.
#include <list>

#include <mfx/mfxvideo.h>

struct mfxAllocatorParams {
  virtual ~mfxAllocatorParams() = default;
};

class MFXFrameAllocator : public mfxFrameAllocator {
 public:
  MFXFrameAllocator();
  virtual ~MFXFrameAllocator() = default;
  virtual mfxStatus Init(mfxAllocatorParams* params) = 0;
  virtual mfxStatus Close() = 0;
  virtual mfxStatus AllocFrames(mfxFrameAllocRequest* request, mfxFrameAllocResponse* response) = 0;
  virtual mfxStatus LockFrame(mfxMemId mid, mfxFrameData* ptr) = 0;
  virtual mfxStatus UnlockFrame(mfxMemId mid, mfxFrameData* ptr) = 0;
  virtual mfxStatus GetFrameHDL(mfxMemId mid, mfxHDL* handle) = 0;
  virtual mfxStatus FreeFrames(mfxFrameAllocResponse* response) = 0;
};

class BaseFrameAllocator : public MFXFrameAllocator {
 public:
  mfxStatus AllocFrames(mfxFrameAllocRequest* request, mfxFrameAllocResponse* response) override;
  mfxStatus FreeFrames(mfxFrameAllocResponse* response) override;
  mfxStatus Close() override;

 protected:
  // A request the allocator can serve at all: one memory kind named.
  virtual mfxStatus CheckRequestType(mfxFrameAllocRequest* request);
  virtual mfxStatus ReleaseResponse(mfxFrameAllocResponse* response) = 0;
  virtual mfxStatus AllocImpl(mfxFrameAllocRequest* request, mfxFrameAllocResponse* response) = 0;

 private:
  struct SharedResponse {
    mfxFrameAllocResponse response{};
    mfxU32 references = 0;
  };
  std::list<mfxFrameAllocResponse> m_responses;
  SharedResponse m_shared[4];
};
