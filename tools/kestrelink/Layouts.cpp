// The layout table; a new layout is one row here, its conversions in
// Conversions.cpp and its PNG form in LayoutPng.cpp.
#include "Layouts.h"

#include <algorithm>

namespace kestrelink::tool {

namespace {

constexpr Layout kLayouts[] = {
    {LayoutId::Mono8, "mono8", "Mono8", "", 1, 8, "8-bit grey, one byte a pixel", "8-bit grey"},
    {LayoutId::Mono16, "mono16", "Mono16", "", 2, 0,
     "d-bit grey, right-justified in a little-endian 16-bit word",
     "16-bit grey, each sample shifted left by 16 - depth so full scale is white"},
    {LayoutId::Mono16Msb, "mono16msb", "Mono16MSB", "", 2, 0,
     "d-bit grey, left-justified in a little-endian 16-bit word", "16-bit grey, samples as they stand"},
    {LayoutId::Bgrx, "bgrx", "BGRx", "", 4, 8, "4 bytes a pixel: B, G, R, unused",
     "8-bit RGB (the unused fourth byte is dropped)"},
    {LayoutId::Bgr24, "bgr24", "BGR24", "bgr", 3, 8, "3 bytes a pixel: B, G, R", "8-bit RGB"},
    {LayoutId::Mono16MsbSwap, "mono16msbswap", "Mono16MSBSwap", "", 2, 0,
     "mono16msb with its two bytes exchanged: byte 0 holds the high byte", "(a source only)"},
    {LayoutId::Mono12p, "mono12p", "Mono16PixelPacked", "", 0, 0,
     "two pixels in 3 bytes, 12 bits each, low pixel first",
     "(a source only)", 2},
    {LayoutId::Mono12p8448, "mono12p8448", "Mono16PixelPacked8448", "", 0, 0,
     "two pixels in 3 bytes: 8 high bits, 4 low bits, 4 low bits, 8 high bits", "(a source only)", 2},
    {LayoutId::Mono12pco, "mono12pco", "MonoPcoPixelPacked", "", 0, 0,
     "eight 12-bit pixels in 12 bytes, top bit first in 16-bit words",
     "(a source only)", 8},
    // Packed and planar colour. Planar frames are their three planes, plane after plane.
    {LayoutId::Rgb24, "rgb24", "RGB24", "", 3, 8, "3 bytes a pixel: R, G, B", "8-bit RGB"},
    {LayoutId::Rbg32, "rbg32", "RBG32", "", 4, 8, "4 bytes a pixel, the first three kept in order", "(a source only)"},
    {LayoutId::Bgr48, "bgr48", "BGR48", "", 6, 0, "three d-bit samples B, G, R, right-justified in 16-bit words",
     "16-bit RGB, samples above 8 bits shifted left by 16 - depth; from 8-bit sources as they stand"},
    {LayoutId::Rgb48, "rgb48", "RGB48", "", 6, 0, "three d-bit samples R, G, B in 16-bit words",
     "16-bit RGB, samples above 8 bits shifted left by 16 - depth; from 8-bit sources as they stand"},
    {LayoutId::Bgr64, "bgr64", "BGR64", "bgrx64", 8, 0, "four d-bit samples B, G, R, unused, in 16-bit words",
     "(a source only)"},
    {LayoutId::Bgr555, "bgr555", "BGR555Packed", "", 2, 5, "16-bit word: B bits 0-4, G 5-9, R 10-14",
     "(a source only)"},
    {LayoutId::Bgr565, "bgr565", "BGR565Packed", "", 2, 6, "16-bit word: B bits 0-4, G 5-10, R 11-15",
     "(a source only)"},
    {LayoutId::Bgr10, "bgr10", "BGR10PixelPacked", "", 4, 10,
     "32-bit word of 10-bit channels at bits 0, 10, 20 (the third lands in byte 0 of the output)", "(a source only)"},
    {LayoutId::Bgr10Phoenix, "bgr10phoenix", "BGR10PixelPackedPhoenix", "", 4, 10,
     "32-bit word: B bits 0-9, G 12-21, R 22-31", "(a source only)"},
    {LayoutId::Rgb10Phoenix, "rgb10phoenix", "RGB10PixelPackedPhoenix", "", 4, 10,
     "32-bit word: R bits 0-9, G 12-21, B 22-31", "(a source only)"},
    {LayoutId::GvspBgr10v1, "gvspbgr10v1", "GVSPBGR10v1", "", 4, 10,
     "byte 0 the two low bits of each channel, bytes 1-3 the high bits of B, G, R", "(a source only)"},
    {LayoutId::GvspBgr10v2, "gvspbgr10v2", "GVSPBGR10v2", "", 4, 10, "32-bit word: R bits 0-9, G 10-19, B 20-29",
     "(a source only)"},
    {LayoutId::Bgr24p, "bgr24p", "BGR24P", "", 3, 8, "three 8-bit planes p1, p2, p3 (which colour each is varies by method)",
     "8-bit RGB from planes B, G, R"},
    {LayoutId::Bgr30p, "bgr30p", "BGR30P", "", 6, 10, "three planes of 10-bit samples in 16-bit words",
     "(a source only)"},
    {LayoutId::Bgr36p, "bgr36p", "BGR36P", "", 6, 12, "three planes of 12-bit samples in 16-bit words",
     "(a source only)"},
    {LayoutId::Bgr42p, "bgr42p", "BGR42P", "", 6, 0, "three planes of d-bit samples in 16-bit words",
     "(a source only)"},
    {LayoutId::Bgr48p, "bgr48p", "BGR48P", "", 6, 0, "three planes of d-bit samples in 16-bit words",
     "(a source only)"},
    // The YUV family; the planar targets are their planes Y, U, V one after another.
    {LayoutId::Yuv422, "yuv422", "YUV422", "yuy2", 2, 8, "4 bytes a pixel pair: Y0, U, Y1, V", "(a raw file only)"},
    {LayoutId::Uvy422, "uvy422", "UVY422", "uyvy", 2, 8, "4 bytes a pixel pair: U, Y0, V, Y1", "(a source only)"},
    {LayoutId::Uvy411, "uvy411", "UVY411", "yuv411", 2, 8, "6 bytes for four pixels: U, Y0, Y1, V, Y2, Y3",
     "(a source only)"},
    {LayoutId::Uvy444, "uvy444", "UVY444", "yuv444", 3, 8, "3 bytes a pixel: U, Y, V", "(a source only)"},
    {LayoutId::Yuv422_20Bit, "yuv422_20bit", "YUV422_20Bit", "", 4, 10,
     "four 16-bit words a pixel pair, Y0, U, Y1, V, 10 bits each", "(a source only)"},
    {LayoutId::Yuv422_10BitPP, "yuv422_10bitpp", "YUV422_10BitPP", "", 3, 10,
     "six pixels in 16 bytes, three 10-bit samples a 32-bit word; rows of ((w + 47) / 48) * 128 bytes",
     "(a source only)"},
    {LayoutId::Yuv422p, "yuv422p", "YUV422P", "", 2, 8, "planes Y (w x h), U and V (w / 2 x h)", "(a raw file only)"},
    {LayoutId::Yuv420p, "yuv420p", "YUV420P", "i420", 2, 8, "planes Y (w x h), U and V (w / 2 x h / 2)",
     "(a raw file only)"},
};

bool SameLetters(std::string_view a, std::string_view b) {
  return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
           auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
           return lower(x) == lower(y);
         });
}

}  // namespace

std::span<const Layout> AllLayouts() { return kLayouts; }

const Layout& LayoutOf(LayoutId id) {
  for (const Layout& layout : kLayouts)
    if (layout.id == id) return layout;
  return kLayouts[0];  // every id has a row; this keeps the answer defined
}

const Layout* FindLayout(std::string_view name) {
  for (const Layout& layout : kLayouts)
    if (SameLetters(name, layout.name) || SameLetters(name, layout.libraryName) ||
        (!layout.alias.empty() && SameLetters(name, layout.alias)))
      return &layout;
  return nullptr;
}

uint64_t SourceBytes(const Layout& layout, uint32_t width, uint32_t height, uint32_t packedBits) {
  if (!layout.groupPixels) return FrameBytes(layout, width, height);
  if (height == 0) return 0;
  const uint64_t groups = (uint64_t(width) + layout.groupPixels - 1) / layout.groupPixels;
  const uint64_t last = height - 1;
  if (layout.groupPixels == 8) return ((last * width * 3) >> 3) * 4 + 12 * groups;  // PCO rows
  return ((last * width * std::max(packedBits, 12u)) >> 3) + 3 * groups;
}

uint64_t FrameBytes(const Layout& layout, uint32_t width, uint32_t height) {
  const uint64_t pixels = uint64_t(width) * height, chroma = uint64_t(width / 2) * height;
  switch (layout.id) {
    case LayoutId::Uvy411: return (pixels * 3 + 1) / 2;
    case LayoutId::Yuv422_10BitPP: return (uint64_t(width) + 47) / 48 * 128 * height;
    case LayoutId::Yuv422p: return pixels + 2 * chroma;
    case LayoutId::Yuv420p: return pixels + 2 * (uint64_t(width / 2) * (height / 2));
    default: return pixels * layout.bytesPerPixel;
  }
}

std::string LayoutNames() {
  std::string names;
  for (const Layout& layout : kLayouts) names += std::string(names.empty() ? "" : ", ") + std::string(layout.name);
  return names;
}

}  // namespace kestrelink::tool
