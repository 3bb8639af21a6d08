#include "SyntheticScene.h"

#include <algorithm>
#include <cmath>

namespace kestrelink::tool::scene {

namespace {

constexpr uint64_t kSeed = 0x6B657374726C6E6BULL;
constexpr double kNoiseScale = 0.006;  // of full scale: visible in a zoom, quiet at a glance

// A normalised rectangle of the frame, in 0..1 units of width and height.
struct Box {
  double left, top, right, bottom;
  bool Holds(double u, double v) const { return u >= left && u < right && v >= top && v < bottom; }
  double U(double u) const { return (u - left) / (right - left); }
  double V(double v) const { return (v - top) / (bottom - top); }
};

constexpr Box kTopRamp{0.0, 0.0, 1.0, 0.10};
constexpr Box kSideRamp{0.0, 0.10, 0.05, 1.0};
constexpr Box kBars{0.10, 0.16, 0.46, 0.46};
constexpr Box kChecker{0.54, 0.16, 0.92, 0.46};
constexpr Box kPatches{0.54, 0.56, 0.92, 0.90};

uint64_t SplitMix(uint64_t z) {
  z += 0x9E3779B97F4A7C15ULL;
  z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
  z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
  return z ^ (z >> 31);
}

Rgb Grey(double level) { return {level, level, level}; }

// Bars whose pitch halves across the box, in whole pixels so their edges stay sharp.
Rgb BarPattern(uint32_t x, double boxU) {
  const int group = std::min(4, int(boxU * 5));  // pitches 32, 16, 8, 4, 2 pixels
  const uint32_t halfPitch = 16u >> group;
  return Grey(((x / halfPitch) & 1) ? 0.92 : 0.06);
}

Rgb CheckerSquares(uint32_t x, uint32_t y, uint32_t height) {
  const uint32_t side = std::max<uint32_t>(2, height / 20);
  return ((x / side + y / side) & 1) ? Rgb{0.85, 0.25, 0.20} : Rgb{0.15, 0.55, 0.80};
}

// Six colour patches over eight grey steps.
Rgb Patches(double boxU, double boxV) {
  static constexpr Rgb kColours[6] = {{0.8, 0.1, 0.1}, {0.1, 0.7, 0.1}, {0.1, 0.2, 0.8},
                                      {0.1, 0.7, 0.7}, {0.7, 0.1, 0.7}, {0.8, 0.8, 0.1}};
  if (boxV < 0.5) return kColours[std::min(5, int(boxU * 6))];
  return Grey(std::min(7, int(boxU * 8)) / 7.0);
}

// True when the point lies within `radius` of (cx, cy).
bool InDisc(double px, double py, double cx, double cy, double radius) {
  const double dx = px - cx, dy = py - cy;
  return dx * dx + dy * dy <= radius * radius;
}

}  // namespace

Rgb SceneColour(uint32_t x, uint32_t y, uint32_t width, uint32_t height) {
  const double u = (x + 0.5) / width, v = (y + 0.5) / height;
  if (kTopRamp.Holds(u, v)) return Grey(kTopRamp.U(u));        // black to white, left to right
  if (kSideRamp.Holds(u, v)) return Grey(1.0 - kSideRamp.V(v));  // white to black, top to bottom
  if (kBars.Holds(u, v)) return BarPattern(x, kBars.U(u));
  if (kChecker.Holds(u, v)) return CheckerSquares(x, y, height);
  if (kPatches.Holds(u, v)) return Patches(kPatches.U(u), kPatches.V(v));
  const double px = x + 0.5, py = y + 0.5, cx = 0.30 * width, cy = 0.73 * height, radius = 0.17 * height;
  if (InDisc(px, py, cx, cy, radius * 0.45)) return {0.35, 0.20, 0.10};
  if (InDisc(px, py, cx, cy, radius)) return {0.98, 0.80, 0.45};
  // Background: a soft diagonal blend of the two gradients, warmer to the right.
  const double level = 0.15 + 0.35 * u + 0.25 * v;
  return {level * (0.9 + 0.2 * u), level, level * (1.1 - 0.2 * u)};
}

double SceneNoise(uint32_t x, uint32_t y, uint32_t channel) {
  const uint64_t bits = SplitMix(kSeed ^ (uint64_t(y) << 32 | x) ^ (uint64_t(channel) << 61));
  const double a = double(bits & 0xFFFFFFFF) / 4294967296.0, b = double(bits >> 32) / 4294967296.0;
  return a - b;  // the sum of two uniforms: triangular, -1 .. 1
}

std::vector<uint16_t> MakeMonoFrame(uint32_t width, uint32_t height, uint32_t depth) {
  depth = std::clamp<uint32_t>(depth, 1, 16);
  const double fullScale = double((1u << depth) - 1);
  std::vector<uint16_t> frame(size_t(width) * height);
  for (uint32_t y = 0; y < height; ++y)
    for (uint32_t x = 0; x < width; ++x) {
      const Rgb c = SceneColour(x, y, width, height);
      const double luma = 0.2126 * c.r + 0.7152 * c.g + 0.0722 * c.b + kNoiseScale * SceneNoise(x, y, 0);
      frame[size_t(y) * width + x] = uint16_t(std::lround(std::clamp(luma, 0.0, 1.0) * fullScale));
    }
  return frame;
}

}  // namespace kestrelink::tool::scene
