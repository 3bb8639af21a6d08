#pragma once
// Fills a padded picture beyond its visible size: the last column repeated to
// the right, then the last row downward, plane by plane.
#include <cstdint>

#include "umc/VideoData.h"

namespace UMC {

// `picture` has the padded size; the visible part is `width` x `height` luma samples.
void RepeatEdges(VideoData& picture, int32_t width, int32_t height);

}  // namespace UMC
