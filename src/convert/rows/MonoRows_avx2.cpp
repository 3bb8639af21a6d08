// AVX2 mono row kernels (this file is built with -mavx2).
#include <immintrin.h>

#include "convert/rows/MonoRows.h"

namespace kestrelink::rows {
namespace {

// 0x000000vv in each 32-bit lane to a grey BGRx pixel 0x00vvvvvv.
inline __m256i Grey32(__m256i v) {
  return _mm256_or_si256(v, _mm256_or_si256(_mm256_slli_epi32(v, 8), _mm256_slli_epi32(v, 16)));
}

// Sixteen grey bytes to 48 bytes of BGR: one 256-bit shuffle of the
// broadcast bytes gives the first 32, a 128-bit one the last 16.
inline void GreyToBgr16(__m128i v, uint8_t* out) {
  const __m256i m01 = _mm256_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5,  //
                                       5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10);
  const __m128i m2 = _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15);
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(out), _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(v), m01));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), _mm_shuffle_epi8(v, m2));
}

// Sixteen 16-bit samples, shifted and truncated to sixteen bytes.
inline __m128i Narrow16(const uint8_t* src, __m128i count) {
  const __m256i s = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src));
  const __m256i v = _mm256_and_si256(_mm256_srl_epi16(s, count), _mm256_set1_epi16(0xFF));
  return _mm_packus_epi16(_mm256_castsi256_si128(v), _mm256_extracti128_si256(v, 1));
}

void Mono8ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w) {
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + x));
    __m256i* out = reinterpret_cast<__m256i*>(dst + 4 * size_t(x));
    _mm256_storeu_si256(out, Grey32(_mm256_cvtepu8_epi32(v)));
    _mm256_storeu_si256(out + 1, Grey32(_mm256_cvtepu8_epi32(_mm_srli_si128(v, 8))));
  }
  Mono8ToBgrxPortable(src + x, dst + 4 * size_t(x), w - x);
}

void Mono8ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w) {
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16)
    GreyToBgr16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + x)), dst + 3 * size_t(x));
  Mono8ToBgrPortable(src + x, dst + 3 * size_t(x), w - x);
}

void Mono8ToMono16Msb(const uint8_t* src, uint8_t* dst, uint32_t w) {
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m256i v = _mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + x)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * size_t(x)), _mm256_slli_epi16(v, 8));
  }
  Mono8ToMono16MsbPortable(src + x, dst + 2 * size_t(x), w - x);
}

void Mono16ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  const __m256i low = _mm256_set1_epi32(0xFF);
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m256i s = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * size_t(x))));
    const __m256i v = _mm256_and_si256(_mm256_srl_epi32(s, count), low);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 4 * size_t(x)), Grey32(v));
  }
  Mono16ToBgrxPortable(src + 2 * size_t(x), dst + 4 * size_t(x), w - x, shift);
}

void Mono16ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) GreyToBgr16(Narrow16(src + 2 * size_t(x), count), dst + 3 * size_t(x));
  Mono16ToBgrPortable(src + 2 * size_t(x), dst + 3 * size_t(x), w - x, shift);
}

void Mono16ToMono8(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  const __m256i low = _mm256_set1_epi16(0xFF);
  uint32_t x = 0;
  for (; x + 32 <= w; x += 32) {
    const __m256i* in = reinterpret_cast<const __m256i*>(src + 2 * size_t(x));
    const __m256i a = _mm256_and_si256(_mm256_srl_epi16(_mm256_loadu_si256(in), count), low);
    const __m256i b = _mm256_and_si256(_mm256_srl_epi16(_mm256_loadu_si256(in + 1), count), low);
    const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi16(a, b), 0xD8);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + x), packed);
  }
  Mono16ToMono8Portable(src + 2 * size_t(x), dst + x, w - x, shift);
}

void SwapBytes16(const uint8_t* src, uint8_t* dst, uint32_t w) {
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m256i s = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * size_t(x)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * size_t(x)),
                        _mm256_or_si256(_mm256_slli_epi16(s, 8), _mm256_srli_epi16(s, 8)));
  }
  SwapBytes16Portable(src + 2 * size_t(x), dst + 2 * size_t(x), w - x);
}

void LShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m256i s = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * size_t(x)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * size_t(x)), _mm256_sll_epi16(s, count));
  }
  LShift16Portable(src + 2 * size_t(x), dst + 2 * size_t(x), w - x, shift);
}

}  // namespace

const MonoRowKernels kMonoRowsAVX2 = {
    Mono8ToBgrx, Mono8ToBgr, Mono8ToMono16Msb, Mono16ToBgrx,
    Mono16ToBgr, Mono16ToMono8, SwapBytes16, LShift16,
};

}  // namespace kestrelink::rows
