#pragma once
// Helpers of the YCbCr kernel tests: studio-range BT.601 in double precision,
// written from its definition, and frames laid out by a row step of either
// sign with guard bytes around every row.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace ycctest {

// ---- the colour arithmetic ----

inline double Clamp255(double v) { return std::clamp(v, 0.0, 255.0); }

struct RgbD {
  double r, g, b;
};

// Y, Cb, Cr (studio range) to R, G, B, before rounding.
inline RgbD ToRgb(int y, int cb, int cr) {
  const double l = 1.164 * (y - 16);
  return {Clamp255(l + 1.596 * (cr - 128)), Clamp255(l - 0.813 * (cr - 128) - 0.392 * (cb - 128)),
          Clamp255(l + 2.017 * (cb - 128))};
}

// R, G, B to studio-range Y, Cb, Cr, before rounding.
inline double LumaOf(double r, double g, double b) { return 16 + (65.481 * r + 128.553 * g + 24.966 * b) / 255; }
inline double CbOf(double r, double g, double b) { return 128 + (-37.797 * r - 74.203 * g + 112.0 * b) / 255; }
inline double CrOf(double r, double g, double b) { return 128 + (112.0 * r - 93.786 * g - 18.214 * b) / 255; }

// ---- frames ----

inline constexpr uint8_t kGuard = 0xA5;

// `rows` rows of `rowBytes`, `pad` guard bytes after each, stored top-down
// (positive step) or bottom-up (negative step), one guard byte before all.
class Frame {
 public:
  Frame(size_t rowBytes, int rows, int pad, bool bottomUp, uint8_t fill = kGuard)
      : step_(int(rowBytes) + pad), rows_(std::max(rows, 1)), mem_(size_t(step_) * size_t(rows_) + 2, fill) {
    origin_ = mem_.data() + 1 + (bottomUp ? size_t(step_) * size_t(rows_ - 1) : 0);
    if (bottomUp) step_ = -step_;
  }
  uint8_t* Origin() { return origin_; }
  int Step() const { return step_; }
  uint8_t* Row(int r) { return origin_ + std::ptrdiff_t(step_) * r; }
  const std::vector<uint8_t>& Bytes() const { return mem_; }

 private:
  int step_;
  int rows_;
  std::vector<uint8_t> mem_;
  uint8_t* origin_;
};

// An expected frame: the same geometry, guard bytes where nothing may be
// written, and a tolerance for each byte.
struct Expected {
  Expected(size_t rowBytes, int rows, int pad, bool bottomUp)
      : want(rowBytes, rows, pad, bottomUp), tolerance(rowBytes, rows, pad, bottomUp, 0) {}
  void Set(int row, size_t byte, double value, int tol = 1) {
    want.Row(row)[byte] = uint8_t(std::lround(value));
    tolerance.Row(row)[byte] = uint8_t(tol);
  }
  Frame want, tolerance;
};

// Every byte of `got` within its tolerance of `want`; names the first miss.
inline ::testing::AssertionResult Matches(const Frame& got, const Expected& e) {
  const auto& g = got.Bytes();
  const auto& w = e.want.Bytes();
  const auto& t = e.tolerance.Bytes();
  if (g.size() != w.size()) return ::testing::AssertionFailure() << "frame sizes differ";
  for (size_t i = 0; i < g.size(); ++i)
    if (std::abs(int(g[i]) - int(w[i])) > t[i])
      return ::testing::AssertionFailure() << "byte " << i << " of the memory: got " << int(g[i]) << ", want "
                                           << int(w[i]) << (t[i] ? " +-1" : " (must stay untouched)");
  return ::testing::AssertionSuccess();
}

}  // namespace ycctest
