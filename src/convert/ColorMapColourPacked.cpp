// Colour-map path of the packed colour sources: 5-bit tables for 5-5-5
// words, 6-bit tables for 5-6-5 words, 10-bit tables for the 10-bit word
// layouts, 8 bits out. Each layout makes its own indices of a pixel.
#include "convert/ColorMapColourRows.h"
#include "convert/ColourByteZero.h"

using kestrelink::colour::MapRows;
namespace rows = kestrelink::rows;

bool CColorMapEngine::BGR555PackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(5, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 2, dst, 4, rows::Map555ToBgrx);
  return true;
}

bool CColorMapEngine::BGR555PackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(5, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 2, dst, 3, rows::Map555ToBgr24);
  return true;
}

// The R index, high byte >> 2, takes the top bit of G along with R.
bool CColorMapEngine::BGR565PackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(6, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 2, dst, 4, rows::Map565ToBgrx);
  return true;
}

bool CColorMapEngine::BGR565PackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(6, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 2, dst, 3, rows::Map565ToBgr24);
  return true;
}

namespace {

// Nine-bit indices into the ten-bit tables, kept so; the third channel,
// t2[(u >> 20) & 0x1FF], goes to byte 0 of the frame as on the plain path.
void Bgr10Frame(const CColorMapEngine& engine, uint32_t w, uint32_t h, void* src, void* dst, uint32_t dstPixelBytes,
                bool flip, void (*row)(const uint8_t*, uint8_t*, uint32_t, const rows::ColourTables&)) {
  const rows::ColourTables t = kestrelink::colour::CurrentTables(engine);
  kestrelink::colour::ThirdChannelIntoByteZero(
      w, h, src, dst, dstPixelBytes, flip, [&](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, t); },
      [&](uint32_t u) { return (t.t[0][u & 0x1FF] & 0xFFu) | (t.t[1][u >> 10 & 0x1FF] & 0xFFu) << 8; },
      [&](uint32_t u) { return t.t[2][u >> 20 & 0x1FF]; });
}

}  // namespace

bool CColorMapEngine::BGR10PixelPackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  Bgr10Frame(*this, w, h, src, dst, 4, flip, rows::MapBgr10ToBgrx);
  return true;
}

bool CColorMapEngine::BGR10PixelPackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  Bgr10Frame(*this, w, h, src, dst, 3, flip, rows::MapBgr10ToBgr24);
  return true;
}

// Indexes bits 20-29 for the third channel where the plain path takes the
// top byte, bits 24-31: the two paths keep that difference.
bool CColorMapEngine::BGR10PixelPackedPhoenixToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 4, rows::MapPhoenixToBgrx);
  return true;
}

bool CColorMapEngine::BGR10PixelPackedPhoenixToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 3, rows::MapPhoenixToBgr24);
  return true;
}

bool CColorMapEngine::RGB10PixelPackedPhoenixToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 4, rows::MapRgbPhoenixToBgrx);
  return true;
}

bool CColorMapEngine::RGB10PixelPackedPhoenixToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 3, rows::MapRgbPhoenixToBgr24);
  return true;
}

bool CColorMapEngine::GVSPBGR10v1ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 3, rows::MapGvspV1ToBgr24);
  return true;
}

// The fourth byte stays as it was here; the plain path writes it 0.
bool CColorMapEngine::GVSPBGR10v1ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 4, rows::MapGvspV1ToBgrx);
  return true;
}

bool CColorMapEngine::GVSPBGR10v2ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 3, rows::MapGvspV2ToBgr24);
  return true;
}

// The fourth byte stays as it was here; the plain path writes it 0.
bool CColorMapEngine::GVSPBGR10v2ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!EnsureColorTables(10, 8, false)) return false;
  MapRows(*this, w, h, flip, src, 4, dst, 4, rows::MapGvspV2ToBgrx);
  return true;
}
