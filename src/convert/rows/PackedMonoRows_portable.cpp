// Portable rows of the packed and swapped mono sources: the reference every
// vector variant must match.
#include "convert/rows/PackedMonoRows.h"

namespace kestrelink::rows {
namespace {

inline uint32_t Load16(const uint8_t* p) { return uint32_t(p[0] | (p[1] << 8)); }
inline void Store16(uint8_t* p, uint32_t v) {
  p[0] = uint8_t(v);
  p[1] = uint8_t(v >> 8);
}

// Pixel i of a run of 12-byte blocks by the rule; reads two bytes of the
// pixel's own group.
inline uint32_t LaneValue(const uint8_t* src, uint32_t i, const LaneRule& r) {
  const uint8_t* block = src + 12 * size_t(i >> 3);
  const uint32_t j = i & 7, odd = i & 1;
  const uint32_t x = block[r.lanes.lo[j]] | block[r.lanes.hi[j]] << 8;
  const uint32_t a = r.left ? x << r.a : x >> r.a;
  const uint32_t b = r.left ? x << r.b : x >> r.b;
  return ((a & r.maskA[odd]) | (b & r.maskB[odd])) & 0xFFFF;
}

}  // namespace

void LanesToWordsPortable(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  for (uint32_t i = 0; i < pixels; ++i) Store16(dst + 2 * size_t(i), LaneValue(src, i, rule));
}

void LanesToBytesPortable(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  for (uint32_t i = 0; i < pixels; ++i) dst[i] = uint8_t(LaneValue(src, i, rule));
}

void PcoNineSlotsPortable(const uint8_t* src, uint8_t* dst, uint32_t groups, uint32_t shift) {
  for (uint32_t g = 0; g < groups; ++g, src += 12, dst += 18) {
    uint32_t w[6];
    for (int k = 0; k < 6; ++k) w[k] = Load16(src + 2 * k);
    // Most significant bit first inside each word, three words a half group.
    uint32_t p[8];
    for (int half = 0; half < 2; ++half) {
      const uint32_t* h = w + 3 * half;
      p[4 * half + 0] = h[0] >> 4;
      p[4 * half + 1] = (h[0] & 15) << 8 | h[1] >> 8;
      p[4 * half + 2] = (h[1] & 255) << 4 | h[2] >> 12;
      p[4 * half + 3] = h[2] & 0xFFF;
    }
    const uint32_t slots[9] = {p[0], p[1], p[2] & 0xFF0, p[2], p[3], p[4], p[5], p[6] & 0xFF0, p[7]};
    for (int k = 0; k < 9; ++k) Store16(dst + 2 * k, slots[k] << shift);
  }
}

void RShift16Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x) Store16(dst + 2 * size_t(x), shift < 16 ? Load16(src + 2 * size_t(x)) >> shift : 0);
}

void SwapRShift16Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x) {
    const uint32_t swapped = uint32_t(src[2 * size_t(x)]) << 8 | src[2 * size_t(x) + 1];
    Store16(dst + 2 * size_t(x), shift < 16 ? swapped >> shift : 0);
  }
}

const PackedMonoRowKernels kPackedMonoRowsPortable = {
    LanesToWordsPortable, LanesToBytesPortable, PcoNineSlotsPortable, RShift16Portable, SwapRShift16Portable,
};

}  // namespace kestrelink::rows
