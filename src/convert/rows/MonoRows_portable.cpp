// Portable mono row kernels: the reference every vector variant must match.
#include <cstring>

#include "convert/rows/MonoRows.h"

namespace kestrelink::rows {
namespace {

inline uint16_t Load16(const uint8_t* p) { return uint16_t(p[0] | (p[1] << 8)); }
inline void Store16(uint8_t* p, uint16_t v) { p[0] = uint8_t(v); p[1] = uint8_t(v >> 8); }
inline uint8_t Shr8(uint16_t s, uint32_t shift) { return shift < 16 ? uint8_t(s >> shift) : 0; }

}  // namespace

void Mono8ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x) {
    const uint32_t px = src[x] * 0x10101u;
    std::memcpy(dst + 4 * size_t(x), &px, 4);
  }
}

void Mono8ToBgrPortable(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x) dst[3 * size_t(x)] = dst[3 * size_t(x) + 1] = dst[3 * size_t(x) + 2] = src[x];
}

void Mono8ToMono16MsbPortable(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x) Store16(dst + 2 * size_t(x), uint16_t(src[x] << 8));
}

void Mono16ToBgrxPortable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x) {
    const uint32_t px = Shr8(Load16(src + 2 * size_t(x)), shift) * 0x10101u;
    std::memcpy(dst + 4 * size_t(x), &px, 4);
  }
}

void Mono16ToBgrPortable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x) {
    const uint8_t v = Shr8(Load16(src + 2 * size_t(x)), shift);
    dst[3 * size_t(x)] = dst[3 * size_t(x) + 1] = dst[3 * size_t(x) + 2] = v;
  }
}

void Mono16ToMono8Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x) dst[x] = Shr8(Load16(src + 2 * size_t(x)), shift);
}

void SwapBytes16Portable(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x) {
    const uint8_t lo = src[2 * size_t(x)], hi = src[2 * size_t(x) + 1];
    dst[2 * size_t(x)] = hi;
    dst[2 * size_t(x) + 1] = lo;
  }
}

void LShift16Portable(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  for (uint32_t x = 0; x < w; ++x)
    Store16(dst + 2 * size_t(x), shift < 16 ? uint16_t(Load16(src + 2 * size_t(x)) << shift) : 0);
}

const MonoRowKernels kMonoRowsPortable = {
    Mono8ToBgrxPortable,  Mono8ToBgrPortable,    Mono8ToMono16MsbPortable, Mono16ToBgrxPortable,
    Mono16ToBgrPortable,  Mono16ToMono8Portable, SwapBytes16Portable,      LShift16Portable,
};

}  // namespace kestrelink::rows
