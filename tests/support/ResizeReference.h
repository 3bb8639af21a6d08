#pragma once
// A plain double-precision resize, written from the interpolation formulas
// one output pixel at a time, for the resize tests to measure the kernels
// against. Pixel centres map onto pixel centres; the ROI's origin maps onto
// the output's origin; samples beyond the clipped ROI repeat its edge.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>
#include <vector>

namespace testsupport {

enum RefKind { kRefNearest, kRefLinear, kRefCubic, kRefLanczos, kRefArea };

inline double RefCubic(double x) {  // Catmull-Rom, a = -0.5
  x = std::fabs(x);
  if (x < 1) return 1.5 * x * x * x - 2.5 * x * x + 1;
  if (x < 2) return -0.5 * x * x * x + 2.5 * x * x - 4 * x + 2;
  return 0;
}

inline double RefLanczos(double x) {
  const double pi = 3.14159265358979323846;
  if (std::fabs(x) < 1e-12) return 1;
  if (std::fabs(x) >= 3) return 0;
  return std::sin(pi * x) / (pi * x) * std::sin(pi * x / 3) / (pi * x / 3);
}

// (source pixel, weight) pairs for output position d on one axis; lo .. hi-1
// are the pixels that may be read.
inline std::vector<std::pair<int, double>> RefAxis(RefKind kind, double factor, double roiStart, int lo, int hi,
                                                   int d) {
  std::vector<std::pair<int, double>> taps;
  auto clampIndex = [&](long i) { return int(std::clamp<long>(i, lo, hi - 1)); };
  const double c = roiStart + (d + 0.5) / factor - 0.5;
  const long i0 = long(std::floor(c));
  double sum = 0;
  switch (kind) {
    case kRefNearest:
      taps.push_back({clampIndex(long(std::floor(c + 0.5))), 1.0});
      return taps;
    case kRefLinear:
      taps.push_back({clampIndex(i0), 1 - (c - double(i0))});
      taps.push_back({clampIndex(i0 + 1), c - double(i0)});
      return taps;
    case kRefCubic:
    case kRefLanczos:
      for (long i = i0 - (kind == kRefCubic ? 1 : 2); i <= i0 + (kind == kRefCubic ? 2 : 3); ++i) {
        const double w = kind == kRefCubic ? RefCubic(c - double(i)) : RefLanczos(c - double(i));
        taps.push_back({clampIndex(i), w});
        sum += w;
      }
      for (auto& t : taps) t.second /= sum;
      return taps;
    case kRefArea: {
      const double a = roiStart + d / factor, b = roiStart + (d + 1) / factor;
      for (long i = long(std::floor(a)); double(i) < b; ++i) {
        const double part = std::min(b, double(i + 1)) - std::max(a, double(i));
        if (part > 0) taps.push_back({clampIndex(i), part / (b - a)});
      }
      return taps;
    }
  }
  return taps;
}

// The exact (unrounded) output of a whole-frame or ROI resize: `channels`
// interleaved samples a pixel in src (w x h), ROI clipped by the frame.
inline std::vector<double> RefResize(const std::vector<double>& src, int w, int h, int channels, int roiX, int roiY,
                                     int roiW, int roiH, int dstW, int dstH, RefKind kind) {
  const int x0 = std::max(roiX, 0), x1 = std::min(roiX + roiW, w), y0 = std::max(roiY, 0), y1 = std::min(roiY + roiH, h);
  const double fx = double(dstW) / roiW, fy = double(dstH) / roiH;
  std::vector<double> out(size_t(dstW) * dstH * channels);
  for (int y = 0; y < dstH; ++y) {
    const auto ty = RefAxis(kind, fy, roiY, y0, y1, y);
    for (int x = 0; x < dstW; ++x) {
      const auto tx = RefAxis(kind, fx, roiX, x0, x1, x);
      for (int c = 0; c < channels; ++c) {
        double v = 0;
        for (const auto& [sy, wy] : ty)
          for (const auto& [sx, wx] : tx) v += wy * wx * src[(size_t(sy) * w + sx) * channels + c];
        out[(size_t(y) * dstW + x) * channels + c] = v;
      }
    }
  }
  return out;
}

// The reference rounded to the nearest sample and held to 0 .. top.
inline double RefSample(double v, double top) { return std::clamp(std::floor(v + 0.5), 0.0, top); }

}  // namespace testsupport
