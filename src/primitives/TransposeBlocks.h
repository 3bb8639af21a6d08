#pragma once
// Register blocks of the vector transposes, included by each vector
// variant's unit (after TransposeTiles.h) inside its own namespace. A square
// is turned by log2(side) rounds of the same interleave of register k with
// register k + side/2, each interleave working inside 16-byte lanes. Needs
// SSE2; the 32-byte interleaves come with a unit built for AVX2.
#include <immintrin.h>

#include <algorithm>
#include <type_traits>

template <int Bytes>
inline __m128i Low(__m128i a, __m128i b) {
  if constexpr (Bytes == 1) return _mm_unpacklo_epi8(a, b);
  if constexpr (Bytes == 2) return _mm_unpacklo_epi16(a, b);
  if constexpr (Bytes == 4) return _mm_unpacklo_epi32(a, b);
  return _mm_unpacklo_epi64(a, b);
}

template <int Bytes>
inline __m128i High(__m128i a, __m128i b) {
  if constexpr (Bytes == 1) return _mm_unpackhi_epi8(a, b);
  if constexpr (Bytes == 2) return _mm_unpackhi_epi16(a, b);
  if constexpr (Bytes == 4) return _mm_unpackhi_epi32(a, b);
  return _mm_unpackhi_epi64(a, b);
}

#ifdef __AVX2__
template <int Bytes>
inline __m256i Low(__m256i a, __m256i b) {
  if constexpr (Bytes == 1) return _mm256_unpacklo_epi8(a, b);
  if constexpr (Bytes == 2) return _mm256_unpacklo_epi16(a, b);
  if constexpr (Bytes == 4) return _mm256_unpacklo_epi32(a, b);
  return _mm256_unpacklo_epi64(a, b);
}

template <int Bytes>
inline __m256i High(__m256i a, __m256i b) {
  if constexpr (Bytes == 1) return _mm256_unpackhi_epi8(a, b);
  if constexpr (Bytes == 2) return _mm256_unpackhi_epi16(a, b);
  if constexpr (Bytes == 4) return _mm256_unpackhi_epi32(a, b);
  return _mm256_unpackhi_epi64(a, b);
}
#endif

// `Side` registers, each its square's row k on entry and its column k on exit.
template <int Bytes, uint32_t Side, class V>
inline void Interleave(V (&r)[Side]) {
  V t[Side];
  for (uint32_t round = 1; round < Side; round *= 2) {
    for (uint32_t k = 0; k < Side / 2; ++k) {
      t[2 * k] = Low<Bytes>(r[k], r[k + Side / 2]);
      t[2 * k + 1] = High<Bytes>(r[k], r[k + Side / 2]);
    }
    for (uint32_t k = 0; k < Side; ++k) r[k] = t[k];
  }
}

// Squares of 8 x 8 bytes or 4 x 4 words, 8-byte rows: each interleave
// doubles the run of a column's pixels in a register (2, 4, 8 bytes) until
// a register holds two whole columns.
template <int Bytes>
struct HalfBlock {
  static_assert(Bytes == 1 || Bytes == 2);
  static constexpr uint32_t kSide = 8 / Bytes;
  using Next = PixelBlock<Bytes>;
  static void Move(const uint8_t* s, ptrdiff_t ss, uint8_t* d, ptrdiff_t ds) {
    __m128i a[kSide];
    for (uint32_t k = 0; k < kSide; ++k)
      a[k] = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(s + ptrdiff_t(k) * ss));
    if constexpr (Bytes == 1) {
      __m128i t[4];
      for (uint32_t k = 0; k < 4; ++k) t[k] = _mm_unpacklo_epi8(a[2 * k], a[2 * k + 1]);
      const __m128i u0 = _mm_unpacklo_epi16(t[0], t[1]);  // rows 0-3 of columns 0-3
      const __m128i u1 = _mm_unpackhi_epi16(t[0], t[1]);  // rows 0-3 of columns 4-7
      const __m128i u2 = _mm_unpacklo_epi16(t[2], t[3]);  // rows 4-7 of columns 0-3
      const __m128i u3 = _mm_unpackhi_epi16(t[2], t[3]);  // rows 4-7 of columns 4-7
      Store2(_mm_unpacklo_epi32(u0, u2), d, ds);
      Store2(_mm_unpackhi_epi32(u0, u2), d + 2 * ds, ds);
      Store2(_mm_unpacklo_epi32(u1, u3), d + 4 * ds, ds);
      Store2(_mm_unpackhi_epi32(u1, u3), d + 6 * ds, ds);
    } else {
      const __m128i t0 = _mm_unpacklo_epi16(a[0], a[1]);  // rows 0-1 of columns 0-3
      const __m128i t1 = _mm_unpacklo_epi16(a[2], a[3]);  // rows 2-3 of columns 0-3
      Store2(_mm_unpacklo_epi32(t0, t1), d, ds);
      Store2(_mm_unpackhi_epi32(t0, t1), d + 2 * ds, ds);
    }
  }
  // Column k (the register's low half) to d, column k+1 to the next row.
  static void Store2(__m128i v, uint8_t* d, ptrdiff_t ds) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(d), v);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(d + ds), _mm_unpackhi_epi64(v, v));
  }
};

// Squares of one 16-byte register a row: 16 x 16 bytes, 8 x 8 words,
// 4 x 4 and 2 x 2 of the four- and eight-byte pixels.
template <int Bytes>
struct RegisterBlock {
  static constexpr uint32_t kSide = 16 / Bytes;
  using Next = std::conditional_t<(Bytes <= 2), HalfBlock<std::min(Bytes, 2)>, PixelBlock<Bytes>>;
  static void Move(const uint8_t* s, ptrdiff_t ss, uint8_t* d, ptrdiff_t ds) {
    __m128i r[kSide];
    for (uint32_t k = 0; k < kSide; ++k)
      r[k] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(s + ptrdiff_t(k) * ss));
    Interleave<Bytes, kSide>(r);
    for (uint32_t k = 0; k < kSide; ++k) _mm_storeu_si128(reinterpret_cast<__m128i*>(d + ptrdiff_t(k) * ds), r[k]);
  }
};
