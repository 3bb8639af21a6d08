#pragma once
// Helpers of the Bayer corrector tests: the tables read back through the
// saving file, and mosaics of known colours.
#include <array>
#include <cstdio>
#include <string>
#include <vector>

#include <kestrelink/CIppBayerCorrector.h>

#include "support/TestSupport.h"

namespace bayertest {

using Rgb = std::array<int, 3>;

// The corrector's tables (red, green, blue per entry) for as many entries as
// its depth writes, read from the file it saves.
inline std::vector<Rgb> SavedTables(CIppBayerCorrector& c) {
  testsupport::TempFile file("bayer_tables.txt");
  std::vector<Rgb> out;
  if (!c.SetAutoCorrectionLUTSavingFile(file.path())) return out;
  const std::string text = testsupport::ReadFile(file.path());
  size_t at = 0;
  while (at < text.size()) {
    int i, r, g, b;
    if (std::sscanf(text.c_str() + at, "%d,%d,%d,%d", &i, &r, &g, &b) != 4 || i != int(out.size())) break;
    out.push_back({r, g, b});
    at = text.find('\n', at) + 1;
  }
  return out;
}

// Colour of site (x, y) for a pattern named by its first two rows: 0 red,
// 1 green, 2 blue. Patterns out of the list read as GBRG.
inline int SiteColour(int pattern, int x, int y) {
  static const char* const names[4] = {"GBRG", "GRBG", "BGGR", "RGGB"};
  const char c = names[pattern >= 0 && pattern < 4 ? pattern : 0][2 * (y & 1) + (x & 1)];
  return c == 'R' ? 0 : c == 'G' ? 1 : 2;
}

// A mosaic of one colour (red, green, blue) as that pattern's sensor sees it.
template <class Sample>
std::vector<Sample> UniformMosaic(int pattern, int w, int h, Rgb rgb) {
  std::vector<Sample> m(size_t(w) * h);
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) m[size_t(y) * w + x] = Sample(rgb[SiteColour(pattern, x, y)]);
  return m;
}

}  // namespace bayertest
