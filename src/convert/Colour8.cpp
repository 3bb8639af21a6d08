// Interleaved 8-bit colour sources: BGR24, RGB24, BGRx and RBG32. Copies and
// channel swaps go through the whole-image primitives, in bands of rows over
// the team; the rest are row loops.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/ColourFrame.h"
#include "convert/rows/ColourRowsChunks.h"
#include "convert/rows/ColourRowsCopy.h"
#include "convert/rows/MonoRows.h"
#include "frame/FrameCopy.h"
#include "platform/OpenMP.h"
#include "primitives/Primitives.h"

using kestrelink::colour::Band;
using kestrelink::colour::BandSize;
using kestrelink::colour::EachRow;
using kestrelink::colour::InBands;
using kestrelink::colour::Splittable;
using kestrelink::platform::SetBlockTimeZero;
namespace rows = kestrelink::rows;

namespace {

constexpr int kReversed[3] = {2, 1, 0};

// Three-byte pixels with channels 0 and 2 exchanged, by the swap primitive.
bool SwapOuterChannels(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  const size_t row = 3 * size_t(w);
  if (!Splittable(w, h, row, {src, dst})) return false;
  return InBands(h, [&](uint32_t y0, uint32_t n) {
    const auto in = Band(src, row, h, y0, false), out = Band(dst, row, h, y0, flip);
    return ippiSwapChannels_8u_C3R(in.first, in.step, out.first, out.step, BandSize(w, n), kReversed);
  });
}

// The first three bytes of four-byte pixels, by the copy primitive.
bool FirstThreeOfFour(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  if (!Splittable(w, h, 4 * uint64_t(w), {src, dst})) return false;
  return InBands(h, [&](uint32_t y0, uint32_t n) {
    const auto in = Band(src, 4 * size_t(w), h, y0, false), out = Band(dst, 3 * size_t(w), h, y0, flip);
    return ippiCopy_8u_AC4C3R(in.first, in.step, out.first, out.step, BandSize(w, n));
  });
}

}  // namespace

// The copy primitive keeps the destination's fourth bytes. A flip writes
// bottom-up through a negative step rather than through a scratch frame, so
// the fourth bytes are the destination's own there too, never scratch
// contents.
bool CIppImageConverter::BGR24ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR24ToBGRx(w, h, src, dst, flip);
  if (!Splittable(w, h, 4 * uint64_t(w), {src, dst})) return false;  // the caller's buffers are left as they are
  return InBands(h, [&](uint32_t y0, uint32_t n) {
    const auto in = Band(src, 3 * size_t(w), h, y0, false), out = Band(dst, 4 * size_t(w), h, y0, flip);
    return ippiCopy_8u_C3AC4R(in.first, in.step, out.first, out.step, BandSize(w, n));
  });
}

bool CIppImageConverter::BGR24ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGR24ToBGR24(w, h, src, dst, flip);
  kestrelink::CopyFrame(src, 3 * uint64_t(w), h, dst, flip);
  return true;
}

bool CIppImageConverter::BGR24ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return SwapOuterChannels(w, h, src, dst, flip);
}

bool CIppImageConverter::BGR24ToBGR48(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto widen = rows::MonoRows().mono8_to_mono16msb;  // each byte to the high byte of a word
  EachRow(h, flip, src, 3 * size_t(w), dst, 6 * size_t(w),
          [&](const uint8_t* s, uint8_t* d) { widen(s, d, 3 * w); });
  return true;
}

bool CIppImageConverter::BGR24ToRGB48(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto reorder = rows::CopyRows().reorder3x8;
  const auto widen = rows::MonoRows().mono8_to_mono16msb;
  EachRow(h, flip, src, 3 * size_t(w), dst, 6 * size_t(w), [&](const uint8_t* s, uint8_t* d) {
    rows::ThroughChunks<3>(
        w, [&](uint32_t x, uint32_t n, uint8_t* mid) { reorder(s + 3 * size_t(x), mid, n, rows::kReversedOrder); },
        [&](uint32_t x, uint32_t n, uint8_t* mid) { widen(mid, d + 6 * size_t(x), 3 * n); });
  });
  return true;
}

// A flip reads the source bottom-up instead of copying it to scratch first.
bool CIppImageConverter::BGR24ToBGR24P(uint32_t w, uint32_t h, void* src, void* p1, void* p2, void* p3, bool flip) {
  SetBlockTimeZero();
  if (!Splittable(w, h, 3 * uint64_t(w), {src, p1, p2, p3})) return false;
  return InBands(h, [&](uint32_t y0, uint32_t n) {
    const auto in = Band(src, 3 * size_t(w), h, y0, flip);
    Ipp8u* const planes[3] = {Band(p1, w, h, y0, false).first, Band(p2, w, h, y0, false).first,
                              Band(p3, w, h, y0, false).first};
    return ippiCopy_8u_C3P3R(in.first, in.step, planes, int(w), BandSize(w, n));
  });
}

// A depth other than 8 darkens: each byte is shifted right by d - 8.
bool CIppImageConverter::RGB24ToBGRx(uint32_t w, uint32_t h, uint32_t d, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->RGB24ToBGRx(w, h, d, src, dst, flip);
  const auto spread = rows::CopyRows().bytes3_to_4;
  const uint32_t shift = kestrelink::colour::NarrowShift(d);
  EachRow(h, flip, src, 3 * size_t(w), dst, 4 * size_t(w),
          [&](const uint8_t* s, uint8_t* o) { spread(s, o, w, rows::kReversedOrder, shift); });
  return true;
}

bool CIppImageConverter::RGB24ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->RGB24ToBGR24(w, h, src, dst, flip);
  return SwapOuterChannels(w, h, src, dst, flip);
}

bool CIppImageConverter::BGRxToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGRxToBGRx(w, h, src, dst, flip);
  kestrelink::CopyFrame(src, 4 * uint64_t(w), h, dst, flip);
  return true;
}

bool CIppImageConverter::BGRxToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->BGRxToBGR24(w, h, src, dst, flip);
  return FirstThreeOfFour(w, h, src, dst, flip);
}

// Only the fourth byte goes; no channel moves, whatever the name says.
bool CIppImageConverter::RBG32ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return FirstThreeOfFour(w, h, src, dst, flip);
}
