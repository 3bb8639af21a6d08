#include "convert/LutFile.h"

#include <cstdio>
#include <cstring>
#include <utility>
#include <utility>

namespace kestrelink::lutfile {
namespace {

constexpr int kMaxFields = 4;

inline bool IsDigit(char c) { return c >= '0' && c <= '9'; }

const char* SkipSpaces(const char* p, const char* end) {
  while (p < end && *p == ' ') ++p;
  return p;
}

// Decimal conversion of a field that begins with a digit; digits past what
// 64 bits hold saturate, which is far above any table size.
bool ReadNumber(const char* p, const char* end, uint64_t& value) {
  p = SkipSpaces(p, end);
  if (p >= end || !IsDigit(*p)) return false;
  uint64_t v = 0;
  for (; p < end && IsDigit(*p); ++p) v = v > (UINT64_MAX - 9) / 10 ? UINT64_MAX : v * 10 + uint64_t(*p - '0');
  value = v;
  return true;
}

struct Field {
  const char* begin;
  const char* end;
};

// "[from-to]": the first '[', '-' and ']' in that order, else both unset.
void ReadRange(Field f, uint64_t size, uint64_t& from, uint64_t& to) {
  const char* open = static_cast<const char*>(std::memchr(f.begin, '[', size_t(f.end - f.begin)));
  const char* dash = static_cast<const char*>(std::memchr(f.begin, '-', size_t(f.end - f.begin)));
  const char* close = static_cast<const char*>(std::memchr(f.begin, ']', size_t(f.end - f.begin)));
  bool hasFrom = false, hasTo = false;
  if (open && dash && close && open < dash && dash < close) {
    hasFrom = ReadNumber(open + 1, dash, from);
    hasTo = ReadNumber(dash + 1, close, to);
  }
  if (!hasFrom) from = 0;
  if (!hasTo) to = size;
  if (from > to) std::swap(from, to);
}

}  // namespace

void ParseLine(const char* line, const LutTarget& target) {
  const char* end = line + std::strlen(line);
  const char* p = SkipSpaces(line, end);
  if (p < end && *p == '#') return;

  Field fields[kMaxFields];
  int count = 0;
  for (const char* start = line; count < kMaxFields;) {
    const char* comma = static_cast<const char*>(std::memchr(start, ',', size_t(end - start)));
    fields[count++] = {start, comma ? comma : end};
    if (!comma) break;
    start = comma + 1;
  }

  uint64_t value[3];
  bool set[3] = {false, false, false};
  for (int c = 0; c < 3 && c + 1 < count; ++c) set[c] = ReadNumber(fields[c + 1].begin, fields[c + 1].end, value[c]);
  if (!set[0] && !set[1] && !set[2]) return;

  const uint64_t size = target.size;
  uint64_t from = 0, to = 0;
  const char* index = SkipSpaces(fields[0].begin, fields[0].end);
  if (index < fields[0].end && IsDigit(*index)) {
    ReadNumber(index, fields[0].end, from);
    to = from;
  } else {
    ReadRange(fields[0], size, from, to);
  }
  const uint64_t last = to > from ? to : from + 1;  // always row `from` itself
  for (uint64_t row = from; row < last && row < size; ++row)
    for (int c = 0; c < target.channels; ++c)
      if (set[c] && value[c] < size) {
        target.table[c][row] = uint16_t(value[c]);
        target.flags[c][row] = 1;
      }
}

namespace {

// Splits text into the lines a 260-byte line buffer would give: up to and
// including a newline, or 259 characters, whichever comes first.
template <class NextChar>
void ForEachLine(NextChar next, const LutTarget& target) {
  char line[kMaxLineChars + 1];
  for (;;) {
    size_t n = 0;
    int c = 0;
    while (n < kMaxLineChars && (c = next()) != EOF) {
      line[n++] = char(c);
      if (c == '\n') break;
    }
    if (n == 0) return;
    line[n] = '\0';
    ParseLine(line, target);
    if (c == EOF) return;
  }
}

}  // namespace

void ParseBuffer(const char* data, size_t length, const LutTarget& target) {
  size_t pos = 0;
  ForEachLine([&]() { return pos < length ? int(static_cast<unsigned char>(data[pos++])) : EOF; }, target);
}

bool ParseFile(const char* path, const LutTarget& target) {
  if (!path || !*path) return false;
  FILE* file = std::fopen(path, "rb");
  if (!file) return false;
  ForEachLine([&]() { return getc_unlocked(file); }, target);
  std::fclose(file);
  return true;
}

bool WriteColorFile(const char* path, const uint16_t* const table[3], uint32_t size) {
  FILE* file = path ? std::fopen(path, "w") : nullptr;
  if (!file) return false;
  for (uint32_t i = 0; i < size; ++i)
    std::fprintf(file, "%d,%d,%d,%d,\n", int(i), int(table[0][i]), int(table[1][i]), int(table[2][i]));
  std::fflush(file);
  std::fclose(file);
  return true;
}

bool WriteMonoFile(const char* path, uint32_t size) {
  FILE* file = path ? std::fopen(path, "w") : nullptr;
  if (!file) return false;
  for (uint32_t i = 0; i < size; ++i) std::fprintf(file, "%d,%d,\n", int(i), 0);
  std::fflush(file);
  std::fclose(file);
  return true;
}

}  // namespace kestrelink::lutfile
