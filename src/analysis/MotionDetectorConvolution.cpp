// The corrected convolution and the masked replacement of the motion detector.
#include <kestrelink/CIppMotionDetector.h>

#include <algorithm>

#include "analysis/MotionFrame.h"
#include "frame/RowLoop.h"
#include "platform/OpenMP.h"

using namespace kestrelink::analysis;

namespace {

template <class T>
bool Correction(unsigned int width, unsigned int height, void* src, void* dst, int x, int y, int w, int h,
                const int* kernel, int kernelSize, int top) {
  const int rows = FitRows(FrameBytes(width, height, sizeof(T)), PixelOffset(width, x, y, sizeof(T)),
                           int64_t(width) * sizeof(T), int64_t(w) * int64_t(sizeof(T)), h);
  if (!src || !dst || !kernel || rows < 0) return false;
  if (w <= 0 || kernelSize <= 0) return true;
  kestrelink::platform::SetBlockTimeZero();
  const int half = kernelSize >> 1;
  const int64_t samples = int64_t(width) * height;
  const T* in = static_cast<const T*>(src);
  // Samples outside the frame read as 0.
  auto sample = [&](int64_t index) { return index >= 0 && index < samples ? int64_t(in[index]) : 0; };
  kestrelink::ForEachRow(uint32_t(rows), false, [&](uint32_t row, uint32_t) {
    const int r = int(row);
    T* out = At<T>(dst, PixelOffset(width, x, y + r, sizeof(T)));
    for (int c = 0; c < w; ++c) {
      int64_t weightSum = 0, sum = 0;
      for (int kr = 0; kr < kernelSize; ++kr) {
        const int rr = r + kr - half;
        // The walk stops at the first kernel row outside the rectangle, above
        // it too: a settled behaviour of the format.
        if (rr < 0 || rr >= h) break;
        for (int kc = 0; kc < kernelSize; ++kc) {
          const int cc = c + kc - half;
          if (cc < 0 || cc >= w) continue;
          const int k = kernel[kr * kernelSize + kc];
          // Read at rectangle column kc - half, whatever c is: a settled
          // behaviour of the format.
          weightSum += k;
          sum += k * sample((int64_t(y) + rr) * width + x + (kc - half));
        }
      }
      if (weightSum != 0) sum /= weightSum;
      out[c] = T(std::clamp<int64_t>(sum, 0, top));
    }
  });
  return true;
}

// Where the mask is nonzero, the pixel's `Channels` samples (of a pixel
// `Stride` samples long) become `values`.
template <class T, int Channels, int Stride>
bool Replace(unsigned int width, unsigned int height, void* image, void* mask, int x, int y, int w, int h,
             const int (&values)[Channels]) {
  const int imageRows =
      FitRows(FrameBytes(width, height, Stride * sizeof(T)), PixelOffset(width, x, y, Stride * sizeof(T)),
              int64_t(width) * Stride * sizeof(T), int64_t(w) * Stride * int64_t(sizeof(T)), h);
  const int maskRows = FitRows(FrameBytes(width, height, sizeof(T)), PixelOffset(width, x, y, sizeof(T)),
                               int64_t(width) * sizeof(T), int64_t(w) * int64_t(sizeof(T)), h);
  if (!image || !mask || imageRows < 0 || maskRows < 0) return false;
  if (w <= 0) return true;
  kestrelink::platform::SetBlockTimeZero();
  T fill[Channels];
  for (int c = 0; c < Channels; ++c) fill[c] = T(values[c]);
  kestrelink::ForEachRow(uint32_t(std::min(imageRows, maskRows)), false, [&](uint32_t row, uint32_t) {
    const T* m = At<const T>(mask, PixelOffset(width, x, y + int(row), sizeof(T)));
    T* p = At<T>(image, PixelOffset(width, x, y + int(row), Stride * sizeof(T)));
    for (int i = 0; i < w; ++i)
      if (m[i] != 0)
        for (int c = 0; c < Channels; ++c) p[size_t(i) * Stride + c] = fill[c];
  });
  return true;
}

// One grey for the colour: c2 * 0.587 + c0 * 0.299 + c1 * 0.114, truncated,
// clamped (c2 takes the green weight: a settled behaviour of the format).
int GreyOf(int c0, int c1, int c2, int top) {
  const int v = int(c2 * 0.587 + c0 * 0.299 + c1 * 0.114);
  return std::clamp(v, 0, top);
}

}  // namespace

bool CIppMotionDetector::Convolute8bitCorrection(unsigned int width, unsigned int height, void* src, void* dst, int x,
                                                 int y, int w, int h, int* kernel, int kernelSize) {
  return Correction<uint8_t>(width, height, src, dst, x, y, w, h, kernel, kernelSize, 255);
}

bool CIppMotionDetector::Convolute16bitCorrection(unsigned int width, unsigned int height, int bitDepth, void* src,
                                                  void* dst, int x, int y, int w, int h, int* kernel, int kernelSize) {
  return Correction<uint16_t>(width, height, src, dst, x, y, w, h, kernel, kernelSize, FullScale(bitDepth));
}

bool CIppMotionDetector::Convolute8bitGrayPixels(unsigned int width, unsigned int height, void* src, void* dst, int x,
                                                 int y, int w, int h, int) {
  return Convolute8bitCorrection(width, height, src, dst, x, y, w, h, laplacianKernel, 3);
}

bool CIppMotionDetector::Convolute16bitGrayPixels(unsigned int width, unsigned int height, int bitDepth, void* src,
                                                  void* dst, int x, int y, int w, int h, int) {
  return Convolute16bitCorrection(width, height, bitDepth, src, dst, x, y, w, h, laplacianKernel, 3);
}

bool CIppMotionDetector::Replace8bitGrayPixels(unsigned int width, unsigned int height, void* image, void* mask, int x,
                                               int y, int w, int h, int c0, int c1, int c2) {
  return Replace<uint8_t, 1, 1>(width, height, image, mask, x, y, w, h, {GreyOf(c0, c1, c2, 255)});
}

bool CIppMotionDetector::Replace8bitBGRPixels(unsigned int width, unsigned int height, void* image, void* mask, int x,
                                              int y, int w, int h, int c0, int c1, int c2) {
  return Replace<uint8_t, 3, 3>(width, height, image, mask, x, y, w, h, {c2, c1, c0});
}

bool CIppMotionDetector::Replace8bitRGBPixels(unsigned int width, unsigned int height, void* image, void* mask, int x,
                                              int y, int w, int h, int c0, int c1, int c2) {
  return Replace<uint8_t, 3, 3>(width, height, image, mask, x, y, w, h, {c0, c1, c2});
}

bool CIppMotionDetector::Replace8bitBGRxPixels(unsigned int width, unsigned int height, void* image, void* mask, int x,
                                               int y, int w, int h, int c0, int c1, int c2) {
  return Replace<uint8_t, 3, 4>(width, height, image, mask, x, y, w, h, {c2, c1, c0});
}

bool CIppMotionDetector::Replace16bitGrayPixels(unsigned int width, unsigned int height, int bitDepth, void* image,
                                                void* mask, int x, int y, int w, int h, int c0, int c1, int c2) {
  return Replace<uint16_t, 1, 1>(width, height, image, mask, x, y, w, h, {GreyOf(c0, c1, c2, FullScale(bitDepth))});
}

bool CIppMotionDetector::Replace16bitBGRPixels(unsigned int width, unsigned int height, int, void* image, void* mask,
                                               int x, int y, int w, int h, int c0, int c1, int c2) {
  return Replace<uint16_t, 3, 3>(width, height, image, mask, x, y, w, h, {c2, c1, c0});
}

bool CIppMotionDetector::Replace16bitRGBPixels(unsigned int width, unsigned int height, int, void* image, void* mask,
                                               int x, int y, int w, int h, int c0, int c1, int c2) {
  return Replace<uint16_t, 3, 3>(width, height, image, mask, x, y, w, h, {c0, c1, c2});
}

bool CIppMotionDetector::Replace16bitBGRxPixels(unsigned int width, unsigned int height, int, void* image, void* mask,
                                                int x, int y, int w, int h, int c0, int c1, int c2) {
  return Replace<uint16_t, 3, 4>(width, height, image, mask, x, y, w, h, {c2, c1, c0});
}
