#pragma once
// Test helpers of the packed mono sources: the layouts' pixels written out
// from their bit tables, source frames laid out by the row-start rules, and
// the destination a frame must end as when its rows are written whole, one
// after another, in order.
#include <array>
#include <cstdint>
#include <functional>
#include <vector>

#include "platform/OpenMP.h"
#include "support/TestSupport.h"

namespace packedtest {

inline uint32_t U16(uint32_t lo, uint32_t hi) { return lo | hi << 8; }

struct Pair {
  uint32_t p0, p1;
};

// Mono16PixelPacked: one little-endian 24-bit value, a 12-bit slot a pixel.
inline Pair Packed12(const uint8_t* b) { return {b[0] | (b[1] & 15u) << 8, (b[1] >> 4) | uint32_t(b[2]) << 4}; }
inline Pair Packed10(const uint8_t* b) {  // bits 0-9 and 12-21
  const uint32_t v = b[0] | b[1] << 8 | b[2] << 16;
  return {v & 1023, (v >> 12) & 1023};
}
// Mono16PixelPacked8448: 8 high bits, 4 low bits, 4 low bits, 8 high bits.
inline Pair E8448_12(const uint8_t* b) { return {uint32_t(b[0]) << 4 | (b[1] & 15), uint32_t(b[2]) << 4 | b[1] >> 4}; }
inline Pair E8448_10(const uint8_t* b) {
  return {uint32_t(b[0]) << 2 | ((b[1] >> 2) & 3), uint32_t(b[2]) << 2 | b[1] >> 6};
}

// MonoPcoPixelPacked: six little-endian words, pixels most significant bit
// first, 16 bits a word.
inline std::array<uint32_t, 8> PcoPixels(const uint8_t* c) {
  uint32_t bits[96];
  for (int w = 0; w < 6; ++w) {
    const uint32_t word = U16(c[2 * w], c[2 * w + 1]);
    for (int k = 0; k < 16; ++k) bits[16 * w + k] = (word >> (15 - k)) & 1;
  }
  std::array<uint32_t, 8> p{};
  for (int i = 0; i < 8; ++i)
    for (int k = 0; k < 12; ++k) p[i] = p[i] << 1 | bits[12 * i + k];
  return p;
}

// Byte offsets of row r in a source frame.
inline uint64_t PairRowStart(uint32_t r, uint32_t w, uint32_t packedBits) {
  return (uint64_t(r) * w * packedBits) >> 3;
}
inline uint64_t PcoRowStart(uint32_t r, uint32_t w) { return ((uint64_t(r) * w * 3) >> 3) * 4; }

// A random source exactly as long as its last row's groups reach.
inline std::vector<uint8_t> PairSource(uint32_t w, uint32_t h, uint32_t packedBits, uint32_t seed) {
  const uint64_t pairs = (uint64_t(w) + 1) / 2;
  return testsupport::RandomBytes(h ? PairRowStart(h - 1, w, packedBits) + 3 * pairs : 0, seed);
}
inline std::vector<uint8_t> PcoSource(uint32_t w, uint32_t h, uint32_t seed) {
  const uint64_t groups = (uint64_t(w) + 7) / 8;
  return testsupport::RandomBytes(h ? PcoRowStart(h - 1, w) + 12 * groups : 0, seed);
}

// The destination after writing, for inRow 0 .. h-1 in order, the bytes
// rowBytes(inRow) at outRow * pitch, outRow being h - 1 - inRow when
// flipped, over a buffer of `size` bytes filled with `fill`.
inline std::vector<uint8_t> RowsWrittenInOrder(size_t size, uint8_t fill, uint32_t h, bool flip, size_t pitch,
                                               const std::function<std::vector<uint8_t>(uint32_t)>& rowBytes) {
  std::vector<uint8_t> out(size, fill);
  for (uint32_t in = 0; in < h; ++in) {
    const std::vector<uint8_t> row = rowBytes(in);
    const size_t at = size_t(flip ? h - 1 - in : in) * pitch;
    for (size_t i = 0; i < row.size(); ++i) out.at(at + i) = row[i];
  }
  return out;
}

inline void PutWord(std::vector<uint8_t>& v, uint32_t word) {
  v.push_back(uint8_t(word));
  v.push_back(uint8_t(word >> 8));
}

using testsupport::ScopedTeam;

}  // namespace packedtest
