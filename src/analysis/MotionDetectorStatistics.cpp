// Counting, averaging, absolute difference, threshold and the step toward a
// frame: the detector's per-pixel members.
#include <kestrelink/CIppMotionDetector.h>

#include <algorithm>

#include "analysis/MotionFrame.h"
#include "frame/RowLoop.h"
#include "platform/OpenMP.h"
#include "primitives/AnalysisPrimitives.h"
#include "primitives/AnalysisRows.h"

using namespace kestrelink::analysis;
using kestrelink::ForEachBand;
using kestrelink::ForEachRow;

namespace {

// Count of low <= v <= high and the sum and number of nonzero pixels over
// the rectangle's rows, added across the team.
template <class T>
bool CountAndMean(unsigned int width, unsigned int height, void* image, int low, int high, int x, int y, int w, int h,
                  int& count, double& mean) {
  const int rows = FitRows(FrameBytes(width, height, sizeof(T)), PixelOffset(width, x, y, sizeof(T)),
                           int64_t(width) * sizeof(T), int64_t(w) * int64_t(sizeof(T)), h);
  if (!image || rows < 0) return false;
  kestrelink::platform::SetBlockTimeZero();
  int64_t inRange = 0, nonzero = 0;
  double sum = 0;
#pragma omp parallel for schedule(static) num_threads(kestrelink::platform::TeamSize()) \
    reduction(+ : inRange, nonzero, sum)
  for (int r = 0; r < rows; ++r) {
    const T* p = At<const T>(image, PixelOffset(width, x, y + r, sizeof(T)));
    int64_t c = 0, n = 0;
    uint64_t s = 0;
    for (int i = 0; i < w; ++i) {
      const int v = p[i];
      c += v >= low && v <= high;
      n += v != 0;
      s += uint64_t(v);
    }
    inRange += c;
    nonzero += n;
    sum += double(s);
  }
  count = int(inRange);
  mean = nonzero ? sum / double(nonzero) : 0.0;
  return true;
}

// A rectangle of one or more frames of samples T at the same offset: the
// rows that fit, or -1.
template <class T>
int RectRows(unsigned int width, unsigned int height, int x, int y, int w, int h) {
  return FitRows(FrameBytes(width, height, sizeof(T)), PixelOffset(width, x, y, sizeof(T)), int64_t(width) * sizeof(T),
                 int64_t(w) * int64_t(sizeof(T)), h);
}

// |a - b| at the rectangle, in bands of rows over the team; the kernel's
// result does not depend on the bands.
template <class T>
bool BandedAbsDiff(IppStatus (*kernel)(const T*, int, const T*, int, T*, int, IppiSize), unsigned int width,
                   unsigned int height, void* a, void* b, void* dst, int x, int y, int w, int h) {
  const int rows = RectRows<T>(width, height, x, y, w, h);
  if (!a || !b || !dst || rows < 0 || w < 1 || rows < 1) return false;
  kestrelink::platform::SetBlockTimeZero();
  const int64_t at = PixelOffset(width, x, y, sizeof(T));
  const int step = int(width * sizeof(T));
  return ForEachBand(uint32_t(rows), [&](uint32_t first, uint32_t count) {
           const int64_t band = at + int64_t(first) * step;
           return kernel(At<const T>(a, band), step, At<const T>(b, band), step, At<T>(dst, band), step,
                         {w, int(count)});
         }) == 0;
}

template <class T>
bool ThresholdRect(unsigned int width, unsigned int height, void* src, void* dst, int threshold, int full, int x, int y,
                   int w, int h) {
  const int rows = RectRows<T>(width, height, x, y, w, h);
  if (!src || !dst || rows < 0) return false;
  if (w <= 0) return true;
  kestrelink::platform::SetBlockTimeZero();
  // Thresholds beyond the sample range make every pixel 0 (above) or full (below 0).
  const int below = std::clamp(threshold, 0, int(T(~T(0))) + 1);
  const T top = T(full);
  ForEachRow(uint32_t(rows), false, [&](uint32_t r, uint32_t) {
    const int64_t at = PixelOffset(width, x, y + int(r), sizeof(T));
    const T* in = At<const T>(src, at);
    T* out = At<T>(dst, at);
    if (below > int(T(~T(0)))) {
      std::fill_n(out, w, T(0));
    } else if constexpr (sizeof(T) == 1) {
      AnalysisRows().threshold8(in, out, uint32_t(w), T(below), top);
    } else {
      AnalysisRows().threshold16(in, out, uint32_t(w), T(below), top);
    }
  });
  return true;
}

// dst = b + min(step, b - a) away from a; no clamp, the sum wraps in T (a
// settled behaviour of the format); equal samples leave dst alone.
template <class T>
bool MoveToward(unsigned int width, unsigned int height, void* a, void* b, void* dst, int step) {
  if (!a || !b || !dst) return false;
  kestrelink::platform::SetBlockTimeZero();
  ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    const size_t row = size_t(y) * width;
    const T* pa = static_cast<const T*>(a) + row;
    const T* pb = static_cast<const T*>(b) + row;
    T* out = static_cast<T*>(dst) + row;
    for (uint32_t i = 0; i < width; ++i) {
      const int64_t d = int64_t(pb[i]) - pa[i];
      if (d > 0) out[i] = T(pb[i] + std::min<int64_t>(step, d));
      if (d < 0) out[i] = T(pb[i] - std::min<int64_t>(step, -d));
    }
  });
  return true;
}

}  // namespace

bool CIppMotionDetector::Count8bitGrayPixels(unsigned int width, unsigned int height, void* image, int low, int high,
                                             int x, int y, int w, int h, int& count) {
  const int rows = RectRows<uint8_t>(width, height, x, y, w, h);
  if (!image || rows < 0) return false;
  kestrelink::platform::SetBlockTimeZero();
  // Both bounds are cut to 8 bits.
  return ippiCountInRange_8u_C1R(At<const Ipp8u>(image, PixelOffset(width, x, y, 1)), int(width), {w, rows}, &count,
                                 Ipp8u(low), Ipp8u(high)) == ippStsNoErr;
}

bool CIppMotionDetector::Count16bitGrayPixels(unsigned int width, unsigned int height, void* image, int low, int high,
                                              int x, int y, int w, int h, int& count) {
  const int rows = RectRows<uint16_t>(width, height, x, y, w, h);
  if (!image || rows < 0) return false;
  kestrelink::platform::SetBlockTimeZero();
  // Exclusive bounds, and only each row's first pixel is tested, counting
  // for the whole row: a settled behaviour of the format.
  int64_t total = 0;
  for (int r = 0; r < rows; ++r) {
    const int v = *At<const uint16_t>(image, PixelOffset(width, x, y + r, 2));
    if (low < v && v < high) total += w;
  }
  count = int(total);
  return true;
}

bool CIppMotionDetector::Count8bitGrayPixels(unsigned int width, unsigned int height, void* image, int low, int high,
                                             int x, int y, int w, int h, int& count, double& mean) {
  return CountAndMean<uint8_t>(width, height, image, low, high, x, y, w, h, count, mean);
}

bool CIppMotionDetector::Count16bitGrayPixels(unsigned int width, unsigned int height, void* image, int low, int high,
                                              int x, int y, int w, int h, int& count, double& mean) {
  return CountAndMean<uint16_t>(width, height, image, low, high, x, y, w, h, count, mean);
}

bool CIppMotionDetector::Mean8bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w,
                                            int h, double& mean) {
  const int rows = RectRows<uint8_t>(width, height, x, y, w, h);
  if (!image || rows < 0) return false;
  kestrelink::platform::SetBlockTimeZero();
  return ippiMean_8u_C1R(At<const Ipp8u>(image, PixelOffset(width, x, y, 1)), int(width), {w, rows}, &mean) ==
         ippStsNoErr;
}

bool CIppMotionDetector::Mean16bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w,
                                             int h, double& mean) {
  const int rows = RectRows<uint16_t>(width, height, x, y, w, h);
  if (!image || rows < 0) return false;
  kestrelink::platform::SetBlockTimeZero();
  return ippiMean_16u_C1R(At<const Ipp16u>(image, PixelOffset(width, x, y, 2)), 2 * int(width), {w, rows}, &mean) ==
         ippStsNoErr;
}

bool CIppMotionDetector::AbsDiff8bitGrayPixels(unsigned int width, unsigned int height, void* a, void* b, void* dst,
                                               int x, int y, int w, int h) {
  return BandedAbsDiff<Ipp8u>(ippiAbsDiff_8u_C1R, width, height, a, b, dst, x, y, w, h);
}

bool CIppMotionDetector::AbsDiff16bitGrayPixels(unsigned int width, unsigned int height, void* a, void* b, void* dst,
                                                int x, int y, int w, int h) {
  return BandedAbsDiff<Ipp16u>(ippiAbsDiff_16u_C1R, width, height, a, b, dst, x, y, w, h);
}

bool CIppMotionDetector::MoveToward8bitGrayPixels(unsigned int width, unsigned int height, void* a, void* b, void* dst,
                                                  int step) {
  return MoveToward<uint8_t>(width, height, a, b, dst, step);
}

bool CIppMotionDetector::MoveToward16bitGrayPixels(unsigned int width, unsigned int height, void* a, void* b, void* dst,
                                                   int step) {
  return MoveToward<uint16_t>(width, height, a, b, dst, step);
}

bool CIppMotionDetector::Threshold8bitGrayPixels(unsigned int width, unsigned int height, void* src, void* dst,
                                                 int threshold, int x, int y, int w, int h) {
  return ThresholdRect<uint8_t>(width, height, src, dst, threshold, 255, x, y, w, h);
}

bool CIppMotionDetector::Threshold16bitGrayPixels(unsigned int width, unsigned int height, int bitDepth, void* src,
                                                  void* dst, int threshold, int x, int y, int w, int h) {
  return ThresholdRect<uint16_t>(width, height, src, dst, threshold, FullScale(bitDepth), x, y, w, h);
}
