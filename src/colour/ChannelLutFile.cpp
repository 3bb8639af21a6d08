// Channel-table text files: SetPredefinedLUTFile reads them and
// SetAutoCorrectionLUTSavingFile writes them.
//
// A file is read as lines of at most 259 characters (a longer line is read as
// several). Blanks are spaces only; a tab is no blank.
//
//   line     := comment | entry
//   comment  := blank* "#" any*
//   entry    := index ["," value ["," value ["," value]]] any*
//   index    := blank* digit any*                   a single index, base 10
//             | blank* any* "[" low "-" high "]" any*   the range form
//   low/high := blank* [digit any*]                a half counts only if it
//                                                   starts with a digit
//   value    := blank* any*                        base 10 up to the next ","
//
// The values are red, green and blue. A field that is missing leaves it and
// the later ones unset. A value counts when it reads non-zero (even
// negative), or reads zero from text that starts with a digit. An entry with
// no value set, with no index, or with a range of two unset halves does
// nothing. A range [low-high] writes low, then each following index below
// high (so [5-5] writes 5); an unset low is 0, an unset high 65536, and the
// halves are exchanged when low exceeds high. At each index below 65536 a
// value within 0 .. 65535 is stored in its channel's table; others leave the
// entry as it was. Later lines win.
//
// Written files hold one line "index,red,green,blue" for each index of the
// depth, which reads back through the same syntax.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <kestrelink/CIppBayerCorrector.h>

#include "colour/BayerCorrectorImpl.h"
#include "colour/ChannelLuts.h"

namespace kestrelink::colour {
namespace {

constexpr size_t kLineChars = 259;
constexpr int64_t kUnset = -1;

const char* SkipBlanks(const char* p) {
  while (*p == ' ') ++p;
  return p;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Base-10 number at p; values beyond the table's reach are all "too large".
int64_t ReadNumber(const char* p) {
  const long long v = std::strtoll(p, nullptr, 10);
  return v > (1ll << 40) ? (1ll << 40) : v < -(1ll << 40) ? -(1ll << 40) : v;
}

struct Entry {
  int64_t low = kUnset, high = kUnset;
  bool range = false;
  int64_t value[3] = {kUnset, kUnset, kUnset};  // red, green, blue
};

// Reads the index field [field, end); false when the line ends here.
bool ReadIndex(const char* field, const char* end, Entry& e) {
  const char* p = SkipBlanks(field);
  if (p >= end) return false;
  if (IsDigit(*p)) {
    e.low = ReadNumber(p);
    return true;
  }
  const char* open = static_cast<const char*>(std::memchr(p, '[', size_t(end - p)));
  const char* dash = open ? static_cast<const char*>(std::memchr(open, '-', size_t(end - open))) : nullptr;
  const char* close = dash ? static_cast<const char*>(std::memchr(dash, ']', size_t(end - dash))) : nullptr;
  if (!close) return false;
  e.range = true;
  const char* lowText = SkipBlanks(open + 1);
  const char* highText = SkipBlanks(dash + 1);
  if (lowText < dash && IsDigit(*lowText)) e.low = ReadNumber(lowText);
  if (highText < close && IsDigit(*highText)) e.high = ReadNumber(highText);
  return e.low != kUnset || e.high != kUnset;
}

int64_t ReadValue(const char* field) {
  const char* p = SkipBlanks(field);
  const int64_t v = ReadNumber(p);
  return v != 0 || IsDigit(*p) ? v : kUnset;
}

void Store(CBayerCorrectorImpl& s, const Entry& e) {
  int64_t low = e.low, high = e.low + 1;
  if (e.range) {
    low = e.low == kUnset ? 0 : e.low;
    high = e.high == kUnset ? int64_t(kLutEntries) : e.high;
    if (low > high) std::swap(low, high);
  }
  uint32_t* const luts[3] = {s.redLut.get(), s.greenLut.get(), s.blueLut.get()};
  const int64_t stop = high < int64_t(kLutEntries) ? high : int64_t(kLutEntries);
  for (int64_t i = low; i == low || i < stop; ++i) {  // the first index is always written
    if (i >= int64_t(kLutEntries)) break;
    for (int c = 0; c < 3; ++c)
      if (e.value[c] >= 0 && e.value[c] < int64_t(kLutEntries)) luts[c][i] = uint32_t(e.value[c]);
  }
}

// One line, NUL-terminated.
void ParseLine(CBayerCorrectorImpl& s, const char* line) {
  const char* p = SkipBlanks(line);
  if (*p == '#') return;
  const char* fields[4];
  int count = 0;
  fields[count++] = line;
  for (const char* q = line; *q && count < 4; ++q)
    if (*q == ',') fields[count++] = q + 1;
  Entry e;
  const char* indexEnd = count > 1 ? fields[1] - 1 : line + std::strlen(line);
  if (!ReadIndex(fields[0], indexEnd, e)) return;
  for (int c = 0; c + 1 < count; ++c) e.value[c] = ReadValue(fields[c + 1]);
  if (e.value[0] < 0 && e.value[1] < 0 && e.value[2] < 0) return;
  Store(s, e);
}

}  // namespace

void ParseChannelLutText(CBayerCorrectorImpl& s, const char* text, size_t length) {
  char line[kLineChars + 1];
  size_t at = 0;
  while (at < length) {
    size_t n = 0;
    while (n < kLineChars && at < length) {
      const char c = text[at++];
      line[n++] = c;
      if (c == '\n') break;
    }
    line[n] = '\0';
    // An embedded NUL ends the line's text, as it does for the C library.
    ParseLine(s, line);
  }
}

}  // namespace kestrelink::colour

using namespace kestrelink::colour;

bool CIppBayerCorrector::SetPredefinedLUTFile(const char* path) {
  CBayerCorrectorImpl& s = *m_pImpl;
  if (s.cbAlgorithm != CB_ALG_PREDEFINED_FILE) return false;
  ResetToIdentity(s);
  std::FILE* file = path ? std::fopen(path, "r") : nullptr;
  if (!file) return false;
  std::vector<char> text;
  char block[4096];
  for (size_t n; (n = std::fread(block, 1, sizeof block, file)) > 0;) text.insert(text.end(), block, block + n);
  std::fclose(file);
  ParseChannelLutText(s, text.data(), text.size());
  s.bLutValid = true;
  return true;
}

// Rows follow the depth, not the 256 entries the estimators cover.
bool CIppBayerCorrector::SetAutoCorrectionLUTSavingFile(const char* path) {
  const CBayerCorrectorImpl& s = *m_pImpl;
  if (s.bitDepth == 0 || s.bitDepth >= 32) return false;  // a table of one entry, or none
  const uint32_t rows = s.bitDepth >= 16 ? kLutEntries : 1u << s.bitDepth;
  std::FILE* file = path ? std::fopen(path, "w") : nullptr;
  if (!file) return false;
  for (uint32_t i = 0; i < rows; ++i) {
    std::fprintf(file, "%d,%d,%d,%d\n", int(i), int(s.redLut[i]), int(s.greenLut[i]), int(s.blueLut[i]));
    std::fflush(file);
  }
  std::fclose(file);
  return true;
}
