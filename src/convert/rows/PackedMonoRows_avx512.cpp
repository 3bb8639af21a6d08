// AVX-512 (F, BW, VL) rows of the packed and swapped mono sources, built
// with those flags. Four 12-byte blocks go to the four 128-bit lanes of a
// register by one dword permute. Whole vectors use plain loads and stores;
// the row's tail loads by mask (no byte past the row is touched) and stores
// by mask, which is slow on some processors but happens once a row.
#include <immintrin.h>

#include <cstring>

#include "convert/rows/PackedMonoRows.h"
#include "convert/rows/PackedMonoRowsNineSlot.h"

namespace kestrelink::rows {
namespace {

inline __mmask32 Mask32(uint32_t n) { return n >= 32 ? ~__mmask32(0) : __mmask32((1u << n) - 1); }
inline __mmask64 Mask64(uint64_t n) { return n >= 64 ? ~__mmask64(0) : __mmask64((1ull << n) - 1); }

// Runs step<false>(x, lanes) for every whole vector of `lanes` words, then
// step<true>(x, remaining) once for the tail.
template <uint32_t lanes, class Step>
inline void ForEachVector(uint32_t w, Step step) {
  uint32_t x = 0;
  for (; x + lanes <= w; x += lanes) step.template operator()<false>(x, lanes);
  if (x < w) step.template operator()<true>(x, w - x);
}

template <bool tail>
inline __m512i LoadWords(const uint8_t* p, uint32_t n) {
  if constexpr (tail) return _mm512_maskz_loadu_epi16(Mask32(n), p);
  return _mm512_loadu_si512(p);
}
template <bool tail>
inline void StoreWords(uint8_t* p, __m512i v, uint32_t n) {
  if constexpr (tail) return _mm512_mask_storeu_epi16(p, Mask32(n), v);
  _mm512_storeu_si512(p, v);
}

void RShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  ForEachVector<32>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    StoreWords<tail>(dst + 2 * size_t(x), _mm512_srl_epi16(LoadWords<tail>(src + 2 * size_t(x), n), count), n);
  });
}

void SwapRShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  ForEachVector<32>(w, [&]<bool tail>(uint32_t x, uint32_t n) {
    const __m512i s = LoadWords<tail>(src + 2 * size_t(x), n);
    const __m512i swapped = _mm512_or_si512(_mm512_slli_epi16(s, 8), _mm512_srli_epi16(s, 8));
    StoreWords<tail>(dst + 2 * size_t(x), _mm512_srl_epi16(swapped, count), n);
  });
}

struct LaneVectors {
  __m512i shuffle, maskA, maskB;
  __m128i a, b;
};

LaneVectors Vectors(const LaneRule& r) {
  alignas(16) uint8_t shuffle[16];
  for (int j = 0; j < 8; ++j) {
    shuffle[2 * j] = r.lanes.lo[j];
    shuffle[2 * j + 1] = r.lanes.hi[j];
  }
  return {_mm512_broadcast_i32x4(_mm_load_si128(reinterpret_cast<const __m128i*>(shuffle))),
          _mm512_set1_epi32(int(r.maskA[0] | uint32_t(r.maskA[1]) << 16)),
          _mm512_set1_epi32(int(r.maskB[0] | uint32_t(r.maskB[1]) << 16)), _mm_cvtsi32_si128(r.a),
          _mm_cvtsi32_si128(r.b)};
}

// Thirty-two pixels from 48 bytes of `raw` (64 loaded, or fewer by mask).
template <bool left>
inline __m512i FourBlocks(__m512i raw, const LaneVectors& v) {
  const __m512i order = _mm512_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6, 6, 7, 8, 9, 9, 10, 11, 12);
  const __m512i x = _mm512_shuffle_epi8(_mm512_permutexvar_epi32(order, raw), v.shuffle);
  const __m512i a = left ? _mm512_sll_epi16(x, v.a) : _mm512_srl_epi16(x, v.a);
  const __m512i b = left ? _mm512_sll_epi16(x, v.b) : _mm512_srl_epi16(x, v.b);
  return _mm512_or_si512(_mm512_and_si512(a, v.maskA), _mm512_and_si512(b, v.maskB));
}

// Calls block(i, pixelsHere, raw) for every 32 pixels: whole loads while
// 64 bytes remain in the pixels' groups, loads by mask after that.
template <class Block>
inline void ForEachFourBlocks(const uint8_t* src, uint32_t pixels, Block block) {
  const uint64_t bytes = uint64_t(pixels) * 3 / 2;
  uint32_t i = 0;
  for (; i + 32 <= pixels && 12 * uint64_t(i / 8) + 64 <= bytes; i += 32)
    block(i, 32u, _mm512_loadu_si512(src + 12 * size_t(i / 8)));
  for (; i < pixels; i += 32) {
    const uint64_t at = 12 * uint64_t(i / 8);
    const uint32_t n = pixels - i < 32 ? pixels - i : 32;
    block(i, n, _mm512_maskz_loadu_epi8(Mask64(bytes - at), src + at));
  }
}

template <bool left>
void LanesToWordsT(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  const LaneVectors v = Vectors(rule);
  ForEachFourBlocks(src, pixels, [&](uint32_t i, uint32_t n, __m512i raw) {
    const __m512i words = FourBlocks<left>(raw, v);
    if (n == 32) {
      _mm512_storeu_si512(dst + 2 * size_t(i), words);
    } else {
      _mm512_mask_storeu_epi16(dst + 2 * size_t(i), Mask32(n), words);
    }
  });
}

template <bool left>
void LanesToBytesT(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  const LaneVectors v = Vectors(rule);
  ForEachFourBlocks(src, pixels, [&](uint32_t i, uint32_t n, __m512i raw) {
    const __m256i bytes = _mm512_cvtepi16_epi8(FourBlocks<left>(raw, v));
    if (n == 32) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + i), bytes);
    } else {
      _mm256_mask_storeu_epi8(dst + i, Mask32(n), bytes);
    }
  });
}

void LanesToWords(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  rule.left ? LanesToWordsT<true>(src, dst, pixels, rule) : LanesToWordsT<false>(src, dst, pixels, rule);
}

void LanesToBytes(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  rule.left ? LanesToBytesT<true>(src, dst, pixels, rule) : LanesToBytesT<false>(src, dst, pixels, rule);
}

// Four 16-byte pieces, one per 128-bit lane.
inline __m512i Lanes(const void* a, const void* b, const void* c, const void* d) {
  const __m256i lo = _mm256_loadu2_m128i(static_cast<const __m128i*>(b), static_cast<const __m128i*>(a));
  const __m256i hi = _mm256_loadu2_m128i(static_cast<const __m128i*>(d), static_cast<const __m128i*>(c));
  return _mm512_inserti64x4(_mm512_castsi256_si512(lo), hi, 1);
}

// The period's shuffles and masks: windows 0-3 and 4-7 in the lanes of two
// registers, window 8 alone.
struct NineVectors {
  __m512i shuffle[2], shiftedMask[2], plainMask[2];
  __m128i lastShuffle, lastShiftedMask, lastPlainMask, count;
};

NineVectors MakeNineVectors(uint32_t shift) {
  const nineslot::Window* w = nineslot::kPeriod.window;
  NineVectors v;
  for (int half = 0; half < 2; ++half) {
    const nineslot::Window* q = w + 4 * half;
    v.shuffle[half] = Lanes(q[0].shuffle, q[1].shuffle, q[2].shuffle, q[3].shuffle);
    v.shiftedMask[half] = Lanes(q[0].shiftedMask, q[1].shiftedMask, q[2].shiftedMask, q[3].shiftedMask);
    v.plainMask[half] = Lanes(q[0].plainMask, q[1].plainMask, q[2].plainMask, q[3].plainMask);
  }
  v.lastShuffle = _mm_loadu_si128(reinterpret_cast<const __m128i*>(w[8].shuffle));
  v.lastShiftedMask = _mm_loadu_si128(reinterpret_cast<const __m128i*>(w[8].shiftedMask));
  v.lastPlainMask = _mm_loadu_si128(reinterpret_cast<const __m128i*>(w[8].plainMask));
  v.count = _mm_cvtsi32_si128(int(shift));
  return v;
}

inline void NinePeriod(const uint8_t* src, uint8_t* dst, const NineVectors& v) {
  const nineslot::Window* w = nineslot::kPeriod.window;
  for (int half = 0; half < 2; ++half) {
    const nineslot::Window* q = w + 4 * half;
    const __m512i x =
        _mm512_shuffle_epi8(Lanes(src + q[0].base, src + q[1].base, src + q[2].base, src + q[3].base), v.shuffle[half]);
    const __m512i slots = _mm512_or_si512(_mm512_and_si512(_mm512_srli_epi16(x, 4), v.shiftedMask[half]),
                                          _mm512_and_si512(x, v.plainMask[half]));
    _mm512_storeu_si512(dst + 64 * half, _mm512_sll_epi16(slots, v.count));
  }
  const __m128i x = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + w[8].base)), v.lastShuffle);
  const __m128i slots =
      _mm_or_si128(_mm_and_si128(_mm_srli_epi16(x, 4), v.lastShiftedMask), _mm_and_si128(x, v.lastPlainMask));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 128), _mm_sll_epi16(slots, v.count));
}

void PcoNineSlots(const uint8_t* src, uint8_t* dst, uint32_t groups, uint32_t shift) {
  using namespace nineslot;
  const NineVectors v = MakeNineVectors(shift);
  const uint64_t bytes = 12 * uint64_t(groups);
  uint32_t g = 0;
  for (; g + kGroups <= groups && 12 * uint64_t(g) + kPeriod.reach <= bytes; g += kGroups)
    NinePeriod(src + 12 * size_t(g), dst + 18 * size_t(g), v);
  // The rest, less than a period and a reach: through zero-padded copies.
  while (g < groups) {
    const uint32_t n = groups - g < kGroups ? groups - g : kGroups;
    alignas(64) uint8_t in[kBytes + 16] = {};
    alignas(64) uint8_t out[18 * kGroups];
    std::memcpy(in, src + 12 * size_t(g), 12 * size_t(n));
    NinePeriod(in, out, v);
    std::memcpy(dst + 18 * size_t(g), out, 18 * size_t(n));
    g += n;
  }
}

}  // namespace

const PackedMonoRowKernels kPackedMonoRowsAVX512 = {
    LanesToWords, LanesToBytes, PcoNineSlots, RShift16, SwapRShift16,
};

}  // namespace kestrelink::rows
