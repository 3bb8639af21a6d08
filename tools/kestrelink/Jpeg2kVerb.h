#pragma once
// The j2k verb, and the JP2 file that the demo writes of its scene.
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "Args.h"

namespace kestrelink::tool {

int RunJpeg2k(std::span<const std::string_view> args);
void PrintJpeg2kUsage(std::ostream& out);

// Writes a BGRx frame (4 bytes a pixel, the fourth unused) as a JP2 file and
// answers the file's size; a failure is a RunError.
uint64_t WriteBgrxJp2(const std::string& path, const FrameSize& size, std::vector<uint8_t> bgrx);

}  // namespace kestrelink::tool
