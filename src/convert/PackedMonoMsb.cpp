// Mono16MSB and Mono16MSBSwap sources on the plain path. The 8-bit targets
// take one byte of the word as it stands and don't look at the depth: the
// high byte of a Mono16MSB word, byte 0 of a swapped one.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/PackedMonoFrame.h"
#include "convert/rows/MonoRows.h"
#include "convert/rows/PackedMonoRows.h"
#include "frame/FrameCopy.h"
#include "frame/RowLoop.h"
#include "platform/OpenMP.h"

using kestrelink::ForEachRow;
using kestrelink::RowAt;
using kestrelink::packedmono::JustifyShift;
using kestrelink::packedmono::SwappedJustifyShift;
using kestrelink::platform::SetBlockTimeZero;
namespace rows = kestrelink::rows;

bool CIppImageConverter::Mono16MSBToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16MSBToBGRx(w, h, d, src, dst, flip);
  const auto row = rows::MonoRows().mono16_to_bgrx;  // Gray8[s >> 8]
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 4 * size_t(w), out), w, 8);
  });
  return true;
}

bool CIppImageConverter::Mono16MSBToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16MSBToBGR24(w, h, d, src, dst, flip);
  const auto row = rows::MonoRows().mono16_to_bgr;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 3 * size_t(w), out), w, 8);
  });
  return true;
}

bool CIppImageConverter::Mono16MSBToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16MSBToMono8(w, h, d, src, dst, flip);
  const auto row = rows::MonoRows().mono16_to_mono8;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) { row(RowAt(src, 2 * size_t(w), in), RowAt(dst, w, out), w, 8); });
  return true;
}

bool CIppImageConverter::Mono16MSBToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16MSBToMono16(w, h, d, src, dst, flip);
  const auto row = rows::PackedMonoRows().rshift16;  // s >> (16 - d)
  const uint32_t shift = JustifyShift(d);
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 2 * size_t(w), out), w, shift);
  });
  return true;
}

bool CIppImageConverter::Mono16MSBToMono16MSB(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  kestrelink::CopyFrame(src, 2 * uint64_t(w), h, dst, flip);
  return true;
}

bool CIppImageConverter::Mono16MSBSwapToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16MSBSwapToBGRx(w, h, d, src, dst, flip);
  const auto row = rows::MonoRows().mono16_to_bgrx;  // Gray8[byte 0]
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 4 * size_t(w), out), w, 0);
  });
  return true;
}

bool CIppImageConverter::Mono16MSBSwapToBGR24(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16MSBSwapToBGR24(w, h, d, src, dst, flip);
  const auto row = rows::MonoRows().mono16_to_bgr;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 3 * size_t(w), out), w, 0);
  });
  return true;
}

bool CIppImageConverter::Mono16MSBSwapToMono8(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16MSBSwapToMono8(w, h, d, src, dst, flip);
  const auto row = rows::MonoRows().mono16_to_mono8;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) { row(RowAt(src, 2 * size_t(w), in), RowAt(dst, w, out), w, 0); });
  return true;
}

bool CIppImageConverter::Mono16MSBSwapToMono16(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->Mono16MSBSwapToMono16(w, h, d, src, dst, flip);
  const auto row = rows::PackedMonoRows().swap_rshift16;
  const uint32_t shift = SwappedJustifyShift(d);
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    row(RowAt(src, 2 * size_t(w), in), RowAt(dst, 2 * size_t(w), out), w, shift);
  });
  return true;
}

bool CIppImageConverter::Mono16MSBSwapToMono16MSB(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  return SwapWords(w, h, src, dst, flip);
}
