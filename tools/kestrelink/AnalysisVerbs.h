#pragma once
// kestrelink merge and spectrum.
#include <ostream>
#include <span>
#include <string_view>

namespace kestrelink::tool {

int RunMerge(std::span<const std::string_view> args);
void PrintMergeUsage(std::ostream& out);
int RunSpectrum(std::span<const std::string_view> args);
void PrintSpectrumUsage(std::ostream& out);

}  // namespace kestrelink::tool
