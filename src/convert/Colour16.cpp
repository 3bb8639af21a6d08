// Interleaved 16-bit colour sources: BGR48, RGB48 and BGR64. A depth narrows
// by a right shift alone, truncated to a byte: no rounding, no clipping, so a
// sample above the depth wraps. Conversions that also move channels run two
// vectorised row steps through a cache-sized chunk.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsChunks.h"
#include "convert/rows/ColourRowsCopy.h"
#include "convert/rows/MonoRows.h"
#include "frame/FrameCopy.h"
#include "platform/OpenMP.h"

using kestrelink::colour::EachRow;
using kestrelink::colour::NarrowShift;
using kestrelink::platform::SetBlockTimeZero;
using kestrelink::rows::ThroughChunks;
namespace rows = kestrelink::rows;

namespace {

// Three words a pixel narrowed to three bytes, then spread into the first
// three bytes of four-byte pixels in `order`; the fourth bytes stay.
void NarrowThreeToBgrx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip, rows::ChannelOrder order) {
  const auto narrow = rows::MonoRows().mono16_to_mono8;
  const auto spread = rows::CopyRows().bytes3_to_4;
  const uint32_t shift = NarrowShift(d);
  EachRow(h, flip, src, 6 * size_t(w), dst, 4 * size_t(w), [&](const uint8_t* s, uint8_t* o) {
    ThroughChunks<3>(
        w, [&](uint32_t x, uint32_t n, uint8_t* mid) { narrow(s + 6 * size_t(x), mid, 3 * n, shift); },
        [&](uint32_t x, uint32_t n, uint8_t* mid) { spread(mid, o + 4 * size_t(x), n, order, 0); });
  });
}

}  // namespace

bool CIppImageConverter::BGR48ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR48ToBGRx(w, h, d, src, dst, flip);
  NarrowThreeToBgrx(w, h, d, src, dst, flip, rows::kSameOrder);
  return true;
}

// Every word narrowed in place of its byte: the mono narrowing over 3w samples.
bool CIppImageConverter::BGR48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR48ToBGR24(w, h, d, src, dst, flip);
  const auto narrow = rows::MonoRows().mono16_to_mono8;
  const uint32_t shift = NarrowShift(d);
  EachRow(h, flip, src, 6 * size_t(w), dst, 3 * size_t(w),
          [&](const uint8_t* s, uint8_t* o) { narrow(s, o, 3 * w, shift); });
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
  NarrowThreeToBgrx(w, h, d, src, dst, flip, rows::kReversedOrder);
  return true;
}

bool CIppImageConverter::RGB48ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->RGB48ToBGR24(w, h, d, src, dst, flip);
  const auto narrow = rows::MonoRows().mono16_to_mono8;
  const auto reorder = rows::CopyRows().reorder3x8;
  const uint32_t shift = NarrowShift(d);
  EachRow(h, flip, src, 6 * size_t(w), dst, 3 * size_t(w), [&](const uint8_t* s, uint8_t* o) {
    ThroughChunks<3>(
        w, [&](uint32_t x, uint32_t n, uint8_t* mid) { narrow(s + 6 * size_t(x), mid, 3 * n, shift); },
        [&](uint32_t x, uint32_t n, uint8_t* mid) { reorder(mid, o + 3 * size_t(x), n, rows::kReversedOrder); });
  });
  return true;
}

// Narrows by 16 - d, unlike BGR64ToBGR24's d - 8 on the same source: at
// d = 16 this keeps the low byte and that one the high byte. Both stay so.
bool CIppImageConverter::BGR64ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR64ToBGRx(w, h, d, src, dst, flip);
  const auto narrow = rows::CopyRows().words4_to_bytes3of4;
  const uint32_t shift = kestrelink::colour::HighShift(d);
  EachRow(h, flip, src, 8 * size_t(w), dst, 4 * size_t(w),
          [&](const uint8_t* s, uint8_t* o) { narrow(s, o, w, shift); });
  return true;
}

bool CIppImageConverter::BGR64ToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto narrow = rows::MonoRows().mono16_to_mono8;
  const auto firstThree = rows::CopyRows().bytes4_to_3;
  const uint32_t shift = NarrowShift(d);
  EachRow(h, flip, src, 8 * size_t(w), dst, 3 * size_t(w), [&](const uint8_t* s, uint8_t* o) {
    ThroughChunks<4>(
        w, [&](uint32_t x, uint32_t n, uint8_t* mid) { narrow(s + 8 * size_t(x), mid, 4 * n, shift); },
        [&](uint32_t x, uint32_t n, uint8_t* mid) { firstThree(mid, o + 3 * size_t(x), n); });
  });
  return true;
}

bool CIppImageConverter::BGR64ToBGR48(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR64ToBGR48(w, h, d, src, dst, flip);
  const auto firstThree = rows::CopyRows().words4_to_3;  // d is not used
  EachRow(h, flip, src, 8 * size_t(w), dst, 6 * size_t(w),
          [&](const uint8_t* s, uint8_t* o) { firstThree(s, o, w); });
  return true;
}
