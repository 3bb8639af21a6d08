#pragma once
// Scalar quantiser of a plane's coefficients between its minimum and
// maximum, in `levels` steps at most.
#include <cstdint>

#include "compress/wavelet/WaveletDebug.h"

class CUniformQuatizer : public CWaveletDebug {
 public:
  // levels = ((1 << bits) - 1) * ratio / 100, in 32-bit truncating arithmetic.
  void Init(int bits, int ratio);
  // The code of one sample, clamped to 0 .. 255 at 8 bits, else to
  // 0 .. (1 << bits) - 1.
  uint32_t Quantize(int32_t sample, float max, float min) const;
  int32_t Dequantize(uint32_t code, float max, float min) const;
  int32_t Bits() const { return m_bits; }

  int32_t m_levels = 1;
  int32_t m_ratio = 0;
  int32_t m_bits = 0;

 private:
  // Span and step count; max and min swapped if need be.
  void Range(float& max, float& min, float& span, float& steps) const;
};
