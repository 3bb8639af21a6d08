// Mono sources: 8- and 16-bit grey to BGRx, BGR, Mono8, Mono16 and MSB forms.
// On the plain path a depth is a right shift by d - 8 and nothing else: no
// rounding, no clipping, so a sample above the depth wraps.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/rows/MonoRows.h"
#include "frame/FrameCopy.h"
#include "frame/RowLoop.h"
#include "platform/OpenMP.h"
#include "primitives/Primitives.h"

using kestrelink::ForEachRow;
using kestrelink::RowAt;
using kestrelink::platform::SetBlockTimeZero;

namespace {

// Right shift that narrows a d-bit sample to 8 bits. Depths below 8 give a
// count taken modulo 32, as the processor's shift would; any count of 16 or
// more leaves nothing of a 16-bit sample.
inline uint32_t NarrowShift(uint32_t d) { return (d - 8) & 31; }

}  // namespace

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
  const int step = int(2 * w);
  const IppiSize whole{int32_t(w), int32_t(h)};
  if (!src || !dst || whole.width < 1 || whole.height < 1)
    return ippiLShiftC_16u_C1R(static_cast<Ipp16u*>(src), step, 16 - d, static_cast<Ipp16u*>(dst), step, whole) == 0;
  const IppStatus status = kestrelink::ForEachBand(h, [&](uint32_t y0, uint32_t rows) {
    const auto* in = reinterpret_cast<const Ipp16u*>(RowAt(src, 2 * size_t(w), y0));
    auto* out = reinterpret_cast<Ipp16u*>(RowAt(dst, 2 * size_t(w), flip ? h - 1 - y0 : y0));
    return ippiLShiftC_16u_C1R(in, step, 16 - d, out, flip ? -step : step, IppiSize{int32_t(w), int32_t(rows)});
  });
  return status == 0;
}

bool CIppImageConverter::SwapWords(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto row = kestrelink::rows::MonoRows().swap_bytes16;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 2 * size_t(w), out), w);
  });
  return true;
}
