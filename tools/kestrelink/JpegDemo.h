#pragma once
// The demo's JPEG: the scene through CJpegConversion and back.
#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace kestrelink::tool {

struct JpegTrip {
  uint32_t bytes = 0;  // of the JPEG stream
  double psnr = 0;     // of the decoded frame against the normalised one, in dB
};

// Encodes the mono16 frame (depth bits significant) as format 101 at quality
// 90, writes the stream to path, and decodes it back. Nothing when the frame
// is too small to encode: the encoder has one byte a pixel of room.
std::optional<JpegTrip> JpegRoundTrip(const std::string& path, uint32_t width, uint32_t height, uint32_t depth,
                       std::span<uint8_t> frame);

}  // namespace kestrelink::tool
