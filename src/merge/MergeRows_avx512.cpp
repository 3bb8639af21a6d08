// The merger's 8-bit overlay rows with AVX-512 and the byte permutes
// (VBMI): a 256-entry byte table lies in four registers and is read by two
// two-register permutes and a blend on the index's top bit, 64 pixels at a
// time; the last pixels of a row go through masked loads and stores.
#include <immintrin.h>

#include "merge/MergeBlend.h"
#include "merge/MergeRows.h"
#include "merge/MergeRows16Body.h"

namespace kestrelink::merge {
namespace {

struct PermuteTable {
  __m512i t0, t1, t2, t3;
  explicit PermuteTable(const uint8_t* table)
      : t0(_mm512_loadu_si512(table)),
        t1(_mm512_loadu_si512(table + 64)),
        t2(_mm512_loadu_si512(table + 128)),
        t3(_mm512_loadu_si512(table + 192)) {}
  __m512i operator()(__m512i v) const {
    const __m512i low = _mm512_permutex2var_epi8(t0, v, t1), high = _mm512_permutex2var_epi8(t2, v, t3);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(v), low, high);
  }
};

// The lanes of the first n bytes (n below 64 gives a partial mask).
inline __mmask64 FirstBytes(uint32_t n) { return n >= 64 ? ~__mmask64(0) : (__mmask64(1) << n) - 1; }

inline __m512i Load(const uint8_t* p, __mmask64 m) { return _mm512_maskz_loadu_epi8(m, p); }
inline void Store(uint8_t* p, __mmask64 m, __m512i v) { _mm512_mask_storeu_epi8(p, m, v); }

// ((256 - w) b + w a) >> 8 of 64 pixels, as two halves.
inline __m512i Blend64(__m512i a, __m512i b, __m256i wa, __m256i wb) {
  const __m256i low = BlendBytes(_mm512_castsi512_si256(a), _mm512_castsi512_si256(b), wa, wb);
  const __m256i high = BlendBytes(_mm512_extracti64x4_epi64(a, 1), _mm512_extracti64x4_epi64(b, 1), wa, wb);
  return _mm512_inserti64x4(_mm512_castsi256_si512(low), high, 1);
}

void Blend8(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, uint32_t w) {
  const __m256i wa = _mm256_set1_epi16(int16_t(w)), wb = _mm256_set1_epi16(int16_t(256 - w));
  for (uint32_t i = 0; i < n; i += 64) {
    const __mmask64 m = FirstBytes(n - i);
    Store(out + i, m, Blend64(Load(a + i, m), Load(b + i, m), wa, wb));
  }
}

void BlendLookup8(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, uint32_t w, const uint8_t* table) {
  const __m256i wa = _mm256_set1_epi16(int16_t(w)), wb = _mm256_set1_epi16(int16_t(256 - w));
  const PermuteTable t(table);
  for (uint32_t i = 0; i < n; i += 64) {
    const __mmask64 m = FirstBytes(n - i);
    Store(out + i, m, t(Blend64(Load(a + i, m), Load(b + i, m), wa, wb)));
  }
}

void Lookup8(const uint8_t* in, uint8_t* out, uint32_t n, const uint8_t* table) {
  const PermuteTable t(table);
  for (uint32_t i = 0; i < n; i += 64) {
    const __mmask64 m = FirstBytes(n - i);
    Store(out + i, m, t(Load(in + i, m)));
  }
}

// min(256 a / b, 255) of sixteen pixels in 32-bit lanes, read from a and
// b under mask m, b taken as at least 1. The reciprocal estimate, refined
// by one Newton step, puts 256 a / b within 1e-4 of the true quotient; a
// true quotient below 256 lies on an integer or at least 1/255 from one,
// so adding 1/512 before truncating gives its floor. Larger ones truncate
// to 255 or more.
inline __m512i Ratio16(const uint8_t* a, const uint8_t* b, __mmask16 m) {
  const __m512 af = _mm512_cvtepi32_ps(_mm512_slli_epi32(_mm512_cvtepu8_epi32(_mm_maskz_loadu_epi8(m, a)), 8));
  const __m512 bf =
      _mm512_cvtepi32_ps(_mm512_max_epi32(_mm512_cvtepu8_epi32(_mm_maskz_loadu_epi8(m, b)), _mm512_set1_epi32(1)));
  const __m512 r0 = _mm512_rcp14_ps(bf);
  const __m512 r1 = _mm512_mul_ps(r0, _mm512_fnmadd_ps(bf, r0, _mm512_set1_ps(2.0f)));
  const __m512 q = _mm512_fmadd_ps(af, r1, _mm512_set1_ps(1.0f / 512.0f));
  return _mm512_min_epi32(_mm512_cvttps_epi32(q), _mm512_set1_epi32(255));
}

// The ratios of 64 pixels as bytes in order (m the pixels' mask).
inline __m512i Ratio64(const uint8_t* a, const uint8_t* b, __mmask64 m) {
  const __m512i q0 = Ratio16(a, b, __mmask16(m)), q1 = Ratio16(a + 16, b + 16, __mmask16(m >> 16));
  const __m512i q2 = Ratio16(a + 32, b + 32, __mmask16(m >> 32)), q3 = Ratio16(a + 48, b + 48, __mmask16(m >> 48));
  // The packs interleave the 128-bit lanes; the permute puts them back in order.
  const __m512i bytes = _mm512_packus_epi16(_mm512_packus_epi32(q0, q1), _mm512_packus_epi32(q2, q3));
  return _mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15), bytes);
}

void RatioLookup8(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, const uint8_t* byRatio,
                  const uint8_t* byValue) {
  const PermuteTable ratioTable(byRatio), valueTable(byValue);
  for (uint32_t i = 0; i < n; i += 64) {
    const __mmask64 m = FirstBytes(n - i);
    const __m512i va = Load(a + i, m), vb = Load(b + i, m);
    const __mmask64 zero = _mm512_testn_epi8_mask(vb, vb);
    Store(out + i, m, _mm512_mask_blend_epi8(zero, ratioTable(Ratio64(a + i, b + i, m)), valueTable(va)));
  }
}

// Three planes of 64 pixels to 192 bytes of BGR: each 64-byte part takes
// its blue and green bytes by one two-register permute and its red bytes
// by a masked permute.
struct Interleave {
  __m512i blueGreen[3], red[3];
  __mmask64 redBytes[3];
  Interleave() {
    for (int part = 0; part < 3; ++part) {
      alignas(64) uint8_t bg[64], r[64];
      __mmask64 mask = 0;
      for (int j = 0; j < 64; ++j) {
        const int at = 64 * part + j, pixel = at / 3, channel = at % 3;
        bg[j] = uint8_t(channel == 0 ? pixel : channel == 1 ? 64 + pixel : 0);
        r[j] = uint8_t(pixel);
        if (channel == 2) mask |= __mmask64(1) << j;
      }
      blueGreen[part] = _mm512_load_si512(bg);
      red[part] = _mm512_load_si512(r);
      redBytes[part] = mask;
    }
  }
  // Stores the first 3n bytes (n at most 64).
  void Store(uint8_t* p, uint32_t n, __m512i b, __m512i g, __m512i r) const {
    const uint32_t bytes = 3 * n;
    for (int part = 0; part < 3; ++part) {
      if (bytes <= uint32_t(64 * part)) break;
      const __m512i v = _mm512_mask_permutexvar_epi8(_mm512_permutex2var_epi8(b, blueGreen[part], g), redBytes[part],
                                                     red[part], r);
      _mm512_mask_storeu_epi8(p + 64 * part, FirstBytes(bytes - 64 * part), v);
    }
  }
};

const Interleave& Planes() {
  static const Interleave planes;
  return planes;
}

void Colour8(const uint8_t* in, uint8_t* bgr, uint32_t n, const ColourTable& colour) {
  const PermuteTable blue(colour.plane[0]), green(colour.plane[1]), red(colour.plane[2]);
  const Interleave& planes = Planes();
  for (uint32_t i = 0; i < n; i += 64) {
    const uint32_t count = n - i < 64 ? n - i : 64;
    const __m512i v = Load(in + i, FirstBytes(count));
    planes.Store(bgr + 3 * size_t(i), count, blue(v), green(v), red(v));
  }
}

void RatioColour8(const uint8_t* a, const uint8_t* b, uint8_t* bgr, uint32_t n, const ColourTable& byRatio,
                  const ColourTable& byValue) {
  const PermuteTable ratioBlue(byRatio.plane[0]), ratioGreen(byRatio.plane[1]), ratioRed(byRatio.plane[2]);
  const PermuteTable valueBlue(byValue.plane[0]), valueGreen(byValue.plane[1]), valueRed(byValue.plane[2]);
  const Interleave& planes = Planes();
  for (uint32_t i = 0; i < n; i += 64) {
    const uint32_t count = n - i < 64 ? n - i : 64;
    const __mmask64 m = FirstBytes(count);
    const __m512i va = Load(a + i, m), vb = Load(b + i, m);
    const __mmask64 zero = _mm512_testn_epi8_mask(vb, vb);
    const __m512i q = Ratio64(a + i, b + i, m);
    planes.Store(bgr + 3 * size_t(i), count, _mm512_mask_blend_epi8(zero, ratioBlue(q), valueBlue(va)),
                 _mm512_mask_blend_epi8(zero, ratioGreen(q), valueGreen(va)),
                 _mm512_mask_blend_epi8(zero, ratioRed(q), valueRed(va)));
  }
}

// Sixteen entries of a 16-bit table: each lane gathers the 32 bits at its
// entry and keeps the low half; the last entry, whose 32 bits would reach
// past the table, is put in by a mask.
void Lookup16(const uint16_t* in, uint16_t* out, uint32_t n, const uint16_t* table, uint32_t top) {
  const __m512i topLanes = _mm512_set1_epi32(int(top)), last = _mm512_set1_epi32(table[top]);
  for (uint32_t i = 0; i < n; i += 16) {
    const __mmask16 m = n - i >= 16 ? __mmask16(0xFFFF) : __mmask16((1u << (n - i)) - 1);
    const __m512i index =
        _mm512_min_epu32(_mm512_cvtepu16_epi32(_mm256_maskz_loadu_epi16(m, in + i)), topLanes);
    const __mmask16 atTop = _mm512_cmpeq_epi32_mask(index, topLanes);
    const __m512i words = _mm512_mask_i32gather_epi32(last, __mmask16(~atTop), index, table, 2);
    _mm256_mask_storeu_epi16(out + i, m, _mm512_cvtepi32_epi16(words));
  }
}

// min(256 a / b, 255) of sixteen pixels of up to 16 bits held at top, read
// under mask m, b taken as at least 1: the numerator is below 2^24, so the
// correctly rounded single-precision quotient floors to the integer one (a
// quotient below 256 lies on an integer or at least 1/b from one, more than
// half a unit of its last place).
inline __m512i Ratio16x16(const uint16_t* a, const uint16_t* b, __mmask16 m, __m512i top) {
  const __m512i a32 = _mm512_min_epu32(_mm512_cvtepu16_epi32(_mm256_maskz_loadu_epi16(m, a)), top);
  const __m512i b32 = _mm512_min_epu32(_mm512_cvtepu16_epi32(_mm256_maskz_loadu_epi16(m, b)), top);
  const __m512 q = _mm512_div_ps(_mm512_cvtepi32_ps(_mm512_slli_epi32(a32, 8)),
                                 _mm512_cvtepi32_ps(_mm512_max_epi32(b32, _mm512_set1_epi32(1))));
  return _mm512_min_epi32(_mm512_cvttps_epi32(q), _mm512_set1_epi32(255));
}

void RatioIndex16(const uint16_t* a, const uint16_t* b, const uint8_t* byValue, uint8_t* out, uint32_t n,
                  uint32_t top, const uint8_t* byRatio) {
  const PermuteTable ratioTable(byRatio);
  const __m512i topLanes = _mm512_set1_epi32(int(top));
  for (uint32_t i = 0; i < n; i += 64) {
    const __mmask64 m = FirstBytes(n - i);
    const __m512i q0 = Ratio16x16(a + i, b + i, __mmask16(m), topLanes);
    const __m512i q1 = Ratio16x16(a + i + 16, b + i + 16, __mmask16(m >> 16), topLanes);
    const __m512i q2 = Ratio16x16(a + i + 32, b + i + 32, __mmask16(m >> 32), topLanes);
    const __m512i q3 = Ratio16x16(a + i + 48, b + i + 48, __mmask16(m >> 48), topLanes);
    const __m512i bytes = _mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15),
                                                   _mm512_packus_epi16(_mm512_packus_epi32(q0, q1), _mm512_packus_epi32(q2, q3)));
    const __mmask64 zero =
        __mmask64(_mm512_testn_epi16_mask(_mm512_maskz_loadu_epi16(__mmask32(m), b + i),
                                          _mm512_maskz_loadu_epi16(__mmask32(m), b + i))) |
        __mmask64(_mm512_testn_epi16_mask(_mm512_maskz_loadu_epi16(__mmask32(m >> 32), b + i + 32),
                                          _mm512_maskz_loadu_epi16(__mmask32(m >> 32), b + i + 32)))
            << 32;
    Store(out + i, m, _mm512_mask_blend_epi8(zero, ratioTable(bytes), Load(byValue + i, m)));
  }
}

}  // namespace

const MergeRowKernels kMergeRowsAVX512 = {Blend8,       BlendLookup8, Lookup8, RatioLookup8, Colour8,
                                          RatioColour8, Blend16,      Hold16,  Lookup16,
                                          RatioIndex16};

}  // namespace kestrelink::merge
