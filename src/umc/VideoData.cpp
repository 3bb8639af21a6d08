#include "umc/VideoData.h"

#include <algorithm>
#include <new>

namespace UMC {

namespace {

uint64_t RoundUp(uint64_t value, uint64_t alignment) { return (value + alignment - 1) / alignment * alignment; }

}  // namespace

VideoData::~VideoData() { VideoData::Close(); }

void VideoData::FreePlanes() {
  delete[] m_planes;
  m_planes = nullptr;
  m_planeCount = 0;
}

Status VideoData::Init(int32_t width, int32_t height, ColorFormat colorFormat, int32_t bitDepth) {
  const ColorFormatInfo* row = FindColorFormat(colorFormat);
  if (!row) return UMC_ERR_INVALID_STREAM;
  const Status status = Init(width, height, row->planes, bitDepth ? bitDepth : row->bitDepth);
  if (status != UMC_OK) return status;
  return SetColorFormat(colorFormat);
}

Status VideoData::Init(int32_t width, int32_t height, int32_t planes, int32_t bitDepth) {
  if (width < 1 || height < 1 || planes < 0 || planes > 4 || bitDepth < 8) return UMC_ERR_INVALID_STREAM;
  FreePlanes();
  if (planes > 0) {
    m_planes = new (std::nothrow) PlaneInfo[planes];
    if (!m_planes) return UMC_ERR_ALLOC;
  }
  m_planeCount = planes;
  m_width = width;
  m_height = height;
  m_colorFormat = NONE;
  for (int32_t i = 0; i < planes; ++i) {
    PlaneInfo& plane = m_planes[i];
    plane.width = width;
    plane.height = height;
    plane.bitDepth = bitDepth;
    plane.sampleSize = (bitDepth + 7) / 8;
    plane.pitch = RoundUp(uint64_t(width) * plane.sampleSize, uint64_t(m_alignment));
    plane.size = plane.pitch * uint64_t(height);
  }
  return UMC_OK;
}

Status VideoData::SetColorFormat(ColorFormat colorFormat) {
  const ColorFormatInfo* row = FindColorFormat(colorFormat);
  if (!row || row->planes > m_planeCount) return UMC_ERR_INVALID_STREAM;
  m_colorFormat = colorFormat;
  for (int32_t i = 0; i < row->planes; ++i) {
    PlaneInfo& plane = m_planes[i];
    const PlaneLayout& layout = row->plane[i];
    plane.widthDivider = layout.widthDivider;
    plane.heightDivider = layout.heightDivider;
    plane.samples = layout.samples;
    plane.width = (m_width + layout.widthDivider - 1) / layout.widthDivider;
    plane.height = (m_height + layout.heightDivider - 1) / layout.heightDivider;
    const uint64_t alignment = std::max<uint64_t>(uint64_t(m_alignment), uint64_t(row->alignment) * plane.sampleSize);
    plane.pitch = RoundUp(uint64_t(plane.width) * plane.samples * plane.sampleSize, std::max<uint64_t>(alignment, 1));
    plane.size = plane.pitch * uint64_t(plane.height);
  }
  return UMC_OK;
}

Status VideoData::SetAlignment(int32_t value) {
  if (value < 1) return UMC_ERR_INVALID_STREAM;
  int32_t lowest = value & -value;
  if (lowest > 32768) lowest = 32768;
  m_alignment = lowest;
  if (m_colorFormat != NONE) SetColorFormat(ColorFormat(m_colorFormat));
  return lowest != value ? 1 : UMC_OK;
}

Status VideoData::SetPlanePointer(void* pointer, int32_t index) {
  if (!m_planes || index < 0 || index >= m_planeCount) return UMC_ERR_FAILED;
  m_planes[index].data = static_cast<uint8_t*>(pointer);
  return UMC_OK;
}

Status VideoData::SetPlanePitch(uint64_t pitch, int32_t index) {
  if (!m_planes || index < 0 || index >= m_planeCount) return UMC_ERR_FAILED;
  m_planes[index].pitch = pitch;
  m_planes[index].size = pitch * uint64_t(m_planes[index].height);
  return UMC_OK;
}

Status VideoData::SetBufferPointer(uint8_t* pointer, size_t size) {
  const uintptr_t address = reinterpret_cast<uintptr_t>(pointer);
  const uint64_t skip = RoundUp(address, uint64_t(m_alignment)) - address;
  const uint64_t needed = skip + GetMappingSize();
  MediaData::SetBufferPointer(pointer, size);
  if (!pointer || needed > size) {
    for (int32_t i = 0; i < m_planeCount; ++i) m_planes[i].data = nullptr;  // nothing points at a short buffer
    return UMC_ERR_NOT_ENOUGH_BUFFER;
  }
  uint64_t offset = skip;
  for (int32_t i = 0; i < m_planeCount; ++i) {
    m_planes[i].data = pointer + offset;
    m_planes[i].offset = offset;
    offset += m_planes[i].size;
  }
  return UMC_OK;
}

size_t VideoData::GetMappingSize() const {
  if (m_colorFormat == COMPRESSED_A) return 256;
  if (m_colorFormat == COMPRESSED_B) return 16;
  uint64_t total = 0;
  for (int32_t i = 0; i < m_planeCount; ++i) total += m_planes[i].size;
  return size_t(total);
}

Status VideoData::Crop(CropRect rect) {
  if (rect.left < 0 || rect.top < 0 || rect.right <= rect.left || rect.bottom <= rect.top ||
      rect.right > m_width || rect.bottom > m_height)
    return UMC_ERR_INVALID_PARAMS;
  m_width = rect.right - rect.left;
  m_height = rect.bottom - rect.top;
  for (int32_t i = 0; i < m_planeCount; ++i) {
    PlaneInfo& plane = m_planes[i];
    const uint64_t skip = uint64_t(rect.top / plane.heightDivider) * plane.pitch +
                          uint64_t(rect.left / plane.widthDivider) * plane.samples * plane.sampleSize;
    if (plane.data) plane.data += skip;
    plane.width = (m_width + plane.widthDivider - 1) / plane.widthDivider;
    plane.height = (m_height + plane.heightDivider - 1) / plane.heightDivider;
    plane.size = plane.pitch * uint64_t(plane.height);
  }
  return UMC_OK;
}

Status VideoData::Alloc() {
  delete[] m_allocated;
  const size_t size = GetMappingSize() + size_t(m_alignment);
  m_allocated = new (std::nothrow) uint8_t[size];
  if (!m_allocated) return UMC_ERR_ALLOC;
  return SetBufferPointer(m_allocated, size);
}

Status VideoData::Close() {
  FreePlanes();
  delete[] m_allocated;
  m_allocated = nullptr;
  m_width = m_height = 0;
  m_colorFormat = NONE;
  return MediaData::Close();
}

}  // namespace UMC
