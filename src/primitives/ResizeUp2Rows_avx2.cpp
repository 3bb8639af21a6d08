// AVX2 rows of the exact 2x bilinear enlargement (built with -mavx2).
// Each source sample pairs with its right neighbour by one unpack; a
// multiply-add of the pair with (3, 1) and (1, 3) gives the two horizontal
// blends, the vertical blend and rounding follow in the same width, and the
// two output samples of a pair are joined into one wider lane, which is
// their order in the output row.
#include <immintrin.h>

#include "primitives/ResizeUp2.h"

namespace kestrelink::resize {
namespace {

inline __m256i Load(const void* p) { return _mm256_loadu_si256(static_cast<const __m256i*>(p)); }
inline void Store(void* p, __m256i v) { _mm256_storeu_si256(static_cast<__m256i*>(p), v); }

// Stores the joined samples of the unpacked low and high halves in column
// order: 128-bit lane 0 of lo, of hi, then lane 1 of each.
inline void StoreInOrder(void* out, __m256i lo, __m256i hi) {
  Store(out, _mm256_permute2x128_si256(lo, hi, 0x20));
  Store(static_cast<uint8_t*>(out) + 32, _mm256_permute2x128_si256(lo, hi, 0x31));
}

// pa, pb: byte pairs (column t, t + 1) of rows a and b. wa, wb: per pair the
// two output bytes of the row nearest a and nearest b.
inline void Blend8(__m256i pa, __m256i pb, __m256i& wa, __m256i& wb) {
  const __m256i w31 = _mm256_set1_epi16(0x0103), w13 = _mm256_set1_epi16(0x0301), eight = _mm256_set1_epi16(8);
  const __m256i ha0 = _mm256_maddubs_epi16(pa, w31), ha1 = _mm256_maddubs_epi16(pa, w13);
  const __m256i hb0 = _mm256_maddubs_epi16(pb, w31), hb1 = _mm256_maddubs_epi16(pb, w13);
  const __m256i s0 = _mm256_add_epi16(_mm256_add_epi16(ha0, hb0), eight);
  const __m256i s1 = _mm256_add_epi16(_mm256_add_epi16(ha1, hb1), eight);
  // (s + 2h) >> 4 is at most 255: the first sample stays in the low byte,
  // the second's shifted value lands in the high byte.
  const __m256i high = _mm256_set1_epi16(int16_t(0xFF00));
  auto join = [&](__m256i s0x, __m256i s1x) {
    return _mm256_or_si256(_mm256_srli_epi16(s0x, 4), _mm256_and_si256(_mm256_slli_epi16(s1x, 4), high));
  };
  wa = join(_mm256_add_epi16(s0, _mm256_add_epi16(ha0, ha0)), _mm256_add_epi16(s1, _mm256_add_epi16(ha1, ha1)));
  wb = join(_mm256_add_epi16(s0, _mm256_add_epi16(hb0, hb0)), _mm256_add_epi16(s1, _mm256_add_epi16(hb1, hb1)));
}

template <bool Two>
void Rows8Body(const uint8_t* a, const uint8_t* b, uint32_t m, uint8_t* outA, uint8_t* outB) {
  uint32_t t = 0;
  for (; t + 32 <= m; t += 32) {
    const __m256i a0 = Load(a + t), a1 = Load(a + t + 1), b0 = Load(b + t), b1 = Load(b + t + 1);
    __m256i loA, loB, hiA, hiB;
    Blend8(_mm256_unpacklo_epi8(a0, a1), _mm256_unpacklo_epi8(b0, b1), loA, loB);
    Blend8(_mm256_unpackhi_epi8(a0, a1), _mm256_unpackhi_epi8(b0, b1), hiA, hiB);
    StoreInOrder(outA + 2 * t, loA, hiA);
    if constexpr (Two) StoreInOrder(outB + 2 * t, loB, hiB);
  }
  Up2RowsPortable(a, b, t, m, outA, Two ? outB : nullptr);
}

// 16-bit samples biased by -32768 for the signed multiply-add; the bias of
// 3h + h' (16 * -32768) goes back with the rounding.
inline void Blend16(__m256i pa, __m256i pb, __m256i& wa, __m256i& wb) {
  const __m256i w31 = _mm256_set1_epi32(0x00010003), w13 = _mm256_set1_epi32(0x00030001);
  const __m256i round = _mm256_set1_epi32(16 * 32768 + 8);
  const __m256i ha0 = _mm256_madd_epi16(pa, w31), ha1 = _mm256_madd_epi16(pa, w13);
  const __m256i hb0 = _mm256_madd_epi16(pb, w31), hb1 = _mm256_madd_epi16(pb, w13);
  const __m256i s0 = _mm256_add_epi32(_mm256_add_epi32(ha0, hb0), round);
  const __m256i s1 = _mm256_add_epi32(_mm256_add_epi32(ha1, hb1), round);
  auto join = [](__m256i s0x, __m256i s1x) {
    return _mm256_or_si256(_mm256_srli_epi32(s0x, 4), _mm256_slli_epi32(_mm256_srli_epi32(s1x, 4), 16));
  };
  wa = join(_mm256_add_epi32(s0, _mm256_add_epi32(ha0, ha0)), _mm256_add_epi32(s1, _mm256_add_epi32(ha1, ha1)));
  wb = join(_mm256_add_epi32(s0, _mm256_add_epi32(hb0, hb0)), _mm256_add_epi32(s1, _mm256_add_epi32(hb1, hb1)));
}

template <bool Two>
void Rows16Body(const uint16_t* a, const uint16_t* b, uint32_t m, uint16_t* outA, uint16_t* outB) {
  const __m256i bias = _mm256_set1_epi16(int16_t(0x8000));
  uint32_t t = 0;
  for (; t + 16 <= m; t += 16) {
    const __m256i a0 = _mm256_xor_si256(Load(a + t), bias), a1 = _mm256_xor_si256(Load(a + t + 1), bias);
    const __m256i b0 = _mm256_xor_si256(Load(b + t), bias), b1 = _mm256_xor_si256(Load(b + t + 1), bias);
    __m256i loA, loB, hiA, hiB;
    Blend16(_mm256_unpacklo_epi16(a0, a1), _mm256_unpacklo_epi16(b0, b1), loA, loB);
    Blend16(_mm256_unpackhi_epi16(a0, a1), _mm256_unpackhi_epi16(b0, b1), hiA, hiB);
    StoreInOrder(outA + 2 * t, loA, hiA);
    if constexpr (Two) StoreInOrder(outB + 2 * t, loB, hiB);
  }
  Up2RowsPortable(a, b, t, m, outA, Two ? outB : nullptr);
}

void Rows8(const uint8_t* a, const uint8_t* b, uint32_t m, uint8_t* outA, uint8_t* outB) {
  if (outB)
    Rows8Body<true>(a, b, m, outA, outB);
  else
    Rows8Body<false>(a, b, m, outA, outB);
}
void Rows16(const uint16_t* a, const uint16_t* b, uint32_t m, uint16_t* outA, uint16_t* outB) {
  if (outB)
    Rows16Body<true>(a, b, m, outA, outB);
  else
    Rows16Body<false>(a, b, m, outA, outB);
}

}  // namespace

const Up2RowKernels kUp2RowsAVX2 = {Rows8, Rows16};

}  // namespace kestrelink::resize
