// 5-5-5 and 5-6-5 packed sources: each channel moved to the top of its byte,
// the low bits 0 (no bit replication). Row loops, except BGR565PackedToBGR24,
// which goes through the 5-6-5 primitive in bands of rows.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsPacked.h"
#include "platform/OpenMP.h"
#include "primitives/Primitives.h"

using kestrelink::colour::KernelRows;
using kestrelink::platform::SetBlockTimeZero;

bool CIppImageConverter::BGR555PackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR555PackedToBGRx(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 2, dst, 4, kestrelink::rows::PackedRows().bgr555_to_bgrx);
  return true;
}

bool CIppImageConverter::BGR555PackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR555PackedToBGR24(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 2, dst, 3, kestrelink::rows::PackedRows().bgr555_to_bgr24);
  return true;
}

bool CIppImageConverter::BGR555PackedToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  KernelRows(w, h, flip, src, 2, dst, 3, kestrelink::rows::PackedRows().bgr555_to_rgb24);
  return true;
}

bool CIppImageConverter::BGR565PackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR565PackedToBGRx(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 2, dst, 4, kestrelink::rows::PackedRows().bgr565_to_bgrx);
  return true;
}

bool CIppImageConverter::BGR565PackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  using namespace kestrelink::colour;
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR565PackedToBGR24(w, h, src, dst, flip);
  if (!Splittable(w, h, 3 * uint64_t(w), {src, dst})) return false;
  return InBands(h, [&](uint32_t y0, uint32_t n) {
    const auto in = Band(src, 2 * size_t(w), h, y0, false), out = Band(dst, 3 * size_t(w), h, y0, flip);
    return ippiBGR565ToBGR_16u8u_C3R(reinterpret_cast<const Ipp16u*>(in.first), in.step, out.first, out.step,
                                     BandSize(w, n));
  });
}

bool CIppImageConverter::BGR565PackedToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  KernelRows(w, h, flip, src, 2, dst, 3, kestrelink::rows::PackedRows().bgr565_to_rgb24);
  return true;
}
