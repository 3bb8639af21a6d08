// Encoders from the YUV layouts to planar 4:2:2 and 4:2:0: row loops that
// move and average bytes, whole groups only (a row's partial last group is
// left as it was). To 4:2:2 the flip is on the destination row and the chroma
// rows start at the Y row's offset >> 1. To 4:2:0 the loop walks row pairs
// (an odd last row is not read) and its flip is by pairs, as settled: see
// RowPairs below. The row-pair loops leave the OpenMP block time alone.
#include <kestrelink/CIppImageConverter.h>

#include <cstddef>

#include "frame/RowLoop.h"
#include "platform/OpenMP.h"

using kestrelink::ForEachRow;
using kestrelink::RowAt;
using kestrelink::platform::SetBlockTimeZero;

namespace {

// Where a 4:2:2 or 4:2:0 source group keeps its bytes: pixels, bytes, the
// offsets of its Y samples and of the U, V it carries.
struct Yuv422Group {
  static constexpr uint32_t kPixels = 2, kBytes = 4, kRowNum = 4;
  static constexpr int y[2] = {0, 2}, u = 1, v = 3;
};
struct Uvy422Group {
  static constexpr uint32_t kPixels = 2, kBytes = 4, kRowNum = 4;
  static constexpr int y[2] = {1, 3}, u = 0, v = 2;
};
struct Yuv411Group {  // U Y0 Y1 V Y2 Y3
  static constexpr uint32_t kPixels = 4, kBytes = 6, kRowNum = 3;
  static constexpr int y[4] = {1, 2, 4, 5}, u = 0, v = 3;
};
struct Yuv444Pair {  // two U Y V pixels
  static constexpr uint32_t kPixels = 2, kBytes = 6, kRowNum = 6;
  static constexpr int y[2] = {1, 4}, u = 0, v = 2;
};

// Source row `row`, (row * w * kRowNum) >> 1 bytes in.
template <class Group>
inline const uint8_t* SourceRow(const void* src, uint32_t w, uint32_t row) {
  return static_cast<const uint8_t*>(src) + ((uint64_t(row) * w * Group::kRowNum) >> 1);
}

// Chroma samples a group gives a 4:2:2 row: one per pixel pair.
template <class Group>
inline constexpr uint32_t kChromaPerGroup = Group::kPixels / 2;

// Chroma of one group: the group's own U and V, or for two 4:4:4 pixels the
// mean of each.
template <class Group>
inline int GroupU(const uint8_t* s) {
  if constexpr (Group::kBytes == 6 && Group::kPixels == 2) return (s[0] + s[3]) >> 1;
  return s[Group::u];
}
template <class Group>
inline int GroupV(const uint8_t* s) {
  if constexpr (Group::kBytes == 6 && Group::kPixels == 2) return (s[2] + s[5]) >> 1;
  return s[Group::v];
}

template <class Group>
void Row422(const uint8_t* s, uint8_t* y, uint8_t* u, uint8_t* v, uint32_t w) {
  for (uint32_t g = 0; g < w / Group::kPixels; ++g, s += Group::kBytes) {
    for (uint32_t i = 0; i < Group::kPixels; ++i) y[Group::kPixels * g + i] = s[Group::y[i]];
    const uint8_t cu = uint8_t(GroupU<Group>(s)), cv = uint8_t(GroupV<Group>(s));
    for (uint32_t i = 0; i < kChromaPerGroup<Group>; ++i) {
      u[kChromaPerGroup<Group> * g + i] = cu;
      v[kChromaPerGroup<Group> * g + i] = cv;
    }
  }
}

// Two source rows to two Y rows and one chroma row: the 4:4:4 pairs average
// their 2 x 2 block, (a + b + c + d) >> 2; the others their two rows, (a + b) >> 1.
template <class Group>
void Rows420(const uint8_t* s0, const uint8_t* s1, uint8_t* y0, uint8_t* y1, uint8_t* u, uint8_t* v, uint32_t w) {
  for (uint32_t g = 0; g < w / Group::kPixels; ++g, s0 += Group::kBytes, s1 += Group::kBytes) {
    for (uint32_t i = 0; i < Group::kPixels; ++i) {
      y0[Group::kPixels * g + i] = s0[Group::y[i]];
      y1[Group::kPixels * g + i] = s1[Group::y[i]];
    }
    uint8_t cu, cv;
    if constexpr (Group::kBytes == 6 && Group::kPixels == 2) {
      cu = uint8_t((s0[0] + s0[3] + s1[0] + s1[3]) >> 2);
      cv = uint8_t((s0[2] + s0[5] + s1[2] + s1[5]) >> 2);
    } else {
      cu = uint8_t((s0[Group::u] + s1[Group::u]) >> 1);
      cv = uint8_t((s0[Group::v] + s1[Group::v]) >> 1);
    }
    for (uint32_t i = 0; i < kChromaPerGroup<Group>; ++i) {
      u[kChromaPerGroup<Group> * g + i] = cu;
      v[kChromaPerGroup<Group> * g + i] = cv;
    }
  }
}

template <class Group>
bool To422P(uint32_t w, uint32_t h, const void* src, void* Y, void* U, void* V, bool flip) {
  SetBlockTimeZero();
  if (!src || !Y || !U || !V) return false;
  ForEachRow(h, flip, [&](uint32_t in, uint32_t out) {
    const size_t lumaAt = size_t(out) * w, chromaAt = lumaAt >> 1;
    Row422<Group>(SourceRow<Group>(src, w, in), static_cast<uint8_t*>(Y) + lumaAt,
                  static_cast<uint8_t*>(U) + chromaAt, static_cast<uint8_t*>(V) + chromaAt, w);
  });
  return true;
}

// Row pairs r, r + 1 (r even). Without flip: source rows r, r + 1 to Y rows
// r, r + 1 and chroma at (r * w) >> 2. With flip, settled per layout:
// - 4:4:4 keeps its source rows and writes Y rows h - 1 - r and h - 2 - r,
//   chroma at ((h - 1 - r) * w) >> 2, which is w / 4 bytes past the mirrored
//   chroma row;
// - the others read source rows h - 2 - r and h - 1 - r into Y rows r and
//   r + 1, in that order, chroma at (r * w) >> 2: not an exact mirror.
template <class Group>
bool To420P(uint32_t w, uint32_t h, const void* src, void* Y, void* U, void* V, bool flip) {
  if (!src || !Y || !U || !V) return false;
  constexpr bool kKeepsSourceRows = Group::kBytes == 6 && Group::kPixels == 2;
  ForEachRow(h / 2, false, [&](uint32_t pair, uint32_t) {
    const uint32_t r = 2 * pair;
    uint32_t in0 = r, in1 = r + 1, out0 = r, out1 = r + 1, chromaRow = r;
    if (flip && kKeepsSourceRows) out0 = h - 1 - r, out1 = h - 2 - r, chromaRow = h - 1 - r;
    if (flip && !kKeepsSourceRows) in0 = h - 2 - r, in1 = h - 1 - r;
    const size_t chromaAt = (size_t(chromaRow) * w) >> 2;
    Rows420<Group>(SourceRow<Group>(src, w, in0), SourceRow<Group>(src, w, in1), RowAt(Y, w, out0),
                   RowAt(Y, w, out1), static_cast<uint8_t*>(U) + chromaAt, static_cast<uint8_t*>(V) + chromaAt, w);
  });
  return true;
}

}  // namespace

bool CIppImageConverter::YUV444ToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  return To422P<Yuv444Pair>(w, h, src, Y, U, V, flip);
}

bool CIppImageConverter::UVY422ToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  return To422P<Uvy422Group>(w, h, src, Y, U, V, flip);
}

bool CIppImageConverter::YUV422ToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  return To422P<Yuv422Group>(w, h, src, Y, U, V, flip);
}

bool CIppImageConverter::YUV411ToYUV422P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  return To422P<Yuv411Group>(w, h, src, Y, U, V, flip);
}

bool CIppImageConverter::YUV444ToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  return To420P<Yuv444Pair>(w, h, src, Y, U, V, flip);
}

bool CIppImageConverter::UVY422ToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  return To420P<Uvy422Group>(w, h, src, Y, U, V, flip);
}

bool CIppImageConverter::YUV422ToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  return To420P<Yuv422Group>(w, h, src, Y, U, V, flip);
}

bool CIppImageConverter::YUV411ToYUV420P(uint32_t w, uint32_t h, void* src, void* Y, void* U, void* V, bool flip) {
  return To420P<Yuv411Group>(w, h, src, Y, U, V, flip);
}
