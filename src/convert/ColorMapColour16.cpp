// Colour-map path of the interleaved 16-bit colour sources: tables of the
// depth d, indexed by the raw 16-bit word. Byte outputs take 8-bit tables;
// the 48-bit outputs take tables of d bits out and limit the index to the
// table's last entry.
#include "convert/ColorMapColourRows.h"

using kestrelink::colour::MapRows;
namespace rows = kestrelink::rows;

bool CColorMapEngine::BGR48ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, false)) return false;
  MapRows(*this, w, h, flip, src, 6, dst, 4, rows::MapBgr48ToBgrx);
  return true;
}

bool CColorMapEngine::BGR48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, false)) return false;
  MapRows(*this, w, h, flip, src, 6, dst, 3, rows::MapBgr48ToBgr24);
  return true;
}

bool CColorMapEngine::BGR48ToBGR48(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), int32_t(d), false)) return false;
  MapRows(*this, w, h, flip, src, 6, dst, 6, rows::MapBgr48ToBgr48);
  return true;
}

// D[2 - i] = t_(2 - i)[s[i]]: R feeds table 2 and byte 2.
bool CColorMapEngine::RGB48ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, false)) return false;
  MapRows(*this, w, h, flip, src, 6, dst, 4, rows::MapRgb48ToBgrx);
  return true;
}

bool CColorMapEngine::RGB48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, false)) return false;
  MapRows(*this, w, h, flip, src, 6, dst, 3, rows::MapRgb48ToBgr24);
  return true;
}

bool CColorMapEngine::BGR64ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), 8, false)) return false;
  MapRows(*this, w, h, flip, src, 8, dst, 4, rows::MapBgr64ToBgrx);
  return true;
}

bool CColorMapEngine::BGR64ToBGR48(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(int32_t(d), int32_t(d), false)) return false;
  MapRows(*this, w, h, flip, src, 8, dst, 6, rows::MapBgr64ToBgr48);
  return true;
}
