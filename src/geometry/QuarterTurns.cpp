// Quarter turns are transposes of the source read bottom-up (clockwise) or
// written bottom-up (anticlockwise); each thread takes a band of output rows,
// which is a band of source columns, and walks it tile by tile.
#include "geometry/QuarterTurns.h"

#include <cstddef>

#include "frame/RowLoop.h"
#include "platform/OpenMP.h"
#include "primitives/MirrorRows.h"
#include "primitives/RotateTranspose.h"

namespace kestrelink::geometry {

void TurnClockwise(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t pitch, int bytes) {
  if (w == 0 || h == 0) return;
  platform::SetBlockTimeZero();
  const rotate::TransposeRegion transpose = rotate::Transposes().ForPixel(bytes);
  const ptrdiff_t srcRow = ptrdiff_t(w) * bytes, dstRow = ptrdiff_t(pitch) * bytes;
  const auto* bottom = static_cast<const uint8_t*>(src) + (ptrdiff_t(h) - 1) * srcRow;
  ForEachBand(w, [&](uint32_t first, uint32_t rows) {
    transpose(bottom + ptrdiff_t(first) * bytes, -srcRow, static_cast<uint8_t*>(dst) + ptrdiff_t(first) * dstRow,
              dstRow, rows, h);
    return 0;
  });
}

void TurnAnticlockwise(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t pitch, int bytes) {
  if (w == 0 || h == 0) return;
  platform::SetBlockTimeZero();
  const rotate::TransposeRegion transpose = rotate::Transposes().ForPixel(bytes);
  const ptrdiff_t srcRow = ptrdiff_t(w) * bytes, dstRow = ptrdiff_t(pitch) * bytes;
  const ptrdiff_t pad = ptrdiff_t(pitch - h) * bytes;
  ForEachBand(w, [&](uint32_t first, uint32_t rows) {
    // Output rows first .. first+rows-1 hold source columns w-first-rows ..
    // w-1-first, the last of the band on top.
    const uint32_t column = w - first - rows;
    uint8_t* lastRow = static_cast<uint8_t*>(dst) + ptrdiff_t(first + rows - 1) * dstRow + pad;
    transpose(static_cast<const uint8_t*>(src) + ptrdiff_t(column) * bytes, srcRow, lastRow, -dstRow, rows, h);
    return 0;
  });
}

void TurnHalf(uint32_t w, uint32_t h, const void* src, void* dst, int bytes) {
  if (w == 0 || h == 0) return;
  platform::SetBlockTimeZero();
  const mirror::ReverseRow reverse = mirror::MirrorRows().ForPixel(bytes);
  const size_t rowBytes = size_t(w) * bytes;
  ForEachRow(h, false,
             [&](uint32_t y, uint32_t) { reverse(RowAt(src, rowBytes, h - 1 - y), RowAt(dst, rowBytes, y), w); });
}

}  // namespace kestrelink::geometry
