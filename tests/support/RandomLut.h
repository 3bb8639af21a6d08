#pragma once
// A LUT text file that sets every row of all three colour tables to random
// values below the table size, and the tables it stands for, so that a test
// reads each expected output straight off the file.
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace testsupport {

struct RandomLut {
  std::vector<uint16_t> t[3];
  uint8_t Byte(int table, uint32_t index) const { return uint8_t(t[table].at(index)); }  // the entry's low byte
};

inline std::string MakeLut(uint32_t bits, uint32_t seed, RandomLut& lut) {
  std::mt19937 rng(seed);
  const uint32_t n = 1u << bits;
  std::string text = "# test table\n";
  for (int c = 0; c < 3; ++c) lut.t[c].resize(n);
  for (uint32_t i = 0; i < n; ++i) {
    for (int c = 0; c < 3; ++c) lut.t[c][i] = uint16_t(rng() % n);
    text += std::to_string(i) + "," + std::to_string(lut.t[0][i]) + "," + std::to_string(lut.t[1][i]) + "," +
            std::to_string(lut.t[2][i]) + ",\n";
  }
  return text;
}

}  // namespace testsupport
