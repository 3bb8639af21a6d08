// 128-bit rows of the packed and swapped mono sources: the word shifts in
// SSE2, the byte-shuffle unpacking in SSSE3 (built for it by target
// attribute, chosen only where it runs).
#include <emmintrin.h>
#include <tmmintrin.h>

#include <cstring>

#include "convert/rows/PackedMonoRows.h"
#include "convert/rows/PackedMonoRowsNineSlot.h"

namespace kestrelink::rows {
namespace {

void RShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * size_t(x)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 2 * size_t(x)), _mm_srl_epi16(s, count));
  }
  RShift16Portable(src + 2 * size_t(x), dst + 2 * size_t(x), w - x, shift);
}

void SwapRShift16(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t shift) {
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  uint32_t x = 0;
  for (; x + 8 <= w; x += 8) {
    const __m128i s = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + 2 * size_t(x)));
    const __m128i swapped = _mm_or_si128(_mm_slli_epi16(s, 8), _mm_srli_epi16(s, 8));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 2 * size_t(x)), _mm_srl_epi16(swapped, count));
  }
  SwapRShift16Portable(src + 2 * size_t(x), dst + 2 * size_t(x), w - x, shift);
}

// A lane rule as registers: eight words from the first 12 of 16 loaded bytes.
struct LaneVectors {
  __m128i shuffle, maskA, maskB, a, b;
};

LaneVectors Vectors(const LaneRule& r) {
  alignas(16) uint8_t shuffle[16];
  for (int j = 0; j < 8; ++j) {
    shuffle[2 * j] = r.lanes.lo[j];
    shuffle[2 * j + 1] = r.lanes.hi[j];
  }
  return {_mm_load_si128(reinterpret_cast<const __m128i*>(shuffle)),
          _mm_set1_epi32(int(r.maskA[0] | uint32_t(r.maskA[1]) << 16)),
          _mm_set1_epi32(int(r.maskB[0] | uint32_t(r.maskB[1]) << 16)), _mm_cvtsi32_si128(r.a), _mm_cvtsi32_si128(r.b)};
}

template <bool left>
__attribute__((target("ssse3"))) inline __m128i Block(const uint8_t* p, const LaneVectors& v) {
  const __m128i x = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), v.shuffle);
  const __m128i a = left ? _mm_sll_epi16(x, v.a) : _mm_srl_epi16(x, v.a);
  const __m128i b = left ? _mm_sll_epi16(x, v.b) : _mm_srl_epi16(x, v.b);
  return _mm_or_si128(_mm_and_si128(a, v.maskA), _mm_and_si128(b, v.maskB));
}

// Bytes the pixels' groups hold: the loads stay inside them.
inline uint64_t SourceBytes(uint32_t pixels) { return uint64_t(pixels) * 3 / 2; }

template <bool left>
__attribute__((target("ssse3"))) void LanesToWordsT(const uint8_t* src, uint8_t* dst, uint32_t pixels,
                                                    const LaneRule& rule) {
  const LaneVectors v = Vectors(rule);
  const uint64_t bytes = SourceBytes(pixels);
  uint32_t i = 0;
  for (; i + 8 <= pixels && 12 * uint64_t(i / 8) + 16 <= bytes; i += 8)
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 2 * size_t(i)), Block<left>(src + 12 * size_t(i / 8), v));
  LanesToWordsPortable(src + 12 * size_t(i / 8), dst + 2 * size_t(i), pixels - i, rule);
}

template <bool left>
__attribute__((target("ssse3"))) void LanesToBytesT(const uint8_t* src, uint8_t* dst, uint32_t pixels,
                                                    const LaneRule& rule) {
  const LaneVectors v = Vectors(rule);
  const uint64_t bytes = SourceBytes(pixels);
  uint32_t i = 0;
  for (; i + 16 <= pixels && 12 * uint64_t(i / 8) + 28 <= bytes; i += 16) {
    const uint8_t* p = src + 12 * size_t(i / 8);
    const __m128i low = _mm_set1_epi16(0xFF);
    const __m128i a = _mm_and_si128(Block<left>(p, v), low), b = _mm_and_si128(Block<left>(p + 12, v), low);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + i), _mm_packus_epi16(a, b));
  }
  LanesToBytesPortable(src + 12 * size_t(i / 8), dst + i, pixels - i, rule);
}

void LanesToWords(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  rule.left ? LanesToWordsT<true>(src, dst, pixels, rule) : LanesToWordsT<false>(src, dst, pixels, rule);
}

void LanesToBytes(const uint8_t* src, uint8_t* dst, uint32_t pixels, const LaneRule& rule) {
  rule.left ? LanesToBytesT<true>(src, dst, pixels, rule) : LanesToBytesT<false>(src, dst, pixels, rule);
}

// One period of eight groups: 96 source bytes (loads reach past them by up
// to period.reach - 96) to 144 bytes of slots.
__attribute__((target("ssse3"))) inline void NinePeriod(const uint8_t* src, uint8_t* dst, __m128i count) {
  for (const nineslot::Window& w : nineslot::kPeriod.window) {
    const __m128i x = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(src + w.base)),
                                       _mm_loadu_si128(reinterpret_cast<const __m128i*>(w.shuffle)));
    const __m128i shifted =
        _mm_and_si128(_mm_srli_epi16(x, 4), _mm_loadu_si128(reinterpret_cast<const __m128i*>(w.shiftedMask)));
    const __m128i plain = _mm_and_si128(x, _mm_loadu_si128(reinterpret_cast<const __m128i*>(w.plainMask)));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst), _mm_sll_epi16(_mm_or_si128(shifted, plain), count));
    dst += 16;
  }
}

__attribute__((target("ssse3"))) void PcoNineSlots(const uint8_t* src, uint8_t* dst, uint32_t groups, uint32_t shift) {
  using namespace nineslot;
  const __m128i count = _mm_cvtsi32_si128(int(shift));
  const uint64_t bytes = 12 * uint64_t(groups);
  uint32_t g = 0;
  for (; g + kGroups <= groups && 12 * uint64_t(g) + kPeriod.reach <= bytes; g += kGroups)
    NinePeriod(src + 12 * size_t(g), dst + 18 * size_t(g), count);
  // The rest, less than a period and a reach: through zero-padded copies.
  while (g < groups) {
    const uint32_t n = groups - g < kGroups ? groups - g : kGroups;
    alignas(16) uint8_t in[kBytes + 16] = {};
    alignas(16) uint8_t out[18 * kGroups];
    std::memcpy(in, src + 12 * size_t(g), 12 * size_t(n));
    NinePeriod(in, out, count);
    std::memcpy(dst + 18 * size_t(g), out, 18 * size_t(n));
    g += n;
  }
}

}  // namespace

const PackedMonoRowKernels kPackedMonoRowsSSE2 = {
    LanesToWordsPortable, LanesToBytesPortable, PcoNineSlotsPortable, RShift16, SwapRShift16,
};

const PackedMonoRowKernels kPackedMonoRowsSSSE3 = {
    LanesToWords, LanesToBytes, PcoNineSlots, RShift16, SwapRShift16,
};

}  // namespace kestrelink::rows
