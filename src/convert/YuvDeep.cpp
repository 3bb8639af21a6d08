// 10-bit packed and 20-bit (16-bit word) 4:2:2 sources to BGR24 and BGRx
// through the library's integer formula; they have no colour-map path. Each
// row writes its w pixels: the groups of six past the end are not stored. The
// 10-bit rows go through 16-bit B, G, R planes of a piece of the row, which
// the planar rows interleave.
#include <kestrelink/CIppImageConverter.h>

#include <algorithm>

#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsPlanar.h"
#include "convert/rows/YuvRows.h"
#include "platform/OpenMP.h"

using kestrelink::colour::EachRow;
using kestrelink::platform::SetBlockTimeZero;

namespace {

// Row step of the 10-bit packed layout: 128 bytes per 48 pixels, rounded up.
inline size_t Packed10RowBytes(uint32_t w) { return ((size_t(w) + 47) / 48) * 128; }

template <class Row>
bool DeepRows(uint32_t w, uint32_t h, const void* src, size_t srcRowBytes, void* dst, uint32_t dstPixelBytes,
              bool flip, Row row) {
  if (!src || !dst) return false;
  EachRow(h, flip, src, srcRowBytes, dst, dstPixelBytes * size_t(w), [&](const uint8_t* s, uint8_t* d) { row(s, d, w); });
  return true;
}

// 10-bit rows a piece at a time: B, G, R planes of the piece in the thread's
// own buffer, then interleaved by store(b, g, r, dst, n).
template <class Store>
bool Packed10Rows(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t dstPixelBytes, bool flip, Store store) {
  constexpr uint32_t kPiece = 576;  // 96 groups of six
  const auto planes = kestrelink::rows::YuvRows().p10_to_planes;
  return DeepRows(w, h, src, Packed10RowBytes(w), dst, dstPixelBytes, flip,
                  [&](const uint8_t* s, uint8_t* d, uint32_t) {
                    alignas(64) uint16_t b[kPiece + kestrelink::rows::kPlanePadding],
                        g[kPiece + kestrelink::rows::kPlanePadding], r[kPiece + kestrelink::rows::kPlanePadding];
                    for (uint32_t x = 0; x < w; x += kPiece) {
                      const uint32_t n = std::min(kPiece, w - x);
                      planes(s + x / 6 * 16, b, g, r, n);
                      store(b, g, r, d + size_t(x) * dstPixelBytes, n);
                    }
                  });
}

}  // namespace

bool CIppImageConverter::YUV422_10BitPPToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto interleave = kestrelink::rows::PlanarRows().words_shift_to_bgr24;
  return Packed10Rows(w, h, src, dst, 3, flip, [&](const uint16_t* b, const uint16_t* g, const uint16_t* r, uint8_t* d,
                                                   uint32_t n) {
    interleave(reinterpret_cast<const uint8_t*>(b), reinterpret_cast<const uint8_t*>(g),
               reinterpret_cast<const uint8_t*>(r), d, n, 0);
  });
}

bool CIppImageConverter::YUV422_10BitPPToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto interleave = kestrelink::rows::PlanarRows().words_shift_to_bgrx;
  return Packed10Rows(w, h, src, dst, 4, flip, [&](const uint16_t* b, const uint16_t* g, const uint16_t* r, uint8_t* d,
                                                   uint32_t n) {
    interleave(reinterpret_cast<const uint8_t*>(b), reinterpret_cast<const uint8_t*>(g),
               reinterpret_cast<const uint8_t*>(r), d, n, 0);
  });
}

bool CIppImageConverter::YUV422_20BitToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, 4 * size_t(w), dst, 3, flip, kestrelink::rows::YuvRows().w20_to_bgr24);
}

bool CIppImageConverter::YUV422_20BitToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, 4 * size_t(w), dst, 4, flip, kestrelink::rows::YuvRows().w20_to_bgrx);
}
