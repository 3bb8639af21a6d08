#pragma once
// Turning a frame of one layout into the pixels of a PNG.
#include <cstdint>
#include <span>

#include "Layouts.h"
#include "PngFile.h"

namespace kestrelink::tool {

// `frame` holds width*height pixels of `layout`; `depth` is the bits a mono16
// sample carries.
PngImage LayoutToPng(LayoutId layout, uint32_t width, uint32_t height, uint32_t depth,
                     std::span<const uint8_t> frame);

}  // namespace kestrelink::tool
