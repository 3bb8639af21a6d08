#pragma once
// Byte- and marker-level reading over an input stream, through a buffer of
// 16384 bytes. The entropy decoder reads its bytes from here too (see
// HuffmanBits.h), so that a scan's data and the markers after it come from one
// place. A read past the end of the stream answers the stream's status (-4 for
// memory, -5 for a file).
#include <cstdint>

#include "jpeg/JpegStreams.h"

namespace kestrelink::jpeg {

class CBitStreamInput {
 public:
  static constexpr uint32_t kBufferSize = 16384;

  JERRCODE Attach(CBaseStreamInput* stream);
  void Detach() { m_stream = nullptr; }

  // Makes at least `count` (<= kBufferSize) bytes available at Current(),
  // fewer only at the end of the stream; answers the stream's status then.
  JERRCODE Ensure(uint32_t count);
  uint32_t Available() const { return m_end - m_cur; }
  const uint8_t* Current() const { return m_buffer + m_cur; }
  void Advance(uint32_t count) { m_cur += count; }

  JERRCODE ReadByte(int& value);
  JERRCODE ReadWord(int& value);  // big-endian 16-bit
  JERRCODE Skip(uint32_t count);
  JERRCODE ReadBytes(uint8_t* target, uint32_t count);
  bool AtEnd() const { return m_eof && m_cur == m_end; }
  // Bytes taken from the stream and consumed so far.
  uint64_t Position() const { return m_consumedBefore + m_cur; }

 private:
  CBaseStreamInput* m_stream = nullptr;
  uint8_t m_buffer[kBufferSize + 8] = {};
  uint32_t m_cur = 0;
  uint32_t m_end = 0;
  uint64_t m_consumedBefore = 0;
  bool m_eof = false;
  JERRCODE m_eofStatus = JPEG_OK;
};

}  // namespace kestrelink::jpeg
