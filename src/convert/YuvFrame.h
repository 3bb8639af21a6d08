#pragma once
// Frame loops shared by the YUV conversions: primitives over the team in
// bands of rows (or of row pairs for 4:2:0 targets), with the flip as a
// negative destination step where the primitive allows it.
#include <cstddef>
#include <cstdint>

#include "convert/ColourFrame.h"

namespace kestrelink::yuv {

// Runs a decoding or packing primitive, prim(src, srcStep, dst, dstStep,
// size), over the team; false when any band's primitive refuses the frame.
template <class Prim>
bool PrimitiveBands(uint32_t w, uint32_t h, const void* src, size_t srcRowBytes, void* dst, size_t dstRowBytes,
                    bool flip, Prim prim) {
  using namespace colour;
  if (!Splittable(w, h, srcRowBytes > dstRowBytes ? srcRowBytes : dstRowBytes, {src, dst})) return false;
  return InBands(h, [&](uint32_t y0, uint32_t n) {
    const auto in = Band(src, srcRowBytes, h, y0, false), out = Band(dst, dstRowBytes, h, y0, flip);
    return prim(in.first, in.step, out.first, out.step, BandSize(w, n));
  });
}

// Runs encode(firstRow, rows, planes, steps), a primitive to planes Y, U, V
// with steps w, w >> 1, w >> 1, over the team: in bands of whole row pairs
// when `pairs` (chroma row = row / 2), the odd last row with the last band.
// A frame too small to split goes to the primitive whole, which answers for it.
template <class Encode>
bool PlanarEncodeBands(uint32_t w, uint32_t h, bool pairs, const void* src, void* Y, void* U, void* V,
                       uint64_t widestRowBytes, Encode encode) {
  if (!colour::Splittable(w, h, widestRowBytes, {src, Y, U, V})) return false;
  const int steps[3] = {int(w), int(w >> 1), int(w >> 1)};
  const uint32_t unit = pairs ? 2 : 1, units = h / unit;
  auto band = [&](uint32_t u0, uint32_t n) {
    const uint32_t y0 = u0 * unit, rows = u0 + n == units ? h - y0 : n * unit;
    const size_t chromaRow = size_t(u0) * (w >> 1);
    Ipp8u* const planes[3] = {static_cast<uint8_t*>(Y) + size_t(y0) * w, static_cast<uint8_t*>(U) + chromaRow,
                              static_cast<uint8_t*>(V) + chromaRow};
    return encode(y0, rows, planes, steps);
  };
  if (units == 0) return band(0, 0) == 0;
  return colour::InBands(units, band);
}

}  // namespace kestrelink::yuv
