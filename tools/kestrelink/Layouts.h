#pragma once
// The pixel layouts the tool names, and how each reads and writes.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace kestrelink::tool {

enum class LayoutId { Mono8, Mono16, Mono16Msb, Bgrx, Bgr24,
                      Mono16MsbSwap, Mono12p, Mono12p8448, Mono12pco,
                      Rgb24, Rbg32, Bgr48, Rgb48, Bgr64, Bgr555, Bgr565, Bgr10, Bgr10Phoenix, Rgb10Phoenix,
                      GvspBgr10v1, GvspBgr10v2, Bgr24p, Bgr30p, Bgr36p, Bgr42p, Bgr48p,
                      Yuv422, Uvy422, Uvy411, Uvy444, Yuv422_20Bit, Yuv422_10BitPP, Yuv422p, Yuv420p };

struct Layout {
  LayoutId id;
  std::string_view name;         // what the tool prints
  std::string_view libraryName;  // the library's spelling, also accepted
  std::string_view alias;        // one more accepted spelling, or empty
  uint32_t bytesPerPixel;
  uint32_t fixedDepth;  // bits per sample when the layout settles it, else 0 (set by --depth)
  std::string_view description;
  std::string_view pngDescription;  // what a PNG of this layout holds
  // Packed sources: pixels per group (2 for the pair-packed layouts, 8 for
  // the 12-byte PCO groups), whose rows are not width * bytesPerPixel long;
  // 0 for every other layout.
  uint32_t groupPixels = 0;
};

std::span<const Layout> AllLayouts();
const Layout& LayoutOf(LayoutId id);

// Case-insensitive lookup by name, library name or alias; nullptr if unknown.
const Layout* FindLayout(std::string_view name);

// Bytes a source frame of this layout takes: width * height * bytesPerPixel,
// or for a packed layout where its last row's last group ends (the pair
// layouts' rows start packedBits, or 12 where more, bits a pixel apart).
uint64_t SourceBytes(const Layout& layout, uint32_t width, uint32_t height, uint32_t packedBits);

// Bytes a whole frame of a layout without groupPixels takes: width * height *
// bytesPerPixel, except for the YUV layouts whose rows or planes are not
// (4:1:1 groups, 10-bit packed rows, planar 4:2:2 and 4:2:0), where
// bytesPerPixel is only the room a destination is given.
uint64_t FrameBytes(const Layout& layout, uint32_t width, uint32_t height);

// "mono8, mono16, ..." for messages.
std::string LayoutNames();

}  // namespace kestrelink::tool
