#pragma once
// The resize verb, and the resize that the demo shows.
#include <cstdint>
#include <ostream>
#include <span>
#include <string_view>
#include <vector>

#include "Args.h"
#include "Layouts.h"

namespace kestrelink::tool {

int RunResize(std::span<const std::string_view> args);
void PrintResizeUsage(std::ostream& out);

// Resizes a whole frame of `layout` (mono8, mono16, bgr24, bgr48, bgrx,
// bgr64 or yuv422) to `to` with mode 0 nearest, 1 linear, 2 cubic, 3 Lanczos,
// 4 super; a refusal is a RunError.
std::vector<uint8_t> ResizeFrame(LayoutId layout, const FrameSize& from, const FrameSize& to, int mode,
                                 const std::vector<uint8_t>& frame);

}  // namespace kestrelink::tool
