#pragma once
// LUT text files of the colour-map engine.
//
// One entry per line; a line is read as at most 259 characters, a longer one
// going on as the next line. Fields are comma-separated, leading spaces allowed:
//
//   index, a, b, c[,]        index: decimal, or a range "[from-to]"
//   # comment                (first non-space character '#')
//
//   field        meaning
//   index        decimal when it begins with a digit, else a range; a range
//                needs '[', '-' and ']' in that order, else both ends are
//                unset; unset from = 0, unset to = N; from > to are swapped;
//                rows from..to-1, and always row `from` itself
//   a, b, c      tables 0, 1, 2 (B, G, R); the mono table takes `a` alone;
//                a value is set when the field begins with a digit (trailing
//                junk ignored) and is kept only if below N, the table size
//
// Rows outside 0..N-1 are skipped. Exported colour files read back as input;
// exported mono files carry no data in their second column.
#include <cstddef>
#include <cstdint>

namespace kestrelink::lutfile {

inline constexpr size_t kMaxLineChars = 259;

// Where parsed entries go. `channels` tables of `size` entries, each with a
// flag array set for every entry written; 0 channels parses and keeps nothing.
struct LutTarget {
  uint16_t* table[3] = {nullptr, nullptr, nullptr};
  uint8_t* flags[3] = {nullptr, nullptr, nullptr};
  int channels = 0;
  uint32_t size = 0;
};

// One line, NUL-terminated, its newline included or not.
void ParseLine(const char* line, const LutTarget& target);

// A whole file's bytes, split into lines as the file reader does.
void ParseBuffer(const char* data, size_t length, const LutTarget& target);

// Reads and applies a file; false when it can't be opened.
bool ParseFile(const char* path, const LutTarget& target);

// "%d,%d,%d,%d,\n" for i = 0 .. size-1: i and tables 0, 1, 2.
bool WriteColorFile(const char* path, const uint16_t* const table[3], uint32_t size);

// "%d,%d,\n" for i = 0 .. size-1: i and a column that carries no data (0).
bool WriteMonoFile(const char* path, uint32_t size);

}  // namespace kestrelink::lutfile
