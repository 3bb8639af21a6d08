#pragma once
// Frame loops of the colour conversions: rows over the team with the flip as
// a row index; primitives over the team in bands of rows, with the flip as a
// negative step, which gives the flipped frame with no scratch copy; and the
// narrowing shifts of the depth arguments.
#include <climits>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "frame/RowLoop.h"
#include "primitives/IppTypes.h"

namespace kestrelink::colour {

// Right shift that narrows a d-bit sample to 8 bits, d - 8. Depths below 8
// give a count taken modulo 32, as the processor's shift would; a count of
// 16 or more leaves nothing of a 16-bit sample.
inline uint32_t NarrowShift(uint32_t d) { return (d - 8) & 31; }
// The shift 16 - d, taken the same way.
inline uint32_t HighShift(uint32_t d) { return (16 - d) & 31; }

// Calls row(srcRow, dstRow) for every row of two tightly packed frames.
template <class Row>
inline void EachRow(uint32_t h, bool flip, const void* src, size_t srcRowBytes, void* dst, size_t dstRowBytes,
                    Row row) {
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, srcRowBytes, in), RowAt(dst, dstRowBytes, out));
  });
}

// Row loop of a kernel(src, dst, w) over frames of the given pixel sizes.
template <class Kernel>
inline void KernelRows(uint32_t w, uint32_t h, bool flip, const void* src, uint32_t srcPixelBytes, void* dst,
                       uint32_t dstPixelBytes, Kernel kernel) {
  EachRow(h, flip, src, srcPixelBytes * size_t(w), dst, dstPixelBytes * size_t(w),
          [&](const uint8_t* s, uint8_t* d) { kernel(s, d, w); });
}

// The same from three planes, passed to row() in the order given here.
template <class Row>
inline void EachPlanarRow(uint32_t h, bool flip, const void* d0, const void* d1, const void* d2,
                          size_t planeRowBytes, void* dst, size_t dstRowBytes, Row row) {
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(d0, planeRowBytes, in), RowAt(d1, planeRowBytes, in), RowAt(d2, planeRowBytes, in),
        RowAt(dst, dstRowBytes, out));
  });
}

// Whether a primitive can take the frame in bands: every pointer set, at
// least one pixel and one row, and rows whose length a step can hold. A frame
// that fails this is one the primitive refuses, so the method answers false
// with nothing touched.
inline bool Splittable(uint32_t w, uint32_t h, uint64_t widestRowBytes, std::initializer_list<const void*> pointers) {
  for (const void* p : pointers)
    if (!p) return false;
  return w >= 1 && h >= 1 && w <= uint32_t(INT32_MAX) && h <= uint32_t(INT32_MAX) && widestRowBytes <= uint64_t(INT_MAX);
}

// Where a band of rows starts in a frame, and the step to its next row:
// bottom-up from row h - 1 - firstRow when `reversed`.
struct BandRows {
  uint8_t* first;
  int step;
};
inline BandRows Band(const void* frame, size_t rowBytes, uint32_t h, uint32_t firstRow, bool reversed) {
  uint8_t* rows = static_cast<uint8_t*>(const_cast<void*>(frame));
  return {RowAt(rows, rowBytes, reversed ? h - 1 - firstRow : firstRow), reversed ? -int(rowBytes) : int(rowBytes)};
}

inline IppiSize BandSize(uint32_t w, uint32_t rows) { return {int32_t(w), int32_t(rows)}; }

// Runs body(firstRow, rowCount), which answers a primitive's status, once for
// each thread's band; true when every band answered 0.
template <class Body>
inline bool InBands(uint32_t h, Body body) {
  return ForEachBand(h, body) == 0;
}

}  // namespace kestrelink::colour
