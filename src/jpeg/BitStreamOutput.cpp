#include "jpeg/BitStreamOutput.h"

#include <cstring>

namespace kestrelink::jpeg {

JERRCODE CBitStreamOutput::Attach(CBaseStreamOutput* stream) {
  if (!stream) return JPEG_BAD_PARAMETER;
  m_stream = stream;
  m_used = 0;
  return JPEG_OK;
}

JERRCODE CBitStreamOutput::Flush() {
  if (m_used == 0) return JPEG_OK;
  if (!m_stream) return JPEG_BUFF_TOO_SMALL;
  uint32_t written = 0;
  const JERRCODE status = m_stream->Write(m_buffer.data(), m_used, written);
  m_used = 0;
  return status;
}

JERRCODE CBitStreamOutput::Reserve(uint32_t count) {
  if (kBufferSize - m_used >= count) return JPEG_OK;
  return Flush();
}

JERRCODE CBitStreamOutput::WriteByte(int value) {
  if (const JERRCODE s = Reserve(1)) return s;
  m_buffer[m_used++] = uint8_t(value);
  return JPEG_OK;
}

JERRCODE CBitStreamOutput::WriteWord(int value) {
  if (const JERRCODE s = Reserve(2)) return s;
  m_buffer[m_used++] = uint8_t(value >> 8);
  m_buffer[m_used++] = uint8_t(value);
  return JPEG_OK;
}

JERRCODE CBitStreamOutput::WriteBytes(const void* source, uint32_t count) {
  const uint8_t* from = static_cast<const uint8_t*>(source);
  while (count) {
    if (m_used == kBufferSize)
      if (const JERRCODE s = Flush()) return s;
    const uint32_t room = kBufferSize - m_used, step = count < room ? count : room;
    std::memcpy(m_buffer.data() + m_used, from, step);
    m_used += step;
    from += step;
    count -= step;
  }
  return JPEG_OK;
}

}  // namespace kestrelink::jpeg
