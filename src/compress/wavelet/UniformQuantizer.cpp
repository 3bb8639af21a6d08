// Quantising a coefficient to a code and back. Single precision on the way
// in, double on the way out, both truncating toward zero.
#include "compress/wavelet/UniformQuantizer.h"

#include <utility>

void CUniformQuatizer::Init(int bits, int ratio) {
  m_bits = bits;
  m_ratio = ratio;
  const int32_t top = bits >= 31 || bits < 0 ? INT32_MAX : int32_t((1u << bits) - 1);
  m_levels = int32_t(int64_t(top) * ratio / 100);
}

void CUniformQuatizer::Range(float& max, float& min, float& span, float& steps) const {
  if (min > max) std::swap(max, min);
  span = max - min;
  steps = span < 1 ? 1.0f : span > float(m_levels) ? float(m_levels) : span;
}

uint32_t CUniformQuatizer::Quantize(int32_t sample, float max, float min) const {
  float span, steps;
  Range(max, min, span, steps);
  const float scale = 1.0f / (span / steps);
  const float q = (float(sample) - min) * scale;
  const int64_t top = m_bits == 8 ? 255 : m_bits >= 1 && m_bits <= 31 ? (int64_t(1) << m_bits) - 1 : 0;
  // A flat plane makes the scale infinite and the product undefined: the
  // conversion's overflow value, which clamps to 0.
  if (!(q > -2147483648.0f && q < 2147483648.0f)) return 0;
  const int64_t code = int64_t(int32_t(q));
  return uint32_t(code < 0 ? 0 : code > top ? top : code);
}

int32_t CUniformQuatizer::Dequantize(uint32_t code, float max, float min) const {
  float span, steps;
  Range(max, min, span, steps);
  const double value = (double(code) + 0.5) * double(span / steps) + double(min);
  if (!(value > -2147483648.0 && value < 2147483648.0)) return 0;
  return int32_t(value);
}
