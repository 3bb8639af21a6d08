// 128-bit mono row kernels: SSE2, plus the two byte-shuffle rows that need
// SSSE3 (built for it by target attribute, chosen only where it runs).
#include <emmintrin.h>
#include <tmmintrin.h>

#include "convert/rows/MonoRows.h"

namespace kestrelink::rows {
namespace {

void Mono8ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w) {
  const __m128i zero = _mm_setzero_si128();
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + x));
    const __m128i vvLo = _mm_unpacklo_epi8(v, v), v0Lo = _mm_unpacklo_epi8(v, zero);
    const __m128i vvHi = _mm_unpackhi_epi8(v, v), v0Hi = _mm_unpackhi_epi8(v, zero);
    __m128i* out = reinterpret_cast<__m128i*>(dst + 4 * size_t(x));
    _mm_storeu_si128(out + 0, _mm_unpacklo_epi16(vvLo, v0Lo));
    _mm_storeu_si128(out + 1, _mm_unpackhi_epi16(vvLo, v0Lo));
    _mm_storeu_si128(out + 2, _mm_unpacklo_epi16(vvHi, v0Hi));
    _mm_storeu_si128(out + 3, _mm_unpackhi_epi16(vvHi, v0Hi));
  }
  Mono8ToBgrxPortable(src + x, dst + 4 * size_t(x), w - x);
}

void Mono8ToMono16Msb(const uint8_t* src, uint8_t* dst, uint32_t w) {
  const __m128i zero = _mm_setzero_si128();
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + x));
    __m128i* out = reinterpret_cast<__m128i*>(dst + 2 * size_t(x));
    _mm_storeu_si128(out + 0, _mm_unpacklo_epi8(zero, v));
    _mm_storeu_si128(out + 1, _mm_unpackhi_epi8(zero, v));
  }
  Mono8ToMono16MsbPortable(src + x, dst + 2 * size_t(x), w - x);
}

void Mono16ToBgrx(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift)), low = _mm_set1_epi16(0xFF);
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * size_t(x)));
    const __m128i v = _mm_and_si128(_mm_srl_epi16(s, count), low);  // 0x00vv
    const __m128i vv = _mm_or_si128(v, _mm_slli_epi16(v, 8));       // 0xvvvv
    __m128i* out = reinterpret_cast<__m128i*>(dst + 4 * size_t(x));
    _mm_storeu_si128(out + 0, _mm_unpacklo_epi16(vv, v));
    _mm_storeu_si128(out + 1, _mm_unpackhi_epi16(vv, v));
  }
  Mono16ToBgrxPortable(src + 2 * size_t(x), dst + 4 * size_t(x), w - x, shift);
}

void Mono16ToMono8(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift)), low = _mm_set1_epi16(0xFF);
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m128i* in = reinterpret_cast<const __m128i*>(src + 2 * size_t(x));
    const __m128i a = _mm_and_si128(_mm_srl_epi16(_mm_loadu_si128(in), count), low);
    const __m128i b = _mm_and_si128(_mm_srl_epi16(_mm_loadu_si128(in + 1), count), low);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + x), _mm_packus_epi16(a, b));
  }
  Mono16ToMono8Portable(src + 2 * size_t(x), dst + x, w - x, shift);
}

void SwapBytes16(const uint8_t* src, uint8_t* dst, uint32_t w) {
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * size_t(x)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 2 * size_t(x)),
                     _mm_or_si128(_mm_slli_epi16(s, 8), _mm_srli_epi16(s, 8)));
  }
  SwapBytes16Portable(src + 2 * size_t(x), dst + 2 * size_t(x), w - x);
}

void LShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * size_t(x)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 2 * size_t(x)), _mm_sll_epi16(s, count));
  }
  LShift16Portable(src + 2 * size_t(x), dst + 2 * size_t(x), w - x, shift);
}

// Sixteen grey bytes to 48 bytes of BGR, three shuffles of one register.
__attribute__((target("ssse3"))) inline void GreyToBgr16(__m128i v, uint8_t* out) {
  const __m128i m0 = _mm_setr_epi8(0, 0, 0, 1, 1, 1, 2, 2, 2, 3, 3, 3, 4, 4, 4, 5);
  const __m128i m1 = _mm_setr_epi8(5, 5, 6, 6, 6, 7, 7, 7, 8, 8, 8, 9, 9, 9, 10, 10);
  const __m128i m2 = _mm_setr_epi8(10, 11, 11, 11, 12, 12, 12, 13, 13, 13, 14, 14, 14, 15, 15, 15);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out), _mm_shuffle_epi8(v, m0));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 16), _mm_shuffle_epi8(v, m1));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(out + 32), _mm_shuffle_epi8(v, m2));
}

__attribute__((target("ssse3"))) void Mono8ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w) {
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16)
    GreyToBgr16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + x)), dst + 3 * size_t(x));
  Mono8ToBgrPortable(src + x, dst + 3 * size_t(x), w - x);
}

__attribute__((target("ssse3"))) void Mono16ToBgr(const uint8_t* src, uint8_t* dst, uint32_t w,
                                                   uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift)), low = _mm_set1_epi16(0xFF);
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m128i* in = reinterpret_cast<const __m128i*>(src + 2 * size_t(x));
    const __m128i a = _mm_and_si128(_mm_srl_epi16(_mm_loadu_si128(in), count), low);
    const __m128i b = _mm_and_si128(_mm_srl_epi16(_mm_loadu_si128(in + 1), count), low);
    GreyToBgr16(_mm_packus_epi16(a, b), dst + 3 * size_t(x));
  }
  Mono16ToBgrPortable(src + 2 * size_t(x), dst + 3 * size_t(x), w - x, shift);
}

}  // namespace

const MonoRowKernels kMonoRowsSSE2 = {
    Mono8ToBgrx, Mono8ToBgrPortable, Mono8ToMono16Msb, Mono16ToBgrx,
    Mono16ToBgrPortable, Mono16ToMono8, SwapBytes16, LShift16,
};

const MonoRowKernels kMonoRowsSSSE3 = {
    Mono8ToBgrx, Mono8ToBgr, Mono8ToMono16Msb, Mono16ToBgrx,
    Mono16ToBgr, Mono16ToMono8, SwapBytes16, LShift16,
};

}  // namespace kestrelink::rows
