// CImageCombine: the sizes and the copying members, one block copy a row and
// frame.
#include <kestrelink/CImageCombine.h>

#include <cstring>

#include "frame/StreamCopy.h"
#include "frame/ThreadSetup.h"
#include "geometry/CombineLayout.h"
#include "platform/OpenMP.h"

using kestrelink::platform::SetBlockTimeZero;
namespace combine = kestrelink::combine;

namespace {

// Rows of `rowBytes(w)` bytes copied to their places; side by side the
// second frame starts `rowBytes(w1)` into the destination row.
template <class RowBytes>
bool CopyRows(uint32_t w1, uint32_t h1, const void* src1, uint32_t w2, uint32_t h2, const void* src2, void* dst,
              bool side, RowBytes rowBytes) {
  SetBlockTimeZero();
  const combine::Layout L = combine::MakeLayout(w1, h1, w2, h2, side);
  if (!combine::Usable(L, {src1}, {src2}, {dst})) return false;
  const combine::Placed frames[2] = {{static_cast<const uint8_t*>(src1), rowBytes(w1), 0, w1},
                                     {static_cast<const uint8_t*>(src2), rowBytes(w2), side ? rowBytes(w1) : 0, w2}};
  const size_t dstRowBytes = rowBytes(L.W);
  // Each thread's share of the destination decides, as memcpy's own size rule does.
  if (dstRowBytes * L.H / size_t(kestrelink::platform::TeamSize()) >= kestrelink::kStreamCopyBytes) {
    combine::PlaceRows(L, frames, dst, dstRowBytes,
                       [&](const uint8_t* s, uint8_t* d, uint32_t w) { kestrelink::StreamCopy(d, s, rowBytes(w)); });
    kestrelink::StreamCopyDone();
  } else
    combine::PlaceRows(L, frames, dst, dstRowBytes,
                       [&](const uint8_t* s, uint8_t* d, uint32_t w) { std::memcpy(d, s, rowBytes(w)); });
  return true;
}

bool CopyPixels(uint32_t w1, uint32_t h1, const void* src1, uint32_t w2, uint32_t h2, const void* src2, void* dst,
                bool side, size_t pixelBytes) {
  return CopyRows(w1, h1, src1, w2, h2, src2, dst, side, [pixelBytes](uint32_t w) { return pixelBytes * w; });
}

}  // namespace

CImageCombine::CImageCombine() { kestrelink::SetupThreads(); }

uint32_t CImageCombine::GetCombineImageWidth(uint32_t w1, uint32_t w2, bool sideBySide) {
  return combine::CombinedWidth(w1, w2, sideBySide);
}

uint32_t CImageCombine::GetCombineImageHeight(uint32_t h1, uint32_t h2, bool sideBySide) {
  return combine::CombinedHeight(h1, h2, sideBySide);
}

bool CImageCombine::Mono8CombineMono8(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                      void* dst, bool sideBySide) {
  return CopyPixels(w1, h1, src1, w2, h2, src2, dst, sideBySide, 1);
}

bool CImageCombine::Mono16CombineMono16(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                        void* dst, bool sideBySide) {
  return CopyPixels(w1, h1, src1, w2, h2, src2, dst, sideBySide, 2);
}

bool CImageCombine::YUV422CombineYUV422(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                        void* dst, bool sideBySide) {
  return Mono16CombineMono16(w1, h1, src1, w2, h2, src2, dst, sideBySide);
}

bool CImageCombine::UVY422CombineUVY422(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                        void* dst, bool sideBySide) {
  return Mono16CombineMono16(w1, h1, src1, w2, h2, src2, dst, sideBySide);
}

bool CImageCombine::YUV411CombineYUV411(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                        void* dst, bool sideBySide) {
  return CopyRows(w1, h1, src1, w2, h2, src2, dst, sideBySide, [](uint32_t w) { return (size_t(w) * 6) >> 2; });
}

bool CImageCombine::YUV444CombineYUV444(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                        void* dst, bool sideBySide) {
  return BGR24CombineToBGR(w1, h1, src1, w2, h2, src2, dst, sideBySide);
}

bool CImageCombine::RGB24CombineToRGB(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                      void* dst, bool sideBySide) {
  return BGR24CombineToBGR(w1, h1, src1, w2, h2, src2, dst, sideBySide);
}

bool CImageCombine::BGR24CombineToBGR(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                      void* dst, bool sideBySide) {
  return CopyPixels(w1, h1, src1, w2, h2, src2, dst, sideBySide, 3);
}

bool CImageCombine::BGRxCombineToBGRx(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                      void* dst, bool sideBySide) {
  return CopyPixels(w1, h1, src1, w2, h2, src2, dst, sideBySide, 4);
}

bool CImageCombine::BGR555CombineToBGR555(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                          void* dst, bool sideBySide) {
  return CopyPixels(w1, h1, src1, w2, h2, src2, dst, sideBySide, 2);
}

bool CImageCombine::BGR565CombineToBGR565(uint32_t w1, uint32_t h1, void* src1, uint32_t w2, uint32_t h2, void* src2,
                                          void* dst, bool sideBySide) {
  return BGR555CombineToBGR555(w1, h1, src1, w2, h2, src2, dst, sideBySide);
}
