#pragma once
// Trilinear evaluation of a look's 3D table at 8-bit samples, through the
// look's cell tables and corner weights. `a` picks the slowest axis of the
// table, `b` the middle and `c` the fastest.
#include <cstdint>

#include "colour/LookLut.h"

namespace kestrelink::colour {

// Lower node of the cell that `cell` names. The topmost cell takes the last
// two nodes with the fraction unchanged, so the last node is never reached
// exactly (a settled behaviour of the format). The upper node is low + 1.
inline uint32_t LowNode(uint32_t cell, uint32_t size) { return cell - (cell == size - 1); }

// A result in full-scale units to a byte: truncated toward zero, then
// clamped; not-a-number gives 0.
inline uint8_t ToByte(double v) { return v > 0 ? (v < 255 ? uint8_t(v) : uint8_t(255)) : uint8_t(0); }

// The three components at (a, b, c), each times 255 as a byte.
inline void Evaluate8(const LookLut& look, uint32_t a, uint32_t b, uint32_t c, uint8_t out[3]) {
  const uint32_t n = uint32_t(look.size), log = uint32_t(look.sizeLog2), cl = uint32_t(look.cellLog2);
  const uint32_t aLow = LowNode(look.cellIndex[a], n), bLow = LowNode(look.cellIndex[b], n),
                 cLow = LowNode(look.cellIndex[c], n);
  const uint32_t w = (look.cellRemainder[a] << (2 * cl)) + (look.cellRemainder[b] << cl) + look.cellRemainder[c];
  const uint32_t rowA = 3u << (2 * log), rowB = 3u << log;  // floats between nodes along a and along b
  const float* base = look.lut3D.get() + 3 * ((((aLow << log) + bLow) << log) + cLow);
  // Corners in the order of the weight arrays: (a, b, c) low or high.
  const float* corner[8] = {base,
                            base + 3,
                            base + rowB,
                            base + rowA,
                            base + rowA + 3,
                            base + rowA + rowB,
                            base + rowB + 3,
                            base + rowA + rowB + 3};
  float weight[8];
  for (int k = 0; k < 8; ++k) weight[k] = look.cornerWeights[k][w];
  for (int comp = 0; comp < 3; ++comp) {
    float sum = 0.0f;
    for (int k = 0; k < 8; ++k) sum += corner[k][comp] * weight[k];
    out[comp] = ToByte(double(sum) * 255.0);
  }
}

}  // namespace kestrelink::colour
