#pragma once
// Command-line words of a verb: options from a table, and checked values.
#include <array>
#include <cstdint>
#include <functional>
#include <span>
#include <string_view>
#include <vector>

namespace kestrelink::tool {

struct OptionSpec {
  std::string_view name;       // "--size"
  std::string_view valueName;  // "WxH"; empty for a flag that takes no value
  std::function<void(std::string_view value)> apply;
};

// Applies the options in order and collects the other words. Values come as
// "--name value" or "--name=value"; "--" ends the options. Answers false when
// -h or --help was given, so the verb can print its help instead.
bool ParseOptions(std::span<const std::string_view> args, std::span<const OptionSpec> options,
                  std::vector<std::string_view>& positionals);

struct FrameSize {
  uint32_t width = 0;
  uint32_t height = 0;
};

inline constexpr uint32_t kMaxSide = 65536;
inline constexpr uint64_t kMaxPixels = uint64_t(1) << 28;  // keeps a BGRx frame to 1 GiB

// "WxH", each side 1 .. kMaxSide and the product at most kMaxPixels.
FrameSize ParseSize(std::string_view option, std::string_view text);

// A decimal integer from lo to hi.
int64_t ParseInteger(std::string_view option, std::string_view text, int64_t lo, int64_t hi);

// Three finite numbers separated by commas, such as "1.5,0,0.6".
std::array<double, 3> ParseTriple(std::string_view option, std::string_view text);

}  // namespace kestrelink::tool
