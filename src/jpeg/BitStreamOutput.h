#pragma once
// Byte- and marker-level writing to an output stream through a buffer. The
// Huffman coders write their bytes straight into the buffer after Reserve,
// which flushes to the stream when fewer bytes are free than asked for.
#include <cstdint>
#include <vector>

#include "jpeg/JpegStreams.h"

namespace kestrelink::jpeg {

class CBitStreamOutput {
 public:
  static constexpr uint32_t kBufferSize = 65536;

  CBitStreamOutput() : m_buffer(kBufferSize) {}
  JERRCODE Attach(CBaseStreamOutput* stream);
  void Detach() { m_stream = nullptr; }

  JERRCODE WriteByte(int value);
  JERRCODE WriteWord(int value);  // big-endian 16-bit
  JERRCODE WriteBytes(const void* source, uint32_t count);
  // Makes `count` (<= kBufferSize) free bytes available at Current().
  JERRCODE Reserve(uint32_t count);
  uint8_t* Current() { return m_buffer.data() + m_used; }
  void Advance(uint32_t count) { m_used += count; }
  JERRCODE Flush();

 private:
  CBaseStreamOutput* m_stream = nullptr;
  std::vector<uint8_t> m_buffer;
  uint32_t m_used = 0;
};

}  // namespace kestrelink::jpeg
