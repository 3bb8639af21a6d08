// Colour-map path of the 8-bit YUV sources: 8-bit tables, 8 bits out,
// pseudo-colour not allowed; the library's integer formula before the tables.
#include <cstddef>

#include "convert/ColorMapColourRows.h"
#include "convert/rows/YuvRowsMap.h"

namespace rows = kestrelink::rows;

namespace {

using MapYuvRow = void (*)(const uint8_t*, size_t, uint8_t*, uint32_t, const rows::ColourTables&);

// Source rows start at (row * w * num) >> 1 bytes: num 4 for the 4:2:2
// layouts, 3 for 4:1:1, 6 for 4:4:4.
bool MapYuvFrame(CColorMapEngine& engine, uint32_t w, uint32_t h, bool flip, const void* src, uint32_t num,
                 void* dst, uint32_t dstPixelBytes, MapYuvRow row) {
  if (!engine.EnsureColorTables(8, 8, false) || !src || !dst) return false;
  const rows::ColourTables tables = kestrelink::colour::CurrentTables(engine);
  const auto* s = static_cast<const uint8_t*>(src);
  const size_t frameBytes = (uint64_t(h) * w * num) >> 1;
  kestrelink::ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    // A row's partial last group reads on into the next row's first bytes, a
    // settled behaviour of the format; only past the frame's end it reads 0.
    const size_t begin = (uint64_t(in) * w * num) >> 1;
    row(s + begin, frameBytes - begin, kestrelink::RowAt(dst, dstPixelBytes * size_t(w), out), w, tables);
  });
  return true;
}

}  // namespace

bool CColorMapEngine::YUV422ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  return MapYuvFrame(*this, w, h, flip, src, 4, dst, 4, rows::MapYuv422ToBgrx);
}

bool CColorMapEngine::YUV422ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  return MapYuvFrame(*this, w, h, flip, src, 4, dst, 3, rows::MapYuv422ToBgr24);
}

bool CColorMapEngine::UVY422ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  return MapYuvFrame(*this, w, h, flip, src, 4, dst, 4, rows::MapUvy422ToBgrx);
}

bool CColorMapEngine::UVY422ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  return MapYuvFrame(*this, w, h, flip, src, 4, dst, 3, rows::MapUvy422ToBgr24);
}

bool CColorMapEngine::UVY411ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  return MapYuvFrame(*this, w, h, flip, src, 3, dst, 4, rows::MapUvy411ToBgrx);
}

bool CColorMapEngine::UVY411ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  return MapYuvFrame(*this, w, h, flip, src, 3, dst, 3, rows::MapUvy411ToBgr24);
}

bool CColorMapEngine::UVY444ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  return MapYuvFrame(*this, w, h, flip, src, 6, dst, 4, rows::MapUvy444ToBgrx);
}

bool CColorMapEngine::UVY444ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  return MapYuvFrame(*this, w, h, flip, src, 6, dst, 3, rows::MapUvy444ToBgr24);
}
