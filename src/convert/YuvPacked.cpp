// Packed 4:2:2 sources, YUV422 (Y0 U Y1 V) and UVY422 (U Y0 V Y1), to BGRx,
// BGR24 and RGB24. The plain path is studio-range YCbCr; UVY422 rows go
// straight through the 4:2:2 row kernels of their own byte order.
#include <kestrelink/CIppImageConverter.h>

#include "convert/ColorMapEngine.h"
#include "convert/YuvFrame.h"
#include "platform/OpenMP.h"
#include "primitives/KernelFrame.h"
#include "primitives/Primitives.h"
#include "primitives/YccRows.h"

using kestrelink::platform::SetBlockTimeZero;
using kestrelink::yuv::PrimitiveBands;
namespace ycc = kestrelink::ycc;

namespace {

// UVY422 frames through row(src, dst, pairs), over the team in bands as the
// 4:2:2 primitives go, with their refusals: null frames, a width below 2 or
// a height below 1.
template <class Row>
bool UyvyBands(uint32_t w, uint32_t h, const void* src, void* dst, uint32_t dstPixelBytes, bool flip, Row row) {
  return PrimitiveBands(w, h, src, 2 * size_t(w), dst, dstPixelBytes * size_t(w), flip,
                        [&](const Ipp8u* s, int ss, Ipp8u* d, int ds, IppiSize size) {
                          if (const IppStatus status = kestrelink::prim::CheckSize(size, 2, 1)) return status;
                          for (int y = 0; y < size.height; ++y)
                            row(kestrelink::prim::StepRow(s, ss, y), kestrelink::prim::StepRow(d, ds, y),
                                uint32_t(size.width) / 2);
                          return ippStsNoErr;
                        });
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
  const auto row = ycc::YccRows().uyvy_to_bgrx;
  return UyvyBands(w, h, src, dst, 4, flip, [&](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, 0); });
}

bool CIppImageConverter::UVY422ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY422ToBGR24(w, h, src, dst, flip);
  const auto row = ycc::YccRows().uyvy_to_c3;
  return UyvyBands(w, h, src, dst, 3, flip,
                         [&](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, ycc::kOrderBGR); });
}

bool CIppImageConverter::UVY422ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  const auto row = ycc::YccRows().uyvy_to_c3;
  return UyvyBands(w, h, src, dst, 3, flip,
                         [&](const uint8_t* s, uint8_t* d, uint32_t n) { row(s, d, n, ycc::kOrderRGB); });
}
