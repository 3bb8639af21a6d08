// Entry point of the kestrelink tool: picks the verb and turns failures into
// one line on standard error and an exit status.
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "ToolError.h"
#include "Verbs.h"

namespace {

using namespace kestrelink::tool;

std::string VerbNames() {
  std::string names;
  for (const Verb& verb : AllVerbs()) names += (names.empty() ? "" : ", ") + std::string(verb.name);
  return names;
}

int Run(const std::vector<std::string_view>& words) {
  if (words.empty()) {
    PrintToolUsage(std::cerr);
    return kExitUsage;
  }
  const std::string_view first = words.front();
  if (first == "--help" || first == "-h") {
    PrintToolUsage(std::cout);
    return 0;
  }
  const Verb* verb = FindVerb(first);
  if (!verb) {
    std::cerr << "kestrelink: unknown command '" << first << "' (commands: " << VerbNames()
              << "; see kestrelink --help)\n";
    return kExitUsage;
  }
  const std::span<const std::string_view> rest(words.begin() + 1, words.end());
  try {
    return verb->run(rest);
  } catch (const ToolError& error) {
    std::cerr << "kestrelink " << verb->name << ": " << error.what() << '\n';
    return error.Status();
  } catch (const std::bad_alloc&) {
    std::cerr << "kestrelink " << verb->name << ": out of memory\n";
    return kExitFailed;
  } catch (const std::exception& error) {
    std::cerr << "kestrelink " << verb->name << ": " << error.what() << '\n';
    return kExitFailed;
  }
}

}  // namespace

int main(int argc, char** argv) {
  const std::vector<std::string_view> words(argv + 1, argv + argc);
  return Run(words);
}
