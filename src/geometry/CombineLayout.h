#pragma once
// Where CImageCombine puts its two frames. The destination is W x H pixels:
// side by side W = w1 + w2 and H the larger height, one above the other W
// the larger width and H = h1 + h2. Row r of the destination takes row r of
// the first frame at its start when r < h1, and side by side row r of the
// second frame after the first frame's w1 pixels when r < h2; one above the
// other, rows from h1 on take the second frame's row r - h1 at their start.
// Nothing else of the destination is written. Rows run over the team; the
// two frames of one row are placed by one thread, the first before the
// second.
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "frame/RowLoop.h"

namespace kestrelink::combine {

struct Layout {
  uint32_t w1, h1, w2, h2;
  bool side;
  uint32_t W, H;
};

inline uint32_t CombinedWidth(uint32_t w1, uint32_t w2, bool side) { return side ? w1 + w2 : (w1 > w2 ? w1 : w2); }
inline uint32_t CombinedHeight(uint32_t h1, uint32_t h2, bool side) { return side ? (h1 > h2 ? h1 : h2) : h1 + h2; }

inline Layout MakeLayout(uint32_t w1, uint32_t h1, uint32_t w2, uint32_t h2, bool side) {
  return {w1, h1, w2, h2, side, CombinedWidth(w1, w2, side), CombinedHeight(h1, h2, side)};
}

// Whether the call can be made: the destination's size fits 32 bits as the
// two sizes say, and every frame that places a pixel has its pointer.
// A call that fails this touches nothing and answers false.
bool Usable(const Layout& L, std::initializer_list<const void*> first, std::initializer_list<const void*> second,
            std::initializer_list<const void*> dst);

// Calls place(frame, srcRow, dstRow) for every row a frame places, frame 0
// the first; the rows of the destination are shared out over the team.
template <class Place>
inline void EachPlacement(const Layout& L, Place&& place) {
  ForEachRow(L.H, false, [&](uint32_t r, uint32_t) {
    if (L.side) {
      if (r < L.h1) place(0, r, r);
      if (r < L.h2) place(1, r, r);
    } else if (r < L.h1) {
      place(0, r, r);
    } else {
      place(1, r - L.h1, r);
    }
  });
}

// A frame's rows and where it goes: `rowBytes` apart in its source, at byte
// `at` of each destination row.
struct Placed {
  const uint8_t* src;
  size_t rowBytes;
  size_t at;
  uint32_t w;
};

// The two frames of a member whose rows are a whole number of bytes a
// pixel: `srcPixel` and `dstPixel` bytes; side by side the second frame is
// at byte w1 * dstPixel.
inline void Frames(const Layout& L, const void* s1, const void* s2, size_t srcPixel, size_t dstPixel, Placed out[2]) {
  out[0] = {static_cast<const uint8_t*>(s1), srcPixel * L.w1, 0, L.w1};
  out[1] = {static_cast<const uint8_t*>(s2), srcPixel * L.w2, L.side ? dstPixel * L.w1 : 0, L.w2};
}

// Every placement through row(frame, src, dst, w), destination rows
// `dstRowBytes`.
template <class Row>
inline void PlaceFrameRows(const Layout& L, const Placed frames[2], void* dst, size_t dstRowBytes, Row&& row) {
  EachPlacement(L, [&](int f, uint32_t in, uint32_t out) {
    const Placed& p = frames[f];
    row(f, p.src + p.rowBytes * in, RowAt(dst, dstRowBytes, out) + p.at, p.w);
  });
}

// The same through row(src, dst, w).
template <class Row>
inline void PlaceRows(const Layout& L, const Placed frames[2], void* dst, size_t dstRowBytes, Row&& row) {
  PlaceFrameRows(L, frames, dst, dstRowBytes, [&](int, const uint8_t* s, uint8_t* d, uint32_t w) { row(s, d, w); });
}

// Pixel-sized members in one call: kernel(frame, src, dst, w) on each
// placement.
template <class Kernel>
inline void PixelRows(const Layout& L, const void* s1, const void* s2, size_t srcPixel, void* dst, size_t dstPixel,
                      Kernel&& kernel) {
  Placed frames[2];
  Frames(L, s1, s2, srcPixel, dstPixel, frames);
  PlaceFrameRows(L, frames, dst, dstPixel * L.W, kernel);
}

// The first column of row r + 1 that the row's own placements write, or 0
// past the last row: a row's writes past its end, which the four-pixel steps
// make, go only below it, so that the picture is that of rows done in order.
inline uint32_t NextRowOpenColumns(const Layout& L, uint32_t r) {
  const uint64_t next = uint64_t(r) + 1;
  if (next >= L.H || !L.side || next < L.h1) return 0;
  return next < L.h2 ? L.w1 : L.W;
}

}  // namespace kestrelink::combine
