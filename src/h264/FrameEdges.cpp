#include "h264/FrameEdges.h"

#include <cstring>

namespace UMC {

void RepeatEdges(VideoData& picture, int32_t width, int32_t height) {
  for (int32_t p = 0; p < picture.GetNumPlanes(); ++p) {
    const PlaneInfo* plane = picture.GetPlaneInfo(p);
    const int32_t visibleWidth = (width + plane->widthDivider - 1) / plane->widthDivider;
    const int32_t visibleHeight = (height + plane->heightDivider - 1) / plane->heightDivider;
    if (visibleWidth < 1 || visibleHeight < 1) continue;
    if (visibleWidth < plane->width) {
      for (int32_t y = 0; y < visibleHeight; ++y) {
        uint8_t* row = plane->data + uint64_t(y) * plane->pitch;
        std::memset(row + visibleWidth, row[visibleWidth - 1], size_t(plane->width - visibleWidth));
      }
    }
    const uint8_t* last = plane->data + uint64_t(visibleHeight - 1) * plane->pitch;
    for (int32_t y = visibleHeight; y < plane->height; ++y)
      std::memcpy(plane->data + uint64_t(y) * plane->pitch, last, size_t(plane->width));
  }
}

}  // namespace UMC
