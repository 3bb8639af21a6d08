#pragma once
// Body of the vector variants of the colour-filter-array rows, written once
// with the compiler's vector types and built by each variant's translation
// unit with its own instruction set and lane count (CFA_LANES, the pixels of
// one step for 8-bit samples; 16-bit samples, computed in 32 bits, take half
// as many so that a step stays one register wide). Everything here stays in an anonymous namespace so that no
// variant's code is shared with another's.
#include <immintrin.h>

#include <cstring>

#include "primitives/CfaRows.h"

#ifndef CFA_LANES
#error "CFA_LANES must name the lane count of the variant"
#endif

// Vectors here may be wider than the variant's registers; they never cross a
// call boundary (all is inlined within this unit), so the ABI note is moot.
#pragma GCC diagnostic ignored "-Wpsabi"

namespace kestrelink::cfa {
namespace {

template <class Sample>
struct Lanes;
template <>
struct Lanes<uint8_t> {
  static constexpr uint32_t kCount = CFA_LANES;
  typedef uint8_t In __attribute__((vector_size(kCount)));
  typedef int16_t Math __attribute__((vector_size(2 * kCount)));
};
template <>
struct Lanes<uint16_t> {
  static constexpr uint32_t kCount = CFA_LANES / 2;
  typedef uint16_t In __attribute__((vector_size(2 * kCount)));
  typedef int32_t Math __attribute__((vector_size(4 * kCount)));
};

// Samples widened to the lanes' width. The compiler splits a generic
// widening of a whole register into halves; the one-instruction forms of
// the wider instruction sets are named here.
template <class Sample>
inline typename Lanes<Sample>::Math Load(const Sample* p) {
  using Math = typename Lanes<Sample>::Math;
#if defined(__AVX512BW__)
  if constexpr (sizeof(Sample) == 1 && sizeof(Math) == 64)
    return Math(_mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))));
  if constexpr (sizeof(Sample) == 2 && sizeof(Math) == 64)
    return Math(_mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))));
#elif defined(__AVX2__)
  if constexpr (sizeof(Sample) == 1 && sizeof(Math) == 32)
    return Math(_mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
  if constexpr (sizeof(Sample) == 2 && sizeof(Math) == 32)
    return Math(_mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
#endif
  typename Lanes<Sample>::In v;
  std::memcpy(&v, p, sizeof v);
  return __builtin_convertvector(v, Math);
}

// (sum + 8) >> 4 clamped to 0 .. top, stored as samples.
template <class Sample, class Math>
inline void Store(Sample* p, Math sum, Math top) {
  Math v = (sum + 8) >> 4;
  v = v < 0 ? 0 : v;
#if defined(__AVX512BW__)
  if constexpr (sizeof(Sample) == 1 && sizeof(Math) == 64) {  // narrowing saturates at 255
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvtusepi16_epi8(__m512i(v)));
    return;
  }
#elif defined(__AVX2__)
  if constexpr (sizeof(Sample) == 1 && sizeof(Math) == 32) {  // the pack saturates at 255
    const __m256i w = __m256i(v);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p),
                     _mm_packus_epi16(_mm256_castsi256_si128(w), _mm256_extracti128_si256(w, 1)));
    return;
  }
#endif
  v = v > top ? top : v;
  const typename Lanes<Sample>::In s = __builtin_convertvector(v, typename Lanes<Sample>::In);
  std::memcpy(p, &s, sizeof s);
}

template <class Sample, class Window>
void Interior(const Window& in, PlaneRow<Sample> out, uint32_t x0, uint32_t x1, int topValue,
              void (*tail)(const Window&, PlaneRow<Sample>, uint32_t, uint32_t, int)) {
  using Math = typename Lanes<Sample>::Math;
  constexpr uint32_t lanes = Lanes<Sample>::kCount;
  const Sample *r0 = in.row[0], *r1 = in.row[1], *r2 = in.row[2], *r3 = in.row[3], *r4 = in.row[4];
  Math xSite, top;
  for (uint32_t i = 0; i < lanes; ++i) {  // lanes keep their parity: the step is even
    xSite[i] = ((x0 + i) & 1) != uint32_t(out.greenOdd) ? -1 : 0;
    top[i] = topValue;
  }
  // Whole vectors; the last one steps back over pixels already done (to an
  // even distance, so the lane parities hold) and writes them again alike.
  const uint32_t span = x1 - x0;
  if (span <= lanes) return tail(in, out, x0, x1, topValue);
  const uint32_t last = x0 + ((span - lanes) & ~1u);
  for (uint32_t x = x0;; x = x + lanes < last ? x + lanes : last) {
    const Math c = Load(r2 + x);
    const Math h1 = Load(r2 + x - 1) + Load(r2 + x + 1), v1 = Load(r1 + x) + Load(r3 + x);
    const Math h2 = Load(r2 + x - 2) + Load(r2 + x + 2), v2 = Load(r0 + x) + Load(r4 + x);
    const Math d = Load(r1 + x - 1) + Load(r1 + x + 1) + Load(r3 + x - 1) + Load(r3 + x + 1);
    const Math c16 = c << 4, c10 = c * 10, hv2 = h2 + v2;
    const Math green = ((c << 3) + ((h1 + v1) << 2)) - (hv2 << 1);
    const Math across = c10 + (h1 << 3) - (h2 << 1) - (d << 1) + v2;
    const Math down = c10 + (v1 << 3) - (v2 << 1) - (d << 1) + h2;
    const Math diagonal = c * 12 + (d << 2) - hv2 * 3;
    Store(out.x + x, xSite ? c16 : across, top);
    Store(out.g + x, xSite ? green : c16, top);
    Store(out.y + x, xSite ? diagonal : down, top);
    if (x == last) break;
  }
  if (last + lanes < x1) tail(in, out, last + lanes, x1, topValue);  // an odd span's final pixel
}

void PortableTail8(const Window8& in, PlaneRow<uint8_t> out, uint32_t x0, uint32_t x1, int) {
  Interior8Portable(in, out, x0, x1);
}
void PortableTail16(const Window16& in, PlaneRow<uint16_t> out, uint32_t x0, uint32_t x1, int top) {
  Interior16Portable(in, out, x0, x1, uint32_t(top));
}

void Interior8(const Window8& in, PlaneRow<uint8_t> out, uint32_t x0, uint32_t x1) {
  Interior<uint8_t>(in, out, x0, x1, 255, PortableTail8);
}
void Interior16(const Window16& in, PlaneRow<uint16_t> out, uint32_t x0, uint32_t x1, uint32_t top) {
  Interior<uint16_t>(in, out, x0, x1, int(top), PortableTail16);
}

// Plain loops, vectorised by the compiler for the variant's instruction set
// (a variant with a hand-written interleave leaves the loop unused).
[[maybe_unused]] void Pack16Loop(const uint16_t* p0, const uint16_t* p1, const uint16_t* p2, uint16_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; ++x) {
    dst[3 * size_t(x)] = p0[x];
    dst[3 * size_t(x) + 1] = p1[x];
    dst[3 * size_t(x) + 2] = p2[x];
  }
}

uint32_t Bits16(const uint16_t* row, uint32_t w) {
  uint16_t seen = 0;
  for (uint32_t x = 0; x < w; ++x) seen |= row[x];
  return seen;
}

// Bytes of three planes widened to one 32-bit pixel a lane.
typedef uint32_t Pixels __attribute__((vector_size(2 * CFA_LANES)));
constexpr uint32_t kPixelLanes = CFA_LANES / 2;

inline Pixels WidenBytes(const uint8_t* p) {
#if defined(__AVX512BW__)
  return Pixels(_mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))));
#elif defined(__AVX2__)
  return Pixels(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))));
#else
  typedef uint8_t Bytes __attribute__((vector_size(kPixelLanes)));
  Bytes v;
  std::memcpy(&v, p, sizeof v);
  return __builtin_convertvector(v, Pixels);
#endif
}

void Pack8x4(const uint8_t* p0, const uint8_t* p1, const uint8_t* p2, uint8_t* dst, uint32_t w) {
  uint32_t x = 0;
  for (; x + kPixelLanes <= w; x += kPixelLanes) {
    uint8_t* out = dst + 4 * size_t(x);
    Pixels kept;
    std::memcpy(&kept, out, sizeof kept);
    const Pixels v = WidenBytes(p0 + x) | (WidenBytes(p1 + x) << 8) | (WidenBytes(p2 + x) << 16) | (kept & 0xFF000000u);
    std::memcpy(out, &v, sizeof v);
  }
  Pack8x4Portable(p0 + x, p1 + x, p2 + x, dst + 4 * size_t(x), w - x);
}

}  // namespace
}  // namespace kestrelink::cfa
