#pragma once
// Frames of the mirror and rotate tests: pixels of any size as byte runs,
// addressed by row and column, with plain reference moves.
#include <cstdint>
#include <cstring>
#include <vector>

#include "support/TestSupport.h"

namespace geometrytest {

struct Frame {
  uint32_t w = 0, h = 0;
  int bytes = 1;
  std::vector<uint8_t> data;

  Frame(uint32_t width, uint32_t height, int pixelBytes, uint8_t fill)
      : w(width), h(height), bytes(pixelBytes), data(size_t(width) * height * pixelBytes, fill) {}
  static Frame Random(uint32_t width, uint32_t height, int pixelBytes, uint32_t seed) {
    Frame f(width, height, pixelBytes, 0);
    f.data = testsupport::RandomBytes(f.data.size(), seed);
    return f;
  }
  uint8_t* At(uint32_t row, uint32_t col) { return data.data() + (size_t(row) * w + col) * bytes; }
  const uint8_t* At(uint32_t row, uint32_t col) const { return data.data() + (size_t(row) * w + col) * bytes; }
  void* ptr() { return data.data(); }
};

inline void CopyPixel(const Frame& from, uint32_t r0, uint32_t c0, Frame& to, uint32_t r1, uint32_t c1) {
  std::memcpy(to.At(r1, c1), from.At(r0, c0), from.bytes);
}

}  // namespace geometrytest
