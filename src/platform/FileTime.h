#pragma once
// Last write time of a file, for looks that reload when their file changes.
#include <cstdint>

namespace kestrelink::platform {

// Nanoseconds since the epoch of the file's last modification; 0 when the
// file can't be examined.
int64_t FileWriteTime(const char* path);

}  // namespace kestrelink::platform
