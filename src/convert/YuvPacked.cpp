// Packed 4:2:2 sources, YUV422 (Y0 U Y1 V) and UVY422 (U Y0 V Y1), to BGRx,
// BGR24 and RGB24. The plain path is studio-range YCbCr; UVY422 rows are
// byte-swapped into YUV422 a piece at a time, in the thread's own small
// buffer, and converted from there.
#include <kestrelink/CIppImageConverter.h>

#include <algorithm>

#include "convert/ColorMapEngine.h"
#include "convert/YuvFrame.h"
#include "convert/rows/MonoRows.h"
#include "platform/OpenMP.h"
#include "primitives/Primitives.h"
#include "primitives/YccRows.h"

using kestrelink::platform::SetBlockTimeZero;
using kestrelink::yuv::PrimitiveBands;
namespace ycc = kestrelink::ycc;

namespace {

// Converts the whole pairs of UVY422 rows with row(yuyv, dst, pairs); the
// refusals are those of the 4:2:2 primitives.
template <class Row>
bool SwappedPairRows(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t dstPixelBytes, bool flip, Row row) {
  if (!src || !dst || w < 2 || h < 1) return false;
  constexpr uint32_t kPairs = 512;  // one piece: 2 KiB of the source, kept in L1
  const auto swap = kestrelink::rows::MonoRows().swap_bytes16;
  const uint32_t pairs = w / 2;
  kestrelink::ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    alignas(64) uint8_t piece[4 * kPairs];
    const uint8_t* s = kestrelink::RowAt(src, 2 * size_t(w), in);
    uint8_t* d = kestrelink::RowAt(dst, dstPixelBytes * size_t(w), out);
    for (uint32_t p = 0; p < pairs; p += kPairs) {
      const uint32_t n = std::min(kPairs, pairs - p);
      swap(s + 4 * size_t(p), piece, 2 * n);
      row(piece, d + 2 * dstPixelBytes * size_t(p), n);
    }
  });
  return true;
}

}  // namespace

bool CIppImageConverter::YUV422ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->YUV422ToBGRx(w, h, src, dst, flip);
  return PrimitiveBands(w, h, src, 2 * size_t(w), dst, 4 * size_t(w), flip,
                        [](const Ipp8u* s, int ss, Ipp8u* d, int ds, IppiSize size) {
                          return ippiYCbCr422ToBGR_8u_C2C4R(s, ss, d, ds, size, 0);
                        });
}

bool CIppImageConverter::YUV422ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->YUV422ToBGR24(w, h, src, dst, flip);
  return PrimitiveBands(w, h, src, 2 * size_t(w), dst, 3 * size_t(w), flip, ippiYCbCr422ToBGR_8u_C2C3R);
}

bool CIppImageConverter::YUV422ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return PrimitiveBands(w, h, src, 2 * size_t(w), dst, 3 * size_t(w), flip, ippiYCbCr422ToRGB_8u_C2C3R);
}

bool CIppImageConverter::UVY422ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY422ToBGRx(w, h, src, dst, flip);
  const auto row = ycc::YccRows().pairs_to_bgrx;
  return SwappedPairRows(w, h, src, dst, 4, flip, [&](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, 0); });
}

bool CIppImageConverter::UVY422ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY422ToBGR24(w, h, src, dst, flip);
  const auto row = ycc::YccRows().pairs_to_c3;
  return SwappedPairRows(w, h, src, dst, 3, flip,
                         [&](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, ycc::kOrderBGR); });
}

bool CIppImageConverter::UVY422ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto row = ycc::YccRows().pairs_to_c3;
  return SwappedPairRows(w, h, src, dst, 3, flip,
                         [&](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, ycc::kOrderRGB); });
}
