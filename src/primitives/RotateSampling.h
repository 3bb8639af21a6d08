#pragma once
// The rows of the general rotation: for each destination pixel of a row its
// source point, the coverage test and the interpolated sample. Templated on
// the sample type, the samples a pixel holds and the samples written.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace kestrelink::rotate {

// One call's geometry: source region [x0, x1) x [y0, y1) (inside the image),
// and the source point of destination pixel (X, Y):
//   u = ux * X + uy * Y + u0,   v = vx * X + vy * Y + v0.
struct Warp {
  const uint8_t* src;
  ptrdiff_t srcStep;
  int x0, y0, x1, y1;
  double ux, uy, u0, vx, vy, v0;
};

enum class Kind { kNearest, kLinear, kCubic };

template <class T, int C>
struct Source {
  const Warp& w;
  const T* Pixel(int x, int y) const {
    return reinterpret_cast<const T*>(w.src + ptrdiff_t(y) * w.srcStep) + ptrdiff_t(x) * C;
  }
};

inline int Clamp(int v, int lo, int hi) { return std::min(std::max(v, lo), hi); }

template <class T>
inline T Round(float v) {
  constexpr float kMax = float(std::numeric_limits<T>::max());
  return T(std::min(std::max(v + 0.5f, 0.0f), kMax));
}

// Catmull-Rom weights of the four taps at offsets -1, 0, 1, 2 from floor(u).
inline void CubicWeights(float t, float w[4]) {
  const float t2 = t * t, t3 = t2 * t;
  w[0] = -0.5f * t3 + t2 - 0.5f * t;
  w[1] = 1.5f * t3 - 2.5f * t2 + 1.0f;
  w[2] = -1.5f * t3 + 2.0f * t2 + 0.5f * t;
  w[3] = 0.5f * t3 - 0.5f * t2;
}

// The W samples of the interpolated pixel at (u, v), as floats.
template <class T, int C, int W, Kind K>
inline void Sample(const Source<T, C>& s, double u, double v, float out[W]) {
  const Warp& w = s.w;
  if constexpr (K == Kind::kNearest) {
    const T* p = s.Pixel(Clamp(int(std::floor(u + 0.5)), w.x0, w.x1 - 1),
                         Clamp(int(std::floor(v + 0.5)), w.y0, w.y1 - 1));
    for (int c = 0; c < W; ++c) out[c] = float(p[c]);
  } else if constexpr (K == Kind::kLinear) {
    const double fu = std::floor(u), fv = std::floor(v);
    const float tx = float(u - fu), ty = float(v - fv);
    const int xa = Clamp(int(fu), w.x0, w.x1 - 1), xb = Clamp(int(fu) + 1, w.x0, w.x1 - 1);
    const int ya = Clamp(int(fv), w.y0, w.y1 - 1), yb = Clamp(int(fv) + 1, w.y0, w.y1 - 1);
    const T *p00 = s.Pixel(xa, ya), *p01 = s.Pixel(xb, ya), *p10 = s.Pixel(xa, yb), *p11 = s.Pixel(xb, yb);
    for (int c = 0; c < W; ++c) {
      const float top = float(p00[c]) + tx * (float(p01[c]) - float(p00[c]));
      const float bottom = float(p10[c]) + tx * (float(p11[c]) - float(p10[c]));
      out[c] = top + ty * (bottom - top);
    }
  } else {
    const double fu = std::floor(u), fv = std::floor(v);
    float wx[4], wy[4];
    CubicWeights(float(u - fu), wx);
    CubicWeights(float(v - fv), wy);
    int xs[4];
    for (int k = 0; k < 4; ++k) xs[k] = Clamp(int(fu) - 1 + k, w.x0, w.x1 - 1);
    for (int c = 0; c < W; ++c) out[c] = 0.0f;
    for (int j = 0; j < 4; ++j) {
      const int y = Clamp(int(fv) - 1 + j, w.y0, w.y1 - 1);
      float row[W] = {};
      for (int k = 0; k < 4; ++k) {
        const T* p = s.Pixel(xs[k], y);
        for (int c = 0; c < W; ++c) row[c] += wx[k] * float(p[c]);
      }
      for (int c = 0; c < W; ++c) out[c] += wy[j] * row[c];
    }
  }
}

// The part of a one-pixel span around `p` that lies within [lo - 0.5, hi - 0.5).
inline float Coverage(double p, int lo, int hi) {
  return float(std::clamp(std::min(p - lo + 1.0, double(hi) - p), 0.0, 1.0));
}

// The destination columns [first, last) of row Y whose source point may be
// covered, found on the straight line u(X), v(X) with a margin of a pixel;
// the per-pixel test decides.
inline void CoveredSpan(const Warp& w, int Y, int dx0, int dx1, double margin, int& first, int& last) {
  double lo = dx0, hi = dx1;
  const auto limit = [&](double slope, double at0, double min, double max) {
    // min <= slope * X + at0 < max
    if (slope == 0.0) {
      if (at0 < min - 1.0 || at0 > max + 1.0) hi = lo;
      return;
    }
    double a = (min - at0) / slope, b = (max - at0) / slope;
    if (a > b) std::swap(a, b);
    lo = std::max(lo, std::floor(a) - 1.0);
    hi = std::min(hi, std::ceil(b) + 2.0);
  };
  limit(w.ux, w.uy * Y + w.u0, w.x0 - margin, w.x1 - 1 + margin);
  limit(w.vx, w.vy * Y + w.v0, w.y0 - margin, w.y1 - 1 + margin);
  lo = std::min(lo, double(dx1));
  first = int(lo);
  last = int(std::max(hi, lo));
}

// Destination row Y, pixels [dx0, dx1) at `row` (pixel dx0 first).
template <class T, int C, int W, Kind K, bool Smooth>
void RotateRow(const Warp& w, int Y, int dx0, int dx1, T* row) {
  const Source<T, C> s{w};
  int first, last;
  CoveredSpan(w, Y, dx0, dx1, 1.0, first, last);
  const double uRow = w.uy * Y + w.u0, vRow = w.vy * Y + w.v0;
  for (int X = first; X < last; ++X) {
    const double u = w.ux * X + uRow, v = w.vx * X + vRow;
    T* d = row + ptrdiff_t(X - dx0) * C;
    float px[W];
    if constexpr (Smooth) {
      const float cover = Coverage(u, w.x0, w.x1) * Coverage(v, w.y0, w.y1);
      if (cover <= 0.0f) continue;
      Sample<T, C, W, K>(s, u, v, px);
      for (int c = 0; c < W; ++c) d[c] = Round<T>(float(d[c]) + cover * (px[c] - float(d[c])));
    } else {
      if (!(u >= w.x0 - 0.5 && u < w.x1 - 0.5 && v >= w.y0 - 0.5 && v < w.y1 - 0.5)) continue;
      Sample<T, C, W, K>(s, u, v, px);
      for (int c = 0; c < W; ++c) d[c] = Round<T>(px[c]);
    }
  }
}

}  // namespace kestrelink::rotate
