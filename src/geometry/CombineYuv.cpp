// The YUV members of CImageCombine that convert to BGR24: the library's
// integer formula in four-pixel steps, (w - 1) / 4 + 1 steps a row, while
// placing. A width that is not a multiple of 4 makes the last step read and
// write up to three pixels past the row, a settled behaviour of the format:
// the reads take the bytes that follow in the frame, the writes land as rows
// done in order would leave them (past the row only where the next row's
// own frames don't write), and nothing is read or written past a frame's
// last byte (bytes past the source frame read as 0).
#include <kestrelink/CImageCombine.h>

#include <algorithm>
#include <cstring>

#include "geometry/CombineLayout.h"
#include "geometry/rows/CombineYuvRows.h"
#include "platform/OpenMP.h"

using kestrelink::platform::SetBlockTimeZero;
namespace combine = kestrelink::combine;
namespace rows = kestrelink::rows;

namespace {

// Byte where row `row` of a frame `w` pixels wide starts; 4:1:1 rows go by
// (row * w * 3) >> 1.
inline uint64_t RowStart(rows::YuvStepLayout layout, uint32_t w, uint64_t row) {
  switch (layout) {
    case rows::kStepUvy411:
      return (row * w * 3) >> 1;
    case rows::kStepUvy444:
      return row * w * 3;
    default:
      return row * w * 2;
  }
}

bool YuvRows(uint32_t w1, uint32_t h1, const void* src1, uint32_t w2, uint32_t h2, const void* src2, void* dst,
             bool side, rows::YuvStepLayout layout) {
  SetBlockTimeZero();
  const combine::Layout L = combine::MakeLayout(w1, h1, w2, h2, side);
  if (!combine::Usable(L, {src1}, {src2}, {dst})) return false;
  const rows::YuvStepsRow steps = rows::CombineYuvRows().steps[layout];
  const rows::YuvStepsRow tail = rows::kCombineYuvPortable.steps[layout];
  const uint32_t stepBytes = rows::kYuvStepBytes[layout];
  const uint8_t* sources[2] = {static_cast<const uint8_t*>(src1), static_cast<const uint8_t*>(src2)};
  const uint32_t widths[2] = {w1, w2}, heights[2] = {h1, h2}, at[2] = {0, side ? w1 : 0};
  const uint64_t frameEnd = uint64_t(L.W) * L.H;  // pixels of the destination
  combine::EachPlacement(L, [&](int f, uint32_t in, uint32_t out) {
    const uint32_t w = widths[f];
    if (w == 0) return;
    const uint64_t start = RowStart(layout, w, in);
    const uint8_t* s = sources[f] + start;
    const uint64_t readable = RowStart(layout, w, heights[f]) - start;
    // Pixels this placement writes: its whole steps, cut at the row's end
    // plus the columns below that the next row leaves open.
    const uint64_t first = uint64_t(L.W) * out + at[f];
    const uint64_t open =
        std::min<uint64_t>(uint64_t(L.W) * (uint64_t(out) + 1) + combine::NextRowOpenColumns(L, out), frameEnd);
    const uint64_t pixels = std::min<uint64_t>(4 * ((uint64_t(w) - 1) / 4 + 1), open - first);
    uint8_t* d = static_cast<uint8_t*>(dst) + 3 * first;
    const uint64_t whole = std::min<uint64_t>(pixels / 4, readable / stepBytes);
    steps(s, d, uint32_t(whole));
    for (uint64_t k = whole; 4 * k < pixels; ++k) {  // a step cut by either frame's end
      uint8_t from[12] = {}, to[12];
      const uint64_t offset = stepBytes * k;
      if (offset < readable) std::memcpy(from, s + offset, size_t(std::min<uint64_t>(stepBytes, readable - offset)));
      tail(from, to, 1);
      std::memcpy(d + 12 * k, to, size_t(3 * std::min<uint64_t>(4, pixels - 4 * k)));
    }
  });
  return true;
}

}  // namespace

bool CImageCombine::YUV422CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                     void* dst, bool sideBySide) {
  return YuvRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, rows::kStepYuv422);
}

// One above the other, every thread of the team wrote every row, each the
// same bytes: a settled behaviour of the format whose result the team gets
// by running each row once, which makes the writes race-free.
bool CImageCombine::UVY422CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                     void* dst, bool sideBySide) {
  return YuvRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, rows::kStepUvy422);
}

bool CImageCombine::YUV411CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                     void* dst, bool sideBySide) {
  return YuvRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, rows::kStepUvy411);
}

bool CImageCombine::YUV444CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                     void* dst, bool sideBySide) {
  return YuvRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, rows::kStepUvy444);
}
