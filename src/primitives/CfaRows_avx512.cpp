// AVX512 rows of the colour-filter-array interpolation: the shared vector
// body at 32 pixels a step (8-bit), and the three-plane word interleave by
// two-source permutes.
#include <immintrin.h>

#include <array>

#define CFA_LANES 32
#include "primitives/CfaRowsVector.h"

namespace kestrelink::cfa {
namespace {

// Word indices for output vector `part` (0..2) of 32 interleaved pixels'
// worth: first from planes p0|p1 (second source at 32), then from that
// result|p2; `secondStep` picks which table.
constexpr std::array<uint16_t, 32> InterleaveIndex(int part, bool secondStep) {
  std::array<uint16_t, 32> index{};
  for (int j = 0; j < 32; ++j) {
    const int g = 32 * part + j, pixel = g / 3, channel = g % 3;
    if (!secondStep)
      index[j] = uint16_t(channel == 1 ? 32 + pixel % 32 : pixel % 32);
    else
      index[j] = uint16_t(channel == 2 ? 32 + pixel % 32 : j);
  }
  return index;
}

template <int part>
__m512i Interleave(__m512i a, __m512i b, __m512i c) {
  static constexpr auto first = InterleaveIndex(part, false), second = InterleaveIndex(part, true);
  const __m512i ab = _mm512_permutex2var_epi16(a, _mm512_loadu_si512(first.data()), b);
  return _mm512_permutex2var_epi16(ab, _mm512_loadu_si512(second.data()), c);
}

void Pack16(const uint16_t* p0, const uint16_t* p1, const uint16_t* p2, uint16_t* dst, uint32_t w) {
  uint32_t x = 0;
  for (; x + 32 <= w; x += 32) {
    const __m512i a = _mm512_loadu_si512(p0 + x), b = _mm512_loadu_si512(p1 + x), c = _mm512_loadu_si512(p2 + x);
    uint16_t* out = dst + 3 * size_t(x);
    _mm512_storeu_si512(out, Interleave<0>(a, b, c));
    _mm512_storeu_si512(out + 32, Interleave<1>(a, b, c));
    _mm512_storeu_si512(out + 64, Interleave<2>(a, b, c));
  }
  Pack16Portable(p0 + x, p1 + x, p2 + x, dst + 3 * size_t(x), w - x);
}

}  // namespace

const CfaRowKernels kCfaRowsAVX512 = {Interior8, Interior16, Pack16, Bits16, Pack8x4};

}  // namespace kestrelink::cfa
