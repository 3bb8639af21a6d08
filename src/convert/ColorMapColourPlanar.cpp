// Colour-map path of the planar colour sources. Here p1 feeds table 0 and
// byte 0, except in BGR48PToBGR24, where p3 does; the plain paths give the
// planes other meanings in places, and each path keeps its own.
#include "convert/ColorMapColourRows.h"

using kestrelink::colour::MapPlanarRows;
namespace rows = kestrelink::rows;

bool CColorMapEngine::BGR24PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, false)) return false;
  MapPlanarRows(*this, w, h, flip, p1, p2, p3, 1, dst, 4, rows::MapPlanes8ToBgrx);
  return true;
}

bool CColorMapEngine::BGR24PToBGR24(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip) {
  if (!EnsureColorTables(8, 8, false)) return false;
  MapPlanarRows(*this, w, h, flip, p1, p2, p3, 1, dst, 3, rows::MapPlanes8ToBgr24);
  return true;
}

bool CColorMapEngine::BGR30PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  MapPlanarRows(*this, w, h, flip, p1, p2, p3, 2, dst, 4, rows::MapPlanes16ToBgrx);
  return true;
}

bool CColorMapEngine::BGR36PToBGRx(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* dst, bool flip) {
  if (!EnsureColorTables(12, 8, false)) return false;
  MapPlanarRows(*this, w, h, flip, p1, p2, p3, 2, dst, 4, rows::MapPlanes16ToBgrx);
  return true;
}

bool CColorMapEngine::BGR42PToBGRx(uint32_t w, uint32_t h, uint32_t d, void* p1, void* p2, void* p3, void* dst,
                                   bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, false)) return false;
  MapPlanarRows(*this, w, h, flip, p1, p2, p3, 2, dst, 4, rows::MapPlanes16ToBgrx);
  return true;
}

bool CColorMapEngine::BGR48PToBGR24(uint32_t w, uint32_t h, int32_t d, void* p1, void* p2, void* p3, void* dst,
                                    bool flip) {
  if (!EnsureColorTables(d, 8, false)) return false;
  MapPlanarRows(*this, w, h, flip, p3, p2, p1, 2, dst, 3, rows::MapPlanes16ToBgr24);
  return true;
}
