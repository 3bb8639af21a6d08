// The motion detector's three compound detectors, step by step.
#include <kestrelink/CIppMotionDetector.h>

#include "analysis/MotionFrame.h"
#include "primitives/AnalysisPrimitives.h"

namespace {

// A zeroed frame-sized scratch image of samples T, or the caller's frame
// (zeroed as well) when one is given; the scratch is released on scope exit.
template <class T>
class FrameImage {
 public:
  FrameImage(unsigned int width, unsigned int height, void* given = nullptr) : width_(width), height_(height) {
    if (given) {
      data_ = static_cast<T*>(given);
      step_ = int(width * sizeof(T));
    } else if constexpr (sizeof(T) == 1) {
      data_ = owned_ = ippiMalloc_8u_C1(int(width), int(height), &step_);
    } else {
      data_ = owned_ = ippiMalloc_16u_C1(int(width), int(height), &step_);
    }
  }
  ~FrameImage() { ippiFree(owned_); }
  FrameImage(const FrameImage&) = delete;
  FrameImage& operator=(const FrameImage&) = delete;

  // Every sample of the image, rows to their full step, set to 0.
  bool Zero() {
    if (!data_) return false;
    const IppiSize size = {step_ / int(sizeof(T)), int(height_)};
    if constexpr (sizeof(T) == 1)
      return ippiSet_8u_C1R(0, data_, step_, size) == ippStsNoErr;
    else
      return ippiSet_16u_C1R(0, data_, step_, size) == ippStsNoErr;
  }
  T* data() const { return data_; }

 private:
  unsigned int width_, height_;
  T* data_ = nullptr;
  T* owned_ = nullptr;
  int step_ = 0;
};

}  // namespace

bool CIppMotionDetector::AbsDiff8GrayPixels(unsigned int width, unsigned int height, void* a, void* b, int x, int y,
                                            int w, int h, int low, int& count, double& mean) {
  FrameImage<uint8_t> scratch(width, height);
  if (!scratch.Zero()) return false;
  const bool diff = AbsDiff8bitGrayPixels(width, height, a, b, scratch.data(), x, y, w, h);
  const bool counted = Count8bitGrayPixels(width, height, scratch.data(), low, 255, x, y, w, h, count, mean);
  return diff && counted;
}

bool CIppMotionDetector::AbsDiff16GrayPixels(unsigned int width, unsigned int height, int, void* a, void* b, int x,
                                             int y, int w, int h, int low, int& count, double& mean) {
  FrameImage<uint16_t> scratch(width, height);
  if (!scratch.Zero()) return false;
  const bool diff = AbsDiff16bitGrayPixels(width, height, a, b, scratch.data(), x, y, w, h);
  // The high bound stays 255 in the 16-bit form: a settled behaviour of the format.
  const bool counted = Count16bitGrayPixels(width, height, scratch.data(), low, 255, x, y, w, h, count, mean);
  return diff && counted;
}

bool CIppMotionDetector::EdgeDetect8GrayPixels(unsigned int width, unsigned int height, void* src, void* edge, int x,
                                               int y, int w, int h, int direction, int& count, int) {
  FrameImage<uint8_t> target(width, height, edge);
  if (!target.Zero()) return false;
  const bool filtered = Sobel8bitGrayPixels(width, height, src, target.data(), x, y, w, h, true, direction);
  const bool counted = Count8bitGrayPixels(width, height, target.data(), 1, 255, x, y, w, h, count);
  return filtered && counted;
}

bool CIppMotionDetector::EdgeDetect16GrayPixels(unsigned int width, unsigned int height, int, void* src, void* edge,
                                                int x, int y, int w, int h, int direction, int& count, int) {
  FrameImage<uint16_t> target(width, height, edge);
  if (!target.Zero()) return false;
  const bool filtered = Sobel16bitGrayPixels(width, height, src, target.data(), x, y, w, h, true, direction);
  // The short 16-bit count: exclusive bounds, first pixel of each row.
  const bool counted = Count16bitGrayPixels(width, height, target.data(), 1, 255, x, y, w, h, count);
  return filtered && counted;
}

bool CIppMotionDetector::EdgeDetectWidthBackground8GrayPixels(unsigned int width, unsigned int height, void* image,
                                                              void* background, void* edge, int x, int y, int w, int h,
                                                              int threshold, int& count, int) {
  const int ix = x + 1, iy = y + 1, iw = w - 2, ih = h - 2;
  FrameImage<uint8_t> scratch(width, height);
  if (!scratch.Zero()) return false;
  bool done = AbsDiff8bitGrayPixels(width, height, image, background, scratch.data(), ix, iy, iw, ih);
  done = Threshold8bitGrayPixels(width, height, scratch.data(), scratch.data(), threshold, ix, iy, iw, ih) && done;
  done = Openning8bitGrayPixels(width, height, scratch.data(), ix, iy, iw, ih) && done;
  FrameImage<uint8_t> second(width, height, edge);
  if (!second.data()) return false;
  // The scratch, not the second image, is zeroed again before the
  // convolution, which so sees no mask: a settled behaviour of the format.
  if (!scratch.Zero()) return false;
  done = Convolute8bitGrayPixels(width, height, scratch.data(), second.data(), ix, iy, iw, ih, 0) && done;
  done = Count8bitGrayPixels(width, height, second.data(), 1, 255, ix, iy, iw, ih, count) && done;
  return done;
}

bool CIppMotionDetector::EdgeDetectWidthBackground16GrayPixels(unsigned int width, unsigned int height, int bitDepth,
                                                               void* image, void* background, void* edge, int x, int y,
                                                               int w, int h, int threshold, int& count, int) {
  const int ix = x + 1, iy = y + 1, iw = w - 2, ih = h - 2;
  FrameImage<uint16_t> scratch(width, height);
  if (!scratch.Zero()) return false;
  bool done = AbsDiff16bitGrayPixels(width, height, image, background, scratch.data(), ix, iy, iw, ih);
  done = Threshold16bitGrayPixels(width, height, bitDepth, scratch.data(), scratch.data(), threshold, ix, iy, iw, ih) &&
         done;
  done = Openning16bitGrayPixels(width, height, scratch.data(), ix, iy, iw, ih) && done;
  FrameImage<uint16_t> second(width, height, edge);
  if (!second.data()) return false;
  // The scratch is zeroed again, as in the 8-bit form.
  if (!scratch.Zero()) return false;
  done = Convolute16bitGrayPixels(width, height, bitDepth, scratch.data(), second.data(), ix, iy, iw, ih, 0) && done;
  done = Count16bitGrayPixels(width, height, second.data(), 1, 255, ix, iy, iw, ih, count) && done;
  return done;
}
