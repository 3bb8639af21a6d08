#pragma once
// The jpeg verb: raw frames to JPEG files with the library's own codec, JPEG
// files to PNG, and a description of a JPEG file.
#include <ostream>
#include <span>
#include <string_view>

namespace kestrelink::tool {

int RunJpeg(std::span<const std::string_view> args);
void PrintJpegUsage(std::ostream& out);

}  // namespace kestrelink::tool
