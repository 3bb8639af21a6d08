// Morphology and Sobel members of the motion detector.
#include <kestrelink/CIppMotionDetector.h>

#include <algorithm>
#include <cstring>

#include "analysis/MotionFrame.h"
#include "frame/RowLoop.h"
#include "platform/OpenMP.h"
#include "primitives/AnalysisPrimitives.h"
#include "primitives/SobelRows.h"

using namespace kestrelink::analysis;

namespace {

// Rows of a Sobel strip: two signed 16-bit strips of a 2560-pixel row stay
// within a core's second-level cache.
constexpr int kSobelStripRows = 32;

// A frame region for the in-place morphology: first byte, step, pixel size.
template <class T>
bool Morph(IppStatus (*kernel)(T*, int, IppiSize), void* image, uint64_t frameBytes, int64_t start, int64_t step, int w,
           int h) {
  const int rows = FitRows(frameBytes, start, step, int64_t(w) * int64_t(sizeof(T)), h);
  if (!image || rows < 0) return false;
  kestrelink::platform::SetBlockTimeZero();
  return kernel(At<T>(image, start), int(step), {w, rows}) == ippStsNoErr;
}

using SobelFilter = IppStatus (*)(const Ipp8u*, int, Ipp16s*, int, IppiSize, IppiMaskSize, IppiBorderType, Ipp8u,
                                  Ipp8u*);
using SobelQuery = IppStatus (*)(IppiSize, IppiMaskSize, int*);

// One Sobel filter with a work buffer of the size its query gives.
IppStatus FilterWithBuffer(SobelFilter filter, SobelQuery query, const Ipp8u* src, int srcStep, Ipp16s* dst,
                           int dstStep, IppiSize size, IppiMaskSize mask, IppiBorderType border, Ipp8u value) {
  int bytes = 0;
  if (const IppStatus s = query(size, mask, &bytes)) return s;
  int step = 0;
  Ipp8u* buffer = ippiMalloc_8u_C1(bytes, 1, &step);
  if (!buffer) return ippStsNullPtrErr;
  const IppStatus s = filter(src, srcStep, dst, dstStep, size, mask, border, value, buffer);
  ippiFree(buffer);
  return s;
}

IppStatus Vert(const Ipp8u* src, int srcStep, Ipp16s* dst, int dstStep, IppiSize size, IppiMaskSize mask,
               IppiBorderType border, Ipp8u value) {
  return FilterWithBuffer(ippiFilterSobelVertBorder_8u16s_C1R, ippiFilterSobelVertGetBufferSize_8u16s_C1R, src, srcStep,
                          dst, dstStep, size, mask, border, value);
}

IppStatus Horiz(const Ipp8u* src, int srcStep, Ipp16s* dst, int dstStep, IppiSize size, IppiMaskSize mask,
                IppiBorderType border, Ipp8u value) {
  return FilterWithBuffer(ippiFilterSobelHorizBorder_8u16s_C1R, ippiFilterSobelHorizGetBufferSize_8u16s_C1R, src,
                          srcStep, dst, dstStep, size, mask, border, value);
}

// A zeroed signed 16-bit scratch image, released on scope exit.
struct Scratch16 {
  Ipp16s* data = nullptr;
  int step = 0;
  Scratch16(int w, int h) {
    data = ippiMalloc_16s_C1(w, h, &step);
    if (data && ippiSet_16s_C1R(0, data, step, {w, h}) != ippStsNoErr) {
      ippiFree(data);
      data = nullptr;
    }
  }
  ~Scratch16() { ippiFree(data); }
  Scratch16(const Scratch16&) = delete;
  Scratch16& operator=(const Scratch16&) = delete;
};

}  // namespace

bool CIppMotionDetector::Dilate8bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w,
                                              int h) {
  return Morph<Ipp8u>(ippiDilate3x3_8u_C1IR, image, FrameBytes(width, height, 1), PixelOffset(width, x, y, 1), width, w,
                      h);
}

bool CIppMotionDetector::Dilate16bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y,
                                               int w, int h) {
  // The 8-bit dilation on the 16-bit frame's bytes, from byte y * width + x
  // with rows width bytes apart: a settled behaviour of the format.
  return Morph<Ipp8u>(ippiDilate3x3_8u_C1IR, image, FrameBytes(width, height, 2), PixelOffset(width, x, y, 1), width, w,
                      h);
}

bool CIppMotionDetector::Erode8bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w,
                                             int h) {
  // Starts one row down, at byte (y + 1) * width + x: a settled behaviour of the format.
  return Morph<Ipp8u>(ippiErode3x3_8u_C1IR, image, FrameBytes(width, height, 1), PixelOffset(width, x, y + 1, 1), width,
                      w, h);
}

bool CIppMotionDetector::Erode16bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y, int w,
                                              int h) {
  // Starts one row down and one pixel right: a settled behaviour of the format.
  return Morph<Ipp16u>(ippiErode3x3_16u_C1IR, image, FrameBytes(width, height, 2), PixelOffset(width, x + 1, y + 1, 2),
                       2 * int64_t(width), w, h);
}

bool CIppMotionDetector::Openning8bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y,
                                                int w, int h) {
  return Erode8bitGrayPixels(width, height, image, x, y, w, h) &&
         Dilate8bitGrayPixels(width, height, image, x, y, w, h);
}

bool CIppMotionDetector::Openning16bitGrayPixels(unsigned int width, unsigned int height, void* image, int x, int y,
                                                 int w, int h) {
  return Erode16bitGrayPixels(width, height, image, x, y, w, h) &&
         Dilate16bitGrayPixels(width, height, image, x, y, w, h);
}

bool CIppMotionDetector::Sobel8bitGrayPixels(unsigned int width, unsigned int height, void* src, void* dst, int x,
                                             int y, int w, int h, bool b3x3, int direction) {
  if (direction < 0 || direction > 2) return false;
  const int64_t at = PixelOffset(width, x, y, 1);
  const int rows = FitRows(FrameBytes(width, height, 1), at, width, w, h);
  if (!src || !dst || rows < 0) return false;
  if (w < 1 || rows < 1) return false;
  kestrelink::platform::SetBlockTimeZero();
  const IppiMaskSize mask = b3x3 ? ippMskSize3x3 : ippMskSize5x5;
  const IppiSize size = {w, rows};
  const int step = int(width);
  const Ipp8u* in = At<const Ipp8u>(src, at);
  Ipp8u* out = At<Ipp8u>(dst, at);
  int bufferBytes = 0;
  if (ippiFilterSobelVertGetBufferSize_8u16s_C1R(size, mask, &bufferBytes) != ippStsNoErr) return false;
  // Each thread takes a band of rows and works it in strips, so that the
  // scratch images stay in cache; every pixel goes through the same steps
  // as over the whole rectangle at once.
  return kestrelink::ForEachBand(uint32_t(rows), [&](uint32_t first, uint32_t count) -> int {
           const int strip = std::min(int(count), kSobelStripRows);
           Scratch16 magnitude(w, strip), second(w, direction == 2 ? strip : 1);
           int bufferStep = 0;
           Ipp8u* buffer = ippiMalloc_8u_C1(bufferBytes, 1, &bufferStep);
           IppStatus s = magnitude.data && second.data && buffer ? ippStsNoErr : ippStsNullPtrErr;
           for (int r = int(first); s == ippStsNoErr && r < int(first + count); r += strip) {
             const IppiSize part = {w, std::min(strip, int(first + count) - r)};
             s = ippiSet_16s_C1R(0, magnitude.data, magnitude.step, part);
             if (s == ippStsNoErr)
               s = SobelRows(in, step, magnitude.data, magnitude.step, size, mask, ippBorderRepl, 0, buffer,
                             direction != 1, r, part.height);
             if (s == ippStsNoErr) s = ippiAbs_16s_C1IR(magnitude.data, magnitude.step, part);
             if (s == ippStsNoErr && direction == 2) {
               s = ippiSet_16s_C1R(0, second.data, second.step, part);
               if (s == ippStsNoErr)
                 s = SobelRows(in, step, second.data, second.step, size, mask, ippBorderRepl, 0, buffer, false, r,
                               part.height);
               if (s == ippStsNoErr) s = ippiAbs_16s_C1IR(second.data, second.step, part);
               if (s == ippStsNoErr)
                 s = ippiAdd_16s_C1IRSfs(second.data, second.step, magnitude.data, magnitude.step, part, 0);
             }
             if (s == ippStsNoErr)
               s = ippiConvert_16s8u_C1R(magnitude.data, magnitude.step, out + int64_t(r) * step, step, part);
           }
           ippiFree(buffer);
           return s;
         }) == ippStsNoErr;
}

bool CIppMotionDetector::Sobel16bitGrayPixels(unsigned int width, unsigned int height, void* src, void* dst, int x,
                                              int y, int w, int h, bool b3x3, int direction) {
  const int64_t at = PixelOffset(width, x, y, 2);
  const int64_t step = 2 * int64_t(width);
  const int rows = FitRows(FrameBytes(width, height, 2), at, step, 2 * int64_t(w), h);
  if (!src || !dst || rows < 0) return false;
  if (w < 1 || rows < 1) return false;
  kestrelink::platform::SetBlockTimeZero();
  std::memset(dst, 0, FrameBytes(width, height, 2));
  const IppiSize size = {w, rows};
  const IppiMaskSize mask = b3x3 ? ippMskSize3x3 : ippMskSize5x5;
  // The samples go to bytes through the signed narrowing, so 32768 and up
  // become 0: a settled behaviour of the format.
  int bytesStep = 0;
  Ipp8u* bytes = ippiMalloc_8u_C1(int(width), rows, &bytesStep);
  if (!bytes) return false;
  IppStatus s = ippiConvert_16s8u_C1R(At<const Ipp16s>(src, at), int(step), bytes, int(width), size);
  if (s != ippStsNoErr || direction < 0 || direction > 2) {
    ippiFree(bytes);
    return s == ippStsNoErr;
  }
  Ipp16s* out = At<Ipp16s>(dst, at);
  // A border of value 1, and the magnitude taken over rows width bytes
  // apart, half the frame's row: settled behaviours of the format.
  s = direction == 1 ? Horiz(bytes, int(width), out, int(step), size, mask, ippBorderConst, 1)
                     : Vert(bytes, int(width), out, int(step), size, mask, ippBorderConst, 1);
  if (s == ippStsNoErr) s = ippiAbs_16s_C1IR(out, int(width), size);
  if (s == ippStsNoErr && direction == 2) {
    Scratch16 second(w, rows);
    s = second.data ? Horiz(bytes, int(width), second.data, second.step, size, mask, ippBorderConst, 1)
                    : ippStsNullPtrErr;
    if (s == ippStsNoErr) s = ippiAbs_16s_C1IR(second.data, second.step, size);
    if (s == ippStsNoErr) s = ippiAdd_16s_C1IRSfs(second.data, second.step, out, int(step), size, 0);
  }
  ippiFree(bytes);
  return s == ippStsNoErr;
}
