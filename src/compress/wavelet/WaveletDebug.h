#pragma once
// Dump helpers shared by the wavelet classes: an array or a matrix of
// integers (floats printed as integers) to the debug output, one row a line,
// each value as "%d," and each line ended by "\r\n". Nothing in the data
// path uses them.
#include <cstdint>

class CWaveletDebug {
 public:
  template <class T>
  static void DumpArray(const T* values, int count) { DumpRow(values, count); }
  template <class T>
  static void DumpMatrix(T* const* rows, int width, int height) {
    for (int y = 0; y < height; ++y) DumpRow(rows[y], width);
  }

 private:
  static void DumpLine(const int64_t* values, int count);
  template <class T>
  static void DumpRow(const T* values, int count) {
    int64_t line[64];
    for (int x = 0; x < count; x += 64) {
      const int n = count - x < 64 ? count - x : 64;
      for (int i = 0; i < n; ++i) line[i] = int64_t(values[x + i]);
      DumpLine(line, n);
    }
  }
};
