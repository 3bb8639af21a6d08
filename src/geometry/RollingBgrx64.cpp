// RollingBGRx64Average keeps steps of its own, a settled behaviour of the
// format: within a row oldFrame and dst go four samples a pixel while
// newFrame goes three and sums three integers; rows of oldFrame, dst and
// sums start at four samples a pixel, as does newFrame's first row in each
// worker's band, and every later row of the band a further width samples
// on. Samples of newFrame past the frame's last word read as 0.
#include <kestrelink/CIppAverageImage.h>

#include <cstddef>
#include <cstring>

#include "frame/RowLoop.h"
#include "geometry/AverageModel.h"
#include "geometry/rows/AverageRows.h"
#include "platform/OpenMP.h"

using kestrelink::platform::SetBlockTimeZero;
namespace rows = kestrelink::rows;

namespace {

inline int32_t Word(const uint8_t* frame, size_t i) {
  uint16_t v;
  std::memcpy(&v, frame + 2 * i, 2);
  return v;
}

}  // namespace

bool CIppAverageImage::RollingBGRx64Average(int frameCount, int32_t width, int32_t height, int bitDepth, void* newFrame,
                                            void* oldFrame, int* sums, void* dst) {
  SetBlockTimeZero();
  if (frameCount < 1 || !newFrame || !oldFrame || !sums || !dst) return false;
  if (width <= 0 || height <= 0) return true;
  const rows::AverageDivisor d = rows::MakeDivisor(frameCount, kestrelink::average::DepthLimit(bitDepth));
  const size_t w = size_t(width), rowSamples = 4 * w, frameSamples = rowSamples * size_t(height);
  const auto* in = static_cast<const uint8_t*>(newFrame);
  const auto* out = static_cast<const uint8_t*>(oldFrame);
  auto* o = static_cast<uint8_t*>(dst);
  kestrelink::ForEachBand(uint32_t(height), [&](uint32_t first, uint32_t count) {
    for (uint32_t k = 0; k < count; ++k) {
      const size_t row = size_t(first) + k, at = rowSamples * row, inAt = at + k * w;
      int32_t* s = sums + at;
      for (size_t i = 0; i < w; ++i)
        for (size_t c = 0; c < 3; ++c) {
          const size_t j = inAt + 3 * i + c;
          const int32_t entering = j < frameSamples ? Word(in, j) : 0;
          const int32_t sum = int32_t(uint32_t(s[3 * i + c]) + entering - Word(out, at + 4 * i + c));
          s[3 * i + c] = sum;
          const uint16_t v = uint16_t(rows::DivideClamp(sum, d));
          std::memcpy(o + 2 * (at + 4 * i + c), &v, 2);
        }
    }
    return 0;
  });
  return true;
}
