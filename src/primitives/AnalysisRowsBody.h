#pragma once
// Body of the analysis row kernels, written once as plain loops for the
// compiler to vectorise and built by each variant's unit with its own
// instruction set. Sums and counts of bytes, which the compiler would widen
// lane by lane, use the byte-sum instruction where the unit has one
// (ANALYSIS_VECTOR_BYTES names its register width; 0 in the portable unit).
// Everything stays in an anonymous namespace so that no variant's code is
// shared with another's.
#include <immintrin.h>

#include <algorithm>
#include <cstring>

#include "primitives/AnalysisRows.h"

#ifndef ANALYSIS_VECTOR_BYTES
#error "ANALYSIS_VECTOR_BYTES must name the register width of the variant"
#endif

namespace kestrelink::analysis {
namespace {

// A signed 16-bit sample at any byte address.
typedef int16_t Unaligned16 __attribute__((aligned(1), may_alias));

inline const Unaligned16* S16(const uint8_t* p) { return reinterpret_cast<const Unaligned16*>(p); }
inline Unaligned16* S16(uint8_t* p) { return reinterpret_cast<Unaligned16*>(p); }

inline int16_t Saturate16(int v) { return int16_t(std::clamp(v, -32768, 32767)); }

void RgbToGray8Plain(const uint8_t* rgb, uint8_t* dst, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const uint8_t* p = rgb + 3 * size_t(i);
    dst[i] = uint8_t((4899u * p[0] + 9617u * p[1] + 1868u * p[2] + 8192u) >> 14);
  }
}

#if ANALYSIS_VECTOR_BYTES > 0
// Eight pixels' weighted sums, shifted: each 128-bit lane holds four pixels
// (12 of its 16 bytes), spread by the byte shuffle into (R, G) and (B, 1)
// pairs of 16-bit lanes, which the multiply-add weighs and sums in 32 bits.
inline __m256i Grey8Pixels(const uint8_t* p) {
  const __m256i v = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(p + 12), reinterpret_cast<const __m128i*>(p));
  const __m256i redGreen =
      _mm256_shuffle_epi8(v, _mm256_setr_epi8(0, -1, 1, -1, 3, -1, 4, -1, 6, -1, 7, -1, 9, -1, 10, -1,  //
                                              0, -1, 1, -1, 3, -1, 4, -1, 6, -1, 7, -1, 9, -1, 10, -1));
  const __m256i blueOne = _mm256_or_si256(
      _mm256_shuffle_epi8(v, _mm256_setr_epi8(2, -1, -1, -1, 5, -1, -1, -1, 8, -1, -1, -1, 11, -1, -1, -1,  //
                                              2, -1, -1, -1, 5, -1, -1, -1, 8, -1, -1, -1, 11, -1, -1, -1)),
      _mm256_set1_epi32(1 << 16));
  const __m256i sum = _mm256_add_epi32(_mm256_madd_epi16(redGreen, _mm256_set1_epi32(4899 | (9617 << 16))),
                                       _mm256_madd_epi16(blueOne, _mm256_set1_epi32(1868 | (8192 << 16))));
  return _mm256_srli_epi32(sum, 14);
}

void RgbToGray8(const uint8_t* rgb, uint8_t* dst, uint32_t n) {
  size_t i = 0;
  // 32 pixels a step; the last eight-pixel load reads 4 bytes past its
  // pixels, so a step needs 4 more bytes of the row after it.
  for (; 3 * (i + 32) + 4 <= 3 * size_t(n); i += 32) {
    const uint8_t* p = rgb + 3 * i;
    const __m256i low = _mm256_packus_epi32(Grey8Pixels(p), Grey8Pixels(p + 24));
    const __m256i high = _mm256_packus_epi32(Grey8Pixels(p + 48), Grey8Pixels(p + 72));
    const __m256i bytes = _mm256_packus_epi16(low, high);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i),
                        _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)));
  }
  RgbToGray8Plain(rgb + 3 * i, dst + i, n - i);
}
#else
void RgbToGray8(const uint8_t* rgb, uint8_t* dst, uint32_t n) { RgbToGray8Plain(rgb, dst, n); }
#endif

void RgbToGray16(const uint16_t* rgb, uint16_t* dst, uint32_t n) {
  for (size_t i = 0; i < n; ++i) {
    const uint16_t* p = rgb + 3 * size_t(i);
    dst[i] = uint16_t((4899u * p[0] + 9617u * p[1] + 1868u * p[2] + 8192u) >> 14);
  }
}

// Grey by the fixed-point weights in 32-bit lanes, one product, offset and
// shift per sample; 8-bit samples never reach a clamp point (all lie above 255).
template <class T, int Stride>
void WeighGrey(const T* src, T* dst, uint32_t n, const GreyWeights& w) {
  constexpr bool kClamp = sizeof(T) > 1;
  const uint32_t m0 = w.first.mul, a0 = w.first.add, s0 = w.first.shift, c0 = w.first.clampAt;
  const uint32_t m1 = w.second.mul, a1 = w.second.add, s1 = w.second.shift, c1 = w.second.clampAt;
  const uint32_t m2 = w.third.mul, a2 = w.third.add, s2 = w.third.shift, c2 = w.third.clampAt;
  for (size_t i = 0; i < n; ++i) {
    const T* p = src + Stride * i;
    uint32_t x0 = p[0], x1 = p[1], x2 = p[2];
    if constexpr (kClamp) {
      x0 = std::min(x0, c0);
      x1 = std::min(x1, c1);
      x2 = std::min(x2, c2);
    }
    const uint32_t sum = ((x0 * m0 + a0) >> s0) + ((x1 * m1 + a1) >> s1) + ((x2 * m2 + a2) >> s2);
    dst[i] = T(std::min(sum, 255u));
  }
}

#if ANALYSIS_VECTOR_BYTES > 0
// 8-bit grey in 16-bit lanes. A load holds eight pixels, four to a 128-bit
// lane; the byte shuffle puts each sample in the high byte of a 16-bit lane
// (x << 8): first samples in lanes 0-3, second in 4-7, and in a second
// shuffle the third in 0-3. Two loads' halves meet in one register of a
// sample position for 16 pixels (order 0-3, 8-11 | 4-7, 12-15).
template <int Stride>
inline __m256i LoadGreyPixels(const uint8_t* p) {
  if constexpr (Stride == 3)
    return _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(p + 12), reinterpret_cast<const __m128i*>(p));
  else
    return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
}

// Shuffle to 16-bit lanes holding, in their high bytes, sample `first` of
// the lane's four pixels in lanes 0-3 and sample `second` in lanes 4-7 (a
// negative position leaves zeros).
template <int Stride>
inline __m256i HighByteShuffle(int first, int second) {
  alignas(16) int8_t bytes[16];
  for (int j = 0; j < 4; ++j) {
    bytes[2 * j] = bytes[8 + 2 * j] = -1;
    bytes[2 * j + 1] = int8_t(first < 0 ? -1 : first + j * Stride);
    bytes[8 + 2 * j + 1] = int8_t(second < 0 ? -1 : second + j * Stride);
  }
  return _mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(bytes)));
}

struct Grey8Lanes {
  __m256i mul, add;
  __m128i shift;
  explicit Grey8Lanes(const GreyWeight& w)
      : mul(_mm256_set1_epi16(int16_t(w.mul))),
        add(_mm256_set1_epi16(int16_t(w.add >> 8))),
        shift(_mm_cvtsi32_si128(int(w.shift - 8))) {}
  __m256i Weigh(__m256i highBytes) const {
    return _mm256_srl_epi16(_mm256_add_epi16(_mm256_mulhi_epu16(highBytes, mul), add), shift);
  }
};

template <int Stride>
inline __m256i Grey16Pixels(const uint8_t* p, const Grey8Lanes& w0, const Grey8Lanes& w1, const Grey8Lanes& w2,
                            __m256i firstSecond, __m256i third) {
  const __m256i a = LoadGreyPixels<Stride>(p), b = LoadGreyPixels<Stride>(p + 8 * Stride);
  const __m256i a01 = _mm256_shuffle_epi8(a, firstSecond), b01 = _mm256_shuffle_epi8(b, firstSecond);
  const __m256i x2 = _mm256_unpacklo_epi64(_mm256_shuffle_epi8(a, third), _mm256_shuffle_epi8(b, third));
  const __m256i sum = _mm256_add_epi16(_mm256_add_epi16(w0.Weigh(_mm256_unpacklo_epi64(a01, b01)),
                                                        w1.Weigh(_mm256_unpackhi_epi64(a01, b01))),
                                       w2.Weigh(x2));
  return sum;
}

template <int Stride>
void WeighGrey8(const uint8_t* src, uint8_t* dst, uint32_t n, const GreyWeights& w) {
  const Grey8Lanes w0(w.first), w1(w.second), w2(w.third);
  const __m256i firstSecond = HighByteShuffle<Stride>(0, 1), third = HighByteShuffle<Stride>(2, -1);
  // 32 pixels a step; with three samples a pixel the last load reads 4
  // bytes past its pixels, so a step needs 4 more bytes of the row after it.
  constexpr size_t kOver = Stride == 3 ? 4 : 0;
  size_t i = 0;
  for (; Stride * (i + 32) + kOver <= Stride * size_t(n); i += 32) {
    const uint8_t* p = src + Stride * i;
    const __m256i low = Grey16Pixels<Stride>(p, w0, w1, w2, firstSecond, third);
    const __m256i high = Grey16Pixels<Stride>(p + 16 * Stride, w0, w1, w2, firstSecond, third);
    // The sums saturate at 255, the tables' clamp.
    const __m256i bytes = _mm256_packus_epi16(low, high);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i),
                        _mm256_permutevar8x32_epi32(bytes, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7)));
  }
  WeighGrey<uint8_t, Stride>(src + Stride * i, dst + i, n - uint32_t(i), w);
}
#else
template <int Stride>
void WeighGrey8(const uint8_t* src, uint8_t* dst, uint32_t n, const GreyWeights& w) {
  WeighGrey<uint8_t, Stride>(src, dst, n, w);
}
#endif

#if ANALYSIS_VECTOR_BYTES > 0
typedef uint8_t Bytes __attribute__((vector_size(ANALYSIS_VECTOR_BYTES)));
constexpr uint32_t kLanes = ANALYSIS_VECTOR_BYTES;

inline Bytes LoadBytes(const uint8_t* p) {
  Bytes v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

// Sum of all bytes of the vector.
inline uint64_t SumBytes(Bytes v) {
#if ANALYSIS_VECTOR_BYTES == 64
  return uint64_t(_mm512_reduce_add_epi64(_mm512_sad_epu8(__m512i(v), _mm512_setzero_si512())));
#else
  const __m256i s = _mm256_sad_epu8(__m256i(v), _mm256_setzero_si256());
  return uint64_t(_mm256_extract_epi64(s, 0)) + uint64_t(_mm256_extract_epi64(s, 1)) +
         uint64_t(_mm256_extract_epi64(s, 2)) + uint64_t(_mm256_extract_epi64(s, 3));
#endif
}

// Byte sums gathered in 64-bit lanes, summed once at the end.
#if ANALYSIS_VECTOR_BYTES == 64
typedef __m512i SadLanes;
inline SadLanes SadZero() { return _mm512_setzero_si512(); }
inline SadLanes SadAdd(SadLanes acc, Bytes v) {
  return _mm512_add_epi64(acc, _mm512_sad_epu8(__m512i(v), _mm512_setzero_si512()));
}
inline uint64_t SadTotal(SadLanes acc) { return uint64_t(_mm512_reduce_add_epi64(acc)); }
#else
typedef __m256i SadLanes;
inline SadLanes SadZero() { return _mm256_setzero_si256(); }
inline SadLanes SadAdd(SadLanes acc, Bytes v) {
  return _mm256_add_epi64(acc, _mm256_sad_epu8(__m256i(v), _mm256_setzero_si256()));
}
inline uint64_t SadTotal(SadLanes acc) {
  return uint64_t(_mm256_extract_epi64(acc, 0)) + uint64_t(_mm256_extract_epi64(acc, 1)) +
         uint64_t(_mm256_extract_epi64(acc, 2)) + uint64_t(_mm256_extract_epi64(acc, 3));
}
#endif

uint32_t CountInRange8(const uint8_t* row, uint32_t n, uint8_t lo, uint8_t hi) {
  SadLanes acc = SadZero();
  uint32_t i = 0;
  while (i + kLanes <= n) {
    // Up to 255 steps of one per lane, then the lanes go to the 64-bit sums.
    Bytes ones = Bytes{};
    const uint32_t steps = std::min<uint32_t>(255, (n - i) / kLanes);
    for (uint32_t s = 0; s < steps; ++s, i += kLanes) {
      const Bytes v = LoadBytes(row + i);
      ones -= Bytes((v >= lo) & (v <= hi));  // a true lane is all ones, -1
    }
    acc = SadAdd(acc, ones);
  }
  uint32_t count = uint32_t(SadTotal(acc));
  for (; i < n; ++i) count += row[i] >= lo && row[i] <= hi;
  return count;
}

uint64_t Sum8(const uint8_t* row, uint32_t n) {
  SadLanes acc = SadZero();
  uint32_t i = 0;
  for (; i + kLanes <= n; i += kLanes) acc = SadAdd(acc, LoadBytes(row + i));
  uint64_t sum = SadTotal(acc);
  for (; i < n; ++i) sum += row[i];
  return sum;
}
#else
uint32_t CountInRange8(const uint8_t* row, uint32_t n, uint8_t lo, uint8_t hi) {
  uint32_t count = 0;
  for (size_t i = 0; i < n; ++i) count += row[i] >= lo && row[i] <= hi;
  return count;
}

uint64_t Sum8(const uint8_t* row, uint32_t n) {
  uint64_t sum = 0;
  for (size_t i = 0; i < n; ++i) sum += row[i];
  return sum;
}
#endif

uint64_t Sum16(const uint16_t* row, uint32_t n) {
  uint64_t sum = 0;
  // 65,536 samples fit a 32-bit sum, which the compiler keeps in vector lanes.
  for (uint32_t i = 0; i < n;) {
    const uint32_t end = std::min<uint32_t>(n, i + 65536);
    uint32_t part = 0;
    for (; i < end; ++i) part += row[i];
    sum += part;
  }
  return sum;
}

template <class T>
void Max3Cols(const T* in, T* out, uint32_t n) {
  for (size_t i = 0; i < n; ++i) out[i] = std::max(std::max(in[i], in[i + 1]), in[i + 2]);
}
template <class T>
void Min3Cols(const T* in, T* out, uint32_t n) {
  for (size_t i = 0; i < n; ++i) out[i] = std::min(std::min(in[i], in[i + 1]), in[i + 2]);
}
template <class T>
void Max3Rows(const T* a, const T* b, const T* c, T* out, uint32_t n) {
  for (size_t i = 0; i < n; ++i) out[i] = std::max(std::max(a[i], b[i]), c[i]);
}
template <class T>
void Min3Rows(const T* a, const T* b, const T* c, T* out, uint32_t n) {
  for (size_t i = 0; i < n; ++i) out[i] = std::min(std::min(a[i], b[i]), c[i]);
}

void SmoothRows3(const uint8_t* const* r, int16_t* out, uint32_t n) {
  const uint8_t *a = r[0], *b = r[1], *c = r[2];
  for (size_t i = 0; i < n; ++i) out[i] = int16_t(a[i] + 2 * b[i] + c[i]);
}
void DiffRows3(const uint8_t* const* r, int16_t* out, uint32_t n) {
  const uint8_t *a = r[0], *c = r[2];
  for (size_t i = 0; i < n; ++i) out[i] = int16_t(c[i] - a[i]);
}
void SmoothRows5(const uint8_t* const* r, int16_t* out, uint32_t n) {
  const uint8_t *a = r[0], *b = r[1], *c = r[2], *d = r[3], *e = r[4];
  for (size_t i = 0; i < n; ++i) out[i] = int16_t(a[i] + 4 * (b[i] + d[i]) + 6 * c[i] + e[i]);
}
void DiffRows5(const uint8_t* const* r, int16_t* out, uint32_t n) {
  const uint8_t *a = r[0], *b = r[1], *d = r[3], *e = r[4];
  for (size_t i = 0; i < n; ++i) out[i] = int16_t(e[i] - a[i] + 2 * (d[i] - b[i]));
}

// The row passes stay within 16 bits: 5 x 5 sums reach 6 x 16 x 255 at most.
void SmoothCols3(const int16_t* s, uint8_t* out, uint32_t n) {
  Unaligned16* o = S16(out);
  for (size_t i = 0; i < n; ++i) o[i] = int16_t(s[i] + 2 * s[i + 1] + s[i + 2]);
}
void DiffCols3(const int16_t* s, uint8_t* out, uint32_t n) {
  Unaligned16* o = S16(out);
  for (size_t i = 0; i < n; ++i) o[i] = int16_t(s[i + 2] - s[i]);
}
void SmoothCols5(const int16_t* s, uint8_t* out, uint32_t n) {
  Unaligned16* o = S16(out);
  for (size_t i = 0; i < n; ++i) o[i] = int16_t(s[i] + 4 * (s[i + 1] + s[i + 3]) + 6 * s[i + 2] + s[i + 4]);
}
void DiffCols5(const int16_t* s, uint8_t* out, uint32_t n) {
  Unaligned16* o = S16(out);
  for (size_t i = 0; i < n; ++i) o[i] = int16_t(s[i + 4] - s[i] + 2 * (s[i + 3] - s[i + 1]));
}

template <class T>
void AbsDiff(const T* a, const T* b, T* out, uint32_t n) {
  // The larger less the smaller, in the samples' own width (no widening).
  for (size_t i = 0; i < n; ++i) {
    const T high = a[i] > b[i] ? a[i] : b[i], low = a[i] > b[i] ? b[i] : a[i];
    out[i] = T(high - low);
  }
}

void Abs16s(uint8_t* row, uint32_t n) {
  Unaligned16* p = S16(row);
  for (size_t i = 0; i < n; ++i) p[i] = Saturate16(std::abs(int(p[i])));
}
void AddSat16s(const uint8_t* a, uint8_t* b, uint32_t n) {
  const Unaligned16* s = S16(a);
  Unaligned16* d = S16(b);
  for (size_t i = 0; i < n; ++i) d[i] = Saturate16(int(s[i]) + int(d[i]));
}
void Convert16s8u(const uint8_t* src, uint8_t* dst, uint32_t n) {
  const Unaligned16* s = S16(src);
  for (size_t i = 0; i < n; ++i) dst[i] = uint8_t(std::clamp(int(s[i]), 0, 255));
}

template <class T>
void Threshold(const T* src, T* dst, uint32_t n, T threshold, T full) {
  for (size_t i = 0; i < n; ++i) dst[i] = src[i] < threshold ? T(0) : full;
}

#if ANALYSIS_VECTOR_BYTES == 64
// 16-bit grey of four-sample pixels in 16-bit lanes, 32 pixels a step: the
// word permutes part the samples into planes, and each weight's 32-bit
// (x * mul + add) >> shift is formed from the high and low halves of the
// product, with the offset's carry, while mul fits 16 bits. Each term is a
// table entry below 2^16, so the shifted halves meet without loss.
struct Weigh16Lanes {
  __m512i clamp, mul, addLow, addHigh;
  __m128i highShift, lowShift, upShift;
  explicit Weigh16Lanes(const GreyWeight& w)
      : clamp(_mm512_set1_epi16(int16_t(std::min<uint32_t>(w.clampAt, 0xFFFF)))),
        mul(_mm512_set1_epi16(int16_t(w.mul))),
        addLow(_mm512_set1_epi16(int16_t(w.add & 0xFFFF))),
        addHigh(_mm512_set1_epi16(int16_t(w.add >> 16))),
        highShift(_mm_cvtsi32_si128(int(w.shift > 16 ? w.shift - 16 : 0))),
        lowShift(_mm_cvtsi32_si128(int(w.shift < 16 ? w.shift : 16))),
        upShift(_mm_cvtsi32_si128(int(w.shift < 16 ? 16 - w.shift : 0))) {}
  // kHigh: the shift is 16 or more, so the term is the high half shifted
  // and the low half only carries.
  template <bool kHigh>
  __m512i Weigh(__m512i x) const {
    x = _mm512_min_epu16(x, clamp);
    const __m512i low = _mm512_add_epi16(_mm512_mullo_epi16(x, mul), addLow);
    const __mmask32 carry = _mm512_cmplt_epu16_mask(low, addLow);
    __m512i high = _mm512_add_epi16(_mm512_mulhi_epu16(x, mul), addHigh);
    high = _mm512_mask_sub_epi16(high, carry, high, _mm512_set1_epi16(-1));
    if constexpr (kHigh) return _mm512_srl_epi16(high, highShift);
    return _mm512_or_si512(_mm512_sll_epi16(high, upShift), _mm512_srl_epi16(low, lowShift));
  }
};

// Whether the 16-bit lanes reproduce the weight: a multiplier of 16 bits,
// and every sum x * mul + add inside 32 bits (the fit checks the latter).
inline bool FitsWeigh16(const GreyWeight& w) { return w.mul < 65536 && w.shift < 32; }

// The loop for one choice of term form per weight (kHigh0..2); answers how
// many pixels it did (whole steps of 32).
template <bool kHigh0, bool kHigh1, bool kHigh2>
uint32_t WeighGrey16Steps(const uint16_t* src, uint16_t* dst, uint32_t n, const GreyWeights& w) {
  const Weigh16Lanes w0(w.first), w1(w.second), w2(w.third);
  // Words 4p + s of two registers (16 pixels): sample 0 of the 16 pixels in
  // the low half and sample 1 in the high half; and sample 2 in the low half.
  alignas(64) int16_t firstSecond[32], third[32], lows[32], highs[32];
  for (int p = 0; p < 16; ++p) {
    firstSecond[p] = int16_t(4 * p), firstSecond[16 + p] = int16_t(4 * p + 1), third[p] = int16_t(4 * p + 2);
    third[16 + p] = int16_t(4 * p + 2);
    lows[p] = int16_t(p), lows[16 + p] = int16_t(32 + p);
    highs[p] = int16_t(16 + p), highs[16 + p] = int16_t(48 + p);
  }
  const __m512i pickFirstSecond = _mm512_load_si512(firstSecond), pickThird = _mm512_load_si512(third);
  const __m512i pickLows = _mm512_load_si512(lows), pickHighs = _mm512_load_si512(highs);
  const __m512i top = _mm512_set1_epi16(255);
  uint32_t i = 0;
  for (; i + 32 <= n; i += 32) {
    const uint16_t* p = src + 4 * size_t(i);
    const __m512i v0 = _mm512_loadu_si512(p), v1 = _mm512_loadu_si512(p + 32);
    const __m512i v2 = _mm512_loadu_si512(p + 64), v3 = _mm512_loadu_si512(p + 96);
    const __m512i a01 = _mm512_permutex2var_epi16(v0, pickFirstSecond, v1);
    const __m512i b01 = _mm512_permutex2var_epi16(v2, pickFirstSecond, v3);
    const __m512i a2 = _mm512_permutex2var_epi16(v0, pickThird, v1);
    const __m512i b2 = _mm512_permutex2var_epi16(v2, pickThird, v3);
    const __m512i x0 = _mm512_permutex2var_epi16(a01, pickLows, b01);
    const __m512i x1 = _mm512_permutex2var_epi16(a01, pickHighs, b01);
    const __m512i x2 = _mm512_permutex2var_epi16(a2, pickLows, b2);
    // Saturating sums keep every total of 255 or more at 255 or more.
    const __m512i sum = _mm512_adds_epu16(
        _mm512_adds_epu16(w0.template Weigh<kHigh0>(x0), w1.template Weigh<kHigh1>(x1)), w2.template Weigh<kHigh2>(x2));
    _mm512_storeu_si512(dst + i, _mm512_min_epu16(sum, top));
  }
  return i;
}

void WeighGrey16C4(const uint16_t* src, uint16_t* dst, uint32_t n, const GreyWeights& w) {
  uint32_t i = 0;
  if (FitsWeigh16(w.first) && FitsWeigh16(w.second) && FitsWeigh16(w.third)) {
    using Steps = uint32_t (*)(const uint16_t*, uint16_t*, uint32_t, const GreyWeights&);
    static constexpr Steps kSteps[8] = {
        WeighGrey16Steps<false, false, false>, WeighGrey16Steps<false, false, true>,
        WeighGrey16Steps<false, true, false>,  WeighGrey16Steps<false, true, true>,
        WeighGrey16Steps<true, false, false>,  WeighGrey16Steps<true, false, true>,
        WeighGrey16Steps<true, true, false>,   WeighGrey16Steps<true, true, true>};
    const int form = (w.first.shift >= 16) << 2 | (w.second.shift >= 16) << 1 | (w.third.shift >= 16);
    i = kSteps[form](src, dst, n, w);
  }
  WeighGrey<uint16_t, 4>(src + 4 * size_t(i), dst + i, n - i, w);
}
#else
void WeighGrey16C4(const uint16_t* src, uint16_t* dst, uint32_t n, const GreyWeights& w) {
  WeighGrey<uint16_t, 4>(src, dst, n, w);
}
#endif

constexpr AnalysisRowKernels kBodyKernels = {
    .rgbToGray8 = RgbToGray8,
    .rgbToGray16 = RgbToGray16,
    .weighGrey8C3 = WeighGrey8<3>,
    .weighGrey8C4 = WeighGrey8<4>,
    .weighGrey16C3 = WeighGrey<uint16_t, 3>,
    .weighGrey16C4 = WeighGrey16C4,
    .countInRange8 = CountInRange8,
    .sum8 = Sum8,
    .sum16 = Sum16,
    .max3Cols8 = Max3Cols<uint8_t>,
    .min3Cols8 = Min3Cols<uint8_t>,
    .min3Cols16 = Min3Cols<uint16_t>,
    .max3Rows8 = Max3Rows<uint8_t>,
    .min3Rows8 = Min3Rows<uint8_t>,
    .min3Rows16 = Min3Rows<uint16_t>,
    .smoothRows3 = SmoothRows3,
    .diffRows3 = DiffRows3,
    .smoothRows5 = SmoothRows5,
    .diffRows5 = DiffRows5,
    .smoothCols3 = SmoothCols3,
    .diffCols3 = DiffCols3,
    .smoothCols5 = SmoothCols5,
    .diffCols5 = DiffCols5,
    .absDiff8 = AbsDiff<uint8_t>,
    .absDiff16 = AbsDiff<uint16_t>,
    .abs16s = Abs16s,
    .addSat16s = AddSat16s,
    .convert16s8u = Convert16s8u,
    .threshold8 = Threshold<uint8_t>,
    .threshold16 = Threshold<uint16_t>,
};

}  // namespace
}  // namespace kestrelink::analysis
