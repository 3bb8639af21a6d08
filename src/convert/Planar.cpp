// Planar colour sources: three planes of w * h samples, p1, p2, p3. Which
// colour a plane means differs between methods, and each method keeps its
// own meaning: on the plain path BGR24P, BGR30P and BGR36P to BGRx and
// BGR48PToBGR24 take p1 as red, BGR24PToBGR24 and BGR42PToBGRx take p1 as
// blue. Row loops, with the flip applied to the source row, except
// BGR24PToBGR24, which goes through the join primitive in bands of rows.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsPlanar.h"
#include "platform/OpenMP.h"
#include "primitives/Primitives.h"

using kestrelink::colour::EachPlanarRow;
using kestrelink::platform::SetBlockTimeZero;
using kestrelink::rows::PixelPartTables;
using kestrelink::rows::PlanarRows;

// Red8[p1] | Green8[p2] | Blue8[p3]: p3 lands in byte 0, and byte 3 is 0.
bool CIppImageConverter::BGR24PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR24PToBGRx(w, h, p1, p2, p3, dst, flip);
  const auto row = PlanarRows().bytes_to_bgrx;
  const PixelPartTables tables{{Blue8, Green8, Red8}, 8};
  EachPlanarRow(h, flip, p3, p2, p1, w, dst, 4 * size_t(w),
                [&](const uint8_t* b, const uint8_t* g, const uint8_t* r, uint8_t* d) { row(b, g, r, d, w, tables); });
  return true;
}

// The join primitive puts p1 in byte 0: red and blue exchanged against
// BGR24PToBGRx on the same planes.
bool CIppImageConverter::BGR24PToBGR24(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip) {
  using namespace kestrelink::colour;
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR24PToBGR24(w, h, p1, p2, p3, dst, flip);
  if (!Splittable(w, h, 3 * uint64_t(w), {p1, p2, p3, dst})) return false;
  return InBands(h, [&](uint32_t y0, uint32_t n) {
    const Ipp8u* const planes[3] = {Band(p1, w, h, y0, false).first, Band(p2, w, h, y0, false).first,
                                    Band(p3, w, h, y0, false).first};
    const auto out = Band(dst, 3 * size_t(w), h, y0, flip);
    return ippiCopy_8u_P3C3R(planes, int(w), out.first, out.step, BandSize(w, n));
  });
}

// Red10[p1] | Green10[p2] | Blue10[p3]: the 10-bit table steps one index
// late, t(0) = 0 and t(s) = (s - 1) >> 2, not a plain shift.
bool CIppImageConverter::BGR30PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR30PToBGRx(w, h, p1, p2, p3, dst, flip);
  const auto row = PlanarRows().words_to_bgrx;
  const PixelPartTables tables{{Blue10, Green10, Red10}, 10};
  EachPlanarRow(h, flip, p3, p2, p1, 2 * size_t(w), dst, 4 * size_t(w),
                [&](const uint8_t* b, const uint8_t* g, const uint8_t* r, uint8_t* d) { row(b, g, r, d, w, tables); });
  return true;
}

// As BGR30PToBGRx with the 12-bit tables, t(s) = (s - 1) >> 4.
bool CIppImageConverter::BGR36PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR36PToBGRx(w, h, p1, p2, p3, dst, flip);
  const auto row = PlanarRows().words_to_bgrx;
  const PixelPartTables tables{{Blue12, Green12, Red12}, 12};
  EachPlanarRow(h, flip, p3, p2, p1, 2 * size_t(w), dst, 4 * size_t(w),
                [&](const uint8_t* b, const uint8_t* g, const uint8_t* r, uint8_t* d) { row(b, g, r, d, w, tables); });
  return true;
}

// p1 to byte 0, each sample shifted right by d - 8; the fourth byte stays.
bool CIppImageConverter::BGR42PToBGRx(uint32_t w, uint32_t h, uint32_t d, void* p1, void* p2, void* p3, void* dst,
                                      bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR42PToBGRx(w, h, d, p1, p2, p3, dst, flip);
  const auto row = PlanarRows().words_shift_to_bgrx;
  const uint32_t shift = kestrelink::colour::NarrowShift(d);
  EachPlanarRow(h, flip, p1, p2, p3, 2 * size_t(w), dst, 4 * size_t(w),
                [&](const uint8_t* b, const uint8_t* g, const uint8_t* r, uint8_t* o) { row(b, g, r, o, w, shift); });
  return true;
}

// p3 to byte 0 and p1 to byte 2, each sample shifted right by d - 8.
bool CIppImageConverter::BGR48PToBGR24(uint32_t w, uint32_t h, int32_t d, void* p1, void* p2, void* p3, void* dst,
                                       bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR48PToBGR24(w, h, d, p1, p2, p3, dst, flip);
  const auto row = PlanarRows().words_shift_to_bgr24;
  const uint32_t shift = kestrelink::colour::NarrowShift(uint32_t(d));
  EachPlanarRow(h, flip, p3, p2, p1, 2 * size_t(w), dst, 3 * size_t(w),
                [&](const uint8_t* b, const uint8_t* g, const uint8_t* r, uint8_t* o) { row(b, g, r, o, w, shift); });
  return true;
}
