#pragma once
// Constants shared by the geometry kernels (resize, mirror, rotate): the
// interpolation kinds, the smooth-edge flag and the mirror axes, with the
// values callers pass through.
#include <cstdint>

#include "primitives/IppTypes.h"

inline constexpr int IPPI_INTER_NN = 1;
inline constexpr int IPPI_INTER_LINEAR = 2;
inline constexpr int IPPI_INTER_CUBIC = 4;
inline constexpr int IPPI_INTER_SUPER = 8;
inline constexpr int IPPI_INTER_LANCZOS = 16;
// Top bit of the 32-bit interpolation word: blend the border of a rotated image.
inline constexpr int IPPI_SMOOTH_EDGE = int(0x80000000u);

// ippAxsHorizontal reverses rows (top to bottom), ippAxsVertical reverses
// columns, ippAxsBoth does both.
enum IppiAxis { ippAxsHorizontal = 0, ippAxsVertical = 1, ippAxsBoth = 2 };

inline constexpr IppStatus ippStsInterpolationErr = -22;
inline constexpr IppStatus ippStsResizeFactorErr = -23;
inline constexpr IppStatus ippStsMirrorFlipErr = -21;
inline constexpr IppStatus ippStsWrongIntersectROI = -37;
