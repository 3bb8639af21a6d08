#include "primitives/ResizeAxis.h"

#include <algorithm>
#include <cmath>

#include "primitives/GeometryTypes.h"

namespace kestrelink::resize {

namespace {

constexpr double kPi = 3.14159265358979323846;

// A centre far outside the source reads only the edge pixels; keeping it near
// keeps the integer conversions defined.
double ClampCentre(double c, const AxisMap& m) { return std::clamp(c, double(m.lo) - 8.0, double(m.hi) + 8.0); }

int32_t ClampIndex(int64_t i, const AxisMap& m) { return int32_t(std::clamp<int64_t>(i, m.lo, m.hi - 1)); }

// Taps first .. first+n-1 weighted by kernel(distance from c), normalised.
template <class Kernel>
void WindowTaps(const AxisMap& m, double c, int n, int back, int32_t* idx, double* w, Kernel kernel) {
  const int64_t first = int64_t(std::floor(c)) - back;
  double sum = 0;
  for (int k = 0; k < n; ++k) {
    idx[k] = ClampIndex(first + k, m);
    w[k] = kernel(c - double(first + k));
    sum += w[k];
  }
  for (int k = 0; k < n; ++k) w[k] /= sum;
}

// The span [a, b) of source coordinates under destination pixel d; the part
// outside lo .. hi counts for the edge pixel it lies beyond.
void AreaTaps(const AxisMap& m, int64_t d, int32_t* idx, double* w) {
  const double a = m.roiStart + (double(d) - m.shift) / m.factor;
  const double b = m.roiStart + (double(d) + 1.0 - m.shift) / m.factor;
  const double len = b - a;
  int n = 0;
  auto add = [&](int32_t i, double weight) {
    if (n > 0 && idx[n - 1] == i) {
      w[n - 1] += weight;
    } else if (n < m.taps) {
      idx[n] = i;
      w[n++] = weight;
    } else {
      w[n - 1] += weight;  // a rounding sliver past the span's last whole pixel
    }
  };
  const double lo = m.lo, hi = m.hi;
  if (a < lo) add(m.lo, (std::min(b, lo) - a) / len);
  const double from = std::max(a, lo), to = std::min(b, hi);
  if (from < to) {
    const int64_t first = int64_t(std::floor(from)), last = int64_t(std::ceil(to)) - 1;
    for (int64_t i = first; i <= last; ++i) {
      const double part = std::min(to, double(i + 1)) - std::max(from, double(i));
      if (part > 0) add(ClampIndex(i, m), part / len);
    }
  }
  if (b > hi) add(m.hi - 1, (b - std::max(a, hi)) / len);
  if (n == 0) add(a >= hi ? m.hi - 1 : m.lo, 1.0);
  for (int k = n; k < m.taps; ++k) {
    idx[k] = idx[n - 1];
    w[k] = 0;
  }
}

}  // namespace

double CubicWeight(double x) {
  constexpr double a = -0.5;
  x = std::fabs(x);
  if (x < 1) return ((a + 2) * x - (a + 3)) * x * x + 1;
  if (x < 2) return ((a * x - 5 * a) * x + 8 * a) * x - 4 * a;
  return 0;
}

double LanczosWeight(double x) {
  x = std::fabs(x);
  if (x < 1e-12) return 1;
  if (x >= 3) return 0;
  const double px = kPi * x;
  return 3 * std::sin(px) * std::sin(px / 3) / (px * px);
}

bool KnownInterpolation(int kind) {
  return kind == IPPI_INTER_NN || kind == IPPI_INTER_LINEAR || kind == IPPI_INTER_CUBIC ||
         kind == IPPI_INTER_LANCZOS || kind == IPPI_INTER_SUPER;
}

int TapCount(int kind, double factor) {
  switch (kind) {
    case IPPI_INTER_NN: return 1;
    case IPPI_INTER_LINEAR: return 2;
    case IPPI_INTER_CUBIC: return 4;
    case IPPI_INTER_LANCZOS: return 6;
    default: break;
  }
  // A span of 1/factor pixels starts anywhere inside a pixel.
  const double span = std::min(1.0 / factor, double(1 << 24));
  return std::max(2, int(std::ceil(span)) + 1);
}

void AxisTaps(const AxisMap& m, int64_t d, int32_t* idx, double* w) {
  const double c = ClampCentre(m.roiStart + (double(d) + 0.5 - m.shift) / m.factor - 0.5, m);
  switch (m.kind) {
    case IPPI_INTER_NN:
      idx[0] = ClampIndex(int64_t(std::floor(c + 0.5)), m);
      w[0] = 1;
      return;
    case IPPI_INTER_LINEAR:
      WindowTaps(m, c, 2, 0, idx, w, [](double x) { return 1 - std::fabs(x); });
      return;
    case IPPI_INTER_CUBIC:
      WindowTaps(m, c, 4, 1, idx, w, CubicWeight);
      return;
    case IPPI_INTER_LANCZOS:
      WindowTaps(m, c, 6, 2, idx, w, LanczosWeight);
      return;
    default:
      AreaTaps(m, d, idx, w);
      return;
  }
}

int16_t QuantiseWeight(double w) { return int16_t(std::lround(w * (1 << kWeightBits))); }

void QuantiseWeights(const double* w, int taps, int16_t* q) {
  int sum = 0, largest = 0;
  for (int k = 0; k < taps; ++k) {
    q[k] = QuantiseWeight(w[k]);
    sum += q[k];
    if (w[k] > w[largest]) largest = k;
  }
  q[largest] = int16_t(q[largest] + ((1 << kWeightBits) - sum));
}

}  // namespace kestrelink::resize
