// 10-bit packed and 20-bit (16-bit word) 4:2:2 sources to BGR24 and BGRx
// through the library's integer formula; they have no colour-map path. Each
// row writes its w pixels: the groups of six past the end are not stored.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColourFrame.h"
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

}  // namespace

bool CIppImageConverter::YUV422_10BitPPToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, Packed10RowBytes(w), dst, 3, flip, kestrelink::rows::YuvRows().p10_to_bgr24);
}

bool CIppImageConverter::YUV422_10BitPPToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, Packed10RowBytes(w), dst, 4, flip, kestrelink::rows::YuvRows().p10_to_bgrx);
}

bool CIppImageConverter::YUV422_20BitToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, 4 * size_t(w), dst, 3, flip, kestrelink::rows::YuvRows().w20_to_bgr24);
}

bool CIppImageConverter::YUV422_20BitToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return DeepRows(w, h, src, 4 * size_t(w), dst, 4, flip, kestrelink::rows::YuvRows().w20_to_bgrx);
}
