// kestrelink merge: two mono frames laid over one another by
// CIppImageMerger, the second offset, turned and mirrored, as a blend or a
// ratio, in grey or in colour; raw or PNG out.
#include <kestrelink/CIppImageMerger.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>

#include "AnalysisVerbs.h"
#include "Args.h"
#include "FrameFile.h"
#include "PngFile.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

struct MergeRequest {
  std::optional<FrameSize> size, size2;
  uint32_t depth = 8;
  int offsetX = 0, offsetY = 0, centreX = 0, centreY = 0, mirror = 0, interpolation = 1;
  bool centreGiven = false, smooth = false, sub = false;
  double angle = 0, gamma = 1;
  float weight = 0.5f;
  std::string colour = "grey";
  int channel1 = 2, channel2 = 1;
  uint32_t hue1 = 0, hue2 = 170;
  std::string background1, background2;
};

double ParseNumber(std::string_view option, std::string_view text) {
  const std::string s(text);
  char* end = nullptr;
  const double v = std::strtod(s.c_str(), &end);
  if (s.empty() || *end != '\0' || !std::isfinite(v))
    throw UsageError(std::string(option) + " wants a number, not '" + s + "'");
  return v;
}

std::pair<int64_t, int64_t> ParsePair(std::string_view option, std::string_view text, int64_t lo, int64_t hi) {
  const size_t comma = text.find(',');
  if (comma == std::string_view::npos) throw UsageError(std::string(option) + " wants two whole numbers A,B");
  return {ParseInteger(option, text.substr(0, comma), lo, hi), ParseInteger(option, text.substr(comma + 1), lo, hi)};
}

int MirrorCode(std::string_view name) {
  if (name == "none") return 0;
  if (name == "rows") return 1;
  if (name == "columns") return 2;
  if (name == "both") return 3;
  throw UsageError("--mirror wants none, rows, columns or both, not '" + std::string(name) + "'");
}

std::vector<uint8_t> ReadMono(const std::string& path, const FrameSize& size, uint32_t depth) {
  return ReadFrameFile(path, uint64_t(size.width) * size.height * (depth > 8 ? 2 : 1),
                       "a " + std::to_string(size.width) + "x" + std::to_string(size.height) + " mono" +
                           (depth > 8 ? "16" : "8") + " frame");
}

// The output as PNG: grey in 8 or 16 bits (scaled up from the depth), or RGB.
PngImage ToPng(uint32_t w, uint32_t h, uint32_t depth, bool bgr, const std::vector<uint8_t>& frame) {
  PngImage png{w, h, bgr ? PngPixel::Rgb8 : depth > 8 ? PngPixel::Grey16 : PngPixel::Grey8, {}};
  png.bytes.resize(frame.size());
  const size_t pixels = size_t(w) * h;
  for (size_t i = 0; i < pixels; ++i) {
    if (bgr) {
      png.bytes[3 * i] = frame[3 * i + 2], png.bytes[3 * i + 1] = frame[3 * i + 1], png.bytes[3 * i + 2] = frame[3 * i];
    } else if (depth > 8) {
      const uint32_t v = uint32_t(frame[2 * i] | (frame[2 * i + 1] << 8)) << (16 - depth);
      png.bytes[2 * i] = uint8_t(v >> 8), png.bytes[2 * i + 1] = uint8_t(v);
    } else {
      png.bytes[i] = frame[i];
    }
  }
  return png;
}

}  // namespace

void PrintMergeUsage(std::ostream& out) {
  out << "usage: kestrelink merge --size WxH [--size2 WxH] [--depth D] [--offset X,Y] [--angle DEG]\n"
         "                        [--centre X,Y] [--mirror none|rows|columns|both] [--gamma G]\n"
         "                        [--sub] [--weight W] [--colour grey|pseudo|hsl|channels]\n"
         "                        [--hues H1,H2] [--channels C1,C2] [--background1 F] [--background2 F]\n"
         "                        A.raw B.raw OUT\n"
         "\n"
         "Lays mono frame B over mono frame A (CIppImageMerger). A positive offset puts B that\n"
         "far right or down of A, a negative one puts A right or down of B; the output is the\n"
         "box around both. B is first turned about its centre pixel (or --centre) and mirrored.\n"
         "Where both lie the result is a blend, ((256 - w) B + w A) / 256 with w = 256 W, or\n"
         "with --sub the ratio A / B through the slope curve; one layer alone shows as it is.\n"
         "Everything passes the gamma curve. The output's size is printed.\n"
         "\n"
         "options:\n"
         "  --size WxH         size of A (required); --size2 the size of B (default the same)\n"
         "  --depth D          bits a sample carries: 8 (default, one byte) or 9..16 (two bytes, LE)\n"
         "  --offset X,Y       where B lies against A (default 0,0)\n"
         "  --angle DEG        turn B clockwise by DEG (default 0), bilinear; --smooth blends its border\n"
         "  --mirror KIND      none, rows (top to bottom), columns (left to right) or both\n"
         "  --gamma G          gamma of the output curve (default 1; 0 or below counts as 1)\n"
         "  --sub              the ratio of the layers instead of a blend\n"
         "  --weight W         weight of A in the blend, 0..1 (default 0.5)\n"
         "  --colour KIND      grey (default), pseudo (--sub only: the ratio's pseudo-colour ramp),\n"
         "                     hsl (A in hue H1, B in hue H2, the overlap in their sum), channels\n"
         "                     (blend only: A and B into the BGR bytes of codes C1 and C2)\n"
         "  --hues H1,H2       hues for hsl, 0..255: 0 red, 85 green, 170 blue (default 0,170)\n"
         "  --channels C1,C2   0 blue, 1 green, 2 red, 3 blue+red, 4 blue+green, 5 green+red (default 2,1)\n"
         "  --background1 F, --background2 F   frames taken off A and B first (--sub only)\n"
         "  -h, --help         show this help\n"
         "\n"
         "example:\n"
         "  kestrelink merge --size 1920x1080 --size2 640x480 --offset 200,100 --angle 10 \\\n"
         "      --colour hsl --hues 0,85 a.raw b.raw merged.png\n";
}

int RunMerge(std::span<const std::string_view> args) {
  MergeRequest r;
  const std::vector<OptionSpec> options = {
      {"--size", "WxH", [&](std::string_view v) { r.size = ParseSize("--size", v); }},
      {"--size2", "WxH", [&](std::string_view v) { r.size2 = ParseSize("--size2", v); }},
      {"--depth", "D", [&](std::string_view v) { r.depth = uint32_t(ParseInteger("--depth", v, 8, 16)); }},
      {"--offset", "X,Y",
       [&](std::string_view v) {
         const auto [x, y] = ParsePair("--offset", v, -65536, 65536);
         r.offsetX = int(x), r.offsetY = int(y);
       }},
      {"--centre", "X,Y",
       [&](std::string_view v) {
         const auto [x, y] = ParsePair("--centre", v, -65536, 65536);
         r.centreX = int(x), r.centreY = int(y), r.centreGiven = true;
       }},
      {"--angle", "DEG", [&](std::string_view v) { r.angle = ParseNumber("--angle", v); }},
      {"--smooth", "", [&](std::string_view) { r.smooth = true; }},
      {"--mirror", "KIND", [&](std::string_view v) { r.mirror = MirrorCode(v); }},
      {"--gamma", "G", [&](std::string_view v) { r.gamma = ParseNumber("--gamma", v); }},
      {"--sub", "", [&](std::string_view) { r.sub = true; }},
      {"--weight", "W", [&](std::string_view v) { r.weight = float(ParseNumber("--weight", v)); }},
      {"--colour", "KIND", [&](std::string_view v) { r.colour = std::string(v); }},
      {"--hues", "H1,H2",
       [&](std::string_view v) {
         const auto [a, b] = ParsePair("--hues", v, 0, 255);
         r.hue1 = uint32_t(a), r.hue2 = uint32_t(b);
       }},
      {"--channels", "C1,C2",
       [&](std::string_view v) {
         const auto [a, b] = ParsePair("--channels", v, 0, 5);
         r.channel1 = int(a), r.channel2 = int(b);
       }},
      {"--background1", "F", [&](std::string_view v) { r.background1 = std::string(v); }},
      {"--background2", "F", [&](std::string_view v) { r.background2 = std::string(v); }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) {
    PrintMergeUsage(std::cout);
    return 0;
  }
  if (!r.size) throw UsageError("missing --size WxH, such as --size 1920x1080");
  if (files.size() != 3) throw UsageError("merge takes A.raw, B.raw and OUT");
  if (r.colour != "grey" && r.colour != "pseudo" && r.colour != "hsl" && r.colour != "channels")
    throw UsageError("--colour wants grey, pseudo, hsl or channels, not '" + r.colour + "'");
  if (r.colour == "pseudo" && !r.sub) throw UsageError("--colour pseudo colours a ratio: add --sub");
  if (r.colour == "channels" && r.sub) throw UsageError("--colour channels writes a blend: leave out --sub");
  if (!r.sub && (!r.background1.empty() || !r.background2.empty()))
    throw UsageError("--background1 and --background2 go with --sub");
  const FrameSize a = *r.size, b = r.size2 ? *r.size2 : *r.size;
  std::vector<uint8_t> frameA = ReadMono(std::string(files[0]), a, r.depth);
  std::vector<uint8_t> frameB = ReadMono(std::string(files[1]), b, r.depth);
  std::vector<uint8_t> backA, backB;
  if (!r.background1.empty()) backA = ReadMono(r.background1, a, r.depth);
  if (!r.background2.empty()) backB = ReadMono(r.background2, b, r.depth);
  void* bgA = backA.empty() ? nullptr : backA.data();
  void* bgB = backB.empty() ? nullptr : backB.data();

  const int64_t x1 = r.offsetX < 0 ? -r.offsetX : 0, x2 = r.offsetX > 0 ? r.offsetX : 0;
  const int64_t y1 = r.offsetY < 0 ? -r.offsetY : 0, y2 = r.offsetY > 0 ? r.offsetY : 0;
  const uint32_t w = uint32_t(std::max(x1 + a.width, x2 + b.width)),
                 h = uint32_t(std::max(y1 + a.height, y2 + b.height));
  const bool bgr = r.colour != "grey";
  const bool deep = r.depth > 8;
  std::vector<uint8_t> out(size_t(w) * h * (bgr ? 3 : deep ? 2 : 1), 0);
  if (!r.centreGiven) r.centreX = int(b.width / 2), r.centreY = int(b.height / 2);

  CIppImageMerger merger;
  const int cx = r.centreX, cy = r.centreY, ox = r.offsetX, oy = r.offsetY, m = r.mirror;
  const double g = r.gamma, ang = r.angle;
  const bool s = r.smooth;
  void *pa = frameA.data(), *pb = frameB.data(), *po = out.data();
  const uint32_t d = r.depth;
  bool ok = false;
  if (r.sub && r.colour == "grey")
    ok = deep ? merger.SubMono16ToMono16(a.width, a.height, d, pa, bgA, b.width, b.height, pb, bgB, po, ox, oy, cx, cy,
                                         g, ang, m, 1, s)
              : merger.SubMono8ToMono8(a.width, a.height, pa, bgA, b.width, b.height, pb, bgB, po, ox, oy, cx, cy, g,
                                       ang, m, 1, s);
  else if (r.sub && r.colour == "pseudo")
    ok = deep ? merger.SubMono16ToBGRByPseudoColor(a.width, a.height, d, pa, bgA, b.width, b.height, pb, bgB, po, ox,
                                                   oy, cx, cy, g, ang, m, 1, s)
              : merger.SubMono8ToBGRByPseudoColor(a.width, a.height, pa, bgA, b.width, b.height, pb, bgB, po, ox, oy,
                                                  cx, cy, g, ang, m, 1, s);
  else if (r.sub)
    ok = deep ? merger.SubMono16ToBGRByHSL(a.width, a.height, d, pa, bgA, r.hue1, b.width, b.height, pb, bgB, r.hue2,
                                           po, ox, oy, cx, cy, g, ang, m, 1, s)
              : merger.SubMono8ToBGRByHSL(a.width, a.height, pa, bgA, r.hue1, b.width, b.height, pb, bgB, r.hue2, po,
                                          ox, oy, cx, cy, g, ang, m, 1, s);
  else if (r.colour == "grey")
    ok = deep ? merger.MergeMono16ToMono16(a.width, a.height, d, pa, r.weight, b.width, b.height, pb, po, ox, oy, cx,
                                           cy, g, ang, m, 1, s)
              : merger.MergeMono8ToMono8(a.width, a.height, pa, r.weight, b.width, b.height, pb, po, ox, oy, cx, cy, g,
                                         ang, m, 1, s);
  else if (r.colour == "hsl")
    ok = deep ? merger.MergeMono16ToBGRByHSL(a.width, a.height, d, r.weight, pa, r.hue1, b.width, b.height, pb, r.hue2,
                                             po, ox, oy, cx, cy, g, ang, m, 1, s)
              : merger.MergeMono8ToBGRByHSL(a.width, a.height, r.weight, pa, r.hue1, b.width, b.height, pb, r.hue2, po,
                                            ox, oy, cx, cy, g, ang, m, 1, s);
  else
    ok = deep ? merger.MergeMono16ToBGR(a.width, a.height, d, pa, r.channel1, r.weight, b.width, b.height, pb,
                                        r.channel2, r.weight, po, ox, oy, cx, cy, g, ang, m, 1, s)
              : merger.MergeMono8ToBGR(a.width, a.height, pa, r.channel1, r.weight, b.width, b.height, pb, r.channel2,
                                       r.weight, po, ox, oy, cx, cy, g, ang, m, 1, s);
  if (!ok) throw RunError("the library refused the merge");
  const std::string outPath(files[2]);
  if (IsPngPath(outPath))
    WritePng(outPath, ToPng(w, h, d, bgr, out));
  else
    WriteRawFile(outPath, out);
  std::cout << "merged: " << w << "x" << h << (bgr ? " bgr24" : deep ? " mono16" : " mono8") << '\n';
  return 0;
}

}  // namespace kestrelink::tool
