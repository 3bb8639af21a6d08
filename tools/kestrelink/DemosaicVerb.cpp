// kestrelink demosaic: one raw Bayer frame (8-bit samples at depth 8, else
// little-endian 16-bit words) through CIppBayerCorrector to a colour PNG, or
// to raw BGR24 bytes when OUT does not end in .png; with no correction, a
// manual balance, an automatic estimator or a channel-table file.
#include <kestrelink/CIppBayerCorrector.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "DemosaicVerb.h"
#include "FrameFile.h"
#include "LookVerb.h"
#include "SyntheticScene.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

struct PatternName {
  std::string_view name;
  BAYERPATTERN pattern;
};
constexpr PatternName kPatterns[] = {
    {"GBRG", BAYER_GBRG}, {"GRBG", BAYER_GRBG}, {"BGGR", BAYER_BGGR}, {"RGGB", BAYER_RGGB}};

struct AlgorithmName {
  std::string_view name;
  CORRECTIONAL_ALG alg;
};
constexpr AlgorithmName kAlgorithms[] = {{"gray-offset", CB_ALG_GRAY_OFFSET},
                                         {"gray-gain", CB_ALG_GRAY_GAIN},
                                         {"contrast-mean", CB_ALG_CONTRAST_MEAN},
                                         {"contrast-mid", CB_ALG_CONTRAST_MID}};

struct Request {
  BAYERPATTERN pattern = BAYER_RGGB;
  uint32_t depth = 8;
  std::optional<FrameSize> size;
  std::optional<std::array<int, 3>> balance;
  std::optional<CORRECTIONAL_ALG> automatic;
  std::string lut;
  std::string look;
  std::optional<CORRECTIONAL_ALG> lookAlgorithm;
  std::string in, out;
};

BAYERPATTERN ParsePattern(std::string_view text) {
  for (const auto& p : kPatterns)
    if (p.name == text) return p.pattern;
  throw UsageError("--pattern wants GBRG, GRBG, BGGR or RGGB, not '" + std::string(text) + "'");
}

CORRECTIONAL_ALG ParseAlgorithm(std::string_view text) {
  for (const auto& a : kAlgorithms)
    if (a.name == text) return a.alg;
  throw UsageError("--auto wants gray-offset, gray-gain, contrast-mean or contrast-mid, not '" + std::string(text) +
                   "'");
}

std::array<int, 3> ParseBalance(std::string_view text) {
  const std::array<double, 3> v = ParseTriple("--balance", text);
  std::array<int, 3> out{};
  for (int i = 0; i < 3; ++i) {
    if (v[i] != std::trunc(v[i]) || std::abs(v[i]) > 65535)
      throw UsageError("--balance wants three whole numbers from -65535 to 65535");
    out[i] = int(v[i]);
  }
  return out;
}

bool ParseRequest(std::span<const std::string_view> args, Request& r) {
  const OptionSpec options[] = {
      {"--pattern", "P", [&](std::string_view v) { r.pattern = ParsePattern(v); }},
      {"--depth", "D", [&](std::string_view v) { r.depth = uint32_t(ParseInteger("--depth", v, 8, 16)); }},
      {"--size", "WxH", [&](std::string_view v) { r.size = ParseSize("--size", v); }},
      {"--balance", "R,G,B", [&](std::string_view v) { r.balance = ParseBalance(v); }},
      {"--auto", "ALG", [&](std::string_view v) { r.automatic = ParseAlgorithm(v); }},
      {"--lut", "FILE", [&](std::string_view v) { r.lut = std::string(v); }},
      {"--look", "FILE", [&](std::string_view v) { r.look = std::string(v); }},
      {"--look-alg", "ALG", [&](std::string_view v) { r.lookAlgorithm = ParseLookAlgorithm("--look-alg", v); }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) return false;
  if (!r.size) throw UsageError("missing --size WxH");
  if (int(r.balance.has_value()) + int(r.automatic.has_value()) + int(!r.lut.empty()) + int(!r.look.empty()) > 1)
    throw UsageError("--balance, --auto, --lut and --look exclude each other");
  if (r.lookAlgorithm && r.look.empty()) throw UsageError("--look-alg needs --look FILE");
  if (files.size() != 2)
    throw UsageError(std::string(files.size() < 2 ? "missing file names: " : "too many file names: ") +
                     "demosaic takes IN and OUT");
  r.in = std::string(files[0]);
  r.out = std::string(files[1]);
  return true;
}

// BGR24 pixels as an RGB PNG.
PngImage BgrToPng(const FrameSize& size, const std::vector<uint8_t>& bgr) {
  PngImage png{size.width, size.height, PngPixel::Rgb8, bgr};
  for (size_t i = 0; i + 2 < png.bytes.size(); i += 3) std::swap(png.bytes[i], png.bytes[i + 2]);
  return png;
}

std::vector<uint8_t> Demosaic(const Request& r, std::vector<uint8_t>& raw) {
  CIppBayerCorrector corrector;
  corrector.SetBayerPattern(r.pattern);
  if (r.balance) {
    corrector.SetColorCorrectionMode(CORRECTION_MANUAL);
    corrector.SetColorBalance((*r.balance)[0], (*r.balance)[1], (*r.balance)[2]);
  } else if (r.automatic) {
    corrector.SetColorCorrectionMode(CORRECTION_AUTO);
    corrector.SetCBAlgorithm(*r.automatic);
  } else if (!r.lut.empty()) {
    corrector.SetColorCorrectionMode(CORRECTION_AUTO);
    corrector.SetCBAlgorithm(CB_ALG_PREDEFINED_FILE);
    if (!corrector.SetPredefinedLUTFile(r.lut.c_str())) throw RunError("cannot read the table file '" + r.lut + "'");
  } else if (!r.look.empty()) {
    SetLook(corrector, r.look, r.lookAlgorithm ? &*r.lookAlgorithm : nullptr);
  } else {
    corrector.SetColorCorrectionMode(CORRECTION_NONE);
  }
  const uint32_t bits = r.depth == 8 ? 8 : 16;
  if (!corrector.SetImageInfo4CB(r.size->width, r.size->height, bits, r.depth, 100, false))
    throw RunError("the Bayer corrector refused the frame's format");
  std::vector<uint8_t> bgr(size_t(r.size->width) * r.size->height * 3);
  if (!corrector.RawConvertToBGR24(raw.data(), bgr.data(), false)) throw RunError("the demosaic failed");
  return bgr;
}

}  // namespace

void PrintDemosaicUsage(std::ostream& out) {
  out << "usage: kestrelink demosaic --size WxH [--pattern P] [--depth D]\n"
         "                          [--balance R,G,B | --auto ALG | --lut FILE |\n"
         "                           --look FILE [--look-alg table|exact|1d]] IN OUT\n"
         "\n"
         "Demosaics one raw Bayer frame (one byte a pixel at depth 8, else little-endian\n"
         "16-bit words with D significant bits) to 8-bit colour, and corrects it:\n"
         "without an option not at all; with --balance by adding R, G, B (in sample units\n"
         "of the depth) to the channels; with --auto by an estimate from the frame; with\n"
         "--lut by a channel-table file (lines \"index,red,green,blue\" or\n"
         "\"[low-high],red,green,blue\"); with --look by a look file's 3D table (through a\n"
         "table of every 8-bit colour, or interpolated at each pixel with --look-alg exact)\n"
         "or its 1D table (--look-alg 1d). OUT ending in .png gets a colour PNG, any other\n"
         "name the raw BGR24 bytes.\n"
         "\n"
         "options:\n"
         "  --size WxH     frame size in pixels\n"
         "  --pattern P    colours of the first two rows: GBRG, GRBG, BGGR, RGGB (default RGGB)\n"
         "  --depth D      significant bits a sample, 8 to 16 (default 8)\n"
         "  --balance R,G,B  manual colour balance\n"
         "  --auto ALG     gray-offset, gray-gain, contrast-mean or contrast-mid\n"
         "  --lut FILE     channel tables from FILE\n"
         "  --look FILE    a look file (see kestrelink look)\n"
         "  --look-alg ALG table, exact or 1d (default: table when FILE has a 3D table, else 1d)\n"
         "  -h, --help     show this help\n"
         "\n"
         "example:\n"
         "  kestrelink demosaic --pattern RGGB --depth 12 --size 1920x1080 --auto gray-gain frame.raw frame.png\n";
}

int RunDemosaic(std::span<const std::string_view> args) {
  Request r;
  if (!ParseRequest(args, r)) {
    PrintDemosaicUsage(std::cout);
    return 0;
  }
  const uint64_t bytes = uint64_t(r.size->width) * r.size->height * (r.depth == 8 ? 1 : 2);
  std::vector<uint8_t> raw =
      ReadFrameFile(r.in, bytes, "a " + std::to_string(r.size->width) + "x" + std::to_string(r.size->height) +
                                     " Bayer frame of depth " + std::to_string(r.depth));
  const std::vector<uint8_t> bgr = Demosaic(r, raw);
  if (IsPngPath(r.out))
    WritePng(r.out, BgrToPng(*r.size, bgr));
  else
    WriteRawFile(r.out, bgr);
  return 0;
}

std::vector<uint16_t> MakeBayerFrame(const FrameSize& size, uint32_t depth) {
  const double fullScale = double((1u << depth) - 1);
  std::vector<uint16_t> frame(size_t(size.width) * size.height);
  for (uint32_t y = 0; y < size.height; ++y)
    for (uint32_t x = 0; x < size.width; ++x) {
      const scene::Rgb c = scene::SceneColour(x, y, size.width, size.height);
      const uint32_t site = (y & 1) + (x & 1);  // RGGB: 0 red, 1 green, 2 blue
      const double v = (site == 0 ? c.r : site == 1 ? c.g : c.b) + 0.006 * scene::SceneNoise(x, y, site);  // the mono frame's noise
      frame[size_t(y) * size.width + x] = uint16_t(std::lround(std::clamp(v, 0.0, 1.0) * fullScale));
    }
  return frame;
}

PngImage DemosaicToPng(const FrameSize& size, uint32_t depth, std::vector<uint16_t>& mosaic, const std::string& look) {
  Request r;
  r.size = size;
  r.depth = depth;
  r.look = look;
  if (!look.empty()) r.lookAlgorithm = CB_ALG_LOOK_3D_EXACT;  // the grade as written, red as red
  std::vector<uint8_t> raw(reinterpret_cast<uint8_t*>(mosaic.data()),
                           reinterpret_cast<uint8_t*>(mosaic.data() + mosaic.size()));
  return BgrToPng(size, Demosaic(r, raw));
}

}  // namespace kestrelink::tool
