#pragma once
// The tool's verbs: each takes the words after its name and answers an exit status.
#include <cstdint>
#include <ostream>
#include <span>
#include <string_view>

namespace kestrelink::tool {

struct Verb {
  std::string_view name;
  std::string_view summary;  // one line for the verb list
  int (*run)(std::span<const std::string_view> args);
  void (*usage)(std::ostream& out);  // the verb's own help
};

// Every verb, in the order the help lists them.
std::span<const Verb> AllVerbs();
const Verb* FindVerb(std::string_view name);

// The tool's overall usage, with the verb list.
void PrintToolUsage(std::ostream& out);

int RunConvert(std::span<const std::string_view> args);
void PrintConvertUsage(std::ostream& out);
int RunDemo(std::span<const std::string_view> args);
void PrintDemoUsage(std::ostream& out);
int RunH264(std::span<const std::string_view> args);
void PrintH264Usage(std::ostream& out);
// Encodes the synthetic sequence and decodes it back, printing size, bit rate and PSNR.
void RunH264Demo(uint32_t width, uint32_t height, uint32_t frames);
int RunHelp(std::span<const std::string_view> args);
void PrintHelpUsage(std::ostream& out);

}  // namespace kestrelink::tool
