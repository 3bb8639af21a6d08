// Memory streams: the settled Seek and short-read rules of the format's
// memory input, and a bounded memory output.
#include <cstring>

#include "jpeg/JpegStreams.h"

namespace kestrelink::jpeg {

JERRCODE CMemBuffInput::Open(const char*) { return JPEG_NOT_IMPLEMENTED; }

JERRCODE CMemBuffInput::Open(const uint8_t* buffer, uint32_t size) {
  if (buffer == nullptr) return JPEG_BAD_PARAMETER;
  m_buffer = buffer;
  m_size = size;
  m_position = 0;
  return JPEG_OK;
}

JERRCODE CMemBuffInput::Close() {
  m_buffer = nullptr;
  m_size = m_position = 0;
  return JPEG_OK;
}

JERRCODE CMemBuffInput::Seek(int32_t offset, int origin) {
  const int64_t target = int64_t(offset) + m_position;
  // Settled behaviour of the format: the bound is checked on offset + position
  // whatever the origin, and `size` itself is out of bounds.
  if (target < 0 || target >= int64_t(m_size)) return JPEG_BUFF_TOO_SMALL;
  switch (origin) {
    case 0: m_position = 0; return JPEG_OK;  // settled: origin 0 disregards the offset
    case 1: m_position = uint32_t(target); return JPEG_OK;
    case 2: m_position = m_size; return JPEG_OK;
    default: return JPEG_NOT_IMPLEMENTED;
  }
}

JERRCODE CMemBuffInput::Read(void* target, uint32_t count, uint32_t& got) {
  const uint32_t left = m_position < m_size ? m_size - m_position : 0;
  got = count < left ? count : left;
  if (got) std::memcpy(target, m_buffer + m_position, got);
  m_position += got;
  return got < count ? JPEG_BUFF_TOO_SMALL : JPEG_OK;
}

JERRCODE CMemBuffInput::GetPosition(uint32_t& position) {
  position = m_position;
  return JPEG_OK;
}

JERRCODE CMemBuffOutput::Open(const char*) { return JPEG_NOT_IMPLEMENTED; }

JERRCODE CMemBuffOutput::Open(uint8_t* buffer, uint32_t size) {
  if (buffer == nullptr) return JPEG_BAD_PARAMETER;
  m_buffer = buffer;
  m_size = size;
  m_position = 0;
  return JPEG_OK;
}

JERRCODE CMemBuffOutput::Close() {
  m_buffer = nullptr;
  return JPEG_OK;
}

JERRCODE CMemBuffOutput::Write(const void* source, uint32_t count, uint32_t& written) {
  const uint32_t room = m_position < m_size ? m_size - m_position : 0;
  written = count < room ? count : room;
  if (written) std::memcpy(m_buffer + m_position, source, written);
  m_position += written;
  return written < count ? JPEG_BUFF_TOO_SMALL : JPEG_OK;
}

}  // namespace kestrelink::jpeg
