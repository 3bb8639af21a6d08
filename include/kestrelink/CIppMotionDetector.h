#pragma once
#include <kestrelink/Export.h>

#include <cstdint>

// Grey-level operations for motion and edge analysis on packed frames (rows
// of width pixels, no padding, top row first; 16-bit forms hold one 16-bit
// sample a pixel). Rectangles are x, y, w, h in pixels; pixel (x, y) of a
// frame is at index y * width + x, and a rectangle wider than the frame runs
// on into the following rows. Each method treats one frame and answers true
// when it was done; the only state is a set of constant tables, so methods
// may run in parallel on different frames.
//
//   CIppMotionDetector motion;
//   int moving = 0;
//   double level = 0;
//   motion.AbsDiff8GrayPixels(1920, 1080, previous, current, 0, 0, 1920, 1080, 20, moving, level);
//
// Several members differ between their 8- and 16-bit forms (bounds,
// weights, start pixels, borders); each is described where it is declared,
// and callers rely on the difference. A rectangle whose rows would pass the
// end of a frame is cut to the rows that fit; a null frame or a rectangle
// starting before the frame answers false.
class KESTRELINK_API CIppMotionDetector {
 public:
  // Fills the grey tables and sets up the thread team.
  CIppMotionDetector();
  virtual ~CIppMotionDetector();
  // A copy owns tables of its own, with the same values.
  CIppMotionDetector(const CIppMotionDetector& other);
  CIppMotionDetector& operator=(const CIppMotionDetector& other);

  // Grey of RGB pixels: (4899 R + 9617 G + 1868 B + 8192) >> 14.
  bool RGB8GrayConvert(unsigned int width, unsigned int height, void* src, void* dst);
  bool RGB16GrayConvert(unsigned int width, unsigned int height, void* src, void* dst);
  // Grey by the tables, samples in memory order s0 s1 s2 (blue, green, red):
  // red table (0.299) of s2 + blue table (0.114) of s1 + green table (0.587)
  // of s0, so blue takes 0.587 and green 0.114. The 16-bit forms clamp the
  // sum to 255 and store it in a 16-bit sample. BGRx steps 4 samples a pixel.
  bool BGR8GrayConvert(unsigned int width, unsigned int height, void* src, void* dst);
  bool BGRx8GrayConvert(unsigned int width, unsigned int height, void* src, void* dst);
  bool BGR16GrayConvert(unsigned int width, unsigned int height, void* src, void* dst);
  bool BGRx16GrayConvert(unsigned int width, unsigned int height, void* src, void* dst);

  // Short forms. 8-bit: pixels with low <= v <= high, the bounds cut to 8
  // bits. 16-bit: low < v < high on the first pixel of each rectangle row
  // only, which adds w or 0 for the row.
  bool Count8bitGrayPixels(unsigned int width, unsigned int height, void* image, int low, int high, int x, int y, int w,
                           int h, int& count);
  bool Count16bitGrayPixels(unsigned int width, unsigned int height, void* image, int low, int high, int x, int y,
                            int w, int h, int& count);
  // Second forms: count of low <= v <= high, and mean of all nonzero pixels
  // of the rectangle whatever their range (0.0 when there is none).
  bool Count8bitGrayPixels(unsigned int width, unsigned int height, void* image, int low, int high, int x, int y, int w,
                           int h, int& count, double& mean);
  bool Count16bitGrayPixels(unsigned int width, unsigned int height, void* image, int low, int high, int x, int y,
                            int w, int h, int& count, double& mean);

  // 3 x 3 morphology in place, replicating the rectangle's edge. The start
  // pixels differ by form: Dilate8 and Dilate16 at byte y * width + x with
  // rows width bytes apart (the 16-bit form runs the 8-bit dilation on the
  // 16-bit frame's bytes); Erode8 at byte (y + 1) * width + x; Erode16 at
  // pixel (y + 1) * width + x + 1. Openning erodes, then dilates.
  bool Dilate8bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w, int h);
  bool Dilate16bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w, int h);
  bool Erode8bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w, int h);
  bool Erode16bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w, int h);
  bool Openning8bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w, int h);
  bool Openning16bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w, int h);

  // Sobel of the rectangle, 3 x 3 (b3x3) or 5 x 5; direction 0 the
  // vertical-edge filter, 1 the horizontal-edge filter, 2 the sum of both
  // magnitudes. 8-bit: replicated border, |result| saturated to 255 in dst
  // at the rectangle; other directions answer false. 16-bit: dst zeroed
  // whole, the rectangle narrowed to bytes as signed samples, filtered with
  // a border of value 1, written as signed 16 bits with the magnitude taken
  // over rows width bytes apart; other directions leave dst zeroed and
  // answer true.
  bool Sobel8bitGrayPixels(unsigned int width, unsigned int height, void* src, void* dst, int x, int y, int w, int h,
                           bool b3x3, int direction);
  bool Sobel16bitGrayPixels(unsigned int width, unsigned int height, void* src, void* dst, int x, int y, int w, int h,
                            bool b3x3, int direction);

  // |a - b| at the rectangle.
  bool AbsDiff8bitGrayPixels(unsigned int width, unsigned int height, void* a, void* b, void* dst, int x, int y, int w,
                             int h);
  bool AbsDiff16bitGrayPixels(unsigned int width, unsigned int height, void* a, void* b, void* dst, int x, int y, int w,
                              int h);

  bool Mean8bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w, int h,
                          double& mean);
  bool Mean16bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w, int h,
                           double& mean);

  // Whole frame: with d = b - a, dst = b + min(step, d) for d > 0 and
  // b - min(step, -d) for d < 0, wrapping in the sample's width; d == 0
  // leaves dst as it was. The result lies beyond b, away from a.
  bool MoveToward8bitGrayPixels(unsigned int width, unsigned int height, void* a, void* b, void* dst, int step);
  bool MoveToward16bitGrayPixels(unsigned int width, unsigned int height, void* a, void* b, void* dst, int step);

  // dst = src < threshold ? 0 : full, full 255 or (1 << bitDepth) - 1.
  bool Threshold8bitGrayPixels(unsigned int width, unsigned int height, void* src, void* dst, int threshold, int x,
                               int y, int w, int h);
  bool Threshold16bitGrayPixels(unsigned int width, unsigned int height, int bitDepth, void* src, void* dst,
                                int threshold, int x, int y, int w, int h);

  // The corrected convolution with the Laplacian kernel (see below).
  bool Convolute8bitGrayPixels(unsigned int width, unsigned int height, void* src, void* dst, int x, int y, int w,
                               int h, int unused);
  bool Convolute16bitGrayPixels(unsigned int width, unsigned int height, int bitDepth, void* src, void* dst, int x,
                                int y, int w, int h, int unused);

  // Where the mask (one sample a pixel, of the form's width) is nonzero the
  // pixel becomes a constant: BGR bytes c2 c1 c0, RGB c0 c1 c2, BGRx as BGR;
  // grey c2 * 0.587 + c0 * 0.299 + c1 * 0.114 truncated and clamped.
  bool Replace8bitGrayPixels(unsigned int width, unsigned int height, void* image, void* mask, int x, int y, int w,
                             int h, int c0, int c1, int c2);
  bool Replace8bitBGRPixels(unsigned int width, unsigned int height, void* image, void* mask, int x, int y, int w,
                            int h, int c0, int c1, int c2);
  bool Replace8bitRGBPixels(unsigned int width, unsigned int height, void* image, void* mask, int x, int y, int w,
                            int h, int c0, int c1, int c2);
  bool Replace8bitBGRxPixels(unsigned int width, unsigned int height, void* image, void* mask, int x, int y, int w,
                             int h, int c0, int c1, int c2);
  bool Replace16bitGrayPixels(unsigned int width, unsigned int height, int bitDepth, void* image, void* mask, int x,
                              int y, int w, int h, int c0, int c1, int c2);
  bool Replace16bitBGRPixels(unsigned int width, unsigned int height, int bitDepth, void* image, void* mask, int x,
                             int y, int w, int h, int c0, int c1, int c2);
  bool Replace16bitRGBPixels(unsigned int width, unsigned int height, int bitDepth, void* image, void* mask, int x,
                             int y, int w, int h, int c0, int c1, int c2);
  bool Replace16bitBGRxPixels(unsigned int width, unsigned int height, int bitDepth, void* image, void* mask, int x,
                              int y, int w, int h, int c0, int c1, int c2);

  // |a - b| into a scratch frame, then the second count form on it with
  // bounds low and 255 (both sample widths).
  bool AbsDiff8GrayPixels(unsigned int width, unsigned int height, void* a, void* b, int x, int y, int w, int h,
                          int low, int& count, double& mean);
  bool AbsDiff16GrayPixels(unsigned int width, unsigned int height, int bitDepth, void* a, void* b, int x, int y, int w,
                           int h, int low, int& count, double& mean);
  // 3 x 3 Sobel of src into edge (a scratch frame when edge is null), then
  // the short count with bounds 1 and 255.
  bool EdgeDetect8GrayPixels(unsigned int width, unsigned int height, void* src, void* edge, int x, int y, int w, int h,
                             int direction, int& count, int unused);
  bool EdgeDetect16GrayPixels(unsigned int width, unsigned int height, int bitDepth, void* src, void* edge, int x,
                              int y, int w, int h, int direction, int& count, int unused);
  // On the inner rectangle: difference from the background, threshold,
  // opening, then the scratch is zeroed again before the convolution into
  // edge, so count comes out 0 and the inner rectangle of edge 0.
  bool EdgeDetectWidthBackground8GrayPixels(unsigned int width, unsigned int height, void* image, void* background,
                                            void* edge, int x, int y, int w, int h, int threshold, int& count,
                                            int unused);
  bool EdgeDetectWidthBackground16GrayPixels(unsigned int width, unsigned int height, int bitDepth, void* image,
                                             void* background, void* edge, int x, int y, int w, int h, int threshold,
                                             int& count, int unused);

 private:
  // For output pixel (c, r) of the rectangle, kernel taps count where row
  // r + kr - half and column c + kc - half lie in the rectangle, the row walk
  // stopping at the first row outside it; a tap reads rectangle row
  // r + kr - half at rectangle column kc - half (not c + kc - half). The sum
  // is divided by the counted weights when they are nonzero, then clamped.
  bool Convolute8bitCorrection(unsigned int width, unsigned int height, void* src, void* dst, int x, int y, int w,
                               int h, int* kernel, int kernelSize);
  bool Convolute16bitCorrection(unsigned int width, unsigned int height, int bitDepth, void* src, void* dst, int x,
                                int y, int w, int h, int* kernel, int kernelSize);

  uint16_t* redWeightTable;
  uint16_t* greenWeightTable;
  uint16_t* blueWeightTable;
  int32_t laplacianKernel[9];
};
