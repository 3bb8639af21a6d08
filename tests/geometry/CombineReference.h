#pragma once
// A plain model of CImageCombine written from the format's description, for
// the tests: rows done one after another in order, each frame's row placed
// by a per-pixel writer. Frames and destinations are byte vectors.
#include <algorithm>
#include <cstdint>
#include <functional>
#include <vector>

namespace combinetest {

using Bytes = std::vector<uint8_t>;

struct Sizes {
  uint32_t w1, h1, w2, h2;
};

inline uint32_t Width(const Sizes& s, bool side) { return side ? s.w1 + s.w2 : std::max(s.w1, s.w2); }
inline uint32_t Height(const Sizes& s, bool side) { return side ? std::max(s.h1, s.h2) : s.h1 + s.h2; }

// place(frame, sourceRow, destinationRow) for every placement, rows in order.
inline void EachPlacement(const Sizes& s, bool side, const std::function<void(int, uint32_t, uint32_t)>& place) {
  for (uint32_t r = 0; r < Height(s, side); ++r) {
    if (side) {
      if (r < s.h1) place(0, r, r);
      if (r < s.h2) place(1, r, r);
    } else {
      place(r < s.h1 ? 0 : 1, r < s.h1 ? r : r - s.h1, r);
    }
  }
}

inline uint16_t Word(const Bytes& v, size_t i) { return uint16_t(v[2 * i] | (v[2 * i + 1] << 8)); }
inline void PutWord(Bytes& v, size_t i, uint32_t x) {
  v[2 * i] = uint8_t(x);
  v[2 * i + 1] = uint8_t(x >> 8);
}

// The integer YUV formula, written out.
inline void Formula(int y, int u, int v, uint8_t bgr[3]) {
  const int t = (u - 128) * 12727 + (v - 128) * 33384;
  const int g = t > 0 ? (t + 32768) >> 16 : (t - 32768) >> 16;
  const int c[3] = {y + u - 128, y - g, y + v - 128};
  for (int i = 0; i < 3; ++i) bgr[i] = uint8_t(std::clamp(c[i], 0, 255));
}

}  // namespace combinetest
