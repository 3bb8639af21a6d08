#pragma once
// Scalar YCbCr arithmetic, the pixel sources of the encoders and the generic
// rows built on them: the portable reference, and the whole code of the
// sources that have no vector rows. Not for the variant translation units.
#include <cstddef>
#include <cstdint>
#include <utility>

#include "primitives/YccRows.h"

namespace kestrelink::ycc {

struct Rgb {
  int r, g, b;
};

inline uint8_t Clamp8(int v) { return uint8_t(v < 0 ? 0 : v > 255 ? 255 : v); }

// One pixel to RGB (YCbCrToRgb.h).
inline Rgb YccToRgb(int y, int cb, int cr) {
  const int l = kLuma * (y - 16) + 2048;
  cb -= 128;
  cr -= 128;
  return {Clamp8((l + kCrToR * cr) >> 12), Clamp8((l - kCrToG * cr - kCbToG * cb) >> 12),
          Clamp8((l + kCbToB * cb) >> 12)};
}

inline uint8_t Luma(Rgb p) { return uint8_t((kYR * p.r + kYG * p.g + kYB * p.b + (16 << 12) + 2048) >> 12); }

// Cb and Cr of the channel sums of 2^k pixels.
inline uint8_t ChromaB(Rgb sum, int k) {
  return uint8_t((kCbR * sum.r + kCbG * sum.g + kCbB * sum.b + (128 << (12 + k)) + (1 << (11 + k))) >> (12 + k));
}
inline uint8_t ChromaR(Rgb sum, int k) {
  return uint8_t((kCrR * sum.r + kCrG * sum.g + kCrB * sum.b + (128 << (12 + k)) + (1 << (11 + k))) >> (12 + k));
}

inline Rgb operator+(Rgb a, Rgb b) { return {a.r + b.r, a.g + b.g, a.b + b.b}; }

// Pixel sources: px[x] is pixel x of the row as 8-bit R, G, B.
template <ChannelOrder order>
struct C3Pixels {  // three bytes a pixel, B G R or R G B
  const uint8_t* p;
  Rgb operator[](uint32_t x) const {
    const uint8_t* q = p + 3 * size_t(x);
    if constexpr (order == kOrderBGR) return {q[2], q[1], q[0]};
    return {q[0], q[1], q[2]};
  }
};
struct BgrxPixels {
  const uint8_t* p;
  Rgb operator[](uint32_t x) const {
    const uint8_t* q = p + 4 * size_t(x);
    return {q[2], q[1], q[0]};
  }
};
struct Bgr555Pixels {  // B bits 0-4, G 5-9, R 10-14
  const uint8_t* p;
  Rgb operator[](uint32_t x) const {
    const int u = p[2 * size_t(x)] | (p[2 * size_t(x) + 1] << 8);
    return {((u >> 10) & 31) << 3, ((u >> 5) & 31) << 3, (u & 31) << 3};
  }
};
struct Bgr565Pixels {  // B bits 0-4, G 5-10, R 11-15
  const uint8_t* p;
  Rgb operator[](uint32_t x) const {
    const int u = p[2 * size_t(x)] | (p[2 * size_t(x) + 1] << 8);
    return {(u >> 11) << 3, ((u >> 5) & 63) << 2, (u & 31) << 3};
  }
};
struct PlanarPixels {  // planes R, G, B
  const uint8_t *r, *g, *b;
  Rgb operator[](uint32_t x) const { return {r[x], g[x], b[x]}; }
};

template <class Pixels>
void EncodeLumaRow(const Pixels& px, uint8_t* y, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x) y[x] = Luma(px[x]);
}

template <class Pixels>
void EncodePlanar422Row(const Pixels& px, uint8_t* y, uint8_t* cb, uint8_t* cr, uint32_t w) {
  for (uint32_t i = 0; i < w / 2; ++i) {
    const Rgb a = px[2 * i], b = px[2 * i + 1];
    y[2 * i] = Luma(a);
    y[2 * i + 1] = Luma(b);
    cb[i] = ChromaB(a + b, 1);
    cr[i] = ChromaR(a + b, 1);
  }
  if (w & 1) y[w - 1] = Luma(px[w - 1]);
}

template <class Pixels>
void EncodePlanar420Rows(const Pixels& px0, const Pixels& px1, uint8_t* y0, uint8_t* y1, uint8_t* cb, uint8_t* cr,
                         uint32_t w) {
  for (uint32_t i = 0; i < w / 2; ++i) {
    const Rgb a = px0[2 * i], b = px0[2 * i + 1], c = px1[2 * i], d = px1[2 * i + 1];
    y0[2 * i] = Luma(a);
    y0[2 * i + 1] = Luma(b);
    y1[2 * i] = Luma(c);
    y1[2 * i + 1] = Luma(d);
    cb[i] = ChromaB(a + b + c + d, 2);
    cr[i] = ChromaR(a + b + c + d, 2);
  }
  if (w & 1) {
    y0[w - 1] = Luma(px0[w - 1]);
    y1[w - 1] = Luma(px1[w - 1]);
  }
}

template <class Pixels>
void EncodePacked422Row(const Pixels& px, uint8_t* dst, uint32_t pairs) {
  for (uint32_t i = 0; i < pairs; ++i) {
    const Rgb a = px[2 * i], b = px[2 * i + 1];
    dst[4 * size_t(i)] = Luma(a);
    dst[4 * size_t(i) + 1] = ChromaB(a + b, 1);
    dst[4 * size_t(i) + 2] = Luma(b);
    dst[4 * size_t(i) + 3] = ChromaR(a + b, 1);
  }
}

// Pixel stores of the decoders.
struct StoreBgrx {
  uint8_t* p;
  uint8_t alpha;
  void operator()(uint32_t x, Rgb c) const {
    uint8_t* q = p + 4 * size_t(x);
    q[0] = uint8_t(c.b), q[1] = uint8_t(c.g), q[2] = uint8_t(c.r), q[3] = alpha;
  }
};
template <ChannelOrder order>
struct StoreC3 {
  uint8_t* p;
  void operator()(uint32_t x, Rgb c) const {
    uint8_t* q = p + 3 * size_t(x);
    if constexpr (order == kOrderRGB) std::swap(c.r, c.b);
    q[0] = uint8_t(c.b), q[1] = uint8_t(c.g), q[2] = uint8_t(c.r);
  }
};

// `w` pixels from a Y row and chroma rows subsampled by 2^chromaShift.
template <class Store>
void DecodePlanarRow(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint32_t chromaShift, uint32_t w,
                     const Store& store) {
  for (uint32_t x = 0; x < w; ++x) store(x, YccToRgb(y[x], cb[x >> chromaShift], cr[x >> chromaShift]));
}

// `pairs` 4:2:2 groups whose bytes are laid out as Group says (YuyvGroup, UyvyGroup).
template <class Group, class Store>
void DecodePairsRow(const uint8_t* src, uint32_t pairs, const Store& store) {
  for (uint32_t i = 0; i < pairs; ++i) {
    const uint8_t* q = src + 4 * size_t(i);
    store(2 * i, YccToRgb(q[Group::kY0], q[Group::kCb], q[Group::kCr]));
    store(2 * i + 1, YccToRgb(q[Group::kY1], q[Group::kCb], q[Group::kCr]));
  }
}

}  // namespace kestrelink::ycc
