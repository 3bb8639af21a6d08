#pragma once
// The separable resize behind every resize kernel. The work buffer holds the
// horizontal tables (per output sample: each tap's byte offset in a source
// row and its weight), the vertical taps of the current row, and a ring of
// horizontally filtered source rows, each filtered once however many output
// rows read it. Nearest neighbour copies samples through the offsets alone.
#include <cstddef>
#include <cstdint>

#include "primitives/IppTypes.h"
#include "primitives/ResizeAxis.h"

namespace kestrelink::resize {

// Bytes of work buffer for n output samples a row and tx, ty taps.
size_t WorkBytes(uint32_t n, int tx, int ty);

// The same for output rows of `samples` samples and these factors, or
// SIZE_MAX when it does not fit an int.
size_t ResizeWorkBytes(int64_t samples, int kind, double xFactor, double yFactor);

// The horizontal tables, carved from the work buffer.
struct RowTables {
  int32_t* off;
  int16_t* wq;
  float* wf;
  uint32_t n;        // output samples a row
  int taps;
  uint32_t vectorEnd;  // samples whose every tap leaves 4 bytes of the row to read
  // One-channel 8-bit rows whose taps fit four bytes: where they start and
  // the taps' weights folded onto them (ResizeRowKernels::h8win).
  bool window;
  int32_t* win;
  int32_t* w01;
  int32_t* w23;
  // Three- and four-channel 8-bit rows: taps gathered a pixel at a time
  // (ResizeRowKernels::h8px4) for the first pixBlocks blocks of 8 pixels.
  bool pix4;
  int32_t* pixOff;
  int32_t* wpairs;
  int pixChannels;
  uint32_t pixBlocks;
  int32_t* pixWindows;  // PixelWindows of the pixBlocks blocks
  // One-channel 16-bit rows whose taps fit windowWidth samples from win[j],
  // the weights folded onto them in wwin (ResizeRowKernels::h16win).
  int windowWidth;
  float* wwin;
};

// Where the tables and the ring lie in a buffer of WorkBytes(n, tx, ty).
struct Work {
  RowTables x;
  int ty;
  int32_t* yIdx;
  double* yW;
  int16_t* yQ;
  float* yF;
  int64_t* tags;    // the source row each ring slot holds, -1 for none
  void** slots;     // ring rows
  const void** rows;  // this output row's rows, tap order
  uint8_t* ring;
};
Work CarveWork(uint8_t* buffer, uint32_t n, int tx, int ty);

// Leaves out of 8-bit tables the taps whose fixed-point weight is 0 (the
// slivers of an area span that ends a hair past a pixel's edge, the
// padding of short spans), keeping at least two taps: the integer sums are
// the same, with less to add.
void DropSilentTaps(RowTables& t);

// Sets w.x.vectorEnd for source rows of rowBytes bytes.
void FindVectorEnd(RowTables& t, size_t rowBytes);

// Folds the taps of one-byte samples into four-byte windows inside rows of
// rowBytes bytes, and sets t.window when every sample's taps fit one.
void FoldWindows(RowTables& t, size_t rowBytes);

// The same for 16-bit samples in windows of 2 (two taps) or 4 samples;
// sets t.windowWidth, 0 when the taps do not fit.
void FoldWindows16(RowTables& t, size_t rowBytes);

// Lays out the taps of pixels of `channels` one-byte samples (3 or 4) for
// gathering four bytes a pixel inside rows of rowBytes, and sets t.pix4.
void GatherPixels(RowTables& t, int channels, size_t rowBytes);

// Where each pair of taps (2t, 2t+1) of each block of 8 pixels may fetch its
// 16 pixels from one window of kPixelWindowBytes of the row, as the AVX-512
// rows take them: per block and pair kPixelWindowInts values, the window's
// byte offset (-1 where the pixels do not fit one that lies inside the row,
// and the rows gather), then per lane the pixel's place in the window, lanes
// 2i and 2i+1 the pair's two taps of pixel 0 2 4 6 1 3 5 7 [i]. Four-byte
// pixels: the index of the pixel's 32-bit word. Three-byte pixels: the
// 16-bit words h and h + 1 of the window at the offset (even) or one byte on
// (odd; bit 15 set), h half the distance from the offset.
inline constexpr int kPixelWindowBytes = 128;
inline constexpr int kPixelWindowInts = 17;
void PixelWindows(const int32_t* pixOff, uint32_t pixels, int taps, int channels, uint32_t blocks, size_t rowBytes,
                  int32_t* windows);

// Output rows y0 .. y0+rows-1 (absolute destination rows): dstRow(y) is the
// first output sample of row y; src + r * srcStep is source row r, of
// srcRowBytes bytes. Samples are uint8_t or uint16_t. With keepFourth every
// fourth output sample stays as it was.
struct RunRows {
  const uint8_t* src;
  ptrdiff_t srcStep;
  size_t srcRowBytes;
  uint8_t* dst;       // output sample 0 of destination row 0
  ptrdiff_t dstStep;
  int64_t y0, rows;
  AxisMap y;
  bool keepFourth;
};
template <class Sample>
void RunFiltered(const RunRows& r, Work& w);

// Nearest neighbour: x.off holds one offset per output unit of copyBytes
// bytes, written dstStride bytes apart.
void RunNearest(const RunRows& r, const RowTables& x, int copyBytes, int dstStride);

// Fills tap k of sample j from an axis: for output sample j, the source
// pixel's byte offset is idx * pixelBytes + sampleOffset.
void SetTaps(RowTables& t, uint32_t j, const int32_t* idx, const double* w, int64_t pixelBytes, int64_t sampleOffset);

// The checks every resize kernel makes before touching memory, and the
// source columns or rows it may read: the ROI clipped by the image.
IppStatus CheckResize(IppiSize srcSize, IppiRect srcRoi, IppiSize dstSize, double xFactor, double yFactor,
                      int interpolation);
bool ClipRoi(IppiSize srcSize, IppiRect srcRoi, int32_t& x0, int32_t& x1, int32_t& y0, int32_t& y1);

}  // namespace kestrelink::resize
