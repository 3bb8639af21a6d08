// Colour-map rows of the 8-bit YUV layouts.
#include "convert/rows/YuvRowsMap.h"

#include <algorithm>
#include <cstring>

#include "convert/YuvFormula.h"

namespace kestrelink::rows {
namespace {

// Byte positions of a group: pixels, bytes, and for each pixel its Y and the
// U, V it shares.
struct Yuv422Group {
  static constexpr uint32_t kPixels = 2, kBytes = 4;
  static constexpr int y[2] = {0, 2}, u[2] = {1, 1}, v[2] = {3, 3};
};
struct Uvy422Group {
  static constexpr uint32_t kPixels = 2, kBytes = 4;
  static constexpr int y[2] = {1, 3}, u[2] = {0, 0}, v[2] = {2, 2};
};
struct Uvy411Group {
  static constexpr uint32_t kPixels = 4, kBytes = 6;
  static constexpr int y[4] = {1, 2, 4, 5}, u[4] = {0, 0, 0, 0}, v[4] = {3, 3, 3, 3};
};
struct Uvy444Group {
  static constexpr uint32_t kPixels = 1, kBytes = 3;
  static constexpr int y[1] = {1}, u[1] = {0}, v[1] = {2};
};

inline void PutMapped(uint8_t* d, yuv::Bgr p, const ColourTables& t) {
  d[0] = uint8_t(t.t[0][p.b]);
  d[1] = uint8_t(t.t[1][p.g]);
  d[2] = uint8_t(t.t[2][p.r]);
}

// `n` pixels of the group at `s`; the green correction once per group.
template <class Group, uint32_t kDstBytes>
inline void MapGroup(const uint8_t* s, uint8_t* d, uint32_t n, const ColourTables& t) {
  const int g = yuv::GreenOffset(s[Group::u[0]], s[Group::v[0]]);
  for (uint32_t i = 0; i < n; ++i)
    PutMapped(d + kDstBytes * i, yuv::PixelWithGreen(s[Group::y[i]], s[Group::u[i]], s[Group::v[i]], g), t);
}

template <class Group, uint32_t kDstBytes>
void MapRow(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t) {
  const uint32_t groups = w / Group::kPixels, rest = w % Group::kPixels;
  for (uint32_t i = 0; i < groups; ++i)
    MapGroup<Group, kDstBytes>(src + Group::kBytes * size_t(i), dst + kDstBytes * Group::kPixels * size_t(i),
                               Group::kPixels, t);
  if (rest) {
    uint8_t last[Group::kBytes] = {};
    const size_t start = Group::kBytes * size_t(groups);
    if (srcBytes > start) std::memcpy(last, src + start, std::min<size_t>(srcBytes - start, Group::kBytes));
    MapGroup<Group, kDstBytes>(last, dst + kDstBytes * Group::kPixels * size_t(groups), rest, t);
  }
}

}  // namespace

void MapYuv422ToBgrx(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t) {
  MapRow<Yuv422Group, 4>(src, srcBytes, dst, w, t);
}
void MapYuv422ToBgr24(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t) {
  MapRow<Yuv422Group, 3>(src, srcBytes, dst, w, t);
}
void MapUvy422ToBgrx(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t) {
  MapRow<Uvy422Group, 4>(src, srcBytes, dst, w, t);
}
void MapUvy422ToBgr24(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t) {
  MapRow<Uvy422Group, 3>(src, srcBytes, dst, w, t);
}
void MapUvy411ToBgrx(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t) {
  MapRow<Uvy411Group, 4>(src, srcBytes, dst, w, t);
}
void MapUvy411ToBgr24(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t) {
  MapRow<Uvy411Group, 3>(src, srcBytes, dst, w, t);
}
void MapUvy444ToBgrx(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t) {
  MapRow<Uvy444Group, 4>(src, srcBytes, dst, w, t);
}
void MapUvy444ToBgr24(const uint8_t* src, size_t srcBytes, uint8_t* dst, uint32_t w, const ColourTables& t) {
  MapRow<Uvy444Group, 3>(src, srcBytes, dst, w, t);
}

}  // namespace kestrelink::rows
