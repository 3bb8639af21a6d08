// AVX-512 (F, BW, VL) packed-colour rows, built with those flags: sixteen
// pixels a step, each widened to a 32-bit lane, narrowed by the layout's rule
// into D0 | D1 << 8 | D2 << 16 and stored by the destination's rule with
// plain stores. The portable rows finish each row.
#include <immintrin.h>

#include "convert/rows/ColourRowsPacked.h"

namespace kestrelink::rows {
namespace {

// The same 16 bytes in every lane (the zero-masked form: GCC 12's plain one
// starts from an undefined vector and warns).
inline __m512i Broadcast128(__m128i v) { return _mm512_maskz_broadcast_i32x4(0xFFFF, v); }

inline __m512i Field(__m512i v, uint32_t mask) { return _mm512_and_si512(v, _mm512_set1_epi32(int(mask))); }
inline __m512i Or3(__m512i a, __m512i b, __m512i c) { return _mm512_ternarylogic_epi32(a, b, c, 0xFE); }

// The pixel rules, lane by lane (the same as the portable ones).
struct Bgr555 {
  static __m512i Apply(__m512i u) {
    return Or3(Field(_mm512_slli_epi32(u, 3), 0xF8), Field(_mm512_slli_epi32(u, 6), 0xF800),
               Field(_mm512_slli_epi32(u, 9), 0xF80000));
  }
};
struct Rgb555 {
  static __m512i Apply(__m512i u) {
    return Or3(Field(_mm512_srli_epi32(u, 7), 0xF8), Field(_mm512_slli_epi32(u, 6), 0xF800),
               Field(_mm512_slli_epi32(u, 19), 0xF80000));
  }
};
struct Bgr565 {
  static __m512i Apply(__m512i u) {
    return Or3(Field(_mm512_slli_epi32(u, 3), 0xF8), Field(_mm512_slli_epi32(u, 5), 0xFC00),
               Field(_mm512_slli_epi32(u, 8), 0xF80000));
  }
};
struct Rgb565 {
  static __m512i Apply(__m512i u) {
    return Or3(Field(_mm512_srli_epi32(u, 8), 0xF8), Field(_mm512_slli_epi32(u, 5), 0xFC00),
               Field(_mm512_slli_epi32(u, 19), 0xF80000));
  }
};
struct Bgr10 {
  static __m512i Apply(__m512i u) {
    return _mm512_or_si512(Field(_mm512_srli_epi32(u, 2), 0xFF), Field(_mm512_srli_epi32(u, 4), 0xFF00));
  }
};
struct Phoenix {
  static __m512i Apply(__m512i u) {
    return Or3(Field(_mm512_srli_epi32(u, 2), 0xFF), Field(_mm512_srli_epi32(u, 6), 0xFF00),
               Field(_mm512_srli_epi32(u, 8), 0xFF0000));
  }
};
struct RgbPhoenix {
  static __m512i Apply(__m512i u) {
    return Or3(_mm512_srli_epi32(u, 24), Field(_mm512_srli_epi32(u, 6), 0xFF00),
               Field(_mm512_slli_epi32(u, 14), 0xFF0000));
  }
};
struct GvspV1 {
  static __m512i Apply(__m512i u) { return _mm512_srli_epi32(u, 8); }
};
struct GvspV2 {
  static __m512i Apply(__m512i u) {
    return Or3(Field(_mm512_srli_epi32(u, 22), 0xFF), Field(_mm512_srli_epi32(u, 4), 0xFF00),
               Field(_mm512_slli_epi32(u, 14), 0xFF0000));
  }
};

// Sixteen source pixels as 32-bit lanes.
template <uint32_t bytes>
inline __m512i LoadPixels(const uint8_t* p) {
  if constexpr (bytes == 2) return _mm512_cvtepu16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)));
  return _mm512_loadu_si512(p);
}

// Sixteen pixels' first three bytes, packed into the low 48 bytes.
inline __m512i Compact(__m512i px) {
  const __m512i shuffle = Broadcast128(
      _mm_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -128, -128, -128, -128));
  const __m512i pack = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 3, 7, 11, 15);
  return _mm512_permutexvar_epi32(pack, _mm512_shuffle_epi8(px, shuffle));
}

inline void Store48(uint8_t* p, __m512i v) {
  _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_castsi512_si256(v));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 32), _mm512_extracti32x4_epi32(v, 2));
}

// Byte k of 48 with k % 3 == 2: the third byte of each of sixteen BGR pixels.
constexpr __mmask64 ThirdBytes() {
  __mmask64 m = 0;
  for (int k = 2; k < 48; k += 3) m |= __mmask64(1) << k;
  return m;
}

// Destination rules: bytes per pixel, and how sixteen pixels are stored.
struct ToBgrxKeepFourth {  // D0-D2 written, the fourth byte kept
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m512i px) {
    _mm512_storeu_si512(p, _mm512_mask_blend_epi8(0x8888888888888888ull, px, _mm512_loadu_si512(p)));
  }
};
struct ToBgrxKeepLastTwo {  // D0, D1 written; D2 and the fourth byte kept
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m512i px) {
    _mm512_storeu_si512(p, _mm512_mask_blend_epi8(0xCCCCCCCCCCCCCCCCull, px, _mm512_loadu_si512(p)));
  }
};
struct ToBgrxWhole {  // all four bytes written
  static constexpr uint32_t bytes = 4;
  static void Put(uint8_t* p, __m512i px) { _mm512_storeu_si512(p, px); }
};
struct ToBgr24 {
  static constexpr uint32_t bytes = 3;
  static void Put(uint8_t* p, __m512i px) { Store48(p, Compact(px)); }
};
struct ToBgr24KeepThird {  // D0, D1 written; D2 kept
  static constexpr uint32_t bytes = 3;
  static void Put(uint8_t* p, __m512i px) {
    const __m512i old = _mm512_maskz_loadu_epi8(0xFFFFFFFFFFFFull, p);  // a masked load, never a masked store
    Store48(p, _mm512_mask_blend_epi8(ThirdBytes(), Compact(px), old));
  }
};

template <uint32_t srcBytes, class Rule, class To>
inline void Row(const uint8_t* src, uint8_t* dst, uint32_t w, PackedRow portable) {
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16)
    To::Put(dst + To::bytes * size_t(x), Rule::Apply(LoadPixels<srcBytes>(src + srcBytes * size_t(x))));
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

const PackedRowKernels kPackedRowsAVX512 = {
    Bgr555ToBgrx,  Bgr555ToBgr24,  Bgr555ToRgb24,    Bgr565ToBgrx,      Bgr565ToBgr24, Bgr565ToRgb24,
    Bgr10ToBgrx,   Bgr10ToBgr24,   PhoenixToBgrx,    PhoenixToBgr24,    RgbPhoenixToBgrx, RgbPhoenixToBgr24,
    GvspV1ToBgrx,  GvspV1ToBgr24,  GvspV2ToBgrx,     GvspV2ToBgr24,
};

}  // namespace kestrelink::rows
