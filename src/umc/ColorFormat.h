#pragma once
// The colour formats a picture can take, and what each means for its planes.
#include <cstdint>

namespace UMC {

enum ColorFormat : int32_t {
  NONE = -1,
  YV12 = 0,
  NV12 = 1,
  YUY2 = 2,
  UYVY = 3,
  YUV411 = 4,
  YUV420 = 5,
  YUV422 = 6,
  YUV444 = 7,
  YUV_VC1 = 8,
  Y411 = 9,
  Y41P = 10,
  RGB32 = 11,  // bytes B, G, R, A
  RGB24 = 12,  // bytes B, G, R
  RGB565 = 13,
  RGB555 = 14,
  RGB444 = 15,
  GRAY = 16,
  YUV420A = 17,
  YUV422A = 18,
  YUV444A = 19,
  YVU9 = 20,
  GRAYA = 21,
  COMPRESSED_A = 22,  // a compressed picture; a fixed mapping size, no planes
  COMPRESSED_B = 23,
};

struct PlaneLayout {
  int32_t widthDivider;
  int32_t heightDivider;
  int32_t samples;  // samples per unit of the plane
};

struct ColorFormatInfo {
  ColorFormat format;
  int32_t planes;
  int32_t bitDepth;
  int32_t alignment;  // row alignment of the format, in bytes
  PlaneLayout plane[4];
};

// The row of `format`, or nullptr for a value the table does not hold.
const ColorFormatInfo* FindColorFormat(int32_t format);

}  // namespace UMC
