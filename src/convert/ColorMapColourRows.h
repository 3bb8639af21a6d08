#pragma once
// Frame loops of the colour-map path for the colour sources.
#include "convert/ColorMapEngine.h"
#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsMap.h"

namespace kestrelink::colour {

// The engine's colour tables and index mask, valid after a successful check.
inline rows::ColourTables CurrentTables(const CColorMapEngine& engine) {
  return {{engine.ColorTable(0), engine.ColorTable(1), engine.ColorTable(2)}, engine.ColorMask()};
}

// Row loop of a map row(src, dst, w, tables) over frames of the given pixel sizes.
template <class MapRow>
inline void MapRows(const CColorMapEngine& engine, uint32_t w, uint32_t h, bool flip, const void* src,
                    uint32_t srcPixelBytes, void* dst, uint32_t dstPixelBytes, MapRow row) {
  const rows::ColourTables tables = CurrentTables(engine);
  KernelRows(w, h, flip, src, srcPixelBytes, dst, dstPixelBytes,
             [&](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, tables); });
}

// The same from three planes of `sampleBytes` samples, given in the order of
// the destination bytes they feed.
template <class MapRow>
inline void MapPlanarRows(const CColorMapEngine& engine, uint32_t w, uint32_t h, bool flip, const void* d0,
                          const void* d1, const void* d2, uint32_t sampleBytes, void* dst, uint32_t dstPixelBytes,
                          MapRow row) {
  const rows::ColourTables tables = CurrentTables(engine);
  EachPlanarRow(h, flip, d0, d1, d2, sampleBytes * size_t(w), dst, dstPixelBytes * size_t(w),
                [&](const uint8_t* a, const uint8_t* b, const uint8_t* c, uint8_t* d) { row(a, b, c, d, w, tables); });
}

}  // namespace kestrelink::colour
