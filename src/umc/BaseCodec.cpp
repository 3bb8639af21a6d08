#include "umc/BaseCodec.h"

#include <cstdlib>

namespace UMC {

void* DefaultMemoryAllocator::Alloc(size_t size) { return std::malloc(size); }

void DefaultMemoryAllocator::Free(void* block) { std::free(block); }

BaseCodec::~BaseCodec() { BaseCodec::Close(); }

Status BaseCodec::Init(BaseCodecParams* params) {
  BaseCodec::Close();
  if (params && params->m_memoryAllocator) {
    m_allocator = params->m_memoryAllocator;
  } else {
    m_allocator = new DefaultMemoryAllocator;
    m_ownsAllocator = true;
  }
  return UMC_OK;
}

Status BaseCodec::Close() {
  if (m_ownsAllocator) delete m_allocator;
  m_allocator = nullptr;
  m_ownsAllocator = false;
  return UMC_OK;
}

}  // namespace UMC
