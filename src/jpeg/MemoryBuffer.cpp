#include "jpeg/MemoryBuffer.h"

#include <cstdlib>

namespace kestrelink::jpeg {

bool CMemoryBuffer::Allocate(size_t bytes) {
  if (bytes <= m_size && m_data) return true;
  Free();
  m_data = static_cast<uint8_t*>(std::aligned_alloc(64, (bytes + 63) / 64 * 64));
  if (!m_data) return false;
  m_size = bytes;
  return true;
}

void CMemoryBuffer::Free() {
  std::free(m_data);
  m_data = nullptr;
  m_size = 0;
}

}  // namespace kestrelink::jpeg
