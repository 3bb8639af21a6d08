#pragma once
// The pixel layouts the tool names, and how each reads and writes.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kestrelink::tool {

enum class LayoutId { Mono8, Mono16, Mono16Msb, Bgrx, Bgr24 };

struct Layout {
  LayoutId id;
  std::string_view name;         // what the tool prints
  std::string_view libraryName;  // the library's spelling, also accepted
  std::string_view alias;        // one more accepted spelling, or empty
  uint32_t bytesPerPixel;
  uint32_t fixedDepth;  // bits per sample when the layout settles it, else 0 (set by --depth)
  std::string_view description;
  std::string_view pngDescription;  // what a PNG of this layout holds
};

std::span<const Layout> AllLayouts();
const Layout& LayoutOf(LayoutId id);

// Case-insensitive lookup by name, library name or alias; nullptr if unknown.
const Layout* FindLayout(std::string_view name);

// "mono8, mono16, ..." for messages.
std::string LayoutNames();

}  // namespace kestrelink::tool
