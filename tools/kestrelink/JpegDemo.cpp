#include "JpegDemo.h"

#include <kestrelink/CIppImageConverter.h>
#include <kestrelink/CJpegConversion.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "FrameFile.h"
#include "ToolError.h"

namespace kestrelink::tool {

std::optional<JpegTrip> JpegRoundTrip(const std::string& path, uint32_t width, uint32_t height, uint32_t depth,
                       std::span<uint8_t> frame) {
  CJpegConversion jpeg;
  if (jpeg.InitConverter(width, height, 16, depth, 101, 90, true) != 1) throw RunError("the JPEG front refused the scene");
  std::vector<uint8_t> buffer(size_t(width) * height + 65536);
  int unused = 0;
  if (!jpeg.EncodeJpeg(nullptr, nullptr, frame.data(), buffer.data(), &unused, nullptr))
    return std::nullopt;
  uint32_t sizeWord = 0;
  std::memcpy(&sizeWord, buffer.data(), 4);
  const uint32_t bytes = sizeWord - 4;  // the size word counts itself
  WriteRawFile(path, std::span<const uint8_t>(buffer.data() + 4, bytes));

  // Mono rows come back at (width + 3) rounded down to 4.
  const uint32_t step = (width + 3) & ~3u;
  std::vector<uint8_t> decoded(size_t(step) * height);
  if (!jpeg.DecodeJpeg(buffer.data(), decoded.data())) throw RunError("the scene's JPEG did not decode");
  std::vector<uint8_t> expected(size_t(width) * height);
  CIppImageConverter converter;
  converter.Mono16ToMono8(width, height, depth, frame.data(), expected.data(), false);
  double squares = 0;
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const double d = double(decoded[size_t(y) * step + x]) - expected[size_t(y) * width + x];
      squares += d * d;
    }
  const double mse = squares / (double(width) * height);
  return JpegTrip{bytes, mse == 0 ? 99.0 : 10 * std::log10(255.0 * 255.0 / mse)};
}

}  // namespace kestrelink::tool
