#pragma once
// A wide-character path (UTF-16 units up to a 0) as the UTF-8 the file
// system takes.
#include <string>
#include <string_view>

#include "platform/RegFile.h"

namespace kestrelink::jpegfront {

inline std::string WidePathToUtf8(const unsigned short* path) {
  size_t units = 0;
  while (path != nullptr && path[units] != 0) ++units;
  return platform::regfile::Utf16LeToUtf8(std::string_view(reinterpret_cast<const char*>(path), units * 2), true);
}

}  // namespace kestrelink::jpegfront
