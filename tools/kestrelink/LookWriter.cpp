#include "LookWriter.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

namespace kestrelink::tool {
namespace {

// A float's four bytes lowest first, two upper-case hexadecimal digits each.
void AppendFloat(std::string& text, float v) {
  static const char kDigits[] = "0123456789ABCDEF";
  unsigned char bytes[4];
  std::memcpy(bytes, &v, 4);
  for (unsigned char b : bytes) {
    text += kDigits[b >> 4];
    text += kDigits[b & 15];
  }
}

std::string SizeElement(int size) { return "<size>\"" + std::to_string(size) + "\"</size>"; }

}  // namespace

std::string LookDocumentText(int size, const LookNode& node, int size1D, const LookEntry& entry) {
  std::string text = "<?xml version=\"1.0\" ?>\n<look>\n";
  if (size > 0) {
    text.reserve(size_t(size) * size * size * 25 + 256);
    text += "  <LUT>" + SizeElement(size) + "\n    <data>\"";
    for (int a = 0; a < size; ++a)
      for (int b = 0; b < size; ++b) {
        for (int c = 0; c < size; ++c) {
          float rgb[3];
          node(a, b, c, rgb);
          for (float v : rgb) AppendFloat(text, v);
        }
        text += "\n";
      }
    text += "\"</data>\n  </LUT>\n";
  }
  if (size1D > 0) {
    text += "  <LUT1D>" + SizeElement(size1D) + "\n    <data>\"";
    for (int i = 0; i < size1D; ++i) {
      float rgb[3];
      entry(i, rgb);
      for (float v : rgb) AppendFloat(text, v);
    }
    text += "\"</data>\n  </LUT1D>\n";
  }
  return text + "</look>\n";
}

bool WriteLookFile(const std::string& path, const std::string& document) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  if (!file) return false;
  const bool written = std::fwrite(document.data(), 1, document.size(), file) == document.size();
  return std::fclose(file) == 0 && written;
}

void DemoGradeNode(int size, int a, int b, int c, float rgb[3]) {
  // The node's colour at the middle of its cell, as the table samples it.
  const float step = 1.0f / float(size);
  const float red = (float(c) + 0.5f) * step, green = (float(b) + 0.5f) * step, blue = (float(a) + 0.5f) * step;
  const float luma = 0.299f * red + 0.587f * green + 0.114f * blue;
  const float s = luma * luma * (3.0f - 2.0f * luma);  // S-shaped contrast of the luma
  const float in[3] = {red, green, blue};
  // Warm highlights, cool shadows.
  const float tint[3] = {0.06f * (s - 0.35f), 0.01f * (s - 0.5f), -0.07f * (s - 0.4f)};
  for (int k = 0; k < 3; ++k) {
    const float saturated = s + 1.25f * (in[k] - luma);
    rgb[k] = std::clamp(saturated + tint[k], 0.0f, 1.0f);
  }
}

}  // namespace kestrelink::tool
