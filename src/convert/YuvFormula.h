#pragma once
// The library's own YUV to BGR arithmetic, used wherever the studio-range
// kernels are not: the colour-map path of the 8-bit YUV layouts, the 10- and
// 20-bit layouts and the combine code. The chroma bytes are the raw
// differences B - Y and R - Y offset by 128; Y has no offset and no scale.
// G takes the BT.601 luma relation in 16-bit fixed point (0.1942 and 0.5094):
//   t = (U - 128) * 12727 + (V - 128) * 33384
//   g = (t + 32768) >> 16 when t > 0, else (t - 32768) >> 16 (arithmetic)
//   B = Y + U - 128, G = Y - g, R = Y + V - 128, each limited to 0 .. 255.
// For grey (t = 0) g is -1, so G comes out one above Y: a settled behaviour
// of the format that stored pictures depend on.
#include <cstdint>

namespace kestrelink::yuv {

inline constexpr int kUToG = 12727, kVToG = 33384;

struct Bgr {
  uint8_t b, g, r;
};

// The green correction of one U, V pair; computed once per chroma pair.
inline int GreenOffset(int u, int v) {
  const int t = (u - 128) * kUToG + (v - 128) * kVToG;
  return t > 0 ? (t + 32768) >> 16 : (t - 32768) >> 16;
}

inline uint8_t Limit8(int v) { return uint8_t(v < 0 ? 0 : v > 255 ? 255 : v); }

// One pixel from its Y and the pair's U, V and green correction.
inline Bgr PixelWithGreen(int y, int u, int v, int g) {
  return {Limit8(y + u - 128), Limit8(y - g), Limit8(y + v - 128)};
}

inline Bgr Pixel(int y, int u, int v) { return PixelWithGreen(y, u, v, GreenOffset(u, v)); }

}  // namespace kestrelink::yuv
