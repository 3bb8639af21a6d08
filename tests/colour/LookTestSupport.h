#pragma once
// Look files written in tests: 3D tables whose nodes a function gives, and
// 1D curves, as the XML text the reader takes.
#include <fcntl.h>
#include <sys/stat.h>

#include <cstdio>
#include <ctime>
#include <cstring>
#include <functional>
#include <string>

#include <kestrelink/CIppBayerCorrector.h>

#include "colour/BayerCorrectorImpl.h"
#include "colour/LookLutCache.h"
#include "colour/LookStage.h"
#include "support/TestSupport.h"

namespace looktest {

// A float as the file writes it: its four bytes lowest first, two
// upper-case hexadecimal digits each (1.0 is 0000803F).
inline std::string Hex(float v) {
  unsigned char bytes[4];
  std::memcpy(bytes, &v, 4);
  char text[9];
  std::snprintf(text, sizeof text, "%02X%02X%02X%02X", bytes[0], bytes[1], bytes[2], bytes[3]);
  return text;
}

// Node (a, b, c) component `comp` of an N-node table.
using NodeValue = std::function<float(int a, int b, int c, int comp)>;
// Entry i of curve `curve` (0 red, 1 green, 2 blue).
using CurveValue = std::function<float(int i, int curve)>;

inline std::string Lut3DElement(int n, const NodeValue& node) {
  std::string text = "<LUT><size>\"" + std::to_string(n) + "\"</size><data>\"";
  text.reserve(size_t(n) * n * n * 24 + 64);
  for (int a = 0; a < n; ++a)
    for (int b = 0; b < n; ++b) {
      for (int c = 0; c < n; ++c)
        for (int comp = 0; comp < 3; ++comp) text += Hex(node(a, b, c, comp));
      text += '\n';
    }
  return text + "\"</data></LUT>";
}

inline std::string Lut1DElement(int n, const CurveValue& curve) {
  std::string text = "<LUT1D><size>\"" + std::to_string(n) + "\"</size><data>\"";
  for (int i = 0; i < n; ++i)
    for (int k = 0; k < 3; ++k) text += Hex(curve(i, k));
  return text + "\"</data></LUT1D>";
}

inline std::string LookDocument(const std::string& inner) { return "<?xml version=\"1.0\" ?>\n<look>" + inner + "</look>\n"; }

// A look file that stays for the whole test process: looks are cached by
// path until the process ends, so a path is written once and never reused.
inline std::string KeptLookFile(const std::string& name, const std::string& document) {
  const std::string path = ::testing::TempDir() + "kestrelink-" + std::to_string(getpid()) + "-" + name + ".look";
  FILE* f = std::fopen(path.c_str(), "wb");
  if (f) {
    std::fwrite(document.data(), 1, document.size(), f);
    std::fclose(f);
  }
  return path;
}

// Writes the file again with a write time that many seconds from now.
inline void Rewrite(const std::string& path, const std::string& document, int64_t secondsFromNow) {
  FILE* f = std::fopen(path.c_str(), "wb");
  ASSERT_TRUE(f);
  std::fwrite(document.data(), 1, document.size(), f);
  std::fclose(f);
  const timespec when[2] = {{time(nullptr) + secondsFromNow, 0}, {time(nullptr) + secondsFromNow, 0}};
  ASSERT_EQ(utimensat(AT_FDCWD, path.c_str(), when, 0), 0);
}

// A 32-node table that maps each axis linearly: node (a, b, c) holds
// (c / 32, b / 32, a / 32), every value exact in binary, as are the weights.
inline std::string IdentityLut32() {
  return Lut3DElement(32, [](int a, int b, int c, int comp) { return float(comp == 0 ? c : comp == 1 ? b : a) / 32; });
}

// The look stage on its own, as the corrector calls it, with the look of
// `path` and the corrector's 16-bit tables built for `depth`.
inline bool Stage(const std::string& path, CORRECTIONAL_ALG alg, uint32_t format, uint32_t bitsPerPixel,
                  uint32_t depth, uint32_t width, uint32_t height, void* image, bool flip = false) {
  CBayerCorrectorImpl s;
  s.look = kestrelink::colour::TheLookLutCache().Load(path.c_str());
  s.width = width;
  s.height = height;
  s.bitDepth = depth;
  s.bInitialised = true;
  s.cbAlgorithm = alg;
  kestrelink::colour::BuildLookTables(s);
  return kestrelink::colour::ApplyLookStage(s, image, format, bitsPerPixel, depth, flip);
}

}  // namespace looktest
