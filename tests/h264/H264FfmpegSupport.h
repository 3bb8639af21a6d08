#pragma once
// Helpers of the tests that take streams from the ffmpeg command-line tools:
// temporary files, access units as a reader of the format cuts them, records
// around them, and ffmpeg's own decode as BGR rows.
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <string>
#include <vector>

#include "h264/H264TestSupport.h"

namespace h264test {

inline bool HaveFfmpegTools() {
  return std::system("command -v ffmpeg >/dev/null 2>&1 && command -v ffprobe >/dev/null 2>&1") == 0;
}

// One file a process: ctest runs the tests side by side.
inline std::string TempPath(const std::string& name) {
  return testing::TempDir() + "kestrelink_h264_" + std::to_string(getpid()) + "_" + name;
}

inline std::vector<uint8_t> ReadBytes(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  return std::vector<uint8_t>((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
}

// Access units of an Annex B stream: a new one opens at a parameter set, SEI
// or delimiter, or at a slice that starts at macroblock 0, once a slice was seen.
inline std::vector<std::vector<uint8_t>> AccessUnits(const std::vector<uint8_t>& stream) {
  std::vector<std::vector<uint8_t>> units(1);
  bool slice = false;
  for (const auto& [at, size] : NalUnits(stream.data(), stream.size())) {
    const int type = stream[at] & 31;
    const bool opens = type == 6 || type == 7 || type == 8 || type == 9 ||
                       ((type == 1 || type == 5) && size > 1 && (stream[at + 1] & 0x80));
    if (opens && slice) {
      units.emplace_back();
      slice = false;
    }
    const uint8_t startCode[] = {0, 0, 0, 1};
    units.back().insert(units.back().end(), std::begin(startCode), std::end(startCode));
    units.back().insert(units.back().end(), stream.begin() + at, stream.begin() + at + size);
    slice = slice || type == 1 || type == 5;
  }
  return units;
}

// A record around one access unit, with 8 readable bytes behind it.
inline std::vector<uint8_t> RecordOf(const std::vector<uint8_t>& unit) {
  std::vector<uint8_t> record(8 + unit.size() + 8, 0);
  const uint32_t size = uint32_t(unit.size() + 8);
  for (int b = 0; b < 4; ++b) record[b] = uint8_t(size >> (8 * b));
  std::copy(unit.begin(), unit.end(), record.begin() + 8);
  return record;
}

// ffmpeg's own decode of `file`, converted with the studio-range formula to BGR rows of `pitch` bytes.
inline std::vector<std::vector<uint8_t>> ReferencePictures(const std::string& file, uint32_t w, uint32_t h, size_t pitch) {
  const std::string raw = TempPath("reference.yuv");
  const std::string command = "ffmpeg -v error -y -i " + file + " -f rawvideo -pix_fmt yuv420p " + raw;
  EXPECT_EQ(std::system(command.c_str()), 0) << command;
  const std::vector<uint8_t> yuv = ReadBytes(raw);
  std::remove(raw.c_str());
  const size_t frameBytes = size_t(w) * h * 3 / 2;
  std::vector<std::vector<uint8_t>> pictures;
  auto clamp = [](int v) { return uint8_t(std::min(255, std::max(0, v))); };
  for (size_t at = 0; at + frameBytes <= yuv.size(); at += frameBytes) {
    const uint8_t *y = &yuv[at], *u = y + size_t(w) * h, *v = u + size_t(w / 2) * (h / 2);
    std::vector<uint8_t> bgr(pitch * h);
    for (uint32_t r = 0; r < h; ++r)
      for (uint32_t c = 0; c < w; ++c) {
        const int l = 4767 * (y[r * w + c] - 16), cb = u[(r / 2) * (w / 2) + c / 2] - 128,
                  cr = v[(r / 2) * (w / 2) + c / 2] - 128;
        uint8_t* px = &bgr[r * pitch + c * 3];
        px[0] = clamp((l + 8261 * cb + 2048) >> 12);
        px[1] = clamp((l - 3330 * cr - 1605 * cb + 2048) >> 12);
        px[2] = clamp((l + 6537 * cr + 2048) >> 12);
      }
    pictures.push_back(std::move(bgr));
  }
  return pictures;
}

}  // namespace h264test
