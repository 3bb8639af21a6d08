// 10-bit packed and 20-bit (16-bit word) 4:2:2 sources to BGR24 and BGRx
// through the library's integer formula; they have no colour-map path. A row
// goes a piece at a time: 16-bit B, G, R planes of the piece in the thread's
// own buffer, which the planar rows interleave. Each row writes its w pixels
// (the groups of six past the end are not stored); BGRx keeps its fourth byte.
#include <kestrelink/CIppImageConverter.h>

#include <algorithm>

#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsPlanar.h"
#include "convert/rows/YuvRows.h"
#include "platform/OpenMP.h"

using kestrelink::platform::SetBlockTimeZero;
namespace rows = kestrelink::rows;

namespace {

constexpr uint32_t kPiece = 576;  // pixels a piece: 96 groups of six, 288 pairs

// Row step of the 10-bit packed layout: 128 bytes per 48 pixels, rounded up.
inline size_t Packed10RowBytes(uint32_t w) { return ((size_t(w) + 47) / 48) * 128; }

using ToPlanes = void (*)(const uint8_t*, uint16_t*, uint16_t*, uint16_t*, uint32_t);
using Interleave = void (*)(const uint8_t*, const uint8_t*, const uint8_t*, uint8_t*, uint32_t, uint32_t);

// Piece x of a row starts at byte x * num / den of the source row.
bool DeepRows(uint32_t w, uint32_t h, const void* src, size_t srcRowBytes, uint32_t num, uint32_t den, void* dst,
              uint32_t dstPixelBytes, bool flip, ToPlanes planes, Interleave interleave) {
  if (!src || !dst) return false;
  kestrelink::colour::EachRow(h, flip, src, srcRowBytes, dst, dstPixelBytes * size_t(w),
                              [&](const uint8_t* s, uint8_t* d) {
                                alignas(64) uint16_t b[kPiece + rows::kPlanePadding], g[kPiece + rows::kPlanePadding],
                                    r[kPiece + rows::kPlanePadding];
                                for (uint32_t x = 0; x < w; x += kPiece) {
                                  const uint32_t n = std::min(kPiece, w - x);
                                  planes(s + size_t(x) * num / den, b, g, r, n);
                                  interleave(reinterpret_cast<const uint8_t*>(b), reinterpret_cast<const uint8_t*>(g),
                                             reinterpret_cast<const uint8_t*>(r), d + size_t(x) * dstPixelBytes, n, 0);
                                }
                              });
  return true;
}

}  // namespace

bool CIppImageConverter::YUV422_10BitPPToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, Packed10RowBytes(w), 16, 6, dst, 3, flip, rows::YuvRows().p10_to_planes,
                  rows::PlanarRows().words_shift_to_bgr24);
}

bool CIppImageConverter::YUV422_10BitPPToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, Packed10RowBytes(w), 16, 6, dst, 4, flip, rows::YuvRows().p10_to_planes,
                  rows::PlanarRows().words_shift_to_bgrx);
}

bool CIppImageConverter::YUV422_20BitToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, 4 * size_t(w), 4, 1, dst, 3, flip, rows::YuvRows().w20_to_planes,
                  rows::PlanarRows().words_shift_to_bgr24);
}

bool CIppImageConverter::YUV422_20BitToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, 4 * size_t(w), 4, 1, dst, 4, flip, rows::YuvRows().w20_to_planes,
                  rows::PlanarRows().words_shift_to_bgrx);
}
