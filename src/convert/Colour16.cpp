// Interleaved 16-bit colour sources: BGR48, RGB48 and BGR64. A depth narrows
// by a right shift alone, truncated to a byte: no rounding, no clipping, so a
// sample above the depth wraps.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsCopy.h"
#include "frame/FrameCopy.h"
#include "platform/OpenMP.h"

using kestrelink::colour::KernelRows;
using kestrelink::colour::NarrowShift;
using kestrelink::platform::SetBlockTimeZero;
namespace rows = kestrelink::rows;

namespace {

// Three words a pixel narrowed to bytes in `order`: into the first three
// bytes of four-byte pixels, whose fourth bytes stay, or into three-byte ones.
void NarrowThree(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, uint32_t dstPixelBytes, bool flip,
                 rows::ChannelOrder order) {
  const auto& copies = rows::CopyRows();
  const auto narrow = dstPixelBytes == 4 ? copies.words3_to_bytes3of4 : copies.words3_to_bytes3;
  const uint32_t shift = NarrowShift(d);
  KernelRows(w, h, flip, src, 6, dst, dstPixelBytes,
                                 [&](const uint8_t* s, uint8_t* o, uint32_t n) { narrow(s, o, n, order, shift); });
}

}  // namespace

bool CIppImageConverter::BGR48ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR48ToBGRx(w, h, d, src, dst, flip);
  NarrowThree(w, h, d, src, dst, 4, flip, rows::kSameOrder);
  return true;
}

bool CIppImageConverter::BGR48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR48ToBGR24(w, h, d, src, dst, flip);
  NarrowThree(w, h, d, src, dst, 3, flip, rows::kSameOrder);
  return true;
}

bool CIppImageConverter::BGR48ToBGR48(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR48ToBGR48(w, h, d, src, dst, flip);
  kestrelink::CopyFrame(src, 6 * uint64_t(w), h, dst, flip);  // d is not used
  return true;
}

bool CIppImageConverter::RGB48ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->RGB48ToBGRx(w, h, d, src, dst, flip);
  NarrowThree(w, h, d, src, dst, 4, flip, rows::kReversedOrder);
  return true;
}

bool CIppImageConverter::RGB48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->RGB48ToBGR24(w, h, d, src, dst, flip);
  NarrowThree(w, h, d, src, dst, 3, flip, rows::kReversedOrder);
  return true;
}

// Narrows by 16 - d, unlike BGR64ToBGR24's d - 8 on the same source: at
// d = 16 this keeps the low byte and that one the high byte. Both stay so.
bool CIppImageConverter::BGR64ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR64ToBGRx(w, h, d, src, dst, flip);
  const auto narrow = rows::CopyRows().words4_to_bytes3of4;
  const uint32_t shift = kestrelink::colour::HighShift(d);
  KernelRows(w, h, flip, src, 8, dst, 4, [&](const uint8_t* s, uint8_t* o, uint32_t n) { narrow(s, o, n, shift); });
  return true;
}

bool CIppImageConverter::BGR64ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto narrow = rows::CopyRows().words4_to_bytes3;
  const uint32_t shift = NarrowShift(d);
  KernelRows(w, h, flip, src, 8, dst, 3,
                                 [&](const uint8_t* s, uint8_t* o, uint32_t n) { narrow(s, o, n, shift); });
  return true;
}

bool CIppImageConverter::BGR64ToBGR48(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR64ToBGR48(w, h, d, src, dst, flip);
  const auto firstThree = rows::CopyRows().words4_to_3;  // d is not used
  KernelRows(w, h, flip, src, 8, dst, 6, firstThree);
  return true;
}
