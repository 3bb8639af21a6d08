// kestrelink help, and the tool's overall usage.
#include <algorithm>
#include <iomanip>
#include <string_view>
#include <iostream>
#include <string>

#include "ToolError.h"
#include "Verbs.h"

namespace kestrelink::tool {

void PrintToolUsage(std::ostream& out) {
  out << "kestrelink - convert, demosaic, combine, average and compress raw camera frames\n"
         "\n"
         "usage:\n"
         "  kestrelink convert --from LAYOUT --to LAYOUT --size WxH [options] IN OUT\n"
         "  kestrelink combine --layout LAYOUT [--above] A.raw WxH B.raw WxH OUT\n"
         "  kestrelink average --layout LAYOUT --size WxH [--rolling N] FRAMES... OUTDIR\n"
         "  kestrelink demo [--out DIR] [--size WxH]\n"
         "  kestrelink help [COMMAND]\n"
         "\n"
         "commands:\n";
  size_t width = 0;  // the longest verb name sets the column
  for (const Verb& verb : AllVerbs()) width = std::max(width, std::string_view(verb.name).size());
  for (const Verb& verb : AllVerbs())
    out << "  " << std::left << std::setw(int(width)) << verb.name << "  " << verb.summary << '\n';
  out << "\n"
         "Run 'kestrelink help COMMAND' (or 'kestrelink COMMAND --help') for a command's options.\n"
         "\n"
         "examples:\n"
         "  kestrelink demo                 # example pictures in ./kestrelink-demo/\n"
         "  kestrelink convert --from mono16 --depth 12 --to bgrx --size 1920x1080 frame.raw frame.png\n"
         "  kestrelink rotate --angle 90 --size 1920x1080 --layout bgr24 frame.raw turned.png\n"
         "  kestrelink mirror --axis v --size 1920x1080 --layout mono8 frame.raw mirrored.png\n"
         "  kestrelink combine --layout yuv422 --to bgr24 left.raw 960x1080 right.raw 960x1080 both.png\n"
         "  kestrelink motion --size 1920x1080 previous.raw current.raw --threshold 25 motion.png\n"
         "  kestrelink merge --size 1920x1080 --offset 40,20 --weight 0.7 a.raw b.raw merged.png\n"
         "  kestrelink spectrum --size 2048x1080 --rows 0:540 --centred frame.raw spectrum.csv\n";
}

void PrintHelpUsage(std::ostream& out) {
  out << "usage: kestrelink help [COMMAND]\n"
         "\n"
         "Without COMMAND, shows the overall help; with one, that command's own help.\n";
}

int RunHelp(std::span<const std::string_view> args) {
  if (args.empty()) {
    PrintToolUsage(std::cout);
    return 0;
  }
  if (args.size() > 1) throw UsageError("help takes one command name at most");
  if (args[0] == "-h" || args[0] == "--help") {
    PrintHelpUsage(std::cout);
    return 0;
  }
  const Verb* verb = FindVerb(args[0]);
  if (!verb) throw UsageError("no command named '" + std::string(args[0]) + "' (see kestrelink --help)");
  verb->usage(std::cout);
  return 0;
}

}  // namespace kestrelink::tool
