#pragma once
// A picture made of planes, laid over a MediaData buffer. The colour format
// fixes each plane's size dividers and samples; the pitch of every row is
// rounded up to the larger of the object's alignment and the format's.
#include <cstddef>
#include <cstdint>

#include "umc/ColorFormat.h"
#include "umc/MediaData.h"

namespace UMC {

struct PlaneInfo {
  uint8_t* data = nullptr;
  int32_t width = 0;
  int32_t height = 0;
  int32_t sampleSize = 1;  // bytes per sample
  int32_t samples = 1;     // samples per unit
  int32_t bitDepth = 8;
  uint64_t pitch = 0;
  uint64_t offset = 0;
  uint64_t size = 0;
  int32_t widthDivider = 1;
  int32_t heightDivider = 1;
};

// A crop rectangle: left and top inclusive, right and bottom exclusive.
struct CropRect {
  int16_t left = 0;
  int16_t top = 0;
  int16_t right = 0;
  int16_t bottom = 0;
};

class VideoData : public MediaData {
 public:
  VideoData() = default;
  ~VideoData() override;

  // Planes of `colorFormat`; a `bitDepth` of 0 takes the format's own.
  Status Init(int32_t width, int32_t height, ColorFormat colorFormat, int32_t bitDepth);
  // `planes` full-size planes with no format yet.
  Status Init(int32_t width, int32_t height, int32_t planes, int32_t bitDepth);
  Status SetColorFormat(ColorFormat colorFormat);
  // Takes the lowest set bit of `value` (at most 32768): 0 if that is `value`,
  // 1 if it differs, UMC_ERR_INVALID_STREAM below 1.
  Status SetAlignment(int32_t value);
  Status SetPlanePointer(void* pointer, int32_t index);
  Status SetPlanePitch(uint64_t pitch, int32_t index);
  // Lays the planes out one behind the other from `pointer` rounded up to the
  // alignment; UMC_ERR_NOT_ENOUGH_BUFFER when they do not fit in `size`.
  Status SetBufferPointer(uint8_t* pointer, size_t size) override;
  size_t GetMappingSize() const;
  Status Crop(CropRect rect);
  // Allocates an owned buffer of the mapping size and lays the planes over it.
  Status Alloc();
  Status Close() override;

  int32_t GetWidth() const { return m_width; }
  int32_t GetHeight() const { return m_height; }
  ColorFormat GetColorFormat() const { return ColorFormat(m_colorFormat); }
  int32_t GetNumPlanes() const { return m_planeCount; }
  int32_t GetAlignment() const { return m_alignment; }
  int32_t GetPictureStructure() const { return m_pictureStructure; }
  void GetAspectRatio(int32_t& x, int32_t& y) const {
    x = m_aspectX;
    y = m_aspectY;
  }
  const PlaneInfo* GetPlaneInfo(int32_t index) const {
    return index >= 0 && index < m_planeCount ? &m_planes[index] : nullptr;
  }
  uint8_t* GetPlanePointer(int32_t index) const {
    return index >= 0 && index < m_planeCount ? m_planes[index].data : nullptr;
  }
  uint64_t GetPlanePitch(int32_t index) const {
    return index >= 0 && index < m_planeCount ? m_planes[index].pitch : 0;
  }

 private:
  void FreePlanes();

  PlaneInfo* m_planes = nullptr;
  int32_t m_planeCount = 0;
  int32_t m_width = 0;
  int32_t m_height = 0;
  int32_t m_colorFormat = NONE;
  int32_t m_pictureStructure = 3;  // a whole frame
  int32_t m_aspectX = 1;
  int32_t m_aspectY = 1;
  int32_t m_alignment = 1;
  uint8_t* m_allocated = nullptr;
};

}  // namespace UMC
