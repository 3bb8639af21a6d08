#include "jpeg2000/SampleLayouts.h"

#include <cstddef>

#include "frame/RowLoop.h"

namespace kestrelink::j2k {
namespace {

// Component c of a packed pixel sits at byte order[c].
template <int Bytes>
void LoadPacked(const uint8_t* src, uint32_t width, uint32_t height, const int (&order)[3], int32_t* const out[3]) {
  ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    const uint8_t* s = RowAt(src, size_t(width) * Bytes, y);
    int32_t* c0 = out[0] + size_t(y) * width;
    int32_t* c1 = out[1] + size_t(y) * width;
    int32_t* c2 = out[2] + size_t(y) * width;
    for (uint32_t x = 0; x < width; ++x, s += Bytes) {
      c0[x] = int32_t(s[order[0]]) - 128;
      c1[x] = int32_t(s[order[1]]) - 128;
      c2[x] = int32_t(s[order[2]]) - 128;
    }
  });
}

void LoadPlane(const uint8_t* src, uint32_t width, uint32_t height, int32_t* out) {
  ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    const uint8_t* s = RowAt(src, width, y);
    int32_t* d = out + size_t(y) * width;
    for (uint32_t x = 0; x < width; ++x) d[x] = int32_t(s[x]) - 128;
  });
}

inline uint8_t Clamp8(int32_t v) { return uint8_t(v < 0 ? 0 : v > 255 ? 255 : v); }

void StorePlane(const int32_t* in, uint32_t width, uint32_t height, uint8_t* dst) {
  ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    const int32_t* s = in + size_t(y) * width;
    uint8_t* d = RowAt(dst, width, y);
    for (uint32_t x = 0; x < width; ++x) d[x] = Clamp8(s[x] + 128);
  });
}

void StoreBGR24(const int32_t* const in[3], uint32_t width, uint32_t height, uint8_t* dst) {
  ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    const size_t row = size_t(y) * width;
    uint8_t* d = RowAt(dst, size_t(width) * 3, y);
    for (uint32_t x = 0; x < width; ++x, d += 3) {
      d[0] = Clamp8(in[2][row + x] + 128);
      d[1] = Clamp8(in[1][row + x] + 128);
      d[2] = Clamp8(in[0][row + x] + 128);
    }
  });
}

}  // namespace

void LoadSamples(uint32_t format, uint32_t width, uint32_t height, void* const planes[3], int32_t* const out[3]) {
  static constexpr int kInOrder[3] = {0, 1, 2};
  static constexpr int kReversed[3] = {2, 1, 0};
  const uint8_t* third = static_cast<const uint8_t*>(planes[2]);
  if (IsMonoFormat(format)) return LoadPlane(third, width, height, out[0]);
  if (format == 300) {
    LoadPlane(third, width, height, out[0]);
    LoadPlane(static_cast<const uint8_t*>(planes[1]), width, height, out[1]);
    LoadPlane(static_cast<const uint8_t*>(planes[0]), width, height, out[2]);
    return;
  }
  // 400 takes its bytes in order, but decodes to BGR24: settled behaviour of the format.
  if (format == 400) return LoadPacked<3>(third, width, height, kInOrder, out);
  if (format == 500) return LoadPacked<4>(third, width, height, kReversed, out);
  LoadPacked<3>(third, width, height, kReversed, out);
}

void StoreSamples(uint32_t format, uint32_t width, uint32_t height, const int32_t* const in[3], void* const planes[3]) {
  uint8_t* third = static_cast<uint8_t*>(planes[2]);
  if (IsMonoFormat(format)) return StorePlane(in[0], width, height, third);
  if (format == 300) {
    StorePlane(in[0], width, height, third);
    StorePlane(in[1], width, height, static_cast<uint8_t*>(planes[1]));
    StorePlane(in[2], width, height, static_cast<uint8_t*>(planes[0]));
    return;
  }
  // 400 and 500 decode to three-byte BGR24 like every other colour code: settled behaviour of the format.
  StoreBGR24(in, width, height, third);
}

}  // namespace kestrelink::j2k
