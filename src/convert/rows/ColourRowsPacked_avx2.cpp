// AVX2 packed-colour rows (this file is built with -mavx2): eight pixels a
// step, each widened to a 32-bit lane, narrowed by the layout's rule into
// D0 | D1 << 8 | D2 << 16 and stored by the destination's rule. The portable
// rows finish each row.
#include <immintrin.h>

#include "convert/rows/ColourRowsPacked.h"

namespace kestrelink::rows {
namespace {

inline __m256i Lanes32(uint32_t v) { return _mm256_set1_epi32(int(v)); }
inline __m256i Field(__m256i v, uint32_t mask) { return _mm256_and_si256(v, Lanes32(mask)); }
inline __m256i Or3(__m256i a, __m256i b, __m256i c) { return _mm256_or_si256(_mm256_or_si256(a, b), c); }

// The pixel rules, lane by lane (the same as the portable ones).
struct Bgr555 {
  static __m256i Apply(__m256i u) {
    return Or3(Field(_mm256_slli_epi32(u, 3), 0xF8), Field(_mm256_slli_epi32(u, 6), 0xF800),
               Field(_mm256_slli_epi32(u, 9), 0xF80000));
  }
};
struct Rgb555 {
  static __m256i Apply(__m256i u) {
    return Or3(Field(_mm256_srli_epi32(u, 7), 0xF8), Field(_mm256_slli_epi32(u, 6), 0xF800),
               Field(_mm256_slli_epi32(u, 19), 0xF80000));
  }
};
struct Bgr565 {
  static __m256i Apply(__m256i u) {
    return Or3(Field(_mm256_slli_epi32(u, 3), 0xF8), Field(_mm256_slli_epi32(u, 5), 0xFC00),
               Field(_mm256_slli_epi32(u, 8), 0xF80000));
  }
};
struct Rgb565 {
  static __m256i Apply(__m256i u) {
    return Or3(Field(_mm256_srli_epi32(u, 8), 0xF8), Field(_mm256_slli_epi32(u, 5), 0xFC00),
               Field(_mm256_slli_epi32(u, 19), 0xF80000));
  }
};
struct Bgr10 {
  static __m256i Apply(__m256i u) {
    return _mm256_or_si256(Field(_mm256_srli_epi32(u, 2), 0xFF), Field(_mm256_srli_epi32(u, 4), 0xFF00));
  }
};
struct Phoenix {
  static __m256i Apply(__m256i u) {
    return Or3(Field(_mm256_srli_epi32(u, 2), 0xFF), Field(_mm256_srli_epi32(u, 6), 0xFF00),
               Field(_mm256_srli_epi32(u, 8), 0xFF0000));
  }
};
struct RgbPhoenix {
  static __m256i Apply(__m256i u) {
    return Or3(_mm256_srli_epi32(u, 24), Field(_mm256_srli_epi32(u, 6), 0xFF00),
               Field(_mm256_slli_epi32(u, 14), 0xFF0000));
  }
};
struct GvspV1 {
  static __m256i Apply(__m256i u) { return _mm256_srli_epi32(u, 8); }
};
struct GvspV2 {
  static __m256i Apply(__m256i u) {
    return Or3(Field(_mm256_srli_epi32(u, 22), 0xFF), Field(_mm256_srli_epi32(u, 4), 0xFF00),
               Field(_mm256_slli_epi32(u, 14), 0xFF0000));
  }
};

inline __m256i Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

// Eight source pixels as 32-bit lanes.
template <uint32_t bytes>
inline __m256i LoadPixels(const uint8_t* p) {
  if constexpr (bytes == 2) return _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
  return Load(p);
}

// Eight pixels' first three bytes, packed into the low 24 bytes.
inline __m256i Compact(__m256i px) {
  const __m256i shuffle = _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128,  //
                                           0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128);
  return _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(px, shuffle), _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
}

// Destination rules: bytes per pixel, and how eight pixels are stored.
struct ToBgrxKeepFourth {  // D0-D2 written, the fourth byte kept
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m256i px) { Store(p, _mm256_or_si256(px, Field(Load(p), 0xFF000000u))); }
};
struct ToBgrxKeepLastTwo {  // D0, D1 written; D2 and the fourth byte kept
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m256i px) { Store(p, _mm256_or_si256(px, Field(Load(p), 0xFFFF0000u))); }
};
struct ToBgrxWhole {  // all four bytes written
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m256i px) { Store(p, px); }
};
struct ToBgr24 {
  static constexpr uint32_t bytes = 3;
  static void Put(uint8_t* p, __m256i px) {
    const __m256i c = Compact(px);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(c));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), _mm256_extracti128_si256(c, 1));
  }
};
struct ToBgr24KeepThird {  // D0, D1 written; D2 kept
  static constexpr uint32_t bytes = 3;
  static void Put(uint8_t* p, __m256i px) {
    const __m128i keepLo = _mm_setr_epi8(0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0, 0, -1, 0);
    const __m128i keepHi = _mm_setr_epi8(0, -1, 0, 0, -1, 0, 0, -1, 0, 0, 0, 0, 0, 0, 0, 0);  // bytes 16-23
    const __m256i c = Compact(px);
    __m128i* lo = reinterpret_cast<__m128i*>(p);
    __m128i* hi = reinterpret_cast<__m128i*>(p + 16);
    _mm_storeu_si128(lo, _mm_blendv_epi8(_mm256_castsi256_si128(c), _mm_loadu_si128(lo), keepLo));
    _mm_storel_epi64(hi, _mm_blendv_epi8(_mm256_extracti128_si256(c, 1), _mm_loadl_epi64(hi), keepHi));
  }
};

template <uint32_t srcBytes, class Rule, class To>
inline void Row(const uint8_t* src, uint8_t* dst, uint32_t w, PackedRow portable) {
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) To::Put(dst + To::bytes * size_t(x), Rule::Apply(LoadPixels<srcBytes>(src + srcBytes * size_t(x))));
  portable(src + srcBytes * size_t(x), dst + To::bytes * size_t(x), w - x);
}

void Bgr555ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w) { Row<2, Bgr555, ToBgrxKeepFourth>(s, d, w, Bgr555ToBgrxPortable); }
void Bgr555ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w) { Row<2, Bgr555, ToBgr24>(s, d, w, Bgr555ToBgr24Portable); }
void Bgr555ToRgb24(const uint8_t* s, uint8_t* d, uint32_t w) { Row<2, Rgb555, ToBgr24>(s, d, w, Bgr555ToRgb24Portable); }
void Bgr565ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w) { Row<2, Bgr565, ToBgrxKeepFourth>(s, d, w, Bgr565ToBgrxPortable); }
void Bgr565ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w) { Row<2, Bgr565, ToBgr24>(s, d, w, Bgr565ToBgr24Portable); }
void Bgr565ToRgb24(const uint8_t* s, uint8_t* d, uint32_t w) { Row<2, Rgb565, ToBgr24>(s, d, w, Bgr565ToRgb24Portable); }
void Bgr10ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w) { Row<4, Bgr10, ToBgrxKeepLastTwo>(s, d, w, Bgr10ToBgrxPortable); }
void Bgr10ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w) { Row<4, Bgr10, ToBgr24KeepThird>(s, d, w, Bgr10ToBgr24Portable); }
void PhoenixToBgrx(const uint8_t* s, uint8_t* d, uint32_t w) { Row<4, Phoenix, ToBgrxKeepFourth>(s, d, w, PhoenixToBgrxPortable); }
void PhoenixToBgr24(const uint8_t* s, uint8_t* d, uint32_t w) { Row<4, Phoenix, ToBgr24>(s, d, w, PhoenixToBgr24Portable); }
void RgbPhoenixToBgrx(const uint8_t* s, uint8_t* d, uint32_t w) {
  Row<4, RgbPhoenix, ToBgrxKeepFourth>(s, d, w, RgbPhoenixToBgrxPortable);
}
void RgbPhoenixToBgr24(const uint8_t* s, uint8_t* d, uint32_t w) {
  Row<4, RgbPhoenix, ToBgr24>(s, d, w, RgbPhoenixToBgr24Portable);
}
void GvspV1ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w) { Row<4, GvspV1, ToBgrxWhole>(s, d, w, GvspV1ToBgrxPortable); }
void GvspV1ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w) { Row<4, GvspV1, ToBgr24>(s, d, w, GvspV1ToBgr24Portable); }
void GvspV2ToBgrx(const uint8_t* s, uint8_t* d, uint32_t w) { Row<4, GvspV2, ToBgrxWhole>(s, d, w, GvspV2ToBgrxPortable); }
void GvspV2ToBgr24(const uint8_t* s, uint8_t* d, uint32_t w) { Row<4, GvspV2, ToBgr24>(s, d, w, GvspV2ToBgr24Portable); }

}  // namespace

const PackedRowKernels kPackedRowsAVX2 = {
    Bgr555ToBgrx,  Bgr555ToBgr24,  Bgr555ToRgb24,    Bgr565ToBgrx,      Bgr565ToBgr24, Bgr565ToRgb24,
    Bgr10ToBgrx,   Bgr10ToBgr24,   PhoenixToBgrx,    PhoenixToBgr24,    RgbPhoenixToBgrx, RgbPhoenixToBgr24,
    GvspV1ToBgrx,  GvspV1ToBgr24,  GvspV2ToBgrx,     GvspV2ToBgr24,
};

}  // namespace kestrelink::rows
