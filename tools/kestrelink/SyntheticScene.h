#pragma once
// A built-in test scene for frames without a camera: gradients, sharp edges
// (bars, checker squares, a disc, colour and grey patches) and fixed-seed
// noise, so every run gives the same frame. Colour is kept so that a mosaic
// frame can sample the same scene one channel a site.
#include <cstdint>
#include <vector>

namespace kestrelink::tool::scene {

struct Rgb {
  double r, g, b;  // 0 .. 1, linear
};

// The noise-free scene at pixel (x, y) of a width x height frame.
Rgb SceneColour(uint32_t x, uint32_t y, uint32_t width, uint32_t height);

// Deterministic noise for pixel (x, y) and one channel, -1 .. 1 with a
// triangular spread; the same at every call, independent of visiting order.
double SceneNoise(uint32_t x, uint32_t y, uint32_t channel);

// Luma of the scene plus noise, as right-justified `depth`-bit samples (1 .. 16).
std::vector<uint16_t> MakeMonoFrame(uint32_t width, uint32_t height, uint32_t depth);

}  // namespace kestrelink::tool::scene
