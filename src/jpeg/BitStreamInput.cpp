#include "jpeg/BitStreamInput.h"

#include <cstring>

namespace kestrelink::jpeg {

JERRCODE CBitStreamInput::Attach(CBaseStreamInput* stream) {
  if (!stream) return JPEG_BAD_PARAMETER;
  m_stream = stream;
  m_cur = m_end = 0;
  m_consumedBefore = 0;
  m_eof = false;
  m_eofStatus = JPEG_OK;
  return JPEG_OK;
}

JERRCODE CBitStreamInput::Ensure(uint32_t count) {
  if (m_end - m_cur >= count) return JPEG_OK;
  if (!m_stream) return JPEG_BUFF_TOO_SMALL;
  while (m_end - m_cur < count) {
    if (m_eof) return m_eofStatus;
    const uint32_t kept = m_end - m_cur;
    std::memmove(m_buffer, m_buffer + m_cur, kept);
    m_consumedBefore += m_cur;
    m_cur = 0;
    m_end = kept;
    uint32_t got = 0;
    const JERRCODE status = m_stream->Read(m_buffer + kept, kBufferSize - kept, got);
    m_end += got;
    if (status != JPEG_OK || got == 0) {
      m_eof = true;
      m_eofStatus = status != JPEG_OK ? status : JPEG_BUFF_TOO_SMALL;
    }
  }
  return JPEG_OK;
}

JERRCODE CBitStreamInput::ReadByte(int& value) {
  if (const JERRCODE s = Ensure(1)) return s;
  value = m_buffer[m_cur++];
  return JPEG_OK;
}

JERRCODE CBitStreamInput::ReadWord(int& value) {
  if (const JERRCODE s = Ensure(2)) return s;
  value = (m_buffer[m_cur] << 8) | m_buffer[m_cur + 1];
  m_cur += 2;
  return JPEG_OK;
}

JERRCODE CBitStreamInput::Skip(uint32_t count) {
  while (count) {
    const uint32_t step = count < kBufferSize ? count : kBufferSize;
    if (const JERRCODE s = Ensure(step)) return s;
    m_cur += step;
    count -= step;
  }
  return JPEG_OK;
}

JERRCODE CBitStreamInput::ReadBytes(uint8_t* target, uint32_t count) {
  while (count) {
    const uint32_t step = count < kBufferSize ? count : kBufferSize;
    if (const JERRCODE s = Ensure(step)) return s;
    std::memcpy(target, m_buffer + m_cur, step);
    m_cur += step;
    target += step;
    count -= step;
  }
  return JPEG_OK;
}

}  // namespace kestrelink::jpeg
