#pragma once
#include <cstdint>

#include <kestrelink/Export.h>

// Rotates packed frames (rows of srcWidth pixels, no padding, top row first).
//
// Angles are in degrees, and a positive angle turns the picture clockwise as
// it is shown, top row first: 90 puts the top row down the right-hand side.
// The centre (centerX, centerY) is a pixel, in source coordinates, that
// stays where it is; the output is a frame of dstWidth x dstHeight pixels.
//
// Exact right angles. With the centre (0, 0) and output sizes that fit, the
// turn is a copy of whole pixels, the fourth sample of BGRx too:
//   - 90.0 and -90.0 need dstHeight == srcWidth and dstWidth ==
//     AdjustDestinationWidth(srcHeight): output rows are srcHeight rounded up
//     to a multiple of 4 pixels. The pad columns are not written, and they
//     stand at the right of each row for 90 and at the left for -90.
//   - 180.0 also takes that size, or dstWidth == srcWidth and dstHeight ==
//     srcHeight; either way it writes a packed srcWidth x srcHeight frame.
// Angles are compared exactly and not reduced: 270.0 or 90.0000001 take the
// general path, as does any right angle with another centre or size.
//
// General path. The output (packed, dstWidth pixels a row) is the source
// turned about the centre; each output pixel is sampled back from the
// source by `interpolation`: 0 nearest neighbour, 1 bilinear, any other
// value bicubic (Catmull-Rom). Output pixels that the turned source does not
// cover keep what they held: clear dst first for a clean background. With
// bSmoothEdge the picture's border is blended into what dst held, by the
// part of each border pixel that the picture covers, instead of being cut
// at whole pixels. The fourth sample of BGRx pixels is not written here.
//
//   CIppImageRotate rotate;
//   std::vector<uint8_t> out(rotate.AdjustDestinationWidth(1080) * 1920);
//   rotate.Mono8Rotate(1920, 1080, frame, rotate.AdjustDestinationWidth(1080), 1920, out.data(),
//                      0, 0, 90.0, 0, false);                   // exact quarter turn
//   rotate.Mono8Rotate(1920, 1080, frame, 1920, 1080, out.data(), 960, 540, 12.5, 1, true);
//
// The answer is false for a null frame or a zero size on the general path,
// true otherwise. src and dst must be distinct frames.
class KESTRELINK_API CIppImageRotate {
 public:
  // Sets up the thread team.
  CIppImageRotate();

  // `width` rounded up to a multiple of 4.
  int AdjustDestinationWidth(unsigned int width);

  bool Mono8Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst,
                   int centerX, int centerY, double angle, int interpolation, bool bSmoothEdge);
  bool BGR8Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst,
                  int centerX, int centerY, double angle, int interpolation, bool bSmoothEdge);
  bool BGRx8Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst,
                   int centerX, int centerY, double angle, int interpolation, bool bSmoothEdge);
  // 16-bit forms: `unused` is not read.
  bool Mono16Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst,
                    int unused, int centerX, int centerY, double angle, int interpolation, bool bSmoothEdge);
  bool BGR16Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst,
                   int unused, int centerX, int centerY, double angle, int interpolation, bool bSmoothEdge);
  bool BGRx16Rotate(uint32_t srcWidth, uint32_t srcHeight, void* src, uint32_t dstWidth, uint32_t dstHeight, void* dst,
                    int unused, int centerX, int centerY, double angle, int interpolation, bool bSmoothEdge);

 private:
  // The exact right angles: 90 writes output row x, column y from source
  // row srcHeight-1-y, column x, rows AdjustDestinationWidth(srcHeight)
  // pixels apart; 270 (-90) is its mirror image with the pad at the left;
  // 180 writes a packed frame. Always true.
  bool Mono8Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool Mono8Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool Mono8Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool Mono16Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool Mono16Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool Mono16Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGR8Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGR8Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGR8Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGR16Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGR16Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGR16Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGRx8Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGRx8Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGRx8Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGRx16Rotate90(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGRx16Rotate180(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
  bool BGRx16Rotate270(uint32_t srcWidth, uint32_t srcHeight, void* src, void* dst);
};
