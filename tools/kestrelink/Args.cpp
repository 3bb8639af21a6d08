#include "Args.h"

#include <charconv>
#include <cmath>
#include <string>

#include "ToolError.h"

namespace kestrelink::tool {

namespace {

const OptionSpec* FindOption(std::span<const OptionSpec> options, std::string_view name) {
  for (const OptionSpec& option : options)
    if (option.name == name) return &option;
  return nullptr;
}

std::string OptionNames(std::span<const OptionSpec> options) {
  std::string names;
  for (const OptionSpec& option : options) names += std::string(names.empty() ? "" : ", ") + std::string(option.name);
  return names + (names.empty() ? "" : ", ") + "--help";
}

// Digits only: from_chars alone would also take a sign or stop early.
bool ParseUnsigned(std::string_view text, uint64_t& value) {
  if (text.empty() || text.size() > 18) return false;
  for (char c : text)
    if (c < '0' || c > '9') return false;
  return std::from_chars(text.data(), text.data() + text.size(), value).ec == std::errc();
}

}  // namespace

bool ParseOptions(std::span<const std::string_view> args, std::span<const OptionSpec> options,
                  std::vector<std::string_view>& positionals) {
  bool optionsEnded = false;
  for (size_t i = 0; i < args.size(); ++i) {
    const std::string_view word = args[i];
    if (optionsEnded || word == "-" || word.empty() || word[0] != '-') {
      positionals.push_back(word);
      continue;
    }
    if (word == "--") {
      optionsEnded = true;
      continue;
    }
    if (word == "-h" || word == "--help") return false;
    const size_t equals = word.find('=');
    const std::string_view name = word.substr(0, equals);
    const OptionSpec* option = FindOption(options, name);
    if (!option)
      throw UsageError("unknown option '" + std::string(name) + "' (options: " + OptionNames(options) + ")");
    if (option->valueName.empty()) {
      if (equals != std::string_view::npos) throw UsageError(std::string(name) + " takes no value");
      option->apply({});
      continue;
    }
    if (equals != std::string_view::npos) {
      option->apply(word.substr(equals + 1));
    } else if (i + 1 < args.size()) {
      option->apply(args[++i]);
    } else {
      throw UsageError(std::string(name) + " needs a value: " + std::string(name) + " " + std::string(option->valueName));
    }
  }
  return true;
}

FrameSize ParseSize(std::string_view option, std::string_view text) {
  const std::string shown(text);
  const size_t cross = text.find_first_of("xX");
  uint64_t width = 0, height = 0;
  if (cross == std::string_view::npos || !ParseUnsigned(text.substr(0, cross), width) ||
      !ParseUnsigned(text.substr(cross + 1), height) || width < 1 || height < 1 || width > kMaxSide ||
      height > kMaxSide)
    throw UsageError(std::string(option) + " wants WxH with W and H from 1 to " + std::to_string(kMaxSide) +
                     ", such as 1920x1080; got '" + shown + "'");
  if (width * height > kMaxPixels)
    throw UsageError(std::string(option) + " " + shown + " is " + std::to_string(width * height) +
                     " pixels; at most " + std::to_string(kMaxPixels) + " are allowed");
  return {uint32_t(width), uint32_t(height)};
}

int64_t ParseInteger(std::string_view option, std::string_view text, int64_t lo, int64_t hi) {
  const bool negative = !text.empty() && text[0] == '-';
  uint64_t magnitude = 0;
  const bool ok = ParseUnsigned(negative ? text.substr(1) : text, magnitude);
  const int64_t value = negative ? -int64_t(magnitude) : int64_t(magnitude);
  if (!ok || value < lo || value > hi)
    throw UsageError(std::string(option) + " wants a whole number from " + std::to_string(lo) + " to " +
                     std::to_string(hi) + "; got '" + std::string(text) + "'");
  return value;
}

std::array<double, 3> ParseTriple(std::string_view option, std::string_view text) {
  std::array<double, 3> values{};
  std::string_view rest = text;
  for (size_t k = 0; k < values.size(); ++k) {
    const size_t comma = rest.find(',');
    const std::string_view field = rest.substr(0, comma);
    const auto [end, ec] = std::from_chars(field.data(), field.data() + field.size(), values[k]);
    const bool last = k + 1 == values.size();
    if (field.empty() || ec != std::errc() || end != field.data() + field.size() || !std::isfinite(values[k]) ||
        last != (comma == std::string_view::npos))
      throw UsageError(std::string(option) + " wants three numbers separated by commas, such as 1.5,0,0.6; got '" +
                       std::string(text) + "'");
    if (!last) rest = rest.substr(comma + 1);
  }
  return values;
}

}  // namespace kestrelink::tool
