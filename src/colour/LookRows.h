#pragma once
// Row kernels of the look stage. Every kernel reads pixels in the layout it
// is given (blue first, or red first with rgbIn) and writes blue, green,
// red; a fourth byte is left as it is. Input and output may be one row.
#include <cstdint>

#include "colour/LookEvaluate.h"
#include "colour/LookLut.h"

namespace kestrelink::colour {

template <bool rgbIn>
struct Order {
  static constexpr int blue = rgbIn ? 2 : 0, red = rgbIn ? 0 : 2;
};

// The precomputed table: entry ((blue * 256 + green) * 256 + red) * 3 holds
// red, green, blue out. Through the fill this evaluates the look with red on
// the slowest axis and blue on the fastest, and swaps the components: the
// exchange of red and blue against the exact path is a settled behaviour of
// the format.
template <int step, bool rgbIn>
void LookTableRow(const uint8_t* in, uint8_t* out, uint32_t width, const uint8_t* table) {
  using O = Order<rgbIn>;
  for (uint32_t x = 0; x < width; ++x, in += step, out += step) {
    const uint8_t* t = table + ((size_t(in[O::blue]) * 256 + in[1]) * 256 + in[O::red]) * 3;
    const uint8_t r = t[0], g = t[1], b = t[2];
    out[0] = b;
    out[1] = g;
    out[2] = r;
  }
}

// Trilinear at each pixel: a blue, b green, c red; blue out is component 2.
template <int step, bool rgbIn>
void LookExact8Row(const uint8_t* in, uint8_t* out, uint32_t width, const LookLut& look) {
  using O = Order<rgbIn>;
  for (uint32_t x = 0; x < width; ++x, in += step, out += step) {
    uint8_t comp[3];
    Evaluate8(look, in[O::blue], in[1], in[O::red], comp);
    out[0] = comp[2];
    out[1] = comp[1];
    out[2] = comp[0];
  }
}

// Per-call byte tables of the 1D path: what each 8-bit sample becomes.
struct LookCurveBytes {
  uint8_t red[256], green[256], blue[256];
};

template <int step, bool rgbIn>
void LookCurve8Row(const uint8_t* in, uint8_t* out, uint32_t width, const LookCurveBytes& t) {
  using O = Order<rgbIn>;
  for (uint32_t x = 0; x < width; ++x, in += step, out += step) {
    const uint8_t b = t.blue[in[O::blue]], g = t.green[in[1]], r = t.red[in[O::red]];
    out[0] = b;
    out[1] = g;
    out[2] = r;
  }
}

// What the 16-bit paths read: the look, the corrector's per-sample tables
// and the full scale of the depth.
struct LookWords {
  const LookLut* look;
  const uint32_t* cellIndex;
  const uint32_t* cellRemainder;
  const float* fraction;
  const float* oneMinusFraction;
  uint32_t fractionLast;  // last entry of the fraction tables
  float fullScale;        // (1 << depth) - 1
  int32_t shift;          // of the 1D path
};

inline uint16_t ToWord(float v, float fullScale) {
  return v > 0 ? (v < fullScale ? uint16_t(v) : uint16_t(fullScale)) : uint16_t(0);
}

// Trilinear at each pixel with the corrector's fraction tables.
template <bool rgbIn>
void LookExact16Row(const uint16_t* in, uint16_t* out, uint32_t width, const LookWords& p) {
  using O = Order<rgbIn>;
  const LookLut& look = *p.look;
  const uint32_t n = uint32_t(look.size), log = uint32_t(look.sizeLog2);
  const uint32_t rowA = 3u << (2 * log), rowB = 3u << log;
  const float* lut = look.lut3D.get();
  for (uint32_t x = 0; x < width; ++x, in += 3, out += 3) {
    const uint32_t v[3] = {in[O::blue], in[1], in[O::red]};
    uint32_t low[3];
    float hi[3], lo[3];
    for (int axis = 0; axis < 3; ++axis) {
      const uint32_t cell = p.cellIndex[v[axis]] < n - 1 ? p.cellIndex[v[axis]] : n - 1;
      const uint32_t rem = p.cellRemainder[v[axis]] < p.fractionLast ? p.cellRemainder[v[axis]] : p.fractionLast;
      low[axis] = LowNode(cell, n);
      hi[axis] = p.fraction[rem];
      lo[axis] = p.oneMinusFraction[rem];
    }
    const float* base = lut + 3 * ((((low[0] << log) + low[1]) << log) + low[2]);
    const float* corner[8] = {base,        base + 3,           base + rowB,     base + rowA,
                              base + rowA + 3, base + rowA + rowB, base + rowB + 3, base + rowA + rowB + 3};
    const float weight[8] = {lo[0] * lo[1] * lo[2], lo[0] * lo[1] * hi[2], lo[0] * hi[1] * lo[2],
                             hi[0] * lo[1] * lo[2], hi[0] * lo[1] * hi[2], hi[0] * hi[1] * lo[2],
                             lo[0] * hi[1] * hi[2], hi[0] * hi[1] * hi[2]};
    uint16_t comp[3];
    for (int c = 0; c < 3; ++c) {
      float sum = 0.0f;
      for (int k = 0; k < 8; ++k) sum += corner[k][c] * weight[k];
      comp[c] = ToWord(sum * p.fullScale, p.fullScale);
    }
    out[0] = comp[2];
    out[1] = comp[1];
    out[2] = comp[0];
  }
}

// The 1D path on 16-bit samples: no interpolation.
template <bool rgbIn>
void LookCurve16Row(const uint16_t* in, uint16_t* out, uint32_t width, const LookWords& p) {
  using O = Order<rgbIn>;
  const LookLut& look = *p.look;
  const uint32_t last = uint32_t(look.size1D) - 1;
  auto at = [&](uint32_t v) {
    const uint32_t i = p.shift >= 0 ? v << p.shift : v >> -p.shift;
    return i < last ? i : last;
  };
  for (uint32_t x = 0; x < width; ++x, in += 3, out += 3) {
    const uint16_t b = ToWord(look.lut1D[2][at(in[O::blue])] * p.fullScale, p.fullScale);
    const uint16_t g = ToWord(look.lut1D[1][at(in[1])] * p.fullScale, p.fullScale);
    const uint16_t r = ToWord(look.lut1D[0][at(in[O::red])] * p.fullScale, p.fullScale);
    out[0] = b;
    out[1] = g;
    out[2] = r;
  }
}

}  // namespace kestrelink::colour
