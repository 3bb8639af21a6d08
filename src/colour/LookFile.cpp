// Look files. An XML document; only this structure counts, and attributes
// and other elements are ignored:
//
//   <look>
//     <LUT>   <size>"N"</size>  <data>...</data> </LUT>     3D table, optional
//     <LUT1D> <size>"n"</size>  <data>...</data> </LUT1D>   1D table, optional
//   </look>
//
//   size   a decimal between double quotes; text without them is size 0
//   data   32-bit IEEE floats, eight hexadecimal digits each, two a byte,
//          lowest byte first (1.0 is 0000803F); '"', space, CR, LF, tab and
//          vertical tab are skipped wherever they stand, even inside a byte;
//          every other character counts as a digit, unchecked
//   LUT    N^3 nodes of three floats, index (a * N + b) * N + c, c fastest
//   LUT1D  n triples: first value to the red curve, second green, third blue
//
// Reading stops at the size the file gives: longer data is not read, shorter
// data leaves the rest of the table as it was (zero in a new table). A 3D
// size must be a power of two from 2 to 256, a 1D size at most 2^20;
// another size counts as no table.
#include "colour/LookFile.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <pugixml.hpp>

#include "colour/LookLut.h"

namespace kestrelink::colour {
namespace {

bool Skipped(char c) { return c == '"' || c == ' ' || c == '\r' || c == '\n' || c == '\t' || c == '\v'; }

// A digit's value; characters that are no digit give what the same
// arithmetic gives them, kept to four bits.
uint32_t Nibble(char c) {
  const uint32_t u = uint8_t(c);
  return (u <= '9' ? u - '0' : (u | 0x20) - 'a' + 10) & 0xF;
}

int32_t FloorLog2(uint32_t v) {
  int32_t log = 0;
  while (v > 1) v >>= 1, ++log;
  return log;
}

const char* TextAt(const pugi::xml_document& doc, const char* query) {
  const pugi::xpath_node node = doc.select_node(query);
  return node ? node.node().value() : "";
}

bool Read1D(LookLut& look, const char* sizeText, const char* data) {
  const int32_t n = ParseLookSize(sizeText);
  if (n < 1 || n > kMaxLook1DSize || !*data) return false;
  std::lock_guard<std::mutex> hold(look.lock1D);
  look.size1D = n;
  look.size1DLog2 = FloorLog2(uint32_t(n));
  std::vector<float> triples(size_t(n) * 3);
  const size_t count = ReadLookFloats(data, triples.data(), triples.size());
  for (auto& curve : look.lut1D) curve.reset(new float[size_t(n)]());
  for (size_t v = 0; v < count; ++v) look.lut1D[v % 3][v / 3] = triples[v];
  return true;
}

bool Read3D(LookLut& look, const char* sizeText, const char* data) {
  const int32_t n = ParseLookSize(sizeText);
  if (n < 2 || n > 256 || (n & (n - 1)) != 0 || !*data) return false;
  const size_t floats = size_t(n) * n * n * 3;
  // A reload keeps the buffer it has; only a larger size needs a new one.
  if (!look.lut3D || look.lut3DFloats < floats) {
    look.lut3D.reset(new float[floats]());
    look.lut3DFloats = floats;
  }
  look.size = n;
  ReadLookFloats(data, look.lut3D.get(), floats);
  return true;
}

}  // namespace

int32_t ParseLookSize(const char* text) {
  const char* first = std::strchr(text, '"');
  const char* last = std::strrchr(text, '"');
  if (!first || last == first) return 0;
  char digits[32] = {};
  const size_t length = size_t(last - first - 1) < 31 ? size_t(last - first - 1) : 31;
  std::memcpy(digits, first + 1, length);
  const long value = std::strtol(digits, nullptr, 10);
  return value < 0 ? 0 : value > 0x7FFFFFFF ? 0x7FFFFFFF : int32_t(value);
}

size_t ReadLookFloats(const char* text, float* out, size_t capacity) {
  size_t count = 0;
  uint32_t bits = 0, digits = 0;
  for (const char* p = text; *p && count < capacity; ++p) {
    if (Skipped(*p)) continue;
    // Eight digits make a float: bytes lowest first, each byte high digit first.
    const uint32_t shift = (digits >> 1) * 8 + ((digits & 1) ? 0 : 4);
    bits |= Nibble(*p) << shift;
    if (++digits == 8) {
      std::memcpy(&out[count++], &bits, sizeof bits);
      bits = digits = 0;
    }
  }
  return count;
}

LookDocumentParts ReadLookDocument(LookLut& look, const void* bytes, size_t length) {
  LookDocumentParts parts;
  pugi::xml_document doc;
  if (!doc.load_buffer(bytes, length)) return parts;
  parts.parsed = true;
  parts.has1D = Read1D(look, TextAt(doc, "/look/LUT1D/size/text()"), TextAt(doc, "/look/LUT1D/data/text()"));
  parts.has3D = Read3D(look, TextAt(doc, "/look/LUT/size/text()"), TextAt(doc, "/look/LUT/data/text()"));
  return parts;
}

LookDocumentParts ReadLookFile(LookLut& look) {
  std::FILE* file = std::fopen(look.path.c_str(), "rb");
  if (!file) return {};
  std::vector<char> bytes;
  char block[65536];
  for (size_t got; (got = std::fread(block, 1, sizeof block, file)) > 0;) bytes.insert(bytes.end(), block, block + got);
  std::fclose(file);
  return ReadLookDocument(look, bytes.data(), bytes.size());
}

}  // namespace kestrelink::colour
