// Quarter turns are transposes of the source read bottom-up (clockwise) or
// written bottom-up (anticlockwise); each thread takes a band of output rows,
// which is a band of source columns, and walks it tile by tile.
#include "geometry/QuarterTurns.h"

#include <cstddef>

#include "frame/RowLoop.h"
#include "frame/StreamCopy.h"
#include "platform/OpenMP.h"
#include "primitives/MirrorRows.h"
#include "primitives/RotateTranspose.h"

namespace kestrelink::geometry {

namespace {

// A band whose output passes the caches is turned a block at a time into a
// buffer that stays in the second-level cache, and each block row is then
// streamed out: ordinary stores would first read every destination line
// they fill. A block is a cache line's worth of output rows (64 bytes of
// each source row) by kBlockColumns output columns, at most 64 KiB.
constexpr uint32_t kBlockColumns = 1024;

void TransposeStreaming(rotate::TransposeRegion transpose, const uint8_t* src, ptrdiff_t ss, uint8_t* dst,
                        ptrdiff_t ds, uint32_t cols, uint32_t rows, int bytes) {
  alignas(64) uint8_t block[64 * kBlockColumns];
  const uint32_t blockRows = 64 / uint32_t(bytes);
  const ptrdiff_t blockStep = ptrdiff_t(kBlockColumns) * bytes;
  for (uint32_t j0 = 0; j0 < cols; j0 += blockRows) {
    const uint32_t r = cols - j0 < blockRows ? cols - j0 : blockRows;
    for (uint32_t i0 = 0; i0 < rows; i0 += kBlockColumns) {
      const uint32_t c = rows - i0 < kBlockColumns ? rows - i0 : kBlockColumns;
      // Output rows j0 .. j0+r-1, columns i0 .. i0+c-1 of the band.
      transpose(src + ptrdiff_t(i0) * ss + ptrdiff_t(j0) * bytes, ss, block, blockStep, r, c);
      for (uint32_t k = 0; k < r; ++k)
        StreamCopy(dst + ptrdiff_t(j0 + k) * ds + ptrdiff_t(i0) * bytes, block + ptrdiff_t(k) * blockStep,
                   size_t(c) * bytes);
    }
  }
}

// The band's turn, streamed where the thread's share of the output passes
// the caches; the calling thread fences its own streaming stores after the
// team joins.
bool StreamTurns(uint32_t w, uint32_t h, int bytes) {
  return uint64_t(w) * h * uint32_t(bytes) / uint64_t(platform::TeamSize()) >= kStreamCopyBytes;
}

}  // namespace

void TurnClockwise(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t pitch, int bytes) {
  if (w == 0 || h == 0) return;
  platform::SetBlockTimeZero();
  const rotate::TransposeRegion transpose = rotate::Transposes().ForPixel(bytes);
  const ptrdiff_t srcRow = ptrdiff_t(w) * bytes, dstRow = ptrdiff_t(pitch) * bytes;
  const auto* bottom = static_cast<const uint8_t*>(src) + (ptrdiff_t(h) - 1) * srcRow;
  const bool stream = StreamTurns(w, h, bytes);
  ForEachBand(w, [&](uint32_t first, uint32_t rows) {
    const uint8_t* from = bottom + ptrdiff_t(first) * bytes;
    uint8_t* to = static_cast<uint8_t*>(dst) + ptrdiff_t(first) * dstRow;
    if (stream)
      TransposeStreaming(transpose, from, -srcRow, to, dstRow, rows, h, bytes);
    else
      transpose(from, -srcRow, to, dstRow, rows, h);
    return 0;
  });
  if (stream) StreamCopyDone();
}

void TurnAnticlockwise(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t pitch, int bytes) {
  if (w == 0 || h == 0) return;
  platform::SetBlockTimeZero();
  const rotate::TransposeRegion transpose = rotate::Transposes().ForPixel(bytes);
  const ptrdiff_t srcRow = ptrdiff_t(w) * bytes, dstRow = ptrdiff_t(pitch) * bytes;
  const ptrdiff_t pad = ptrdiff_t(pitch - h) * bytes;
  const bool stream = StreamTurns(w, h, bytes);
  ForEachBand(w, [&](uint32_t first, uint32_t rows) {
    // Output rows first .. first+rows-1 hold source columns w-first-rows ..
    // w-1-first, the last of the band on top.
    const uint32_t column = w - first - rows;
    uint8_t* lastRow = static_cast<uint8_t*>(dst) + ptrdiff_t(first + rows - 1) * dstRow + pad;
    const uint8_t* from = static_cast<const uint8_t*>(src) + ptrdiff_t(column) * bytes;
    if (stream)
      TransposeStreaming(transpose, from, srcRow, lastRow, -dstRow, rows, h, bytes);
    else
      transpose(from, srcRow, lastRow, -dstRow, rows, h);
    return 0;
  });
  if (stream) StreamCopyDone();
}

void TurnHalf(uint32_t w, uint32_t h, const void* src, void* dst, int bytes) {
  if (w == 0 || h == 0) return;
  platform::SetBlockTimeZero();
  const mirror::ReverseRow reverse = mirror::MirrorRows().ForPixel(bytes);
  const size_t rowBytes = size_t(w) * bytes;
  const bool stream = StreamTurns(w, h, bytes);
  ForEachRow(h, false, [&](uint32_t y, uint32_t) {
    const auto* from = static_cast<const uint8_t*>(RowAt(src, rowBytes, h - 1 - y));
    auto* to = static_cast<uint8_t*>(RowAt(dst, rowBytes, y));
    if (stream)
      mirror::ReverseRowStreaming(reverse, from, to, w, bytes);
    else
      reverse(from, to, w);
  });
  if (stream) StreamCopyDone();
}

}  // namespace kestrelink::geometry
