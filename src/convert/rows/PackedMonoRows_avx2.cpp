// AVX2 rows of the packed and swapped mono sources (this file is built with
// -mavx2). Two 12-byte blocks go to the two 128-bit lanes of a register and
// are unpacked by one byte shuffle.
#include <immintrin.h>

#include <cstring>

#include "convert/rows/PackedMonoRows.h"
#include "convert/rows/PackedMonoRowsNineSlot.h"

namespace kestrelink::rows {
namespace {

void RShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m256i s = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * size_t(x)));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * size_t(x)), _mm256_srl_epi16(s, count));
  }
  RShift16Portable(src + 2 * size_t(x), dst + 2 * size_t(x), w - x, shift);
}

void SwapRShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16) {
    const __m256i s = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * size_t(x)));
    const __m256i swapped = _mm256_or_si256(_mm256_slli_epi16(s, 8), _mm256_srli_epi16(s, 8));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * size_t(x)), _mm256_srl_epi16(swapped, count));
  }
  SwapRShift16Portable(src + 2 * size_t(x), dst + 2 * size_t(x), w - x, shift);
}

struct LaneVectors {
  __m256i shuffle, maskA, maskB;
  __m128i a, b;
};

LaneVectors Vectors(const LaneRule& r) {
  alignas(16) uint8_t shuffle[16];
  for (int j = 0; j < 8; ++j) {
    shuffle[2 * j] = r.lanes.lo[j];
    shuffle[2 * j + 1] = r.lanes.hi[j];
  }
  return {_mm256_broadcastsi128_si256(_mm_load_si128(reinterpret_cast<const __m128i*>(shuffle))),
          _mm256_set1_epi32(int(r.maskA[0] | uint32_t(r.maskA[1]) << 16)),
          _mm256_set1_epi32(int(r.maskB[0] | uint32_t(r.maskB[1]) << 16)), _mm_cvtsi32_si128(r.a),
          _mm_cvtsi32_si128(r.b)};
}

// Sixteen pixels from 24 bytes; the load takes 32.
template <bool left>
inline __m256i TwoBlocks(const uint8_t* p, const LaneVectors& v) {
  const __m256i raw = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p));
  const __m256i blocks = _mm256_permutevar8x32_epi32(raw, _mm256_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6));
  const __m256i x = _mm256_shuffle_epi8(blocks, v.shuffle);
  const __m256i a = left ? _mm256_sll_epi16(x, v.a) : _mm256_srl_epi16(x, v.a);
  const __m256i b = left ? _mm256_sll_epi16(x, v.b) : _mm256_srl_epi16(x, v.b);
  return _mm256_or_si256(_mm256_and_si256(a, v.maskA), _mm256_and_si256(b, v.maskB));
}

inline uint64_t SourceBytes(uint32_t pixels) { return uint64_t(pixels) * 3 / 2; }

template <bool left>
void LanesToWordsT(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  const LaneVectors v = Vectors(rule);
  const uint64_t bytes = SourceBytes(pixels);
  uint32_t i = 0;
  for (; i + 16 <= pixels && 12 * uint64_t(i / 8) + 32 <= bytes; i += 16)
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * size_t(i)), TwoBlocks<left>(src + 12 * size_t(i / 8), v));
  LanesToWordsPortable(src + 12 * size_t(i / 8), dst + 2 * size_t(i), pixels - i, rule);
}

template <bool left>
void LanesToBytesT(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  const LaneVectors v = Vectors(rule);
  const uint64_t bytes = SourceBytes(pixels);
  uint32_t i = 0;
  for (; i + 32 <= pixels && 12 * uint64_t(i / 8) + 56 <= bytes; i += 32) {
    const uint8_t* p = src + 12 * size_t(i / 8);
    const __m256i low = _mm256_set1_epi16(0xFF);
    const __m256i a = _mm256_and_si256(TwoBlocks<left>(p, v), low);
    const __m256i b = _mm256_and_si256(TwoBlocks<left>(p + 24, v), low);
    const __m256i packed = _mm256_packus_epi16(a, b);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i), _mm256_permute4x64_epi64(packed, 0xD8));
  }
  LanesToBytesPortable(src + 12 * size_t(i / 8), dst + i, pixels - i, rule);
}

void LanesToWords(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  rule.left ? LanesToWordsT<true>(src, dst, pixels, rule) : LanesToWordsT<false>(src, dst, pixels, rule);
}

void LanesToBytes(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  rule.left ? LanesToBytesT<true>(src, dst, pixels, rule) : LanesToBytesT<false>(src, dst, pixels, rule);
}

// Slots of two windows of the period, one per 128-bit lane.
inline __m256i NineWindows(const uint8_t* src, const nineslot::Window& w0, const nineslot::Window& w1) {
  const __m256i bytes = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(src + w1.base),
                                            reinterpret_cast<const __m128i*>(src + w0.base));
  const __m256i shuffle =
      _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(w1.shuffle), reinterpret_cast<const __m128i*>(w0.shuffle));
  const __m256i shiftedMask = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(w1.shiftedMask),
                                                  reinterpret_cast<const __m128i*>(w0.shiftedMask));
  const __m256i plainMask = _mm256_loadu2_m128i(reinterpret_cast<const __m128i*>(w1.plainMask),
                                                reinterpret_cast<const __m128i*>(w0.plainMask));
  const __m256i x = _mm256_shuffle_epi8(bytes, shuffle);
  return _mm256_or_si256(_mm256_and_si256(_mm256_srli_epi16(x, 4), shiftedMask), _mm256_and_si256(x, plainMask));
}

inline void NinePeriod(const uint8_t* src, uint8_t* dst, __m128i count) {
  const nineslot::Window* w = nineslot::kPeriod.window;
  for (int pair = 0; pair < 4; ++pair)
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 32 * pair),
                        _mm256_sll_epi16(NineWindows(src, w[2 * pair], w[2 * pair + 1]), count));
  const nineslot::Window& last = w[8];
  const __m128i x = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + last.base)),
                                     _mm_loadu_si128(reinterpret_cast<const __m128i*>(last.shuffle)));
  const __m128i shifted =
      _mm_and_si128(_mm_srli_epi16(x, 4), _mm_loadu_si128(reinterpret_cast<const __m128i*>(last.shiftedMask)));
  const __m128i plain = _mm_and_si128(x, _mm_loadu_si128(reinterpret_cast<const __m128i*>(last.plainMask)));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 128), _mm_sll_epi16(_mm_or_si128(shifted, plain), count));
}

void PcoNineSlots(const uint8_t* src, uint8_t* dst, uint32_t groups, uint32_t shift) {
  using namespace nineslot;
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  const uint64_t bytes = 12 * uint64_t(groups);
  uint32_t g = 0;
  for (; g + kGroups <= groups && 12 * uint64_t(g) + kPeriod.reach <= bytes; g += kGroups)
    NinePeriod(src + 12 * size_t(g), dst + 18 * size_t(g), count);
  // The rest, less than a period and a reach: through zero-padded copies.
  while (g < groups) {
    const uint32_t n = groups - g < kGroups ? groups - g : kGroups;
    alignas(32) uint8_t in[kBytes + 16] = {};
    alignas(32) uint8_t out[18 * kGroups];
    std::memcpy(in, src + 12 * size_t(g), 12 * size_t(n));
    NinePeriod(in, out, count);
    std::memcpy(dst + 18 * size_t(g), out, 18 * size_t(n));
    g += n;
  }
}

}  // namespace

const PackedMonoRowKernels kPackedMonoRowsAVX2 = {
    LanesToWords, LanesToBytes, PcoNineSlots, RShift16, SwapRShift16,
};

}  // namespace kestrelink::rows
