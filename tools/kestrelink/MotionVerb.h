#pragma once
// The verb of the motion detector.
#include <ostream>
#include <span>
#include <string_view>

namespace kestrelink::tool {

int RunMotion(std::span<const std::string_view> args);
void PrintMotionUsage(std::ostream& out);

}  // namespace kestrelink::tool
