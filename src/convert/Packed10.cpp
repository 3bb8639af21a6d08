// Sources of three 10-bit channels in a 32-bit word: BGR10PixelPacked, the
// two Phoenix layouts and the two GVSP layouts, each narrowed to bytes by the
// shifts of its own rule, in row loops.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/ColourByteZero.h"
#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsPacked.h"
#include "platform/OpenMP.h"

using kestrelink::colour::KernelRows;
using kestrelink::platform::SetBlockTimeZero;
using kestrelink::rows::PackedRow;
using kestrelink::rows::PackedRows;

namespace {

// D0 = a >> 2, D1 = b >> 4 with a, b the words at bytes 0 and 1; the third
// channel, c >> 6 with c the word at byte 2, goes to byte 0 of the frame.
void Bgr10Frame(uint32_t w, uint32_t h, void* src, void* dst, uint32_t dstPixelBytes, bool flip, PackedRow row) {
  kestrelink::colour::ThirdChannelIntoByteZero(
      w, h, src, dst, dstPixelBytes, flip, row, [](uint32_t u) { return (u >> 2 & 0xFF) | (u >> 4 & 0xFF00); },
      [](uint32_t u) { return u >> 22; });
}

}  // namespace

bool CIppImageConverter::BGR10PixelPackedToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR10PixelPackedToBGRx(w, h, src, dst, flip);
  Bgr10Frame(w, h, src, dst, 4, flip, PackedRows().bgr10_to_bgrx);
  return true;
}

bool CIppImageConverter::BGR10PixelPackedToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR10PixelPackedToBGR24(w, h, src, dst, flip);
  Bgr10Frame(w, h, src, dst, 3, flip, PackedRows().bgr10_to_bgr24);
  return true;
}

// The third channel is the top byte, bits 24-31; the colour-map path indexes
// bits 20-29 instead. The two paths keep that difference.
bool CIppImageConverter::BGR10PixelPackedPhoenixToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR10PixelPackedPhoenixToBGRx(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 4, dst, 4, PackedRows().phoenix_to_bgrx);
  return true;
}

bool CIppImageConverter::BGR10PixelPackedPhoenixToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR10PixelPackedPhoenixToBGR24(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 4, dst, 3, PackedRows().phoenix_to_bgr24);
  return true;
}

bool CIppImageConverter::RGB10PixelPackedPhoenixToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->RGB10PixelPackedPhoenixToBGRx(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 4, dst, 4, PackedRows().rgb_phoenix_to_bgrx);
  return true;
}

bool CIppImageConverter::RGB10PixelPackedPhoenixToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->RGB10PixelPackedPhoenixToBGR24(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 4, dst, 3, PackedRows().rgb_phoenix_to_bgr24);
  return true;
}

bool CIppImageConverter::GVSPBGR10v1ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->GVSPBGR10v1ToBGR(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 4, dst, 3, PackedRows().gvsp_v1_to_bgr24);
  return true;
}

// The plain path writes the fourth byte 0; the colour-map path leaves it.
bool CIppImageConverter::GVSPBGR10v1ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->GVSPBGR10v1ToBGRx(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 4, dst, 4, PackedRows().gvsp_v1_to_bgrx);
  return true;
}

bool CIppImageConverter::GVSPBGR10v2ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->GVSPBGR10v2ToBGR(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 4, dst, 3, PackedRows().gvsp_v2_to_bgr24);
  return true;
}

// The plain path writes the fourth byte 0; the colour-map path leaves it.
bool CIppImageConverter::GVSPBGR10v2ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->GVSPBGR10v2ToBGRx(w, h, src, dst, flip);
  KernelRows(w, h, flip, src, 4, dst, 4, PackedRows().gvsp_v2_to_bgrx);
  return true;
}
