// The help of kestrelink convert; layouts and conversions come from their tables.
#include <algorithm>
#include <iomanip>
#include <iostream>
#include <string>

#include "Args.h"
#include "Conversions.h"
#include "Layouts.h"
#include "Verbs.h"

namespace kestrelink::tool {

namespace {

std::string Spellings(const Layout& layout) {
  std::string text(layout.name);
  text += " (" + std::string(layout.libraryName);
  if (!layout.alias.empty()) text += ", " + std::string(layout.alias);
  return text + ")";
}

// Column widths that fit the longest entry, with a space after it.
int SpellingsWidth() {
  size_t width = 26;
  for (const Layout& layout : AllLayouts()) width = std::max(width, Spellings(layout).size() + 2);
  return int(width);
}
int NameWidth() {
  size_t width = 11;
  for (const Layout& layout : AllLayouts()) width = std::max(width, layout.name.size() + 1);
  return int(width);
}

bool IsTarget(LayoutId id) {
  for (const Conversion& conversion : AllConversions())
    if (conversion.to == id) return true;
  return false;
}

}  // namespace

void PrintConvertUsage(std::ostream& out) {
  out << "usage: kestrelink convert --from LAYOUT --to LAYOUT --size WxH [options] IN OUT\n"
         "\n"
         "Reads one raw frame from the file IN and writes it, converted, to OUT. A raw frame is\n"
         "tightly packed, top row first, and 16-bit samples are little-endian words. When OUT\n"
         "ends in .png the result is written as a PNG picture; otherwise OUT receives the raw\n"
         "bytes of the destination layout. If IN holds more than one frame, the first is used.\n"
         "\n"
         "required:\n"
         "  --from LAYOUT     the layout of IN: "
      << SourceNames()
      << "\n"
         "  --to LAYOUT       the layout to produce (below)\n"
         "  --size WxH        frame width and height in pixels, 1 to "
      << kMaxSide
      << " each, e.g. 1920x1080\n"
         "\n"
         "options:\n"
         "  --depth D         bits a mono16, bgr48, rgb48, bgr64, bgr42p or bgr48p sample carries,\n"
         "                    8 to 16 (default 12); the other layouts settle their own;\n"
         "                    packed sources (mono12p, mono12p8448, mono12pco) carry 10 or 12\n"
         "  --packed-bits N   packed sources: bits a pixel takes where rows start, 1 to 32\n"
         "                    (default 12); the pairs always take 3 bytes\n"
         "  --flip            turn the frame upside down (bottom row first)\n"
         "  --pseudo N        pseudo-colour map: 0 rainbow from red, 1 rainbow from blue, 2 heat,\n"
         "                    3 heat with blue and red exchanged, 4 negative; colours show in\n"
         "                    bgrx and bgr24 output\n"
         "  --lut FILE        look-up table file, one entry a line: 'index, b, g, r', index a\n"
         "                    source sample (or a range [from-to]) and b, g, r the output values\n"
         "                    it gets (0 to 255 in 8-bit output); '#' starts a comment, mono\n"
         "                    output takes b, and samples the file omits convert as usual\n"
         "  --asc G,O,GAMMA   tone curve y = (x * G + O) ^ GAMMA on samples scaled to 0..1,\n"
         "                    the same for all three colours, e.g. --asc 1.5,0,0.6\n"
         "  --clip N          clip level, 0 to 15: in 8-bit output, samples below 2^(8+N) spread\n"
         "                    over the whole range and brighter ones saturate (for 12-bit\n"
         "                    data 0 is x16, 1 is x8, 2 is x4, 3 is x2)\n"
         "  -h, --help        show this help\n"
         "\n"
         "Each of --pseudo, --lut, --asc and --clip switches the library's colour map on; with\n"
         "--asc the curve takes the place of --clip.\n"
         "\n"
         "layouts (any case; the library's names work too):\n";
  for (const Layout& layout : AllLayouts())
    out << "  " << std::left << std::setw(SpellingsWidth()) << Spellings(layout) << layout.description << '\n';
  out << "\nconversions:\n";
  for (const Layout& layout : AllLayouts()) {
    const std::string targets = TargetNames(layout.id);
    if (!targets.empty()) out << "  from " << std::left << std::setw(NameWidth()) << layout.name << targets << '\n';
  }
  out << "\nPNG output:\n";
  for (const Layout& layout : AllLayouts())
    if (IsTarget(layout.id)) out << "  " << std::left << std::setw(NameWidth()) << layout.name << layout.pngDescription << '\n';
  out << "\n"
         "examples:\n"
         "  kestrelink convert --from mono16 --depth 12 --to bgrx --size 1920x1080 frame.raw frame.png\n"
         "  kestrelink convert --from mono16 --to mono8 --size 640x480 --flip frame.raw frame8.raw\n"
         "  kestrelink convert --from mono8 --to bgr --size 640x480 --pseudo 2 frame8.raw heat.png\n"
         "  kestrelink convert --from mono12p --depth 12 --to mono16 --size 2048x1536 camera.raw frame16.raw\n"
         "  kestrelink convert --from bgr48 --depth 12 --to bgr24 --size 1920x1080 colour48.raw colour.png\n"
         "\n"
         "exit status: 0 done, 1 a file or the conversion failed, 2 the command line is wrong\n";
}

}  // namespace kestrelink::tool
