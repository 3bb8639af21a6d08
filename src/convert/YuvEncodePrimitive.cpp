// Studio-range encoders that go through one primitive: BGR24 and BGR32 to
// packed 4:2:2, and the packed and planar RGB sources to planar 4:2:2 and
// 4:2:0. Flipped planar encodes go through scratch planes and keep two
// settled behaviours callers depend on: U's scratch is flipped into both U
// and V, and h chroma rows of w >> 1 bytes are written to each chroma plane,
// also for 4:2:0.
#include <kestrelink/CIppImageConverter.h>

#include <memory>

#include "convert/YuvFrame.h"
#include "frame/FrameCopy.h"
#include "platform/OpenMP.h"
#include "primitives/Primitives.h"

using kestrelink::platform::SetBlockTimeZero;
using kestrelink::yuv::PrimitiveBands;

namespace {

// encode(firstRow, rows, planes, steps) into Y, U, V; with flip into scratch
// planes that are then flipped into place as described above.
template <class Encode>
bool PlanarEncode(uint32_t w, uint32_t h, bool pairs, const void* src, uint64_t srcRowBytes, void* Y, void* U,
                  void* V, bool flip, Encode encode) {
  if (!flip) return kestrelink::yuv::PlanarEncodeBands(w, h, pairs, src, Y, U, V, srcRowBytes, encode);
  if (!Y || !U || !V) return false;
  const size_t lumaBytes = size_t(w) * h, chromaBytes = lumaBytes >> 1;
  const std::unique_ptr<uint8_t[]> y(new uint8_t[lumaBytes]), u(new uint8_t[chromaBytes]()),
      v(new uint8_t[chromaBytes]());
  if (!kestrelink::yuv::PlanarEncodeBands(w, h, pairs, src, y.get(), u.get(), v.get(), srcRowBytes, encode))
    return false;
  kestrelink::CopyFrame(y.get(), w, h, Y, true);
  kestrelink::CopyFrame(u.get(), w >> 1, h, U, true);
  kestrelink::CopyFrame(u.get(), w >> 1, h, V, true);  // the V scratch is never read
  return true;
}

// A packed source of `pixelBytes` a pixel through prim(src, step, planes, steps, size).
template <class T, class Prim>
bool PackedEncode(uint32_t w, uint32_t h, bool pairs, const void* src, uint32_t pixelBytes, void* Y, void* U,
                  void* V, bool flip, Prim prim) {
  const size_t rowBytes = size_t(pixelBytes) * w;
  return PlanarEncode(w, h, pairs, src, rowBytes, Y, U, V, flip,
                      [&](uint32_t y0, uint32_t rows, Ipp8u* const planes[3], const int steps[3]) {
                        const auto* s = reinterpret_cast<const T*>(kestrelink::RowAt(src, rowBytes, y0));
                        return prim(s, int(rowBytes), planes, steps, IppiSize{int(w), int(rows)});
                      });
}

// Three planes R, G, B of w * h bytes.
template <class Prim>
bool PlanesEncode(uint32_t w, uint32_t h, bool pairs, void* p1, void* p2, void* p3, void* Y, void* U, void* V,
                  bool flip, Prim prim) {
  if (!p1 || !p2 || !p3) return false;
  return PlanarEncode(w, h, pairs, p1, w, Y, U, V, flip,
                      [&](uint32_t y0, uint32_t rows, Ipp8u* const planes[3], const int steps[3]) {
                        const Ipp8u* const rgb[3] = {kestrelink::RowAt(p1, w, y0), kestrelink::RowAt(p2, w, y0),
                                                     kestrelink::RowAt(p3, w, y0)};
                        return prim(rgb, int(w), planes, steps, IppiSize{int(w), int(rows)});
                      });
}

}  // namespace

bool CIppImageConverter::BGR24ToYUV422(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  if (!flip) return PrimitiveBands(w, h, src, 3 * size_t(w), dst, 2 * size_t(w), false, ippiBGRToYCbCr422_8u_C3C2R);
  // Settled behaviour: the flip copies the source, not the encode, into the
  // scratch, so dst is left as it was and only the encode's answer returns.
  const std::unique_ptr<uint8_t[]> scratch(new uint8_t[2 * size_t(w) * h]);
  const bool ok =
      PrimitiveBands(w, h, src, 3 * size_t(w), scratch.get(), 2 * size_t(w), false, ippiBGRToYCbCr422_8u_C3C2R);
  if (ok) kestrelink::CopyFrame(src, 2 * size_t(w), h, scratch.get(), true);
  return ok;
}

bool CIppImageConverter::BGR32ToYUV422(uint32_t w, uint32_t h, void* src, void* dst, bool flip) {
  SetBlockTimeZero();
  return PrimitiveBands(w, h, src, 4 * size_t(w), dst, 2 * size_t(w), flip, ippiBGRToYCbCr422_8u_AC4C2R);
}

bool CIppImageConverter::BGR24PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp8u>(w, h, false, src, 3, Y, U, V, flip, ippiBGRToYCbCr422_8u_C3P3R);
}

bool CIppImageConverter::RGB24PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp8u>(w, h, false, src, 3, Y, U, V, flip, ippiRGBToYCbCr422_8u_C3P3R);
}

bool CIppImageConverter::BGR32PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp8u>(w, h, false, src, 4, Y, U, V, flip, ippiBGRToYCbCr422_8u_AC4P3R);
}

bool CIppImageConverter::BGR555PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V,
                                               bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp16u>(w, h, false, src, 2, Y, U, V, flip, ippiBGR555ToYCbCr422_16u8u_C3P3R);
}

bool CIppImageConverter::BGR565PackedToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V,
                                               bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp16u>(w, h, false, src, 2, Y, U, V, flip, ippiBGR565ToYCbCr422_16u8u_C3P3R);
}

bool CIppImageConverter::BGRPlannerToYUV422P(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* Y, void* U,
                                             void* V, bool flip) {
  SetBlockTimeZero();
  return PlanesEncode(w, h, false, p1, p2, p3, Y, U, V, flip, ippiRGBToYCbCr422_8u_P3R);
}

bool CIppImageConverter::BGR24PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp8u>(w, h, true, src, 3, Y, U, V, flip, ippiBGRToYCbCr420_8u_C3P3R);
}

bool CIppImageConverter::RGB24PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp8u>(w, h, true, src, 3, Y, U, V, flip, ippiRGBToYCbCr420_8u_C3P3R);
}

bool CIppImageConverter::BGR32PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp8u>(w, h, true, src, 4, Y, U, V, flip, ippiBGRToYCbCr420_8u_AC4P3R);
}

bool CIppImageConverter::BGR555PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V,
                                               bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp16u>(w, h, true, src, 2, Y, U, V, flip, ippiBGR555ToYCbCr420_16u8u_C3P3R);
}

bool CIppImageConverter::BGR565PackedToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V,
                                               bool flip) {
  SetBlockTimeZero();
  return PackedEncode<Ipp16u>(w, h, true, src, 2, Y, U, V, flip, ippiBGR565ToYCbCr420_16u8u_C3P3R);
}

bool CIppImageConverter::BGRPlannerToYUV420P(uint32_t w, uint32_t h, void* p1, void* p2, void* p3, void* Y, void* U,
                                             void* V, bool flip) {
  SetBlockTimeZero();
  return PlanesEncode(w, h, true, p1, p2, p3, Y, U, V, flip, ippiRGBToYCbCr420_8u_P3R);
}
