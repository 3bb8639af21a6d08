#include "JpegFrontEncode.h"

#include <kestrelink/CJpegConversion.h>
#include <kestrelink/DebugOutput.h>

#include <cstring>
#include <iostream>
#include <vector>

#include "FrameFile.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

void Collect(const char* line, void* lines) { static_cast<std::vector<std::string>*>(lines)->push_back(line); }

// The library's own lines of the call, for the person at the shell.
std::string Joined(const std::vector<std::string>& lines) {
  std::string text;
  for (const std::string& line : lines) text += (text.empty() ? "" : "; ") + line;
  return text;
}

}  // namespace

uint64_t FrontFrameBytes(uint32_t format, uint32_t bits, uint32_t width, uint32_t height) {
  const uint64_t pixels = uint64_t(width) * height;
  switch (format) {
    case 123: case 124: case 125: return pixels * 4;  // one 32-bit word a pixel
    case 300: return pixels * 3 * (bits == 24 ? 1 : 2);
    case 600: case 700: case 905: case 906: return pixels * 2;
    case 800: return pixels * 3 / 2;
    default: return pixels * (bits / 8);
  }
}

int EncodeThroughFront(const FrontEncodeRequest& r) {
  const uint32_t w = r.size.width, h = r.size.height;
  const uint64_t bytes = FrontFrameBytes(r.format, r.bits, w, h);
  std::vector<uint8_t> raw = ReadFrameFile(
      r.in, bytes, "a " + std::to_string(w) + "x" + std::to_string(h) + " format " + std::to_string(r.format) + " frame");
  std::vector<std::string> lines;
  SetDebugOutputHandler(&Collect, &lines);
  struct Restore {
    ~Restore() { SetDebugOutputHandler(nullptr, nullptr); }
  } restore;

  CJpegConversion jpeg;
  const int ready = jpeg.InitConverter(w, h, r.bits, r.sampleBits, r.format, r.quality, !r.gpu);
  if (ready == 0) {
    if (r.gpu) throw RunError("the GPU path is not available: " + Joined(lines));
    throw RunError("format " + std::to_string(r.format) + " does not take " + std::to_string(r.bits) +
                   " bits (sample bits " + std::to_string(r.sampleBits) + ")");
  }
  uint8_t* planes[3] = {nullptr, nullptr, raw.data()};
  if (r.format == 300) {
    const uint64_t plane = bytes / 3;
    planes[0] = raw.data(), planes[1] = raw.data() + plane, planes[2] = raw.data() + 2 * plane;
  }
  // Room for four bytes a pixel, the most the encoders are given, and the size word.
  std::vector<uint8_t> buffer(uint64_t(w) * h * 4 + 65536);
  int encodedSize = 0;
  if (!jpeg.EncodeJpeg(planes[0], planes[1], planes[2], buffer.data(), &encodedSize, nullptr))
    throw RunError("encoding failed" + (lines.empty() ? std::string() : ": " + Joined(lines)));
  uint32_t length = 0;
  if (ready == 2) {
    length = uint32_t(encodedSize);  // the GPU path reports the length and leaves the size word
  } else {
    std::memcpy(&length, buffer.data(), 4);
    length -= 4;  // the size word counts itself
  }
  WriteRawFile(r.out, std::span<const uint8_t>(buffer.data() + 4, length));
  uint32_t format = 0, outBits = 0, outSampleBits = 0;
  jpeg.GetDecodeImageInfo(r.format, r.bits, r.sampleBits, format, outBits, outSampleBits);
  std::cout << r.in << ": " << raw.size() << " bytes -> " << length << " bytes (" << (ready == 2 ? "GPU" : "software")
            << ", decodes as format " << format << ", " << outBits << " bits)\n";
  return 0;
}

}  // namespace kestrelink::tool
