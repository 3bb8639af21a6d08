// Colour-map path of the interleaved 8-bit colour sources: 8-bit tables, 8
// bits out, byte i of the destination from table i.
#include "convert/ColorMapColourRows.h"

using kestrelink::colour::MapRows;
namespace rows = kestrelink::rows;

bool CColorMapEngine::BGR24ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 3, dst, 4, rows::MapBgr24ToBgrx);
  return true;
}

bool CColorMapEngine::BGR24ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 3, dst, 3, rows::MapBgr24ToBgr24);
  return true;
}

// D2 = t2[s0], D1 = t1[s1], D0 = t0[s2]; the depth is not used here.
bool CColorMapEngine::RGB24ToBGRx(uint32_t w, uint32_t h, uint32_t, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 3, dst, 4, rows::MapRgb24ToBgrx);
  return true;
}

bool CColorMapEngine::RGB24ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 3, dst, 3, rows::MapRgb24ToBgr24);
  return true;
}

bool CColorMapEngine::BGRxToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 4, rows::MapBgrxToBgrx);
  return true;
}

bool CColorMapEngine::BGRxToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 3, rows::MapBgrxToBgr24);
  return true;
}
