#pragma once
// Writing PNG files with libpng.
#include <cstdint>
#include <string>
#include <vector>

namespace kestrelink::tool {

enum class PngPixel { Grey8, Grey16, Rgb8, Rgb16 };

struct PngImage {
  uint32_t width = 0;
  uint32_t height = 0;
  PngPixel pixel = PngPixel::Grey8;
  std::vector<uint8_t> bytes;  // rows top first, tightly packed, 16-bit samples big-endian as PNG stores them
};

uint32_t PngBytesPerPixel(PngPixel pixel);

// Writes the image to `path`; a failure is a RunError, and no partial file is left.
void WritePng(const std::string& path, const PngImage& image);

}  // namespace kestrelink::tool
