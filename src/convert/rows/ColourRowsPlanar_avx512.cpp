// AVX-512 (F, BW, VL) planar-colour rows, built with those flags: sixteen
// pixels a step, each plane's samples widened to 32-bit lanes, narrowed to a
// byte and moved to their byte of the pixel; plain stores only. The portable
// rows finish each row.
#include <immintrin.h>

#include "convert/rows/ColourRowsPlanar.h"

namespace kestrelink::rows {
namespace {

// The same 16 bytes in every lane (the zero-masked form: GCC 12's plain one
// starts from an undefined vector and warns).
inline __m512i Broadcast128(__m128i v) { return _mm512_maskz_broadcast_i32x4(0xFFFF, v); }

// Sample loaders: sixteen samples from pixel x on as bytes in 32-bit lanes.
struct Bytes {
  __m512i operator()(const uint8_t* plane, uint32_t x) const {
    return _mm512_cvtepu8_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(plane + x)));
  }
};
struct Words {  // 16-bit samples
  static __m512i Widen(const uint8_t* plane, uint32_t x) {
    return _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(plane + 2 * size_t(x))));
  }
};
struct WordsLateStep : Words {  // the pixel-part tables' rule: (max(s, 1) - 1) >> (bits - 8) above 8 bits
  explicit WordsLateStep(uint32_t bits)
      : mask(_mm512_set1_epi32(int((1u << bits) - 1))),
        one(_mm512_set1_epi32(bits > 8 ? 1 : 0)),
        count(_mm_cvtsi32_si128(int(bits - 8))) {}
  __m512i operator()(const uint8_t* plane, uint32_t x) const {
    const __m512i s = _mm512_and_si512(Widen(plane, x), mask);
    return _mm512_srl_epi32(_mm512_sub_epi32(_mm512_max_epu32(s, one), one), count);
  }
  __m512i mask, one;
  __m128i count;
};
struct WordsShift : Words {  // (s >> shift) truncated to a byte
  explicit WordsShift(uint32_t shift) : count(_mm_cvtsi32_si128(int(shift))) {}
  __m512i operator()(const uint8_t* plane, uint32_t x) const {
    return _mm512_and_si512(_mm512_srl_epi32(Widen(plane, x), count), _mm512_set1_epi32(0xFF));
  }
  __m128i count;
};

// Destination rules: bytes per pixel, and how sixteen pixels are stored.
struct ToBgrxWhole {
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m512i px) { _mm512_storeu_si512(p, px); }
};
struct ToBgrxKeepFourth {
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m512i px) {
    _mm512_storeu_si512(p, _mm512_mask_blend_epi8(0x8888888888888888ull, px, _mm512_loadu_si512(p)));
  }
};
struct ToBgr24 {
  static constexpr uint32_t bytes = 3;
  static void Put(uint8_t* p, __m512i px) {
    const __m512i shuffle = Broadcast128(
        _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128));
    const __m512i pack = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15);
    const __m512i c = _mm512_permutexvar_epi32(pack, _mm512_shuffle_epi8(px, shuffle));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_castsi512_si256(c));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 32), _mm512_extracti32x4_epi32(c, 2));
  }
};

// Runs whole vectors; answers the first pixel left for the portable row.
template <class To, class Loader>
inline uint32_t Row(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                    const Loader& load) {
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m512i px = _mm512_ternarylogic_epi32(load(d0, x), _mm512_slli_epi32(load(d1, x), 8),
                                                 _mm512_slli_epi32(load(d2, x), 16), 0xFE);  // a | b | c
    To::Put(dst + To::bytes * size_t(x), px);
  }
  return x;
}

void BytesToBgrx(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                 const PixelPartTables& t) {
  const uint32_t x = Row<ToBgrxWhole>(d0, d1, d2, dst, w, Bytes{});
  BytesToBgrxPortable(d0 + x, d1 + x, d2 + x, dst + 4 * size_t(x), w - x, t);
}

void WordsToBgrx(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                 const PixelPartTables& t) {
  const uint32_t x = Row<ToBgrxWhole>(d0, d1, d2, dst, w, WordsLateStep(t.bits));
  const size_t at = 2 * size_t(x);
  WordsToBgrxPortable(d0 + at, d1 + at, d2 + at, dst + 4 * size_t(x), w - x, t);
}

void WordsShiftToBgrx(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                      uint32_t shift) {
  const uint32_t x = Row<ToBgrxKeepFourth>(d0, d1, d2, dst, w, WordsShift(shift));
  const size_t at = 2 * size_t(x);
  WordsShiftToBgrxPortable(d0 + at, d1 + at, d2 + at, dst + 4 * size_t(x), w - x, shift);
}

void WordsShiftToBgr24(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                       uint32_t shift) {
  const uint32_t x = Row<ToBgr24>(d0, d1, d2, dst, w, WordsShift(shift));
  const size_t at = 2 * size_t(x);
  WordsShiftToBgr24Portable(d0 + at, d1 + at, d2 + at, dst + 3 * size_t(x), w - x, shift);
}

}  // namespace

const PlanarRowKernels kPlanarRowsAVX512 = {
    BytesToBgrx, WordsToBgrx, WordsShiftToBgrx, WordsShiftToBgr24,
};

}  // namespace kestrelink::rows
