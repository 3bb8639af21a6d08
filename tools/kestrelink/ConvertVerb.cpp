// kestrelink convert: one raw frame file to another layout, raw or PNG.
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "Args.h"
#include "ColourMap.h"
#include "Conversions.h"
#include "FrameFile.h"
#include "LayoutPng.h"
#include "Layouts.h"
#include "ToolError.h"
#include "Verbs.h"

namespace kestrelink::tool {

namespace {

inline constexpr uint32_t kDefaultMono16Depth = 12;
inline constexpr int64_t kMinDepth = 8, kMaxDepth = 16;
inline constexpr uint32_t kDefaultPackedBits = 12;
inline constexpr int64_t kMinPackedBits = 1, kMaxPackedBits = 32;

struct ConvertRequest {
  const Layout* from = nullptr;
  const Layout* to = nullptr;
  std::optional<FrameSize> size;
  std::optional<uint32_t> depth;
  std::optional<uint32_t> packedBits;
  bool flip = false;
  ColourMapSettings colourMap;
  std::string in, out;
};

const Layout& NamedLayout(std::string_view option, std::string_view name) {
  const Layout* layout = FindLayout(name);
  if (!layout)
    throw UsageError("unknown layout '" + std::string(name) + "' for " + std::string(option) +
                     " (known layouts: " + LayoutNames() + ")");
  return *layout;
}

// Parses the words; answers false when help was asked for.
bool ParseRequest(std::span<const std::string_view> args, ConvertRequest& request) {
  auto& r = request;
  const OptionSpec options[] = {
      {"--from", "LAYOUT", [&](std::string_view v) { r.from = &NamedLayout("--from", v); }},
      {"--to", "LAYOUT", [&](std::string_view v) { r.to = &NamedLayout("--to", v); }},
      {"--size", "WxH", [&](std::string_view v) { r.size = ParseSize("--size", v); }},
      {"--depth", "D", [&](std::string_view v) { r.depth = uint32_t(ParseInteger("--depth", v, kMinDepth, kMaxDepth)); }},
      {"--packed-bits", "N", [&](std::string_view v) {
         r.packedBits = uint32_t(ParseInteger("--packed-bits", v, kMinPackedBits, kMaxPackedBits));
       }},
      {"--flip", "", [&](std::string_view) { r.flip = true; }},
      {"--pseudo", "N", [&](std::string_view v) { r.colourMap.pseudoMode = int32_t(ParseInteger("--pseudo", v, 0, 4)); }},
      {"--lut", "FILE", [&](std::string_view v) { r.colourMap.lutPath = std::string(v); }},
      {"--asc", "G,O,GAMMA", [&](std::string_view v) { r.colourMap.asc = ParseTriple("--asc", v); }},
      {"--clip", "N", [&](std::string_view v) { r.colourMap.clipLevel = int32_t(ParseInteger("--clip", v, 0, 15)); }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) return false;
  if (!r.from) throw UsageError("missing --from LAYOUT (sources: " + SourceNames() + ")");
  if (!r.to) throw UsageError("missing --to LAYOUT (known layouts: " + LayoutNames() + ")");
  if (!r.size) throw UsageError("missing --size WxH, such as --size 1920x1080");
  if (files.size() != 2)
    throw UsageError(files.size() < 2 ? "missing file names: convert needs IN and OUT"
                                      : "too many file names: convert takes IN and OUT only");
  if (r.colourMap.asc && (*r.colourMap.asc)[2] <= 0.0) throw UsageError("--asc wants a gamma above 0");
  r.in = std::string(files[0]);
  r.out = std::string(files[1]);
  return true;
}

// The source depth: --depth for layouts that carry any, the layout's own otherwise.
// Packed sources hold 10- or 12-bit data; the library leaves other depths' frames untouched.
uint32_t SourceDepth(const ConvertRequest& r) {
  if (r.from->groupPixels && r.depth && *r.depth != 10 && *r.depth != 12)
    throw UsageError("--depth for " + std::string(r.from->name) + " sources is 10 or 12");
  if (!r.from->fixedDepth) return r.depth.value_or(kDefaultMono16Depth);
  if (r.depth && *r.depth != r.from->fixedDepth)
    throw UsageError("--depth applies to sources of a chosen depth (mono16, bgr48, rgb48, bgr64, bgr42p, bgr48p); " +
                     std::string(r.from->name) + " is always " +
                     std::to_string(r.from->fixedDepth) + " bits");
  return r.from->fixedDepth;
}

// Bits a pixel where packed rows start: --packed-bits, for packed sources only.
uint32_t SourcePackedBits(const ConvertRequest& r) {
  if (r.packedBits && !r.from->groupPixels)
    throw UsageError("--packed-bits applies to packed sources (mono12p, mono12p8448, mono12pco); " +
                     std::string(r.from->name) + " is not packed");
  return r.packedBits.value_or(kDefaultPackedBits);
}

const Conversion& ChosenConversion(const ConvertRequest& r) {
  const Conversion* conversion = FindConversion(r.from->id, r.to->id);
  if (conversion) return *conversion;
  const std::string targets = TargetNames(r.from->id);
  if (targets.empty())
    throw UsageError("the library converts nothing from " + std::string(r.from->name) + " (sources: " +
                     SourceNames() + ")");
  throw UsageError("the library has no conversion from " + std::string(r.from->name) + " to " +
                   std::string(r.to->name) + " (from " + std::string(r.from->name) + ": " + targets + ")");
}

}  // namespace

int RunConvert(std::span<const std::string_view> args) {
  ConvertRequest r;
  if (!ParseRequest(args, r)) {
    PrintConvertUsage(std::cout);
    return 0;
  }
  const uint32_t depth = SourceDepth(r);
  const uint32_t packedBits = SourcePackedBits(r);
  const Conversion& conversion = ChosenConversion(r);
  if (r.colourMap.Any() && !conversion.colourMapPath)
    std::cerr << "kestrelink convert: note: " << conversion.method << " has no colour-map path; "
              << "--pseudo, --lut, --asc and --clip change nothing\n";

  const uint32_t w = r.size->width, h = r.size->height;
  const std::string frameName =
      "a " + std::to_string(w) + "x" + std::to_string(h) + " " + std::string(r.from->name) + " frame";
  std::vector<uint8_t> src = ReadFrameFile(r.in, SourceBytes(*r.from, w, h, packedBits), frameName);
  const std::vector<uint8_t> dst = RunConversion(conversion, r.colourMap, w, h, depth, src, r.flip, packedBits);

  if (IsPngPath(r.out)) {
    const uint32_t dstDepth = r.to->fixedDepth ? r.to->fixedDepth : depth;
    WritePng(r.out, LayoutToPng(r.to->id, w, h, dstDepth, dst));
  } else {
    WriteRawFile(r.out, dst);
  }
  return 0;
}

}  // namespace kestrelink::tool
