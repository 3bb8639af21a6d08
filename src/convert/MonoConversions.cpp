// Mono sources: 8- and 16-bit grey to BGRx, BGR, Mono8, Mono16 and MSB forms.
// On the plain path a depth is a right shift by d - 8 and nothing else: no
// rounding, no clipping, so a sample above the depth wraps.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/ColourFrame.h"
#include "convert/rows/MonoRows.h"
#include "frame/FrameCopy.h"
#include "frame/RowLoop.h"
#include "platform/OpenMP.h"
#include "primitives/Primitives.h"

using kestrelink::ForEachRow;
using kestrelink::RowAt;
using kestrelink::platform::SetBlockTimeZero;

using kestrelink::colour::NarrowShift;

bool CIppImageConverter::Mono8ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono8ToBGRx(w, h, src, dst, flip);
  const auto row = kestrelink::rows::MonoRows().mono8_to_bgrx;  // Gray8[s]
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) { row(RowAt(src, w, in), RowAt(dst, 4 * size_t(w), out), w); });
  return true;
}

bool CIppImageConverter::Mono8ToBGR(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono8ToBGR(w, h, src, dst, flip);
  const auto row = kestrelink::rows::MonoRows().mono8_to_bgr;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) { row(RowAt(src, w, in), RowAt(dst, 3 * size_t(w), out), w); });
  return true;
}

bool CIppImageConverter::Mono8ToMono8(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono8ToMono8(w, h, src, dst, flip);
  kestrelink::CopyFrame(src, w, h, dst, flip);
  return true;
}

bool CIppImageConverter::Mono8ToMono16MSB(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto row = kestrelink::rows::MonoRows().mono8_to_mono16msb;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) { row(RowAt(src, w, in), RowAt(dst, 2 * size_t(w), out), w); });
  return true;
}

bool CIppImageConverter::Mono16ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16ToBGRx(w, h, d, src, dst, flip);
  const auto row = kestrelink::rows::MonoRows().mono16_to_bgrx;  // Gray8[(s >> (d-8)) & 255]
  const uint32_t shift = NarrowShift(d);
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 4 * size_t(w), out), w, shift);
  });
  return true;
}

bool CIppImageConverter::Mono16ToBGR(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16ToBGR(w, h, d, src, dst, flip);
  const auto row = kestrelink::rows::MonoRows().mono16_to_bgr;
  const uint32_t shift = NarrowShift(d);
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 3 * size_t(w), out), w, shift);
  });
  return true;
}

bool CIppImageConverter::Mono16ToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16ToMono8(w, h, d, src, dst, flip);
  const auto row = kestrelink::rows::MonoRows().mono16_to_mono8;
  const uint32_t shift = NarrowShift(d);
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) { row(RowAt(src, 2 * size_t(w), in), RowAt(dst, w, out), w, shift); });
  return true;
}

bool CIppImageConverter::Mono16ToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16ToMono16(w, h, d, src, dst, flip);
  kestrelink::CopyFrame(src, 2 * uint64_t(w), h, dst, flip);  // d is not used
  return true;
}

bool CIppImageConverter::Mono16ToMono16MSB(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  // The shift primitive writes bottom-up through a negative step when
  // flipping, which gives the flipped frame without a scratch copy. On
  // failure only the caller's buffers are involved, and they stay theirs.
  namespace colour = kestrelink::colour;
  const size_t row = 2 * size_t(w);
  if (!colour::Splittable(w, h, row, {src, dst})) return false;
  return colour::InBands(h, [&](uint32_t y0, uint32_t n) {
    const auto in = colour::Band(src, row, h, y0, false), out = colour::Band(dst, row, h, y0, flip);
    return ippiLShiftC_16u_C1R(reinterpret_cast<const Ipp16u*>(in.first), in.step, 16 - d,
                               reinterpret_cast<Ipp16u*>(out.first), out.step, colour::BandSize(w, n));
  });
}

bool CIppImageConverter::SwapWords(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto row = kestrelink::rows::MonoRows().swap_bytes16;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 2 * size_t(w), out), w);
  });
  return true;
}
