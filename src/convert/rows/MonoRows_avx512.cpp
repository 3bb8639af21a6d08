// AVX-512 (F, BW, VL) mono row kernels, built with those flags. Whole vectors
// use plain loads and stores; only the row's tail goes through masked ones,
// which are slow on some processors when they write to memory.
#include <immintrin.h>

#include "convert/rows/MonoRows.h"

namespace kestrelink::rows {
namespace {

inline __mmask16 Mask16(uint32_t n) { return __mmask16((1u << n) - 1); }  // n < 16
inline __mmask32 Mask32(uint32_t n) { return __mmask32((1u << n) - 1); }  // n < 32

// Runs step<false>(x) for every whole vector of `lanes` pixels, then
// step<true>(x, remaining) once for the tail.
template <uint32_t lanes, class Step>
inline void ForEachVector(uint32_t w, Step step) {
  uint32_t x = 0;
  for (; x + lanes <= w; x += lanes) step.template operator()<false>(x, lanes);
  if (x < w) step.template operator()<true>(x, w - x);
}

inline __m512i Grey32(__m512i v) {
  return _mm512_or_si512(v, _mm512_or_si512(_mm512_slli_epi32(v, 8), _mm512_slli_epi32(v, 16)));
}

template <bool tail>
inline __m128i Load16x8(const uint8_t* p, uint32_t n) {
  if constexpr (tail) return _mm_maskz_loadu_epi8(Mask16(n), p);
  return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
}
template <bool tail>
inline __m256i Load16x16(const uint8_t* p, uint32_t n) {  // sixteen 16-bit words
  if constexpr (tail) return _mm256_maskz_loadu_epi16(Mask16(n), p);
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
template <bool tail>
inline __m256i Load32x8(const uint8_t* p, uint32_t n) {  // thirty-two bytes
  if constexpr (tail) return _mm256_maskz_loadu_epi8(Mask32(n), p);
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}
template <bool tail>
inline __m512i Load32x16(const uint8_t* p, uint32_t n) {  // thirty-two 16-bit words
  if constexpr (tail) return _mm512_maskz_loadu_epi16(Mask32(n), p);
  return _mm512_loadu_si512(p);
}
template <bool tail>
inline void Store16x32(uint8_t* p, __m512i v, uint32_t n) {  // sixteen 32-bit pixels
  if constexpr (tail) return _mm512_mask_storeu_epi32(p, Mask16(n), v);
  _mm512_storeu_si512(p, v);
}
template <bool tail>
inline void Store32x16(uint8_t* p, __m512i v, uint32_t n) {  // thirty-two 16-bit words
  if constexpr (tail) return _mm512_mask_storeu_epi16(p, Mask32(n), v);
  _mm512_storeu_si512(p, v);
}
template <bool tail>
inline void Store32x8(uint8_t* p, __m256i v, uint32_t n) {  // thirty-two bytes
  if constexpr (tail) return _mm256_mask_storeu_epi8(p, Mask32(n), v);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v);
}

// Sixteen grey bytes to 48 bytes of BGR: the bytes broadcast to three lanes
// and one shuffle; a whole group stores 32 + 16 bytes, a tail by mask.
template <bool tail>
inline void GreyToBgr16(__m128i v, uint8_t* out, uint32_t pixels) {
  const __m512i shuffle = _mm512_set_epi8(
      0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,                  //
      15, 15, 15, 14, 14, 14, 13, 13, 13, 12, 12, 12, 11, 11, 11, 10,  //
      10, 10, 9, 9, 9, 8, 8, 8, 7, 7, 7, 6, 6, 6, 5, 5,                //
      5, 4, 4, 4, 3, 3, 3, 2, 2, 2, 1, 1, 1, 0, 0, 0);
  const __m512i bgr = _mm512_shuffle_epi8(_mm512_broadcast_i32x4(v), shuffle);
  if constexpr (tail) {
    _mm512_mask_storeu_epi8(out, __mmask64((1ull << (3 * pixels)) - 1), bgr);
  } else {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm512_castsi512_si256(bgr));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), _mm512_extracti32x4_epi32(bgr, 2));
  }
}

void Mono8ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w) {
  ForEachVector<16>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    const __m512i v = _mm512_cvtepu8_epi32(Load16x8<tail>(src + x, n));
    Store16x32<tail>(dst + 4 * size_t(x), Grey32(v), n);
  });
}

void Mono8ToMono16Msb(const uint8_t* src, uint8_t* dst, uint32_t w) {
  ForEachVector<32>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    const __m512i v = _mm512_cvtepu8_epi16(Load32x8<tail>(src + x, n));
    Store32x16<tail>(dst + 2 * size_t(x), _mm512_slli_epi16(v, 8), n);
  });
}

void Mono16ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  const __m512i low = _mm512_set1_epi32(0xFF);
  ForEachVector<16>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    const __m512i s = _mm512_cvtepu16_epi32(Load16x16<tail>(src + 2 * size_t(x), n));
    Store16x32<tail>(dst + 4 * size_t(x), Grey32(_mm512_and_si512(_mm512_srl_epi32(s, count), low)), n);
  });
}

void Mono16ToMono8(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  ForEachVector<32>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    const __m512i s = Load32x16<tail>(src + 2 * size_t(x), n);
    Store32x8<tail>(dst + x, _mm512_cvtepi16_epi8(_mm512_srl_epi16(s, count)), n);
  });
}

void Mono8ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w) {
  ForEachVector<16>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    GreyToBgr16<tail>(Load16x8<tail>(src + x, n), dst + 3 * size_t(x), n);
  });
}

void Mono16ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  ForEachVector<16>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    const __m256i s = Load16x16<tail>(src + 2 * size_t(x), n);
    GreyToBgr16<tail>(_mm256_cvtepi16_epi8(_mm256_srl_epi16(s, count)), dst + 3 * size_t(x), n);
  });
}

void SwapBytes16(const uint8_t* src, uint8_t* dst, uint32_t w) {
  ForEachVector<32>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    const __m512i s = Load32x16<tail>(src + 2 * size_t(x), n);
    Store32x16<tail>(dst + 2 * size_t(x), _mm512_or_si512(_mm512_slli_epi16(s, 8), _mm512_srli_epi16(s, 8)), n);
  });
}

void LShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  ForEachVector<32>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    Store32x16<tail>(dst + 2 * size_t(x), _mm512_sll_epi16(Load32x16<tail>(src + 2 * size_t(x), n), count), n);
  });
}

}  // namespace

const MonoRowKernels kMonoRowsAVX512 = {
    Mono8ToBgrx, Mono8ToBgr, Mono8ToMono16Msb, Mono16ToBgrx,
    Mono16ToBgr, Mono16ToMono8, SwapBytes16, LShift16,
};

}  // namespace kestrelink::rows
