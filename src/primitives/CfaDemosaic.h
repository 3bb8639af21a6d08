#pragma once
// Whole-frame colour-filter-array interpolation to three planes a row, which
// a sink then packs into the caller's pixels. Shared by the two primitives
// and by the Bayer corrector, which asks for blue-first planes and a flipped
// row order directly instead of exchanging channels afterwards (the
// interpolation treats red and blue alike, so that is the same image).
//
// Borders mirror about the edge pixel (column -1 reads column 1, -2 reads 2),
// which keeps the colour of every mirrored site; images under 3 pixels in a
// direction clamp to their last row or column. 16-bit output is clamped to
// the all-ones value that covers the largest sample of the five rows around
// it, so data of any depth stays within its depth.
#include <cstdint>
#include <vector>

#include "frame/RowLoop.h"
#include "primitives/Cfa.h"
#include "primitives/CfaRows.h"

namespace kestrelink::cfa {

// Colours of a grid's first two rows: 0 red, 1 green, 2 blue.
struct GridColours {
  uint8_t even[2];  // columns 0 and 1 of even rows
  uint8_t odd[2];   // columns 0 and 1 of odd rows
};
GridColours ColoursOf(IppiBayerGrid grid);

// Mirrored index for a coordinate i within 0 .. n-1.
inline uint32_t MirrorIndex(int64_t i, uint32_t n) {
  if (i < 0) i = -i;
  if (i >= int64_t(n)) i = 2 * (int64_t(n) - 1) - i;
  return uint32_t(i < 0 ? 0 : i >= int64_t(n) ? n - 1 : i);
}

// Per-thread planes of one output row, grown as needed and kept between calls.
template <class Sample>
Sample* ScratchPlanes(uint32_t width) {
  thread_local std::vector<Sample> planes;
  if (planes.size() < 3 * size_t(width)) planes.resize(3 * size_t(width));
  return planes.data();
}

// Smallest all-ones value not below v.
inline uint32_t AllOnesCover(uint32_t v) {
  v |= v >> 1;
  v |= v >> 2;
  v |= v >> 4;
  v |= v >> 8;
  return v;
}

template <class Sample>
using RowsOf = std::conditional_t<sizeof(Sample) == 1, Window8, Window16>;

template <class Sample>
inline void InteriorRow(const RowsOf<Sample>& in, PlaneRow<Sample> out, uint32_t x0, uint32_t x1, uint32_t top) {
  if constexpr (sizeof(Sample) == 1)
    CfaRows().interior8(in, out, x0, x1);
  else
    CfaRows().interior16(in, out, x0, x1, top);
}

// One border column: five mirrored samples a row, interpolated at their middle.
template <class Sample>
void BorderPixel(const RowsOf<Sample>& in, PlaneRow<Sample> out, uint32_t x, uint32_t width, uint32_t top) {
  Sample cells[5][5], x3[3], g3[3], y3[3];
  RowsOf<Sample> local;
  for (int r = 0; r < 5; ++r) {
    for (int k = 0; k < 5; ++k) cells[r][k] = in.row[r][MirrorIndex(int64_t(x) + k - 2, width)];
    local.row[r] = cells[r];
  }
  InteriorRow<Sample>(local, PlaneRow<Sample>{x3, g3, y3, out.greenOdd != bool(x & 1)}, 2, 3, top);
  out.x[x] = x3[2];
  out.g[x] = g3[2];
  out.y[x] = y3[2];
}

// Interpolates the width x height mosaic at `src` (rows srcStep bytes apart).
// For each source row y, sink(y, p0, p1, p2) receives the row's planes in the
// order red, green, blue, or blue, green, red with blueFirst.
template <class Sample, class Sink>
void Demosaic(const Sample* src, int64_t srcStep, uint32_t width, uint32_t height, IppiBayerGrid grid, bool blueFirst,
              Sink&& sink) {
  const GridColours colours = ColoursOf(grid);
  ForEachBand(height, [&](uint32_t first, uint32_t count) {
    Sample* const planes = ScratchPlanes<Sample>(width);
    Sample* plane[3] = {planes, planes + width, planes + 2 * size_t(width)};  // red, green, blue
    auto rowAt = [&](int64_t y) {
      return reinterpret_cast<const Sample*>(reinterpret_cast<const uint8_t*>(src) +
                                             srcStep * int64_t(MirrorIndex(y, height)));
    };
    auto bitsOf = [&](int64_t y) {  // every bit set in row y
      if constexpr (sizeof(Sample) == 2) return CfaRows().bits16(rowAt(y), width);
      return 0u;
    };
    uint32_t rowBits[5];
    for (int r = 0; r < 5; ++r) rowBits[r] = bitsOf(int64_t(first) + r - 2);
    for (uint32_t y = first; y < first + count; ++y) {
      if (y != first) {
        for (int r = 0; r < 4; ++r) rowBits[r] = rowBits[r + 1];
        rowBits[4] = bitsOf(int64_t(y) + 2);
      }
      RowsOf<Sample> in;
      for (int r = 0; r < 5; ++r) in.row[r] = rowAt(int64_t(y) + r - 2);
      const uint32_t top =
          sizeof(Sample) == 1 ? 255 : AllOnesCover(rowBits[0] | rowBits[1] | rowBits[2] | rowBits[3] | rowBits[4]);
      const uint8_t* rowColours = (y & 1) ? colours.odd : colours.even;
      const bool greenOdd = rowColours[1] == 1;
      const uint8_t xColour = greenOdd ? rowColours[0] : rowColours[1];
      const PlaneRow<Sample> out{plane[xColour], plane[1], plane[2 - xColour], greenOdd};
      if (width > 4) InteriorRow<Sample>(in, out, 2, width - 2, top);
      for (uint32_t x = 0; x < width; ++x) {
        if (x == 2 && width > 4) x = width - 2;
        BorderPixel<Sample>(in, out, x, width, top);
      }
      if (blueFirst)
        sink(y, plane[2], plane[1], plane[0]);
      else
        sink(y, plane[0], plane[1], plane[2]);
    }
    return 0;
  });
}

}  // namespace kestrelink::cfa
