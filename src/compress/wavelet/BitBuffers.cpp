// The writer's byte store with its over-capacity report.
#include "compress/wavelet/BitBuffers.h"

#include <cstdio>

#include "platform/DebugSink.h"

namespace kestrelink::wavelet {

void BitWriter::StoreByte() {
  m_count -= 8;
  const uint8_t byte = uint8_t(m_acc >> m_count);
  if (m_position >= m_capacity) {
    char line[64];
    std::snprintf(line, sizeof line, "OutputBit %d ******* %d\r\n", int(m_position), int(m_capacity));
    platform::OutputDebugString(line);
  }
  if (m_position < m_room) m_buffer[m_position] = byte;
  ++m_position;
}

}  // namespace kestrelink::wavelet
