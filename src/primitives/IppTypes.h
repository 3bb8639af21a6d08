#pragma once
// Shape shared by the whole-image kernels: pointers, row steps in bytes (any
// sign), a size, then extra arguments; a status for the result.
#include <cstdint>

struct IppiSize {
  int32_t width;
  int32_t height;
};

// A rectangle of a region: its top-left corner and its size, in pixels.
struct IppiRect {
  int32_t x;
  int32_t y;
  int32_t width;
  int32_t height;
};

using IppStatus = int;
using Ipp8u = uint8_t;
using Ipp16u = uint16_t;
using Ipp16s = int16_t;
using Ipp32s = int32_t;
using Ipp32u = uint32_t;

inline constexpr IppStatus ippStsNoErr = 0;
inline constexpr IppStatus ippStsSizeErr = -6;
inline constexpr IppStatus ippStsNullPtrErr = -8;
