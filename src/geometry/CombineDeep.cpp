// CImageCombine members of 16-bit samples: the depth changes, the 16-bit
// colour members with their own row and pixel steps, and the planar frames
// combined plane by plane.
//
// The 16-bit colour members keep steps that do not all match their layouts,
// a settled behaviour of the format: source rows hold w * 4 words and
// destination rows W * 4 bytes or words; side by side the second frame
// starts at sample w1 * 3 of the row, where it overlaps the first and wins.
//
//   member                 side by side: frame 1 | frame 2     one above the other: frame 1 | frame 2
//   BGRx64CombineBGR       4 words to 4 bytes | 4 to 4         3 words to 4 bytes | 4 words to 4 bytes
//   BGR48CombineBGR        4 words to 4 bytes | 3 to 3         3 words to 3 bytes, both
//   BGRx64CombineBGRx64    4 words to 4 words, both            4 to 4, both
//   BGR48CombineBGR48      3 words to 3 words, both            3 to 3, both
//
// Only three samples of a pixel are written, never the fourth.
#include <kestrelink/CImageCombine.h>

#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsCopy.h"
#include "geometry/CombineLayout.h"
#include "geometry/rows/DepthRows.h"
#include "platform/OpenMP.h"

using kestrelink::colour::NarrowShift;
using kestrelink::platform::SetBlockTimeZero;
namespace combine = kestrelink::combine;
namespace rows = kestrelink::rows;

namespace {

// The depth change of each frame: n = |d - dOut|, one direction flag for
// both frames, same = (d1 == dOut), and mask = 2^dOut - 1. So when d1
// differs from dOut both frames shift left, even one deeper than dOut, and
// when d1 equals dOut the second shifts right even if it is shallower: a
// settled behaviour of the format.
struct DepthChanges {
  rows::DepthChange frame[2];
};

DepthChanges DepthsFor(uint32_t d1, uint32_t d2, uint32_t dOut) {
  const bool same = d1 == dOut;
  const uint32_t mask = dOut >= 32 ? UINT32_MAX : (1u << dOut) - 1;
  auto distance = [dOut](uint32_t d) { return d > dOut ? d - dOut : dOut - d; };
  return {{{distance(d1), same, mask}, {distance(d2), same, mask}}};
}

// The frames of a 16-bit colour member: rows of w * 4 words; side by side
// the second frame at byte `secondAt`.
template <class Kernel>
bool WideRows(uint32_t w1, uint32_t h1, const void* src1, uint32_t w2, uint32_t h2, const void* src2, void* dst,
              bool side, size_t dstRowBytesAPixel, size_t secondAt, Kernel kernel) {
  SetBlockTimeZero();
  const combine::Layout L = combine::MakeLayout(w1, h1, w2, h2, side);
  if (!combine::Usable(L, {src1}, {src2}, {dst})) return false;
  const combine::Placed frames[2] = {{static_cast<const uint8_t*>(src1), 8 * size_t(w1), 0, w1},
                                     {static_cast<const uint8_t*>(src2), 8 * size_t(w2), side ? secondAt : 0, w2}};
  combine::PlaceFrameRows(L, frames, dst, dstRowBytesAPixel * L.W, kernel);
  return true;
}

}  // namespace

bool CImageCombine::Mono16CombineMono16(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2,
                                        uint32_t d2, void* src2, uint32_t dOut, void* dst, bool sideBySide) {
  SetBlockTimeZero();
  const combine::Layout L = combine::MakeLayout(w1, h1, w2, h2, sideBySide);
  if (!combine::Usable(L, {src1}, {src2}, {dst})) return false;
  const DepthChanges changes = DepthsFor(d1, d2, dOut);
  const auto words = rows::DepthRows().words;
  combine::PixelRows(L, src1, src2, 2, dst, 2,
                     [&](int f, const uint8_t* s, uint8_t* d, uint32_t w) { words(s, d, w, changes.frame[f]); });
  return true;
}

bool CImageCombine::BGRx64CombineBGRx64(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2,
                                        uint32_t d2, void* src2, uint32_t dOut, void* dst, bool sideBySide) {
  const DepthChanges changes = DepthsFor(d1, d2, dOut);
  const auto words3of4 = rows::DepthRows().words3of4;
  return WideRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, 8, 6 * size_t(w1),
                  [&](int f, const uint8_t* s, uint8_t* d, uint32_t w) { words3of4(s, d, w, changes.frame[f]); });
}

bool CImageCombine::BGR48CombineBGR48(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2,
                                      uint32_t d2, void* src2, uint32_t dOut, void* dst, bool sideBySide) {
  const DepthChanges changes = DepthsFor(d1, d2, dOut);
  const auto words = rows::DepthRows().words;
  return WideRows(
      w1, h1, src1, w2, h2, src2, dst, sideBySide, 8, 6 * size_t(w1),
      [&](int f, const uint8_t* s, uint8_t* d, uint32_t w) { words(s, d, 3 * size_t(w), changes.frame[f]); });
}

// Both frames shift by d1 - 8; d2 is not used, a settled behaviour of the format.
bool CImageCombine::BGRx64CombineBGR(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2,
                                     uint32_t, void* src2, void* dst, bool sideBySide) {
  const uint32_t shift = NarrowShift(d1);
  const auto& copy = rows::CopyRows();
  return WideRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, 4, 3 * size_t(w1),
                  [&](int f, const uint8_t* s, uint8_t* d, uint32_t w) {
                    if (f == 0 && !sideBySide)
                      copy.words3_to_bytes3of4(s, d, w, rows::kSameOrder, shift);
                    else
                      copy.words4_to_bytes3of4(s, d, w, shift);
                  });
}

bool CImageCombine::BGR48CombineBGR(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2,
                                    uint32_t d2, void* src2, void* dst, bool sideBySide) {
  const uint32_t shifts[2] = {NarrowShift(d1), NarrowShift(d2)};
  const auto& copy = rows::CopyRows();
  return WideRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, 4, 3 * size_t(w1),
                  [&](int f, const uint8_t* s, uint8_t* d, uint32_t w) {
                    if (f == 0 && sideBySide)
                      copy.words4_to_bytes3of4(s, d, w, shifts[0]);
                    else
                      copy.words3_to_bytes3(s, d, w, rows::kSameOrder, shifts[f]);
                  });
}

bool CImageCombine::BGR24PlannerCombineBGRPlanner(uint32_t w1, uint32_t h1, void* p1, void* p2, void* p3, uint32_t w2,
                                                  uint32_t h2, void* q1, void* q2, void* q3, void* r1, void* r2,
                                                  void* r3, bool sideBySide) {
  return Mono8CombineMono8(w1, h1, p1, w2, h2, q1, r1, sideBySide) &&
         Mono8CombineMono8(w1, h1, p2, w2, h2, q2, r2, sideBySide) &&
         Mono8CombineMono8(w1, h1, p3, w2, h2, q3, r3, sideBySide);
}

bool CImageCombine::BGR48PlanneCombineBGRPlanner48(uint32_t w1, uint32_t h1, uint32_t d1, void* p1, void* p2, void* p3,
                                                   uint32_t w2, uint32_t h2, uint32_t d2, void* q1, void* q2, void* q3,
                                                   uint32_t dOut, void* r1, void* r2, void* r3, bool sideBySide) {
  return Mono16CombineMono16(w1, h1, d1, p1, w2, h2, d2, q1, dOut, r1, sideBySide) &&
         Mono16CombineMono16(w1, h1, d1, p2, w2, h2, d2, q2, dOut, r2, sideBySide) &&
         Mono16CombineMono16(w1, h1, d1, p3, w2, h2, d2, q3, dOut, r3, sideBySide);
}
