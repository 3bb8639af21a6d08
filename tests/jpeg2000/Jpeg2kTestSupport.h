#pragma once
// Frames for the JPEG 2000 tests in every source layout, with the component
// samples each layout should carry, written from the layout table.
#include <kestrelink/CIppImageWrapper.h>

#include <cstdint>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

namespace j2ktest {

struct Frame {
  uint32_t format, width, height;
  std::vector<uint8_t> planes[3];              // what the caller hands over
  std::vector<std::vector<int32_t>> expected;  // component samples, 0 .. 255
  void* Plane(int i) { return planes[i].empty() ? nullptr : planes[i].data(); }
};

// A gradient with noise: smooth enough to compress, busy enough to fill
// every bit-plane.
inline uint8_t Sample(uint32_t x, uint32_t y, int c, std::mt19937& rng) {
  return uint8_t((x * 3 + y * 5 + uint32_t(c) * 70 + (rng() & 31)) & 255);
}

inline Frame MakeFrame(uint32_t format, uint32_t width, uint32_t height, uint32_t seed = 1) {
  Frame f{format, width, height, {}, {}};
  std::mt19937 rng(seed);
  const size_t n = size_t(width) * height;
  const bool mono = format == 100 || format == 101;
  f.expected.assign(mono ? 1 : 3, std::vector<int32_t>(n));
  if (mono) {
    f.planes[2].resize(n);
    for (size_t i = 0; i < n; ++i)
      f.expected[0][i] = f.planes[2][i] = Sample(uint32_t(i % width), uint32_t(i / width), 0, rng);
    return f;
  }
  const int bytes = format == 300 ? 1 : format == 500 ? 4 : 3;
  if (format == 300) {
    for (auto& p : f.planes) p.resize(n);
  } else {
    f.planes[2].resize(n * bytes);
  }
  for (size_t i = 0; i < n; ++i) {
    const uint32_t x = uint32_t(i % width), y = uint32_t(i / width);
    const uint8_t a = Sample(x, y, 0, rng), b = Sample(x, y, 1, rng), c = Sample(x, y, 2, rng);
    if (format == 300) {  // the third plane is component 0, the first component 2
      f.planes[2][i] = a;
      f.planes[1][i] = b;
      f.planes[0][i] = c;
      f.expected[0][i] = a;
      f.expected[1][i] = b;
      f.expected[2][i] = c;
      continue;
    }
    uint8_t* px = &f.planes[2][i * bytes];
    px[0] = a;
    px[1] = b;
    px[2] = c;
    if (bytes == 4) px[3] = uint8_t(rng());
    const bool inOrder = format == 400;  // 400 reads bytes 0, 1, 2; the others 2, 1, 0
    f.expected[0][i] = inOrder ? a : c;
    f.expected[1][i] = b;
    f.expected[2][i] = inOrder ? c : a;
  }
  return f;
}

inline std::vector<uint8_t> ReadFile(const std::string& path) {
  std::vector<uint8_t> data;
  if (std::FILE* f = std::fopen(path.c_str(), "rb")) {
    uint8_t buffer[65536];
    size_t n;
    while ((n = std::fread(buffer, 1, sizeof buffer, f)) > 0) data.insert(data.end(), buffer, buffer + n);
    std::fclose(f);
  }
  return data;
}

inline uint32_t Big32(const std::vector<uint8_t>& d, size_t at) {
  return uint32_t(d[at]) << 24 | uint32_t(d[at + 1]) << 16 | uint32_t(d[at + 2]) << 8 | d[at + 3];
}

// The packet record of a frame, its four-byte count included; empty when
// the encoder refuses the frame.
inline std::vector<uint8_t> Record(Frame& f) {
  CIppImageWrapper wrapper;
  wrapper.InitJPeg2KConverter(f.width, f.height, 0, 0, f.format);
  std::vector<uint8_t> out(size_t(f.width) * f.height * 8 + 4096);
  if (!wrapper.EncodeJpeg2K(f.Plane(0), f.Plane(1), f.Plane(2), out.data())) return {};
  const uint32_t count = uint32_t(out[0]) | uint32_t(out[1]) << 8 | uint32_t(out[2]) << 16 | uint32_t(out[3]) << 24;
  out.resize(size_t(count) + 4);
  return out;
}

// Offset of the codestream in our JP2 files: after the signature (12), file
// type (20), header (45) boxes and the codestream box's own 8 bytes.
inline constexpr size_t kCodestreamOffset = 12 + 20 + 45 + 8;

}  // namespace j2ktest
