#pragma once
// The H.264 verbs' shared pieces: record files, planar sequences, picture
// quality, and a progress bar on standard error.
#include <cstdint>
#include <string>
#include <vector>

namespace kestrelink::tool::h264 {

// Planar 4:2:0 frames, Y then U then V, each frame width * height * 3 / 2 bytes
// (width * height for luma alone).
struct PlanarFrame {
  std::vector<uint8_t> y, u, v;
};

// Frame `t` of the demo sequence: the synthetic scene panning left by two
// pixels a frame, in studio-range YCbCr 4:2:0.
PlanarFrame DemoFrame(uint32_t width, uint32_t height, uint32_t t);

// Studio-range YCbCr to B, G, R rows of `pitch` bytes (luma alone when u is empty).
std::vector<uint8_t> ExpectedBgr(const PlanarFrame& frame, uint32_t width, uint32_t height, size_t pitch);

// Peak signal-to-noise ratio in dB over the first width * 3 bytes of each row.
double BgrPsnr(const std::vector<uint8_t>& a, const std::vector<uint8_t>& b, uint32_t width, uint32_t height,
               size_t pitch);

// Splits a file of concatenated encoded frame records; a bad size is a RunError.
std::vector<std::vector<uint8_t>> ReadRecords(const std::string& path);

// "[#####     ]  120/300" on standard error when it is a terminal and the run is long.
class Progress {
 public:
  Progress(const char* what, uint64_t total);
  void Step(uint64_t done);
  ~Progress();

 private:
  const char* m_what;
  uint64_t m_total;
  bool m_shown;
};

}  // namespace kestrelink::tool::h264
