// The merger's 8-bit overlay rows with AVX2: byte tables looked up sixteen
// entries at a time by the byte shuffle, colours gathered as packed words.
#include <immintrin.h>

#include "merge/MergeBlend.h"
#include "merge/MergeRows.h"
#include "merge/MergeRows16Body.h"

namespace kestrelink::merge {
namespace {

// A 256-entry byte table as sixteen shuffles. Entries are taken in two
// halves of eight rows of sixteen; row k holds the difference (xor) of rows
// k and k - 1, so that adding up rows 0 .. h by xor gives row h. A sample
// v of the half is v - 16 k at step k (saturating): once that turns
// negative its lane gives 0, so exactly rows 0 .. v >> 4 are added. Samples
// of the other half are negative from the start.
struct ShuffleTable {
  __m256i low[8], high[8];
  explicit ShuffleTable(const uint8_t* table) {
    __m128i previousLow = _mm_setzero_si128(), previousHigh = _mm_setzero_si128();
    for (int k = 0; k < 8; ++k) {
      const __m128i l = _mm_loadu_si128(reinterpret_cast<const __m128i*>(table + 16 * k));
      const __m128i h = _mm_loadu_si128(reinterpret_cast<const __m128i*>(table + 128 + 16 * k));
      low[k] = _mm256_broadcastsi128_si256(_mm_xor_si128(l, previousLow));
      high[k] = _mm256_broadcastsi128_si256(_mm_xor_si128(h, previousHigh));
      previousLow = l, previousHigh = h;
    }
  }
  __m256i operator()(__m256i v) const {
    const __m256i sixteen = _mm256_set1_epi8(16);
    __m256i lowIndex = v, highIndex = _mm256_xor_si256(v, _mm256_set1_epi8(-128));
    __m256i r = _mm256_setzero_si256();
    for (int k = 0; k < 8; ++k) {
      r = _mm256_xor_si256(r, _mm256_shuffle_epi8(low[k], lowIndex));
      r = _mm256_xor_si256(r, _mm256_shuffle_epi8(high[k], highIndex));
      lowIndex = _mm256_subs_epi8(lowIndex, sixteen);
      highIndex = _mm256_subs_epi8(highIndex, sixteen);
    }
    return r;
  }
};

inline __m256i Load32(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store32(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

inline __m256i Blend32(const uint8_t* a, const uint8_t* b, __m256i wa, __m256i wb) {
  return BlendBytes(Load32(a), Load32(b), wa, wb);
}

void Blend8(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, uint32_t w) {
  const __m256i wa = _mm256_set1_epi16(int16_t(w)), wb = _mm256_set1_epi16(int16_t(256 - w));
  uint32_t i = 0;
  for (; i + 32 <= n; i += 32) Store32(out + i, Blend32(a + i, b + i, wa, wb));
  kMergeRowsPortable.blend8(a + i, b + i, out + i, n - i, w);
}

void BlendLookup8(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, uint32_t w, const uint8_t* table) {
  const __m256i wa = _mm256_set1_epi16(int16_t(w)), wb = _mm256_set1_epi16(int16_t(256 - w));
  const ShuffleTable t(table);
  uint32_t i = 0;
  for (; i + 32 <= n; i += 32) Store32(out + i, t(Blend32(a + i, b + i, wa, wb)));
  kMergeRowsPortable.blendLookup8(a + i, b + i, out + i, n - i, w, table);
}

void Lookup8(const uint8_t* in, uint8_t* out, uint32_t n, const uint8_t* table) {
  const ShuffleTable t(table);
  uint32_t i = 0;
  for (; i + 32 <= n; i += 32) Store32(out + i, t(Load32(in + i)));
  kMergeRowsPortable.lookup8(in + i, out + i, n - i, table);
}

// min(256 a / b, 255) of eight pixels in 32-bit lanes, b taken as at least
// 1. The reciprocal estimate, refined by one Newton step, puts 256 a / b
// within 2e-4 of the true quotient; a true quotient below 256 lies on an
// integer or at least 1/255 from one, so adding 1/512 before truncating
// gives its floor. Larger ones truncate to 255 or more.
inline __m256i Ratio8(__m256i a32, __m256i b32) {
  const __m256 af = _mm256_cvtepi32_ps(_mm256_slli_epi32(a32, 8));
  const __m256 bf = _mm256_cvtepi32_ps(_mm256_max_epi32(b32, _mm256_set1_epi32(1)));
  const __m256 r0 = _mm256_rcp_ps(bf);
  const __m256 r1 = _mm256_mul_ps(r0, _mm256_sub_ps(_mm256_set1_ps(2.0f), _mm256_mul_ps(bf, r0)));
  const __m256 q = _mm256_add_ps(_mm256_mul_ps(af, r1), _mm256_set1_ps(1.0f / 512.0f));
  return _mm256_min_epi32(_mm256_cvttps_epi32(q), _mm256_set1_epi32(255));
}

inline __m256i Widen8(const uint8_t* p) {
  return _mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
}

void RatioLookup8(const uint8_t* a, const uint8_t* b, uint8_t* out, uint32_t n, const uint8_t* byRatio,
                  const uint8_t* byValue) {
  const ShuffleTable ratioTable(byRatio), valueTable(byValue);
  uint32_t i = 0;
  for (; i + 32 <= n; i += 32) {
    __m256i q[4];
    for (int j = 0; j < 4; ++j) q[j] = Ratio8(Widen8(a + i + 8 * j), Widen8(b + i + 8 * j));
    // Packing interleaves the 128-bit lanes; the permute puts them back in order.
    const __m256i bytes = _mm256_permutevar8x32_epi32(
        _mm256_packus_epi16(_mm256_packus_epi32(q[0], q[1]), _mm256_packus_epi32(q[2], q[3])),
        _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
    const __m256i va = Load32(a + i), zero = _mm256_cmpeq_epi8(Load32(b + i), _mm256_setzero_si256());
    Store32(out + i, _mm256_blendv_epi8(ratioTable(bytes), valueTable(va), zero));
  }
  kMergeRowsPortable.ratioLookup8(a + i, b + i, out + i, n - i, byRatio, byValue);
}

// Eight packed colours to 24 bytes of BGR.
inline void StoreColours(uint8_t* p, __m256i packed) {
  const __m256i squeezed = _mm256_shuffle_epi8(
      packed, _mm256_setr_epi8(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1,  //
                               0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, -1, -1, -1, -1));
  const __m256i joined = _mm256_permutevar8x32_epi32(squeezed, _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 3, 7));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(joined));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), _mm256_extracti128_si256(joined, 1));
}

void Colour8(const uint8_t* in, uint8_t* bgr, uint32_t n, const ColourTable& colour) {
  const int* packed = reinterpret_cast<const int*>(colour.packed);
  uint32_t i = 0;
  for (; i + 8 <= n; i += 8) StoreColours(bgr + 3 * size_t(i), _mm256_i32gather_epi32(packed, Widen8(in + i), 4));
  kMergeRowsPortable.colour8(in + i, bgr + 3 * size_t(i), n - i, colour);
}

void RatioColour8(const uint8_t* a, const uint8_t* b, uint8_t* bgr, uint32_t n, const ColourTable& byRatio,
                  const ColourTable& byValue) {
  const int* ratioColours = reinterpret_cast<const int*>(byRatio.packed);
  const int* valueColours = reinterpret_cast<const int*>(byValue.packed);
  uint32_t i = 0;
  for (; i + 8 <= n; i += 8) {
    const __m256i a32 = Widen8(a + i), b32 = Widen8(b + i);
    const __m256i zero = _mm256_cmpeq_epi32(b32, _mm256_setzero_si256());
    // Each lane is gathered from one table only: by the ratio where b is
    // not 0, then by the value where it is.
    const __m256i byQ = _mm256_mask_i32gather_epi32(_mm256_setzero_si256(), ratioColours, Ratio8(a32, b32),
                                                    _mm256_xor_si256(zero, _mm256_set1_epi32(-1)), 4);
    StoreColours(bgr + 3 * size_t(i), _mm256_mask_i32gather_epi32(byQ, valueColours, a32, zero, 4));
  }
  kMergeRowsPortable.ratioColour8(a + i, b + i, bgr + 3 * size_t(i), n - i, byRatio, byValue);
}

// Eight entries of a 16-bit table: each lane gathers the 32 bits at its
// entry and keeps the low half; the last entry, whose 32 bits would reach
// past the table, is put in by a blend.
inline __m256i Gather16(const uint16_t* table, __m256i index, __m256i top, __m256i last) {
  const __m256i atTop = _mm256_cmpeq_epi32(index, top);
  const __m256i words = _mm256_mask_i32gather_epi32(_mm256_setzero_si256(), reinterpret_cast<const int*>(table),
                                                    index, _mm256_xor_si256(atTop, _mm256_set1_epi32(-1)), 2);
  return _mm256_blendv_epi8(_mm256_and_si256(words, _mm256_set1_epi32(0xFFFF)), last, atTop);
}

void Lookup16(const uint16_t* in, uint16_t* out, uint32_t n, const uint16_t* table, uint32_t top) {
  const __m256i topLanes = _mm256_set1_epi32(int(top)), last = _mm256_set1_epi32(table[top]);
  uint32_t i = 0;
  for (; i + 16 <= n; i += 16) {
    const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + i));
    const __m256i low = _mm256_min_epu32(_mm256_cvtepu16_epi32(_mm256_castsi256_si128(v)), topLanes);
    const __m256i high = _mm256_min_epu32(_mm256_cvtepu16_epi32(_mm256_extracti128_si256(v, 1)), topLanes);
    const __m256i words = _mm256_packus_epi32(Gather16(table, low, topLanes, last), Gather16(table, high, topLanes, last));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + i), _mm256_permute4x64_epi64(words, 0xD8));
  }
  kMergeRowsPortable.lookup16(in + i, out + i, n - i, table, top);
}

// min(256 a / b, 255) of eight pixels of up to 16 bits, b at least 1: the
// numerator is below 2^24, so the correctly rounded single-precision
// quotient floors to the integer one (a quotient below 256 lies on an
// integer or at least 1/b from one, more than half a unit of its last place).
inline __m256i Ratio16x8(__m256i a32, __m256i b32) {
  const __m256 q = _mm256_div_ps(_mm256_cvtepi32_ps(_mm256_slli_epi32(a32, 8)),
                                 _mm256_cvtepi32_ps(_mm256_max_epi32(b32, _mm256_set1_epi32(1))));
  return _mm256_min_epi32(_mm256_cvttps_epi32(q), _mm256_set1_epi32(255));
}

void RatioIndex16(const uint16_t* a, const uint16_t* b, const uint8_t* byValue, uint8_t* out, uint32_t n,
                  uint32_t top, const uint8_t* byRatio) {
  const ShuffleTable ratioTable(byRatio);
  const __m256i topLanes = _mm256_set1_epi32(int(top));
  uint32_t i = 0;
  for (; i + 32 <= n; i += 32) {
    __m256i q[4];
    for (int j = 0; j < 4; ++j) {
      const __m256i a32 = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(a + i + 8 * j)));
      const __m256i b32 = _mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(b + i + 8 * j)));
      q[j] = Ratio16x8(_mm256_min_epu32(a32, topLanes), _mm256_min_epu32(b32, topLanes));
    }
    const __m256i bytes = _mm256_permutevar8x32_epi32(
        _mm256_packus_epi16(_mm256_packus_epi32(q[0], q[1]), _mm256_packus_epi32(q[2], q[3])),
        _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7));
    // b 0: a 16-bit zero is two zero bytes, packed to one lane a pixel.
    const __m256i b0 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(b + i));
    const __m256i b1 = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(b + i + 16));
    const __m256i zero16a = _mm256_cmpeq_epi16(b0, _mm256_setzero_si256());
    const __m256i zero16b = _mm256_cmpeq_epi16(b1, _mm256_setzero_si256());
    const __m256i zero = _mm256_permute4x64_epi64(_mm256_packs_epi16(zero16a, zero16b), 0xD8);
    Store32(out + i, _mm256_blendv_epi8(ratioTable(bytes), Load32(byValue + i), zero));
  }
  kMergeRowsPortable.ratioIndex16(a + i, b + i, byValue + i, out + i, n - i, top, byRatio);
}

}  // namespace

const MergeRowKernels kMergeRowsAVX2 = {Blend8,       BlendLookup8, Lookup8, RatioLookup8, Colour8,
                                        RatioColour8, Blend16,      Hold16,  Lookup16,
                                        RatioIndex16};

}  // namespace kestrelink::merge
