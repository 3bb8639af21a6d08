#pragma once
// Aligned scratch of the codec: a size and a pointer, replaced whole when a
// larger one is needed; its bytes are not cleared.
#include <cstddef>
#include <cstdint>

namespace kestrelink::jpeg {

class CMemoryBuffer {
 public:
  ~CMemoryBuffer() { Free(); }
  // False when the allocation fails.
  bool Allocate(size_t bytes);
  uint8_t* Data() const { return m_data; }
  size_t Size() const { return m_size; }

 private:
  void Free();
  uint8_t* m_data = nullptr;
  size_t m_size = 0;
};

}  // namespace kestrelink::jpeg
