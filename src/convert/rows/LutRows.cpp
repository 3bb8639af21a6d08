#include "convert/rows/LutRows.h"

#include <cstring>

namespace kestrelink::rows {
namespace {

inline uint32_t Load16(const uint8_t* p) { return uint32_t(p[0] | (p[1] << 8)); }

// Three bytes of a pixel; all but the row's last pixel write four, the
// fourth landing where the next pixel goes, so rows never spill.
template <class Index>
inline void StoreBgrRow(uint8_t* dst, uint32_t w, const uint32_t* bgrx, Index index) {
  if (w == 0) return;
  for (uint32_t x = 0; x + 1 < w; ++x) std::memcpy(dst + 3 * size_t(x), &bgrx[index(x)], 4);
  const uint32_t last = bgrx[index(w - 1)];
  std::memcpy(dst + 3 * size_t(w - 1), &last, 3);
}

}  // namespace

void Lut8ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx) {
  for (uint32_t x = 0; x < w; ++x) std::memcpy(dst + 4 * size_t(x), &bgrx[src[x]], 4);
}

void Lut16ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx, uint32_t mask) {
  uint32_t x = 0;
  // Four samples per load and two pixels per store keep the memory ports
  // for the table reads.
  for (; x + 4 <= w; x += 4) {
    uint64_t s;
    std::memcpy(&s, src + 2 * size_t(x), 8);
    const uint64_t p01 = bgrx[s & mask] | uint64_t(bgrx[(s >> 16) & mask]) << 32;
    const uint64_t p23 = bgrx[(s >> 32) & mask] | uint64_t(bgrx[(s >> 48) & mask]) << 32;
    std::memcpy(dst + 4 * size_t(x), &p01, 8);
    std::memcpy(dst + 4 * size_t(x) + 8, &p23, 8);
  }
  for (; x < w; ++x) std::memcpy(dst + 4 * size_t(x), &bgrx[Load16(src + 2 * size_t(x)) & mask], 4);
}

void Lut8ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx) {
  StoreBgrRow(dst, w, bgrx, [src](uint32_t x) { return src[x]; });
}

void Lut16ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w, const uint32_t* bgrx, uint32_t mask) {
  StoreBgrRow(dst, w, bgrx, [src, mask](uint32_t x) { return Load16(src + 2 * size_t(x)) & mask; });
}

void Lut8ToByte(const uint8_t* src, uint8_t* dst, uint32_t w, const uint16_t* table) {
  for (uint32_t x = 0; x < w; ++x) dst[x] = uint8_t(table[src[x]]);
}

void Lut16ToByte(const uint8_t* src, uint8_t* dst, uint32_t w, const uint16_t* table, uint32_t mask) {
  for (uint32_t x = 0; x < w; ++x) dst[x] = uint8_t(table[Load16(src + 2 * size_t(x)) & mask]);
}

void Lut16ToWord(const uint8_t* src, uint8_t* dst, uint32_t w, const uint16_t* table, uint32_t mask) {
  for (uint32_t x = 0; x < w; ++x) {
    const uint16_t v = table[Load16(src + 2 * size_t(x)) & mask];
    std::memcpy(dst + 2 * size_t(x), &v, 2);
  }
}

}  // namespace kestrelink::rows
