// AVX-512 four-pixel steps of the YUV combines (built with the AVX-512 flags).
// Sixty-four pixels a round, as two sets of 32 in 16-bit lanes with pixels
// 8k .. 8k+7 in 128-bit lane k; the formula as in the AVX2 rows, its green
// sign step a masked add and, where pixels share chroma in pairs, its green
// term computed once a pair. The narrowed B, G and R of the round are put in
// pixel order, 16 pixels a lane; nine byte shuffles make each lane's three
// 16-byte output chunks, and six two-source permutes put the chunks of the
// four lanes in memory order. Separate from the AVX2 rows because those
// steps (masks, lane permutes across four lanes) have no 256-bit form. Each
// round reads only bytes of its own steps: loads that would reach further
// are masked.
#include <immintrin.h>

#include <cstddef>

#include "geometry/rows/CombineYuvIndices.h"
#include "geometry/rows/CombineYuvRows.h"

namespace kestrelink::rows {
namespace {

using namespace yuvsteps;

inline __m512i Lanes(__m512i bytes, const Index32& index) {
  return _mm512_shuffle_epi8(bytes,
                             _mm512_broadcast_i64x4(_mm256_load_si256(reinterpret_cast<const __m256i*>(index.i))));
}

// g of each 32-bit lane [U - 128 | V - 128 << 16] (convert/YuvFormula.h),
// in 32 bits; the green sign step is a masked add.
inline __m512i Green32(__m512i uv) {
  const __m512i weights = _mm512_set1_epi32(int(uint32_t(uint16_t(-32152)) << 16 | 12727u));
  const __m512i high = _mm512_set1_epi32(int(0xFFFF0000u)), half = _mm512_set1_epi32(32768);
  const __m512i t = _mm512_add_epi32(_mm512_madd_epi16(uv, weights), _mm512_and_si512(uv, high));
  const __mmask16 above = _mm512_cmpgt_epi32_mask(t, _mm512_setzero_si512());
  return _mm512_srai_epi32(_mm512_mask_add_epi32(_mm512_sub_epi32(t, half), above, t, half), 16);
}

// g per pixel from 16-bit U - 128 and V - 128.
inline __m512i GreenOffset(__m512i u, __m512i v) {
  return _mm512_packs_epi32(Green32(_mm512_unpacklo_epi16(u, v)), Green32(_mm512_unpackhi_epi16(u, v)));
}

// g per pixel from each pair's lane: computed once a pair, given to both pixels.
inline __m512i PairGreen(__m512i uv) {
  const __m512i g = Green32(uv);
  const __m512i words = _mm512_packs_epi32(g, g);
  return _mm512_unpacklo_epi16(words, words);
}

inline __m512i Limit(__m512i x) {
  return _mm512_min_epi16(_mm512_max_epi16(x, _mm512_setzero_si512()), _mm512_set1_epi16(255));
}

struct Channels {
  __m512i b, g, r;
};

inline Channels Formula(__m512i y, __m512i u, __m512i v) {
  const __m512i bias = _mm512_set1_epi16(128);
  u = _mm512_sub_epi16(u, bias), v = _mm512_sub_epi16(v, bias);
  return {Limit(_mm512_add_epi16(y, u)), Limit(_mm512_sub_epi16(y, GreenOffset(u, v))), Limit(_mm512_add_epi16(y, v))};
}

// The same where pixels go in pairs that share U and V: `pairs` holds each
// pair's U and V as PairIndex spreads them.
inline Channels FormulaPairs(__m512i y, __m512i u, __m512i v, __m512i pairs) {
  const __m512i bias = _mm512_set1_epi16(128);
  u = _mm512_sub_epi16(u, bias), v = _mm512_sub_epi16(v, bias);
  return {Limit(_mm512_add_epi16(y, u)), Limit(_mm512_sub_epi16(y, PairGreen(_mm512_sub_epi16(pairs, bias)))),
          Limit(_mm512_add_epi16(y, v))};
}

// Bytes of two sets, pixels 16k .. 16k+15 in lane k: the packed quads come
// as set 0 lane 0, set 1 lane 0, set 0 lane 1, ...
inline __m512i Narrow(__m512i first, __m512i second) {
  return _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), _mm512_packus_epi16(first, second));
}

inline __m512i Chunk(const __m512i c[3], int chunk) {
  __m512i out = _mm512_setzero_si512();
  for (int channel = 0; channel < 3; ++channel)
    out = _mm512_or_si512(
        out, _mm512_shuffle_epi8(c[channel], _mm512_broadcast_i32x4(_mm_load_si128(
                                                 reinterpret_cast<const __m128i*>(kInterleave.at[chunk][channel].i)))));
  return out;
}

// Two sets of 32 pixels to 192 bytes of BGR24.
inline void Store64(const Channels& first, const Channels& second, uint8_t* dst) {
  const __m512i c[3] = {Narrow(first.b, second.b), Narrow(first.g, second.g), Narrow(first.r, second.r)};
  const __m512i o0 = Chunk(c, 0), o1 = Chunk(c, 1), o2 = Chunk(c, 2);  // chunk j of lane k in lane k
  // Memory order is o0.0 o1.0 o2.0 o0.1 | o1.1 o2.1 o0.2 o1.2 | o2.2 o0.3 o1.3 o2.3 (quads 2k, 2k+1 make lane k).
  const __m512i t0 = _mm512_permutex2var_epi64(o0, _mm512_setr_epi64(0, 1, 8, 9, 0, 0, 2, 3), o1);
  const __m512i z0 = _mm512_permutex2var_epi64(t0, _mm512_setr_epi64(0, 1, 2, 3, 8, 9, 6, 7), o2);
  const __m512i t1 = _mm512_permutex2var_epi64(o1, _mm512_setr_epi64(2, 3, 10, 11, 0, 0, 4, 5), o2);
  const __m512i z1 = _mm512_permutex2var_epi64(t1, _mm512_setr_epi64(0, 1, 2, 3, 12, 13, 6, 7), o0);
  const __m512i t2 = _mm512_permutex2var_epi64(o2, _mm512_setr_epi64(4, 5, 14, 15, 0, 0, 6, 7), o0);
  const __m512i z2 = _mm512_permutex2var_epi64(t2, _mm512_setr_epi64(0, 1, 2, 3, 14, 15, 6, 7), o1);
  _mm512_storeu_si512(dst, z0);
  _mm512_storeu_si512(dst + 64, z1);
  _mm512_storeu_si512(dst + 128, z2);
}

// 4:2:2: 64 bytes a set, eight pixels a lane as they lie.
template <const Index32& Y, const Index32& U, const Index32& V, const Index32& P>
inline Channels Pairs32(const uint8_t* s) {
  const __m512i bytes = _mm512_loadu_si512(s);
  return FormulaPairs(Lanes(bytes, Y), Lanes(bytes, U), Lanes(bytes, V), Lanes(bytes, P));
}

template <const Index32& Y, const Index32& U, const Index32& V, const Index32& P, YuvStepLayout kLayout>
void Pairs(const uint8_t* s, uint8_t* d, uint32_t steps) {
  uint32_t k = 0;
  for (; k + 16 <= steps; k += 16, s += 128, d += 192) Store64(Pairs32<Y, U, V, P>(s), Pairs32<Y, U, V, P>(s + 64), d);
  kCombineYuvPortable.steps[kLayout](s, d, steps - k);
}

void Yuv422Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  Pairs<kYuv422Y, kYuv422U, kYuv422V, kYuv422Pairs, kStepYuv422>(s, d, steps);
}
void Uvy422Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  Pairs<kUvy422Y, kUvy422U, kUvy422V, kUvy422Pairs, kStepUvy422>(s, d, steps);
}

// 4:1:1: 48 bytes a set, lane k from bytes 12k .. 12k+15 of one load masked
// to those 48 (the lane's last four bytes are not used).
inline Channels Groups32(const uint8_t* s) {
  const __m512i bytes = _mm512_permutexvar_epi32(_mm512_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6, 6, 7, 8, 9, 9, 10, 11, 12),
                                                 _mm512_maskz_loadu_epi32(0x0FFF, s));
  return FormulaPairs(Lanes(bytes, kUvy411Y), Lanes(bytes, kUvy411U), Lanes(bytes, kUvy411V),
                      Lanes(bytes, kUvy411Pairs));
}

void Uvy411Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  uint32_t k = 0;
  for (; k + 16 <= steps; k += 16, s += 96, d += 192) Store64(Groups32(s), Groups32(s + 48), d);
  kCombineYuvPortable.steps[kStepUvy411](s, d, steps - k);
}

// 4:4:4: 96 bytes a set, loaded as 64 and a masked 32; lane k takes bytes
// 24k .. 24k+15 and 24k+8 .. 24k+23.
inline Channels Pixels32(const uint8_t* s) {
  const __m512i a = _mm512_loadu_si512(s), b = _mm512_maskz_loadu_epi32(0x00FF, s + 64);
  const __m512i low =
      _mm512_permutex2var_epi32(a, _mm512_setr_epi32(0, 1, 2, 3, 6, 7, 8, 9, 12, 13, 14, 15, 18, 19, 20, 21), b);
  const __m512i high =
      _mm512_permutex2var_epi32(a, _mm512_setr_epi32(2, 3, 4, 5, 8, 9, 10, 11, 14, 15, 16, 17, 20, 21, 22, 23), b);
  return Formula(_mm512_or_si512(Lanes(low, kUvy444YLow), Lanes(high, kUvy444YHigh)),
                 _mm512_or_si512(Lanes(low, kUvy444ULow), Lanes(high, kUvy444UHigh)),
                 _mm512_or_si512(Lanes(low, kUvy444VLow), Lanes(high, kUvy444VHigh)));
}

void Uvy444Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  uint32_t k = 0;
  for (; k + 16 <= steps; k += 16, s += 192, d += 192) Store64(Pixels32(s), Pixels32(s + 96), d);
  kCombineYuvPortable.steps[kStepUvy444](s, d, steps - k);
}

}  // namespace

const CombineYuvKernels kCombineYuvAVX512 = {{Yuv422Steps, Uvy422Steps, Uvy411Steps, Uvy444Steps}};

}  // namespace kestrelink::rows
