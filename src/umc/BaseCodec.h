#pragma once
// The common face of every codec: Init with parameters, GetFrame from an input
// to an output, GetInfo back into parameters, Close and Reset.
#include <cstddef>

#include "umc/CodecParams.h"
#include "umc/MediaData.h"
#include "umc/UmcStatus.h"

namespace UMC {

class MemoryAllocator {
 public:
  virtual ~MemoryAllocator() = default;
  virtual void* Alloc(size_t size) = 0;
  virtual void Free(void* block) = 0;
};

class DefaultMemoryAllocator : public MemoryAllocator {
 public:
  void* Alloc(size_t size) override;
  void Free(void* block) override;
};

class BaseCodec {
 public:
  BaseCodec() = default;
  virtual ~BaseCodec();
  BaseCodec(const BaseCodec&) = delete;
  BaseCodec& operator=(const BaseCodec&) = delete;

  // Takes the parameters' allocator, or makes a default one.
  virtual Status Init(BaseCodecParams* params);
  virtual Status GetFrame(MediaData* in, MediaData* out) = 0;
  virtual Status GetInfo(BaseCodecParams* params) = 0;
  virtual Status Close();
  virtual Status Reset() = 0;

 protected:
  MemoryAllocator* m_allocator = nullptr;
  bool m_ownsAllocator = false;
};

}  // namespace UMC
