#pragma once
// Frames for the wavelet codec's tests: camera-like content of a given depth
// (one byte a sample at 8 bits, else two), and the largest difference.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <vector>

namespace kestrelink::wavelet::testframes {

using Bytes = std::vector<uint8_t>;

// Frame sizes that are and are not whole blocks, at both depths.
struct FrameCase {
  int w, h, bits;
};
inline constexpr FrameCase kFrameCases[] = {{64, 64, 8}, {70, 45, 8}, {64, 64, 12}, {70, 45, 12}};

// One 32 x 32 block of coefficients with its row pointers.
struct TestBlock {
  TestBlock() {
    for (int y = 0; y < 32; ++y) rows[y] = samples + 32 * y;
  }
  int32_t samples[1024] = {};
  int32_t* rows[32];
};

// A camera-like frame: gradients, a disc, and some noise; samples below 2^bits.
inline Bytes SceneFrame(int w, int h, int bits, uint32_t seed) {
  std::mt19937 rng(seed);
  const int bytes = bits == 8 ? 1 : 2;
  const int maxValue = (1 << bits) - 1;
  Bytes out(size_t(w) * size_t(h) * size_t(bytes));
  for (int y = 0; y < h; ++y)
    for (int x = 0; x < w; ++x) {
      const double dx = x - w / 2.0, dy = y - h / 3.0;
      double v = (x * 0.6 + y * 0.3) / (w + h) * maxValue;
      if (dx * dx + dy * dy < (w * w) / 16.0) v = maxValue * 0.8;
      v += double(int(rng() % 9) - 4) * maxValue / 255.0;
      const int s = std::clamp(int(v), 0, maxValue);
      const size_t i = (size_t(y) * size_t(w) + size_t(x)) * size_t(bytes);
      out[i] = uint8_t(s);
      if (bytes == 2) out[i + 1] = uint8_t(s >> 8);
    }
  return out;
}

inline int Sample(const Bytes& f, size_t i, int bits) {
  return bits == 8 ? f[i] : f[2 * i] | f[2 * i + 1] << 8;
}

inline int LargestDifference(const Bytes& a, const Bytes& b, int bits) {
  const size_t n = bits == 8 ? a.size() : a.size() / 2;
  int worst = 0;
  for (size_t i = 0; i < n; ++i) worst = std::max(worst, std::abs(Sample(a, i, bits) - Sample(b, i, bits)));
  return worst;
}

// The frame's own total length, its first four bytes.
inline uint32_t Total(const Bytes& f) { return uint32_t(f[0] | f[1] << 8 | f[2] << 16 | uint32_t(f[3]) << 24); }

}  // namespace kestrelink::wavelet::testframes
