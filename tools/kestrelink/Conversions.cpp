// The conversion table; a conversion the library gains is one row here.
#include "Conversions.h"

#include <kestrelink/CIppImageConverter.h>

#include "ToolError.h"

namespace kestrelink::tool {

namespace {

using C = CIppImageConverter;
using L = LayoutId;

const Conversion kConversions[] = {
    {L::Mono8, L::Bgrx, "Mono8ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.Mono8ToBGRx(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono8, L::Bgr24, "Mono8ToBGR", true,
     [](C& c, const FrameJob& j) { return c.Mono8ToBGR(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono8, L::Mono8, "Mono8ToMono8", true,
     [](C& c, const FrameJob& j) { return c.Mono8ToMono8(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono8, L::Mono16Msb, "Mono8ToMono16MSB", false,
     [](C& c, const FrameJob& j) { return c.Mono8ToMono16MSB(j.width, j.height, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Bgrx, "Mono16ToBGRx", true,
     [](C& c, const FrameJob& j) { return c.Mono16ToBGRx(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Bgr24, "Mono16ToBGR", true,
     [](C& c, const FrameJob& j) { return c.Mono16ToBGR(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Mono8, "Mono16ToMono8", true,
     [](C& c, const FrameJob& j) { return c.Mono16ToMono8(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Mono16, "Mono16ToMono16", true,
     [](C& c, const FrameJob& j) { return c.Mono16ToMono16(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
    {L::Mono16, L::Mono16Msb, "Mono16ToMono16MSB", false,
     [](C& c, const FrameJob& j) { return c.Mono16ToMono16MSB(j.width, j.height, j.depth, j.src, j.dst, j.flip); }},
};

}  // namespace

std::span<const Conversion> AllConversions() { return kConversions; }

const Conversion* FindConversion(LayoutId from, LayoutId to) {
  for (const Conversion& conversion : kConversions)
    if (conversion.from == from && conversion.to == to) return &conversion;
  return nullptr;
}

std::string TargetNames(LayoutId from) {
  std::string names;
  for (const Conversion& conversion : kConversions)
    if (conversion.from == from) names += (names.empty() ? "" : ", ") + std::string(LayoutOf(conversion.to).name);
  return names;
}

std::string SourceNames() {
  std::string names;
  for (const Layout& layout : AllLayouts())
    if (!TargetNames(layout.id).empty()) names += (names.empty() ? "" : ", ") + std::string(layout.name);
  return names;
}

std::vector<uint8_t> RunConversion(const Conversion& conversion, const ColourMapSettings& colourMap,
                                   uint32_t width, uint32_t height, uint32_t depth, std::span<uint8_t> src, bool flip) {
  const uint64_t pixels = uint64_t(width) * height;
  if (src.size() < pixels * LayoutOf(conversion.from).bytesPerPixel)
    throw RunError("the source buffer is shorter than one frame");  // callers check first; this keeps it defined
  std::vector<uint8_t> dst(pixels * LayoutOf(conversion.to).bytesPerPixel);
  CIppImageConverter converter;
  ApplyColourMap(converter, colourMap);
  const FrameJob job{width, height, depth, src.data(), dst.data(), flip};
  if (!conversion.call(converter, job))
    throw RunError(std::string(conversion.method) + " refused a " + std::to_string(width) + "x" +
                   std::to_string(height) + " frame at depth " + std::to_string(depth));
  return dst;
}

}  // namespace kestrelink::tool
