// 4:1:1 and 4:4:4 sources (UVY411: U Y0 Y1 V Y2 Y3; UVY444: U Y V) to BGRx,
// BGR24 and RGB24 in two steps: the source is sorted into scratch planes (or,
// for UVY411ToRGB24, packed 4:2:2) with the flip applied there, and a
// studio-range primitive converts the scratch into the destination. Also the
// byte re-orderings that serve them.
#include <kestrelink/CIppImageConverter.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "convert/ColorMapEngine.h"
#include "convert/YuvFrame.h"
#include "platform/OpenMP.h"
#include "primitives/Primitives.h"

using kestrelink::ForEachRow;
using kestrelink::RowAt;
using kestrelink::platform::SetBlockTimeZero;

namespace {

// Start of row `row` of a 4:1:1 frame, (row * w * 3) >> 1.
inline const uint8_t* Row411(const void* src, uint32_t w, uint32_t row) {
  return static_cast<const uint8_t*>(src) + ((uint64_t(row) * w * 3) >> 1);
}

// Scratch planes of a two-step conversion: Y of w * h bytes and U, V of
// `chromaBytes` each.
struct ScratchPlanes {
  std::unique_ptr<uint8_t[]> y, u, v;
  ScratchPlanes(size_t lumaBytes, size_t chromaBytes)
      : y(new uint8_t[lumaBytes]), u(new uint8_t[chromaBytes]), v(new uint8_t[chromaBytes]) {}
};

// The 4:1:1 planes to the destination in bands, no flip (it is in the planes).
template <class Prim>
bool Planes411ToPixels(uint32_t w, uint32_t h, const ScratchPlanes& p, void* dst, size_t dstRowBytes, Prim prim) {
  using namespace kestrelink::colour;
  if (!Splittable(w, h, dstRowBytes, {dst})) return false;
  return InBands(h, [&](uint32_t y0, uint32_t n) {
    const Ipp8u* const planes[3] = {p.y.get() + size_t(y0) * w, p.u.get() + size_t(y0) * (w / 4),
                                    p.v.get() + size_t(y0) * (w / 4)};
    const int steps[3] = {int(w), int(w / 4), int(w / 4)};
    return prim(planes, steps, RowAt(dst, dstRowBytes, y0), int(dstRowBytes), BandSize(w, n));
  });
}

// The 4:4:4 planes to the destination in bands.
template <class Prim>
bool Planes444ToPixels(uint32_t w, uint32_t h, const ScratchPlanes& p, void* dst, size_t dstRowBytes, Prim prim) {
  using namespace kestrelink::colour;
  if (!Splittable(w, h, dstRowBytes, {dst})) return false;
  return InBands(h, [&](uint32_t y0, uint32_t n) {
    const size_t at = size_t(y0) * w;
    const Ipp8u* const planes[3] = {p.y.get() + at, p.u.get() + at, p.v.get() + at};
    return prim(planes, int(w), RowAt(dst, dstRowBytes, y0), int(dstRowBytes), BandSize(w, n));
  });
}

}  // namespace

bool CIppImageConverter::YUV411ToYUV411P(uint32_t w, uint32_t h, void* src, uint16_t* Y, void* U, void* V,
                                         bool flip) {
  const uint32_t groups = w / 4;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    const uint8_t* s = Row411(src, w, in);
    uint8_t* y = RowAt(Y, w, out);  // bytes, whatever the type says
    uint8_t* u = RowAt(U, groups, out);
    uint8_t* v = RowAt(V, groups, out);
    for (uint32_t g = 0; g < groups; ++g, s += 6, y += 4) {
      u[g] = s[0], v[g] = s[3];
      y[0] = s[1], y[1] = s[2], y[2] = s[4], y[3] = s[5];
    }
  });
  return true;
}

bool CIppImageConverter::YUV444ToYUV444P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  // Plane order U, Y, V sorts out the source's U Y V bytes.
  if (!flip) {
    Ipp8u* const planes[3] = {static_cast<Ipp8u*>(U), static_cast<Ipp8u*>(Y), static_cast<Ipp8u*>(V)};
    return ippiCopy_8u_C3P3R(static_cast<const Ipp8u*>(src), int(3 * w), planes, int(w), {int(w), int(h)}) == 0;
  }
  ForEachRow(h, true, [&](uint32_t in, uint32_t out) {
    const uint8_t* s = RowAt(src, 3 * size_t(w), in);
    uint8_t *y = RowAt(Y, w, out), *u = RowAt(U, w, out), *v = RowAt(V, w, out);
    for (uint32_t x = 0; x < w; ++x) u[x] = s[3 * x], y[x] = s[3 * x + 1], v[x] = s[3 * x + 2];
  });
  return true;
}

bool CIppImageConverter::UVY411ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY411ToBGRx(w, h, src, dst, flip);
  if (!src) return false;
  const ScratchPlanes p(size_t(w) * h, size_t(w / 4) * h);
  YUV411ToYUV411P(w, h, src, reinterpret_cast<uint16_t*>(p.y.get()), p.u.get(), p.v.get(), flip);
  return Planes411ToPixels(w, h, p, dst, 4 * size_t(w),
                           [](const Ipp8u* const* s, const int* ss, Ipp8u* d, int ds, IppiSize size) {
                             return ippiYCbCr411ToBGR_8u_P3C4R(s, ss, d, ds, size, 0);
                           });
}

bool CIppImageConverter::UVY411ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY411ToBGR24(w, h, src, dst, flip);
  if (!src) return false;
  const ScratchPlanes p(size_t(w) * h, size_t(w / 4) * h);
  YUV411ToYUV411P(w, h, src, reinterpret_cast<uint16_t*>(p.y.get()), p.u.get(), p.v.get(), flip);
  return Planes411ToPixels(w, h, p, dst, 3 * size_t(w), ippiYCbCr411ToBGR_8u_P3C3R);
}

bool CIppImageConverter::UVY411ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (!src) return false;
  const std::unique_ptr<uint8_t[]> packed(new uint8_t[2 * size_t(w) * h]);
  UVY411ToYUV422(w, h, src, packed.get(), flip);
  return kestrelink::yuv::PrimitiveBands(w, h, packed.get(), 2 * size_t(w), dst, 3 * size_t(w), false,
                                         ippiYCbCr422ToRGB_8u_C2C3R);
}

bool CIppImageConverter::UVY444ToBGRx(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY444ToBGRx(w, h, src, dst, flip);
  if (!src) return false;
  const ScratchPlanes p(size_t(w) * h, size_t(w) * h);
  YUV444ToYUV444P(w, h, src, p.y.get(), p.u.get(), p.v.get(), flip);
  return Planes444ToPixels(w, h, p, dst, 4 * size_t(w),
                           [](const Ipp8u* const* s, int ss, Ipp8u* d, int ds, IppiSize size) {
                             return ippiYCbCrToBGR_8u_P3C4R(s, ss, d, ds, size, 0);
                           });
}

bool CIppImageConverter::UVY444ToBGR24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (m_Engine->EnableImageColorMap()) return m_Engine->UVY444ToBGR24(w, h, src, dst, flip);
  if (!src) return false;
  const ScratchPlanes p(size_t(w) * h, size_t(w) * h);
  YUV444ToYUV444P(w, h, src, p.y.get(), p.u.get(), p.v.get(), flip);
  return Planes444ToPixels(w, h, p, dst, 3 * size_t(w), ippiYCbCrToBGR_8u_P3C3R);
}

bool CIppImageConverter::UVY444ToRGB24(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (!src) return false;
  const ScratchPlanes p(size_t(w) * h, size_t(w) * h);
  YUV444ToYUV444P(w, h, src, p.y.get(), p.u.get(), p.v.get(), flip);
  return Planes444ToPixels(w, h, p, dst, 3 * size_t(w), ippiYCbCrToRGB_8u_P3C3R);
}

// A partial last group is unpacked from the bytes the row holds, the rest
// taken as 0, and writes only its pixels inside the row.
bool CIppImageConverter::UVY411ToYUV422(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (!src || !dst) return false;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    const uint8_t* s = Row411(src, w, in);
    const size_t srcBytes = size_t(Row411(src, w, in + 1) - s);
    uint8_t* d = RowAt(dst, 2 * size_t(w), out);
    for (uint32_t x = 0; x < w; x += 4) {
      uint8_t g[6] = {};
      std::memcpy(g, s + 6 * size_t(x / 4), std::min<size_t>(6, srcBytes - 6 * size_t(x / 4)));
      const uint8_t out8[8] = {g[1], g[0], g[2], g[3], g[4], g[0], g[5], g[3]};
      std::memcpy(d + 2 * size_t(x), out8, 2 * std::min<size_t>(4, w - x));
    }
  });
  return true;
}

bool CIppImageConverter::YUV444PToUVY444(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (!src || !dst) return false;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    const uint8_t* s = RowAt(src, 4 * size_t(w), in);
    uint8_t* d = RowAt(dst, 3 * size_t(w), out);
    for (uint32_t x = 0; x < w; ++x, s += 4, d += 3) d[0] = s[2], d[1] = s[0], d[2] = s[1];
  });
  return true;
}
