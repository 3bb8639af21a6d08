// AVX2 planar-colour rows (this file is built with -mavx2): eight pixels a
// step, each plane's samples widened to 32-bit lanes, narrowed to a byte and
// moved to their byte of the pixel. The portable rows finish each row.
#include <immintrin.h>

#include "convert/rows/ColourRowsPlanar.h"

namespace kestrelink::rows {
namespace {

inline __m256i Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

// Sample loaders: eight samples from pixel x on as bytes in 32-bit lanes.
struct Bytes {
  __m256i operator()(const uint8_t* plane, uint32_t x) const {
    return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(plane + x)));
  }
};
struct Words {  // 16-bit samples
  static __m256i Widen(const uint8_t* plane, uint32_t x) {
    return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(plane + 2 * size_t(x))));
  }
};
struct WordsLateStep : Words {  // the pixel-part tables' rule: (max(s, 1) - 1) >> (bits - 8) above 8 bits
  explicit WordsLateStep(uint32_t bits)
      : mask(_mm256_set1_epi32(int((1u << bits) - 1))),
        one(_mm256_set1_epi32(bits > 8 ? 1 : 0)),
        count(_mm_cvtsi32_si128(int(bits - 8))) {}
  __m256i operator()(const uint8_t* plane, uint32_t x) const {
    const __m256i s = _mm256_and_si256(Widen(plane, x), mask);
    return _mm256_srl_epi32(_mm256_sub_epi32(_mm256_max_epu32(s, one), one), count);
  }
  __m256i mask, one;
  __m128i count;
};
struct WordsShift : Words {  // (s >> shift) truncated to a byte
  explicit WordsShift(uint32_t shift) : count(_mm_cvtsi32_si128(int(shift))) {}
  __m256i operator()(const uint8_t* plane, uint32_t x) const {
    return _mm256_and_si256(_mm256_srl_epi32(Widen(plane, x), count), _mm256_set1_epi32(0xFF));
  }
  __m128i count;
};

// Destination rules: bytes per pixel, and how eight pixels are stored.
struct ToBgrxWhole {
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m256i px) { Store(p, px); }
};
struct ToBgrxKeepFourth {
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m256i px) {
    Store(p, _mm256_or_si256(px, _mm256_and_si256(Load(p), _mm256_set1_epi32(int(0xFF000000u)))));
  }
};
struct ToBgr24 {
  static constexpr uint32_t bytes = 3;
  static void Put(uint8_t* p, __m256i px) {
    const __m256i shuffle = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128,  //
                                             0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128);
    const __m256i c =
        _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(px, shuffle), _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(c));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), _mm256_extracti128_si256(c, 1));
  }
};

// Runs whole vectors; answers the first pixel left for the portable row.
template <class To, class Loader>
inline uint32_t Row(const uint8_t* d0, const uint8_t* d1, const uint8_t* d2, uint8_t* dst, uint32_t w,
                    const Loader& load) {
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m256i px = _mm256_or_si256(_mm256_or_si256(load(d0, x), _mm256_slli_epi32(load(d1, x), 8)),
                                       _mm256_slli_epi32(load(d2, x), 16));
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

const PlanarRowKernels kPlanarRowsAVX2 = {
    BytesToBgrx, WordsToBgrx, WordsShiftToBgrx, WordsShiftToBgr24,
};

}  // namespace kestrelink::rows
