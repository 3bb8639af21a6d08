// CImageCombine members that convert to BGR24 while placing, one row kernel
// of the converter's own a placement: no scratch frame.
#include <kestrelink/CImageCombine.h>

#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsCopy.h"
#include "convert/rows/ColourRowsPacked.h"
#include "convert/rows/ColourRowsPlanar.h"
#include "convert/rows/MonoRows.h"
#include "geometry/CombineLayout.h"
#include "platform/OpenMP.h"

using kestrelink::colour::NarrowShift;
using kestrelink::platform::SetBlockTimeZero;
namespace combine = kestrelink::combine;
namespace rows = kestrelink::rows;

namespace {

// A member whose frames go through kernel(frame, src, dst, w).
template <class Kernel>
bool ConvertFrameRows(uint32_t w1, uint32_t h1, const void* src1, uint32_t w2, uint32_t h2, const void* src2, void* dst,
                      bool side, size_t srcPixel, Kernel kernel) {
  SetBlockTimeZero();
  const combine::Layout L = combine::MakeLayout(w1, h1, w2, h2, side);
  if (!combine::Usable(L, {src1}, {src2}, {dst})) return false;
  combine::PixelRows(L, src1, src2, srcPixel, dst, 3, kernel);
  return true;
}

// A member whose two frames go through one kernel(src, dst, w).
template <class Kernel>
bool ConvertRows(uint32_t w1, uint32_t h1, const void* src1, uint32_t w2, uint32_t h2, const void* src2, void* dst,
                 bool side, size_t srcPixel, Kernel kernel) {
  return ConvertFrameRows(w1, h1, src1, w2, h2, src2, dst, side, srcPixel,
                          [kernel](int, const uint8_t* s, uint8_t* d, uint32_t w) { kernel(s, d, w); });
}

// Planar frames: plane k of a frame feeds byte k of each BGR pixel through
// kernel(frame, p1, p2, p3, dst, w).
template <class Kernel>
bool PlanarRows(uint32_t w1, uint32_t h1, const void* const p[3], uint32_t w2, uint32_t h2, const void* const q[3],
                void* dst, bool side, size_t sampleBytes, Kernel kernel) {
  SetBlockTimeZero();
  const combine::Layout L = combine::MakeLayout(w1, h1, w2, h2, side);
  if (!combine::Usable(L, {p[0], p[1], p[2]}, {q[0], q[1], q[2]}, {dst})) return false;
  const void* const* planes[2] = {p, q};
  const size_t rowBytes[2] = {sampleBytes * w1, sampleBytes * w2}, at[2] = {0, side ? 3 * size_t(w1) : 0};
  const uint32_t widths[2] = {w1, w2};
  combine::EachPlacement(L, [&](int f, uint32_t in, uint32_t out) {
    const size_t from = rowBytes[f] * in;
    kernel(f, static_cast<const uint8_t*>(planes[f][0]) + from, static_cast<const uint8_t*>(planes[f][1]) + from,
           static_cast<const uint8_t*>(planes[f][2]) + from, kestrelink::RowAt(dst, 3 * size_t(L.W), out) + at[f],
           widths[f]);
  });
  return true;
}

}  // namespace

bool CImageCombine::BGR555CombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                       void* dst, bool sideBySide) {
  return ConvertRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, 2, rows::PackedRows().bgr555_to_bgr24);
}

bool CImageCombine::BGR565CombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                       void* dst, bool sideBySide) {
  return ConvertRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, 2, rows::PackedRows().bgr565_to_bgr24);
}

bool CImageCombine::BGRxCombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                     void* dst, bool sideBySide) {
  return ConvertRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, 4, rows::CopyRows().bytes4_to_3);
}

bool CImageCombine::RGB24CombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                      void* dst, bool sideBySide) {
  const auto reorder = rows::CopyRows().reorder3x8;
  return ConvertRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, 3,
                     [reorder](const uint8_t* s, uint8_t* d, uint32_t w) { reorder(s, d, w, rows::kReversedOrder); });
}

bool CImageCombine::Mono8CombineBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                    void* dst, bool sideBySide) {
  return ConvertRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, 1, rows::MonoRows().mono8_to_bgr);
}

bool CImageCombine::Mono16CombineBGR(uint32_t w1, uint32_t h1, uint32_t d1, void* src1, uint32_t w2, uint32_t h2,
                                     uint32_t d2, void* src2, void* dst, bool sideBySide) {
  const auto narrow = rows::MonoRows().mono16_to_bgr;
  const uint32_t shift1 = NarrowShift(d1), shift2 = NarrowShift(d2);
  return ConvertFrameRows(
      w1, h1, src1, w2, h2, src2, dst, sideBySide, 2,
      [&](int f, const uint8_t* s, uint8_t* d, uint32_t w) { narrow(s, d, w, f ? shift2 : shift1); });
}

bool CImageCombine::BGR24PlannerCombineBGR(uint32_t w1, uint32_t h1, void* p1, void* p2, void* p3, uint32_t w2,
                                           uint32_t h2, void* q1, void* q2, void* q3, void* dst, bool sideBySide) {
  const void* const p[3] = {p1, p2, p3};
  const void* const q[3] = {q1, q2, q3};
  const auto merge = rows::CopyRows().merge3;
  return PlanarRows(w1, h1, p, w2, h2, q, dst, sideBySide, 1,
                    [merge](int, const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* d, uint32_t w) {
                      merge(a, b, c, d, w);
                    });
}

bool CImageCombine::BGR48PlanneCombineBGR(uint32_t w1, uint32_t h1, uint32_t d1, void* p1, void* p2, void* p3,
                                          uint32_t w2, uint32_t h2, uint32_t d2, void* q1, void* q2, void* q3,
                                          void* dst, bool sideBySide) {
  const void* const p[3] = {p1, p2, p3};
  const void* const q[3] = {q1, q2, q3};
  const auto narrow = rows::PlanarRows().words_shift_to_bgr24;
  const uint32_t shifts[2] = {NarrowShift(d1), NarrowShift(d2)};
  return PlanarRows(w1, h1, p, w2, h2, q, dst, sideBySide, 2,
                    [&](int f, const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* d, uint32_t w) {
                      narrow(a, b, c, d, w, shifts[f]);
                    });
}
