// kestrelink spectrum: the summed magnitude spectrum of a band of rows of a
// 16-bit frame (CIppImageWrapper::Compute1DFFT), as CSV or as a plot.
#include <kestrelink/CIppImageWrapper.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iostream>
#include <optional>
#include <string>
#include <vector>

#include "AnalysisVerbs.h"
#include "Args.h"
#include "FrameFile.h"
#include "PngFile.h"
#include "ToolError.h"

namespace kestrelink::tool {

namespace {

constexpr uint32_t kPlotHeight = 256, kPlotMaxWidth = 2048;

// The plot: one column per bin (or the largest of a group of bins where
// there are more than 2048), height by the log of the magnitude, white on black.
PngImage Plot(const std::vector<double>& spectrum) {
  const uint32_t n = uint32_t(spectrum.size()), width = std::min(n, kPlotMaxWidth), group = n / width;
  std::vector<double> columns(width, 0.0);
  for (uint32_t i = 0; i < n; ++i) columns[i / group] = std::max(columns[i / group], std::log1p(spectrum[i]));
  const double top = std::max(*std::max_element(columns.begin(), columns.end()), 1e-9);
  PngImage png{width, kPlotHeight, PngPixel::Grey8, std::vector<uint8_t>(size_t(width) * kPlotHeight, 0)};
  for (uint32_t x = 0; x < width; ++x) {
    const uint32_t bar = uint32_t(std::lround(columns[x] / top * (kPlotHeight - 1)));
    for (uint32_t y = kPlotHeight - 1 - bar; y < kPlotHeight; ++y) png.bytes[size_t(y) * width + x] = 255;
  }
  return png;
}

void WriteCsv(const std::string& path, const std::vector<double>& spectrum, bool centred) {
  std::FILE* f = std::fopen(path.c_str(), "wb");
  if (!f) throw RunError("cannot write '" + path + "'");
  const long half = long(spectrum.size() / 2);
  std::fprintf(f, "bin,magnitude\n");
  for (size_t i = 0; i < spectrum.size(); ++i)
    std::fprintf(f, "%ld,%.6f\n", centred ? long(i) - half : long(i), spectrum[i]);
  if (std::fclose(f) != 0) throw RunError("cannot write '" + path + "'");
}

}  // namespace

void PrintSpectrumUsage(std::ostream& out) {
  out << "usage: kestrelink spectrum --size WxH [--rows A:B] [--depth D] [--centred] IN OUT.csv|OUT.png\n"
         "\n"
         "Sums the magnitude spectra of rows A up to (not including) B of a 16-bit mono frame\n"
         "(CIppImageWrapper::Compute1DFFT, fixed-point transform, scale factor 1). Each row's\n"
         "first 2^k samples are transformed, 2^k the largest power of two within W. Samples of\n"
         "D bits are taken as they are up to 15 bits; 16-bit samples are halved to fit. A CSV\n"
         "gives one line per bin; a PNG plots the log of the magnitudes.\n"
         "\n"
         "options:\n"
         "  --size WxH         frame size in pixels (required; W at least 2)\n"
         "  --rows A:B         the band of rows (default all)\n"
         "  --depth D          bits a sample carries, 1..16 (default 12)\n"
         "  --centred          put the zero frequency in the middle (--centered works too)\n"
         "  -h, --help         show this help\n"
         "\n"
         "example:\n"
         "  kestrelink spectrum --size 2048x1080 --rows 0:1080 --centred frame.raw spectrum.png\n";
}

int RunSpectrum(std::span<const std::string_view> args) {
  std::optional<FrameSize> size;
  std::optional<std::pair<int64_t, int64_t>> rows;
  uint32_t depth = 12;
  bool centred = false;
  const std::vector<OptionSpec> options = {
      {"--size", "WxH", [&](std::string_view v) { size = ParseSize("--size", v); }},
      {"--rows", "A:B",
       [&](std::string_view v) {
         const size_t colon = v.find(':');
         if (colon == std::string_view::npos) throw UsageError("--rows wants A:B, such as --rows 0:1080");
         rows = {ParseInteger("--rows", v.substr(0, colon), 0, kMaxSide),
                 ParseInteger("--rows", v.substr(colon + 1), 0, kMaxSide)};
       }},
      {"--depth", "D", [&](std::string_view v) { depth = uint32_t(ParseInteger("--depth", v, 1, 16)); }},
      {"--centred", "", [&](std::string_view) { centred = true; }},
      {"--centered", "", [&](std::string_view) { centred = true; }},
  };
  std::vector<std::string_view> files;
  if (!ParseOptions(args, options, files)) {
    PrintSpectrumUsage(std::cout);
    return 0;
  }
  if (!size) throw UsageError("missing --size WxH, such as --size 2048x1080");
  if (size->width < 2) throw UsageError("--size: a row needs at least 2 samples");
  if (files.size() != 2) throw UsageError("spectrum takes IN and OUT");
  const int64_t first = rows ? rows->first : 0, last = rows ? rows->second : size->height;
  if (first >= last || last > int64_t(size->height))
    throw UsageError("--rows A:B wants 0 <= A < B <= " + std::to_string(size->height));
  const uint32_t w = size->width, h = size->height;
  const std::vector<uint8_t> frame = ReadFrameFile(
      std::string(files[0]), uint64_t(w) * h * 2, "a " + std::to_string(w) + "x" + std::to_string(h) + " 16-bit frame");
  int order = 0;
  while ((2u << order) <= w && order < 16) ++order;
  const int length = 1 << order;
  std::vector<std::vector<short>> samples(size_t(last - first), std::vector<short>(size_t(length)));
  std::vector<short*> pointers;
  for (int64_t y = first; y < last; ++y) {
    auto& row = samples[size_t(y - first)];
    for (int x = 0; x < length; ++x) {
      const size_t at = (size_t(y) * w + size_t(x)) * 2;
      const uint32_t v = uint32_t(frame[at] | (frame[at + 1] << 8));
      row[size_t(x)] = short(depth == 16 ? v >> 1 : std::min<uint32_t>(v, 32767));
    }
    pointers.push_back(row.data());
  }
  std::vector<double> spectrum(size_t(length), 0.0);
  CIppImageWrapper wrapper;
  wrapper.Compute1DFFT(centred ? 1 : 0, length, order, int(pointers.size()), 8, HintNone, pointers.data(),
                       spectrum.data());
  const std::string out(files[1]);
  if (IsPngPath(out))
    WritePng(out, Plot(spectrum));
  else
    WriteCsv(out, spectrum, centred);
  std::cout << "spectrum: " << pointers.size() << " rows of " << length << " samples\n";
  return 0;
}

}  // namespace kestrelink::tool
