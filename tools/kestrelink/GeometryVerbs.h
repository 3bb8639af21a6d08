#pragma once
// The verbs of the composing classes: combine and average.
#include <ostream>
#include <span>
#include <string_view>

namespace kestrelink::tool {

int RunCombine(std::span<const std::string_view> args);
void PrintCombineUsage(std::ostream& out);
int RunAverage(std::span<const std::string_view> args);
void PrintAverageUsage(std::ostream& out);

}  // namespace kestrelink::tool
