#pragma once
// Raw frame files: reading the first frame of a file and writing bytes out.
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace kestrelink::tool {

// The first `bytes` bytes of the file at `path`. A file that holds fewer is a
// RunError naming both counts and `frameName` ("a 1920x1080 mono16 frame").
std::vector<uint8_t> ReadFrameFile(const std::string& path, uint64_t bytes, const std::string& frameName);

// Writes `bytes` to `path`; a failure is a RunError and leaves no partial file.
void WriteRawFile(const std::string& path, std::span<const uint8_t> bytes);

// Removes what a failed write left at `path`, when that is a plain file: a
// device or pipe named as the output is never removed.
void RemovePartialOutput(const std::string& path);

// True when `path` ends in ".png", in any case.
bool IsPngPath(const std::string& path);

}  // namespace kestrelink::tool
