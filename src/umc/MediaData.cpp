#include "umc/MediaData.h"

namespace UMC {

MediaData::MediaData(size_t size) {
  if (size > 0) {
    m_buffer = new uint8_t[size];
    m_data = m_buffer;
    m_bufferSize = size;
    m_ownsBuffer = true;
  }
}

MediaData::~MediaData() { MediaData::Close(); }

Status MediaData::SetBufferPointer(uint8_t* pointer, size_t size) {
  if (m_ownsBuffer) delete[] m_buffer;
  m_ownsBuffer = false;
  m_buffer = m_data = pointer;
  m_bufferSize = pointer ? size : 0;
  m_dataSize = 0;
  return UMC_OK;
}

Status MediaData::SetDataSize(size_t size) {
  if (!m_buffer && size > 0) return UMC_ERR_NULL_PTR;
  if (uint64_t(m_data - m_buffer) + size > m_bufferSize) return UMC_ERR_FAILED;
  m_dataSize = size;
  return UMC_OK;
}

Status MediaData::MoveDataPointer(int64_t bytes) {
  if (bytes < 0 ? uint64_t(-bytes) > uint64_t(m_data - m_buffer) : uint64_t(bytes) > m_dataSize)
    return UMC_ERR_FAILED;
  m_data += bytes;
  m_dataSize -= uint64_t(bytes);
  return UMC_OK;
}

Status MediaData::Reset() {
  m_data = m_buffer;
  m_dataSize = 0;
  m_pts_start = -1.0;
  m_pts_end = 0;
  m_frameType = 0;
  return UMC_OK;
}

Status MediaData::Close() {
  if (m_ownsBuffer) delete[] m_buffer;
  m_ownsBuffer = false;
  m_flags = 0;
  m_buffer = m_data = nullptr;
  m_bufferSize = m_dataSize = 0;
  m_pts_start = -1.0;
  m_pts_end = 0;
  m_frameType = 0;
  return UMC_OK;
}

}  // namespace UMC
