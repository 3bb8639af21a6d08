#pragma once
// The rows of the general rotation: for each destination pixel of a row its
// source point, the coverage test and the interpolated sample. Templated on
// the sample type, the samples a pixel holds and the samples written.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "primitives/RotateRuns.h"

namespace kestrelink::rotate {

enum class Kind { kNearest, kLinear, kCubic };

template <class T, int C>
struct Source {
  const Warp& w;
  const T* Pixel(int x, int y) const {
    return reinterpret_cast<const T*>(w.src + ptrdiff_t(y) * w.srcStep) + ptrdiff_t(x) * C;
  }
};

// The helpers below are compiled into the portable and the vector files
// alike, each with its own instruction set, so they have internal linkage.
namespace {

inline int Clamp(int v, int lo, int hi) { return std::min(std::max(v, lo), hi); }

// floor() for source coordinates, which stay far inside the int range (the
// covered span keeps them within a pixel or two of the region); without
// SSE4.1 the library call would cost more than the whole sample.
inline int Floor(double x) {
  const int t = int(x);
  return t - (x < double(t));
}

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

// The W samples of the interpolated pixel at (u, v), as floats. Edge: taps
// may fall outside the region and take its edge pixels; without it every tap
// lies inside (an interior point) and the same arithmetic runs unclamped.
template <class T, int C, int W, Kind K, bool Edge = true>
inline void Sample(const Source<T, C>& s, double u, double v, float out[W]) {
  const Warp& w = s.w;
  const auto column = [&](int x) { return Edge ? Clamp(x, w.x0, w.x1 - 1) : x; };
  const auto line = [&](int y) { return Edge ? Clamp(y, w.y0, w.y1 - 1) : y; };
  if constexpr (K == Kind::kNearest) {
    const T* p = s.Pixel(column(Floor(u + 0.5)), line(Floor(v + 0.5)));
    for (int c = 0; c < W; ++c) out[c] = float(p[c]);
  } else if constexpr (K == Kind::kLinear) {
    const int iu = Floor(u), iv = Floor(v);
    const float tx = float(u - iu), ty = float(v - iv);
    const int xa = column(iu), xb = column(iu + 1), ya = line(iv), yb = line(iv + 1);
    const T *p00 = s.Pixel(xa, ya), *p01 = s.Pixel(xb, ya), *p10 = s.Pixel(xa, yb), *p11 = s.Pixel(xb, yb);
    for (int c = 0; c < W; ++c) {
      const float top = float(p00[c]) + tx * (float(p01[c]) - float(p00[c]));
      const float bottom = float(p10[c]) + tx * (float(p11[c]) - float(p10[c]));
      out[c] = top + ty * (bottom - top);
    }
  } else {
    const int iu = Floor(u), iv = Floor(v);
    float wx[4], wy[4];
    CubicWeights(float(u - iu), wx);
    CubicWeights(float(v - iv), wy);
    int xs[4];
    for (int k = 0; k < 4; ++k) xs[k] = column(iu - 1 + k);
    for (int c = 0; c < W; ++c) out[c] = 0.0f;
    for (int j = 0; j < 4; ++j) {
      const int y = line(iv - 1 + j);
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

// How far the taps of a kind reach before and after floor(u).
template <Kind K>
inline constexpr int kTapsBefore = K == Kind::kCubic ? 1 : 0;
template <Kind K>
inline constexpr int kTapsAfter = K == Kind::kCubic ? 2 : 1;

// A source point whose taps all lie inside the region, so no tap is clamped
// and its coverage is whole: the plain test and the blend both pass.
template <Kind K>
inline bool Interior(const Warp& w, double u, double v) {
  return u >= w.x0 + kTapsBefore<K> && u < w.x1 - kTapsAfter<K> && v >= w.y0 + kTapsBefore<K> &&
         v < w.y1 - kTapsAfter<K>;
}

// The columns [a, b) of [first, last) whose points are all interior: an
// estimate from the straight line, then each end stepped inward until its
// own point is interior. Interior points of a row form one run, as the line
// is monotone on each axis and the region is a box.
template <Kind K>
inline void InteriorSpan(const Warp& w, double uRow, double vRow, int first, int last, int& a, int& b) {
  double lo = first, hi = last;
  const auto limit = [&](double slope, double at0, double min, double max) {
    // min <= slope * X + at0 < max
    if (slope == 0.0) {
      if (!(at0 >= min && at0 < max)) hi = lo;
      return;
    }
    double p = (min - at0) / slope, q = (max - at0) / slope;
    if (p > q) std::swap(p, q);
    lo = std::max(lo, std::ceil(p));
    hi = std::min(hi, std::floor(q) + 1.0);
  };
  limit(w.ux, uRow, w.x0 + kTapsBefore<K>, w.x1 - kTapsAfter<K>);
  limit(w.vx, vRow, w.y0 + kTapsBefore<K>, w.y1 - kTapsAfter<K>);
  lo = std::min(lo, double(last));
  a = int(lo);
  b = int(std::max(hi, lo));
  while (a < b && !Interior<K>(w, w.ux * a + uRow, w.vx * a + vRow)) ++a;
  while (b > a && !Interior<K>(w, w.ux * (b - 1) + uRow, w.vx * (b - 1) + vRow)) --b;
}

// One destination pixel at X of a row, by the edge rule; Inner: its point is interior.
template <class T, int C, int W, Kind K, bool Smooth, bool Inner>
inline void RotatePixel(const Source<T, C>& s, const Warp& w, double u, double v, T* d) {
  float px[W];
  if constexpr (Smooth) {
    const float cover = Inner ? 1.0f : Coverage(u, w.x0, w.x1) * Coverage(v, w.y0, w.y1);
    if (!(cover > 0.0f)) return;
    Sample<T, C, W, K, !Inner>(s, u, v, px);
    for (int c = 0; c < W; ++c) d[c] = Round<T>(float(d[c]) + cover * (px[c] - float(d[c])));
  } else {
    if (!Inner && !(u >= w.x0 - 0.5 && u < w.x1 - 0.5 && v >= w.y0 - 0.5 && v < w.y1 - 0.5)) return;
    Sample<T, C, W, K, !Inner>(s, u, v, px);
    for (int c = 0; c < W; ++c) d[c] = Round<T>(px[c]);
  }
}

// The interior run of a pixel type and kind, where a table has one.
template <class T, int C, int W, Kind K>
inline InteriorRun RunFor(const RotateRunKernels& k) {
  if constexpr (sizeof(T) == 1 && C == 1 && K == Kind::kNearest) return k.nearest8c1;
  if constexpr (sizeof(T) == 1 && C == 1 && K == Kind::kLinear) return k.linear8c1;
  if constexpr (sizeof(T) == 1 && C == 4 && W == 3 && K == Kind::kNearest) return k.nearest8ac4;
  if constexpr (sizeof(T) == 1 && C == 4 && W == 3 && K == Kind::kLinear) return k.linear8ac4;
  if constexpr (sizeof(T) == 2 && C == 1 && K == Kind::kNearest) return k.nearest16c1;
  if constexpr (sizeof(T) == 2 && C == 1 && K == Kind::kLinear) return k.linear16c1;
  if constexpr (K == Kind::kCubic && sizeof(T) == 1) return C == 1 ? k.cubic8c1 : C == 3 ? k.cubic8c3 : k.cubic8ac4;
  if constexpr (K == Kind::kCubic && sizeof(T) == 2) return C == 1 ? k.cubic16c1 : C == 3 ? k.cubic16c3 : k.cubic16ac4;
  return nullptr;
}

// Destination row Y, pixels [dx0, dx1) at `row` (pixel dx0 first): the
// interior run without clamps or tests, the pixels around it one by one.
template <class T, int C, int W, Kind K, bool Smooth>
void RotateRow(const Warp& w, int Y, int dx0, int dx1, T* row) {
  const Source<T, C> s{w};
  int first, last, a, b;
  CoveredSpan(w, Y, dx0, dx1, 1.0, first, last);
  const double uRow = w.uy * Y + w.u0, vRow = w.vy * Y + w.v0;
  InteriorSpan<K>(w, uRow, vRow, first, last, a, b);
  for (int X = first; X < a; ++X)
    RotatePixel<T, C, W, K, Smooth, false>(s, w, w.ux * X + uRow, w.vx * X + vRow, row + ptrdiff_t(X - dx0) * C);
  if constexpr (!Smooth) {
    if (const InteriorRun run = RunFor<T, C, W, K>(*w.runs); run && w.runs != &kRotateRunsPortable) {
      // The part of the run whose taps have a source row below them.
      Warp above = w;
      --above.y1;
      int ra, rb;
      InteriorSpan<K>(above, uRow, vRow, a, b, ra, rb);
      for (int X = a; X < ra; ++X)
        RotatePixel<T, C, W, K, false, true>(s, w, w.ux * X + uRow, w.vx * X + vRow, row + ptrdiff_t(X - dx0) * C);
      if (rb > ra) run(w, uRow, vRow, ra, rb, row + ptrdiff_t(ra - dx0) * C);
      a = std::max(ra, rb);
    }
  }
  for (int X = a; X < b; ++X)
    RotatePixel<T, C, W, K, Smooth, true>(s, w, w.ux * X + uRow, w.vx * X + vRow, row + ptrdiff_t(X - dx0) * C);
  for (int X = b; X < last; ++X)
    RotatePixel<T, C, W, K, Smooth, false>(s, w, w.ux * X + uRow, w.vx * X + vRow, row + ptrdiff_t(X - dx0) * C);
}

}  // namespace
}  // namespace kestrelink::rotate
