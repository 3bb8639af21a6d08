// Colour-map path of the mono conversions: the source sample, unshifted, is
// the table index. BGRx output takes its fourth byte 0 from the joined table.
#include "convert/ColorMapEngine.h"
#include "convert/rows/LutRows.h"
#include "frame/RowLoop.h"

using kestrelink::ForEachRow;
using kestrelink::RowAt;
namespace rows = kestrelink::rows;

bool CColorMapEngine::Mono8ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, true)) return false;
  const uint32_t* lut = ColorBgrx();
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    rows::Lut8ToBgrx(RowAt(src, w, in), RowAt(dst, 4 * size_t(w), out), w, lut);
  });
  return true;
}

bool CColorMapEngine::Mono8ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, true)) return false;
  const uint32_t* lut = ColorBgrx();
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    rows::Lut8ToBgr(RowAt(src, w, in), RowAt(dst, 3 * size_t(w), out), w, lut);
  });
  return true;
}

bool CColorMapEngine::Mono8ToMono8(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureMonoTable(8, 8)) return false;
  const uint16_t* lut = MonoTable();
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    rows::Lut8ToByte(RowAt(src, w, in), RowAt(dst, w, out), w, lut);
  });
  return true;
}

bool CColorMapEngine::Mono16ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  const uint32_t* lut = ColorBgrx();
  const uint32_t mask = ColorMask();
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    rows::Lut16ToBgrx(RowAt(src, 2 * size_t(w), in), RowAt(dst, 4 * size_t(w), out), w, lut, mask);
  });
  return true;
}

bool CColorMapEngine::Mono16ToBGR(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, true)) return false;
  const uint32_t* lut = ColorBgrx();
  const uint32_t mask = ColorMask();
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    rows::Lut16ToBgr(RowAt(src, 2 * size_t(w), in), RowAt(dst, 3 * size_t(w), out), w, lut, mask);
  });
  return true;
}

bool CColorMapEngine::Mono16ToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureMonoTable(int32_t(d), 8)) return false;
  const uint16_t* lut = MonoTable();
  const uint32_t mask = MonoMask();
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    rows::Lut16ToByte(RowAt(src, 2 * size_t(w), in), RowAt(dst, w, out), w, lut, mask);
  });
  return true;
}

bool CColorMapEngine::Mono16ToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureMonoTable(int32_t(d), int32_t(d))) return false;
  const uint16_t* lut = MonoTable();
  const uint32_t mask = MonoMask();
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    rows::Lut16ToWord(RowAt(src, 2 * size_t(w), in), RowAt(dst, 2 * size_t(w), out), w, lut, mask);
  });
  return true;
}
