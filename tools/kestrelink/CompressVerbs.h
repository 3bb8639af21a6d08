#pragma once
// kestrelink compress and decompress: the lossless coder's verbs.
#include <ostream>
#include <span>
#include <string_view>

namespace kestrelink::tool {

int RunCompress(std::span<const std::string_view> args);
void PrintCompressUsage(std::ostream& out);
int RunDecompress(std::span<const std::string_view> args);
void PrintDecompressUsage(std::ostream& out);

}  // namespace kestrelink::tool
