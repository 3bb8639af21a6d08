#pragma once
// The conversions the library offers, as a table of (from, to) -> method.
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "ColourMap.h"
#include "Layouts.h"

class CIppImageConverter;

namespace kestrelink::tool {

struct FrameJob {
  uint32_t width;
  uint32_t height;
  uint32_t depth;  // bits per source sample
  void* src;
  void* dst;
  bool flip;
  uint32_t packedBits = 12;  // packed sources: bits a pixel in the row start
};

struct Conversion {
  LayoutId from;
  LayoutId to;
  std::string_view method;  // the converter method, for messages
  bool colourMapPath;       // false: the method never reads the colour map
  bool (*call)(CIppImageConverter& converter, const FrameJob& job);
  // On the colour-map path destination rows lie this many bytes a pixel
  // apart instead of the target's own; 0 when they don't.
  uint32_t mappedRowBytesPerPixel = 0;
};

std::span<const Conversion> AllConversions();
const Conversion* FindConversion(LayoutId from, LayoutId to);

// "bgrx, bgr24, ..." reachable from one source; empty when it is no source.
std::string TargetNames(LayoutId from);
// "mono8, mono16": every layout that some conversion starts from.
std::string SourceNames();

// Converts one frame of `src` (at least SourceBytes of the source layout)
// with a fresh converter, since a colour map once on stays on for an
// object's life. Answers the destination frame, tightly packed; a refusal by
// the library is a RunError.
std::vector<uint8_t> RunConversion(const Conversion& conversion, const ColourMapSettings& colourMap,
                                   uint32_t width, uint32_t height, uint32_t depth, std::span<uint8_t> src, bool flip,
                                   uint32_t packedBits = 12);

}  // namespace kestrelink::tool
