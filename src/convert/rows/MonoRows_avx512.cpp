// AVX-512 (F, BW, VL) mono row kernels, built with those flags. Row tails go
// through masked loads and stores, so no pixel takes the scalar path.
// GCC 12's AVX-512 headers start masked loads from an undefined vector and
// warn about it where they inline; the masked-off lanes are never read.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>

#include "convert/rows/MonoRows.h"

namespace kestrelink::rows {
namespace {

inline __mmask16 Mask16(uint32_t n) { return n >= 16 ? __mmask16(0xFFFF) : __mmask16((1u << n) - 1); }
inline __mmask32 Mask32(uint32_t n) { return n >= 32 ? __mmask32(~0u) : __mmask32((1u << n) - 1); }

inline __m512i Grey32(__m512i v) {
  return _mm512_or_si512(v, _mm512_or_si512(_mm512_slli_epi32(v, 8), _mm512_slli_epi32(v, 16)));
}

void Mono8ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; x += 16) {
    const __mmask16 m = Mask16(w - x);
    const __m512i v = _mm512_cvtepu8_epi32(_mm_maskz_loadu_epi8(m, src + x));
    _mm512_mask_storeu_epi32(dst + 4 * size_t(x), m, Grey32(v));
  }
}

void Mono8ToMono16Msb(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; x += 32) {
    const __mmask32 m = Mask32(w - x);
    const __m512i v = _mm512_cvtepu8_epi16(_mm256_maskz_loadu_epi8(m, src + x));
    _mm512_mask_storeu_epi16(dst + 2 * size_t(x), m, _mm512_slli_epi16(v, 8));
  }
}

void Mono16ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  const __m512i low = _mm512_set1_epi32(0xFF);
  for (uint32_t x = 0; x < w; x += 16) {
    const __mmask16 m = Mask16(w - x);
    const __m512i s = _mm512_cvtepu16_epi32(_mm256_maskz_loadu_epi16(m, src + 2 * size_t(x)));
    _mm512_mask_storeu_epi32(dst + 4 * size_t(x), m, Grey32(_mm512_and_si512(_mm512_srl_epi32(s, count), low)));
  }
}

void Mono16ToMono8(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  for (uint32_t x = 0; x < w; x += 32) {
    const __mmask32 m = Mask32(w - x);
    const __m512i s = _mm512_maskz_loadu_epi16(m, src + 2 * size_t(x));
    _mm256_mask_storeu_epi8(dst + x, m, _mm512_cvtepi16_epi8(_mm512_srl_epi16(s, count)));
  }
}

// Sixteen grey bytes to 48 bytes of BGR: the bytes broadcast to three lanes,
// one shuffle, one masked store.
inline void GreyToBgr16(__m128i v, uint8_t* out, uint32_t pixels) {
  const __m512i shuffle = _mm512_set_epi8(
      0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0,                          //
      15, 15, 15, 14, 14, 14, 13, 13, 13, 12, 12, 12, 11, 11, 11, 10,          //
      10, 10, 9, 9, 9, 8, 8, 8, 7, 7, 7, 6, 6, 6, 5, 5,                        //
      5, 4, 4, 4, 3, 3, 3, 2, 2, 2, 1, 1, 1, 0, 0, 0);
  const __mmask64 m = pixels >= 16 ? __mmask64(0xFFFFFFFFFFFFull) : __mmask64((1ull << (3 * pixels)) - 1);
  _mm512_mask_storeu_epi8(out, m, _mm512_shuffle_epi8(_mm512_broadcast_i32x4(v), shuffle));
}

void Mono8ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; x += 16)
    GreyToBgr16(_mm_maskz_loadu_epi8(Mask16(w - x), src + x), dst + 3 * size_t(x), w - x);
}

void Mono16ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  for (uint32_t x = 0; x < w; x += 16) {
    const __m256i s = _mm256_maskz_loadu_epi16(Mask16(w - x), src + 2 * size_t(x));
    GreyToBgr16(_mm256_cvtepi16_epi8(_mm256_srl_epi16(s, count)), dst + 3 * size_t(x), w - x);
  }
}

void SwapBytes16(const uint8_t* src, uint8_t* dst, uint32_t w) {
  for (uint32_t x = 0; x < w; x += 32) {
    const __mmask32 m = Mask32(w - x);
    const __m512i s = _mm512_maskz_loadu_epi16(m, src + 2 * size_t(x));
    _mm512_mask_storeu_epi16(dst + 2 * size_t(x), m, _mm512_or_si512(_mm512_slli_epi16(s, 8), _mm512_srli_epi16(s, 8)));
  }
}

void LShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  for (uint32_t x = 0; x < w; x += 32) {
    const __mmask32 m = Mask32(w - x);
    _mm512_mask_storeu_epi16(dst + 2 * size_t(x), m, _mm512_sll_epi16(_mm512_maskz_loadu_epi16(m, src + 2 * size_t(x)), count));
  }
}

}  // namespace

const MonoRowKernels kMonoRowsAVX512 = {
    Mono8ToBgrx, Mono8ToBgr, Mono8ToMono16Msb, Mono16ToBgrx,
    Mono16ToBgr, Mono16ToMono8, SwapBytes16, LShift16,
};

}  // namespace kestrelink::rows
