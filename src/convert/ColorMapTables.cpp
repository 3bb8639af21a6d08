#include "convert/ColorMapTables.h"

#include <cmath>

namespace kestrelink::colormap {
namespace {

// Shifts as the processor does them on 32-bit values: the count is taken
// modulo 32, so depths outside the usual range give a defined answer.
inline uint32_t Shr(uint32_t v, int32_t count) { return v >> (uint32_t(count) & 31); }
inline uint32_t Shl(uint32_t v, int32_t count) { return v << (uint32_t(count) & 31); }

void FillRainbow(uint32_t n, uint16_t* first, uint16_t* g, uint16_t* other) {
  const int64_t q = n / 4, m = int64_t(n) - 1;
  first[0] = g[0] = other[0] = 0;
  for (int64_t i = 1; i <= m; ++i) {
    if (i == m) {
      first[i] = g[i] = other[i] = uint16_t(m);  // the top entry is white
    } else if (i <= q) {
      first[i] = uint16_t(m);
      g[i] = uint16_t(m * i / (2 * q));
      other[i] = 0;
    } else if (i <= 2 * q) {
      first[i] = uint16_t((2 * q - i) * m / q);
      g[i] = uint16_t(m * i / (2 * q));
      other[i] = 0;
    } else if (i <= 3 * q) {
      first[i] = 0;
      g[i] = g[n - i - 1];  // G's second half mirrors its first
      other[i] = uint16_t((i - 2 * q) * m / q);
    } else {
      first[i] = 0;
      g[i] = g[n - i - 1];
      other[i] = uint16_t(m);
    }
  }
}

void FillHeat(uint32_t n, uint16_t* hot, uint16_t* g, uint16_t* cool) {
  const int64_t m = int64_t(n) - 1, t = m / 3;
  hot[0] = g[0] = cool[0] = 0;
  for (int64_t i = 1; i <= m; ++i) {  // sums kept in 16 bits
    if (i <= t) {
      hot[i] = uint16_t(3 * i - 2);
      g[i] = 0;
      cool[i] = 0;
    } else if (i <= 2 * t) {
      hot[i] = uint16_t(m);
      g[i] = uint16_t(3 * i - int64_t(n) - 1);
      cool[i] = 0;
    } else {
      hot[i] = uint16_t(m);
      g[i] = uint16_t(m);
      cool[i] = uint16_t(3 * i - 2 * m - 2);
    }
  }
}

void FillNegative(uint32_t n, uint16_t* b, uint16_t* g, uint16_t* r) {
  b[0] = g[0] = r[0] = 0;
  for (uint32_t i = 1; i < n; ++i) b[i] = g[i] = r[i] = uint16_t(n - i);
}

}  // namespace

void FillPseudoColor(int32_t mode, int32_t inBits, uint16_t* b, uint16_t* g, uint16_t* r) {
  const uint32_t n = 1u << inBits;
  switch (mode) {
    case 1: FillRainbow(n, b, g, r); break;
    case 2: FillHeat(n, r, g, b); break;
    case 3: FillHeat(n, b, g, r); break;
    case 4: FillNegative(n, b, g, r); break;
    default: FillRainbow(n, r, g, b); break;
  }
}

void ApplyAscCurve(uint16_t* table, uint32_t size, int32_t inBits, int32_t outBits, double gain, double offset,
                   double gamma) {
  const double maxIn = double((uint64_t(1) << inBits) - 1);
  const double maxOut = double((uint64_t(1) << outBits) - 1);
  for (uint32_t i = 0; i < size; ++i) {
    double x = (table[i] / maxIn) * gain + offset;
    if (x < 0.0) x = 0.0;
    double y = std::pow(x, gamma);
    if (y > 1.0) y = 1.0;
    const double entry = maxOut * y;
    // NaN and anything below 0 give 0, as a failed truncation would.
    table[i] = entry >= 0.0 ? uint16_t(entry >= maxOut ? maxOut : std::trunc(entry)) : 0;
  }
}

void ApplyClipLevel(uint16_t* table, uint32_t size, int32_t inBits, int32_t outBits, int32_t level,
                    int32_t shiftBase) {
  const uint32_t maxOut = uint32_t((uint64_t(1) << outBits) - 1);
  if (level == 0) {
    for (uint32_t i = 0; i < size; ++i)
      if (table[i] > maxOut) table[i] = uint16_t(maxOut);
    return;
  }
  int32_t shift = inBits - level - shiftBase;
  uint32_t cap;
  if (shift < 1) {
    shift = 0;
    cap = 65535;
  } else {
    cap = inBits == 10 ? 1020 : inBits == 12 ? 4080 : inBits == 14 ? 16320 : 65280;
  }
  for (uint32_t i = 0; i < size; ++i) {
    uint32_t v = Shl(table[i], shift);
    if (v > cap) v = cap;
    // With an 8-bit output the kept byte wraps for depths whose cap is 65280.
    table[i] = outBits <= 8 ? uint16_t(Shr(v, inBits - 8) & 255) : uint16_t(v);
  }
}

void ShiftUnflagged(uint16_t* table, const uint8_t* flags, uint32_t size, int32_t shift) {
  for (uint32_t i = 0; i < size; ++i)
    if (!flags[i]) table[i] = uint16_t(Shr(table[i], shift));
}

}  // namespace kestrelink::colormap
