// kestrelink look: a look file applied to a frame that is already colour
// (BGR24, BGR48 or BGRx), through CIppBayerCorrector's look stage, to a PNG.
#include "LookVerb.h"

#include <iostream>
#include <optional>
#include <vector>

#include "Args.h"
#include "FrameFile.h"
#include "LayoutPng.h"
#include "Layouts.h"
#include "PngFile.h"
#include "ToolError.h"

namespace kestrelink::tool {
namespace {

struct LookAlgorithmName {
  std::string_view name;
  CORRECTIONAL_ALG alg;
};
constexpr LookAlgorithmName kLookAlgorithms[] = {
    {"table", CB_ALG_LOOK_3D_TABLE}, {"exact", CB_ALG_LOOK_3D_EXACT}, {"1d", CB_ALG_LOOK_1D}};

// The layouts the look stage takes, with the corrector's format code.
struct LookLayout {
  std::string_view name;
  LayoutId id;
  uint32_t formatCode, bitsPerPixel;
};
constexpr LookLayout kLookLayouts[] = {
    {"bgr24", LayoutId::Bgr24, 200, 24}, {"bgr48", LayoutId::Bgr48, 200, 48}, {"bgrx", LayoutId::Bgrx, 500, 32}};

struct Request {
  const LookLayout* layout = nullptr;
  std::optional<FrameSize> size;
  uint32_t depth = 16;
  std::string look;
  std::optional<CORRECTIONAL_ALG> algorithm;
  std::string in, out;
};

const LookLayout* ParseLookLayout(std::string_view text) {
  for (const LookLayout& l : kLookLayouts)
    if (l.name == text) return &l;
  throw UsageError("--layout wants bgr24, bgr48 or bgrx, not '" + std::string(text) + "'");
}

bool ParseRequest(std::span<const std::string_view> args, Request& r) {
  const OptionSpec options[] = {
      {"--layout", "L", [&](std::string_view v) { r.layout = ParseLookLayout(v); }},
      {"--size", "WxH", [&](std::string_view v) { r.size = ParseSize("--size", v); }},
      {"--depth", "D", [&](std::string_view v) { r.depth = uint32_t(ParseInteger("--depth", v, 9, 16)); }},
      {"--look", "FILE", [&](std::string_view v) { r.look = std::string(v); }},
      {"--alg", "ALG", [&](std::string_view v) { r.algorithm = ParseLookAlgorithm("--alg", v); }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) return false;
  if (!r.layout) throw UsageError("missing --layout bgr24|bgr48|bgrx");
  if (!r.size) throw UsageError("missing --size WxH");
  if (r.look.empty()) throw UsageError("missing --look FILE");
  if (files.size() != 2)
    throw UsageError(std::string(files.size() < 2 ? "missing file names: " : "too many file names: ") +
                     "look takes IN and OUT.png");
  r.in = std::string(files[0]);
  r.out = std::string(files[1]);
  if (!IsPngPath(r.out)) throw UsageError("OUT must end in .png");
  return true;
}

}  // namespace

CORRECTIONAL_ALG ParseLookAlgorithm(std::string_view option, std::string_view text) {
  for (const auto& a : kLookAlgorithms)
    if (a.name == text) return a.alg;
  throw UsageError(std::string(option) + " wants table, exact or 1d, not '" + std::string(text) + "'");
}

void SetLook(CIppBayerCorrector& corrector, const std::string& path, const CORRECTIONAL_ALG* algorithm) {
  bool has3D = false, has1D = false;
  if (!corrector.LoadIridasLookLUT(path.c_str(), has3D, has1D))
    throw RunError("cannot read the look file '" + path + "' (no 3D or 1D table in it)");
  const CORRECTIONAL_ALG alg = algorithm ? *algorithm : has3D ? CB_ALG_LOOK_3D_TABLE : CB_ALG_LOOK_1D;
  if (alg == CB_ALG_LOOK_1D ? !has1D : !has3D)
    throw RunError("the look file '" + path + "' has no " + (alg == CB_ALG_LOOK_1D ? "1D" : "3D") + " table");
  corrector.SetColorCorrectionMode(CORRECTION_AUTO);
  corrector.SetCBAlgorithm(alg);
}

void PrintLookUsage(std::ostream& out) {
  out << "usage: kestrelink look --layout bgr24|bgr48|bgrx --size WxH --look FILE\n"
         "                      [--alg table|exact|1d] [--depth D] IN OUT.png\n"
         "\n"
         "Applies a look file (an XML document with a 3D table, a 1D table or both, as\n"
         "hexadecimal floats) to a frame that is already colour, and writes the graded\n"
         "frame as a colour PNG. The 3D table goes through a table of every 8-bit colour\n"
         "(table) or is interpolated at each pixel (exact); BGR48 frames are always\n"
         "interpolated at each pixel. The table path reads the look with red and blue\n"
         "exchanged against the exact path, as the format has it. Without --alg the 3D\n"
         "table is used when the file has one, through the table.\n"
         "\n"
         "options:\n"
         "  --layout L     bgr24, bgr48 (16-bit little-endian samples) or bgrx\n"
         "  --size WxH     frame size in pixels\n"
         "  --look FILE    the look file\n"
         "  --alg ALG      table, exact or 1d\n"
         "  --depth D      significant bits of a bgr48 sample, 9 to 16 (default 16)\n"
         "  -h, --help     show this help\n"
         "\n"
         "example:\n"
         "  kestrelink look --layout bgr24 --size 1920x1080 --look grade.xml --alg exact frame.bgr graded.png\n";
}

int RunLook(std::span<const std::string_view> args) {
  Request r;
  if (!ParseRequest(args, r)) {
    PrintLookUsage(std::cout);
    return 0;
  }
  const LookLayout& layout = *r.layout;
  const uint32_t depth = layout.bitsPerPixel == 48 ? r.depth : 8;
  const uint64_t bytes = uint64_t(r.size->width) * r.size->height * (layout.bitsPerPixel / 8);
  std::vector<uint8_t> frame =
      ReadFrameFile(r.in, bytes, "a " + std::to_string(r.size->width) + "x" + std::to_string(r.size->height) + " " +
                                     std::string(layout.name) + " frame");
  CIppBayerCorrector corrector;
  SetLook(corrector, r.look, r.algorithm ? &*r.algorithm : nullptr);
  if (!corrector.SetImageInfo4CB(r.size->width, r.size->height, layout.bitsPerPixel, depth, layout.formatCode, true))
    throw RunError("the Bayer corrector refused the frame's format");
  if (!corrector.BGRApplyColorBalance(frame.data(), false)) throw RunError("the look could not be applied");
  WritePng(r.out, LayoutToPng(layout.id, r.size->width, r.size->height, depth, frame));
  return 0;
}

}  // namespace kestrelink::tool
