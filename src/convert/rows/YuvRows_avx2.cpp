// AVX2 rows of the 10- and 20-bit 4:2:2 layouts. The 10-bit row takes two
// 16-byte groups a vector, one in each 128-bit lane: the three 10-bit
// samples of each word narrow to the bytes of that word, a byte shuffle
// spreads Y, U and V to one 16-bit lane per pixel (six of eight lanes used),
// and the integer formula runs on those lanes: the green term in 32 bits as
// one multiply-add, since 33384 = 65536 - 32152 puts its high part in the
// chroma pair's own high half. The 20-bit row does the same eight pixels a
// vector in 32-bit lanes.
#include <immintrin.h>

#include "convert/rows/YuvFormulaAVX2.h"
#include "convert/rows/YuvRows.h"

namespace kestrelink::rows {
namespace {

using avx2::GreenOffset;
using avx2::Limit;

// Bytes 0 .. 2 of each word: its samples' top 8 bits, low sample first.
inline __m256i NarrowWords(__m256i w) {
  const __m256i mask = _mm256_set1_epi32(0xFF);
  const __m256i a = _mm256_and_si256(_mm256_srli_epi32(w, 2), mask);
  const __m256i b = _mm256_and_si256(_mm256_srli_epi32(w, 4), _mm256_slli_epi32(mask, 8));
  const __m256i c = _mm256_and_si256(_mm256_srli_epi32(w, 6), _mm256_slli_epi32(mask, 16));
  return _mm256_or_si256(_mm256_or_si256(a, b), c);
}

// Per lane, words U0 Y0 V0 | Y1 U1 Y2 | V1 Y3 U2 | Y4 V2 Y5 as bytes 4k .. 4k + 2.
inline __m256i Spread(__m256i bytes, char i0, char i1, char i2, char i3, char i4, char i5) {
  const char z = char(0x80);
  const __m256i shuffle = _mm256_setr_epi8(i0, z, i1, z, i2, z, i3, z, i4, z, i5, z, z, z, z, z,  //
                                           i0, z, i1, z, i2, z, i3, z, i4, z, i5, z, z, z, z, z);
  return _mm256_shuffle_epi8(bytes, shuffle);
}

// Six pixels from each lane to planes at p and p + 6.
inline void StoreLanes(uint16_t* p, __m256i x) {
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(x));
  _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 6), _mm256_extracti128_si256(x, 1));
}

void Packed10ToPlanesAVX2(const uint8_t* src, uint16_t* b, uint16_t* g, uint16_t* r, uint32_t w) {
  const __m256i bias = _mm256_set1_epi16(128);
  uint32_t x = 0;
  for (; x + 12 <= w; x += 12, src += 32) {
    const __m256i bytes = NarrowWords(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(src)));
    const __m256i y = Spread(bytes, 1, 4, 6, 9, 12, 14);
    const __m256i u = _mm256_sub_epi16(Spread(bytes, 0, 0, 5, 5, 10, 10), bias);
    const __m256i v = _mm256_sub_epi16(Spread(bytes, 2, 2, 8, 8, 13, 13), bias);
    StoreLanes(b + x, Limit(_mm256_add_epi16(y, u)));
    StoreLanes(g + x, Limit(_mm256_sub_epi16(y, GreenOffset(u, v))));
    StoreLanes(r + x, Limit(_mm256_add_epi16(y, v)));
  }
  if (x < w) Packed10ToPlanesPortable(src, b + x, g + x, r + x, w - x);
}

// Sixteen 20-bit pixels a step: each dword of a pair holds a Y in its low
// word and U or V in its high word, so Y is the low words and the chroma of
// pixel i the high word of dword i & ~1 (U) and i | 1 (V).
void Words20ToPlanesAVX2(const uint8_t* src, uint16_t* b, uint16_t* g, uint16_t* r, uint32_t w) {
  const __m256i low = _mm256_set1_epi32(0xFFFF), bias = _mm256_set1_epi32(128);
  const __m256i weights = _mm256_set1_epi32(int(uint32_t(uint16_t(-32152)) << 16 | 12727u));
  const __m256i high = _mm256_set1_epi32(int(0xFFFF0000u));
  const __m256i half = _mm256_set1_epi32(32768), full = _mm256_set1_epi32(65536);
  struct Channels {
    __m256i b, g, r;
  };
  auto eight = [&](const uint8_t* p) {
    const __m256i words = _mm256_srli_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)), 2);
    const __m256i y = _mm256_and_si256(words, low), c = _mm256_srli_epi32(words, 16);
    const __m256i u = _mm256_sub_epi32(_mm256_shuffle_epi32(c, _MM_SHUFFLE(2, 2, 0, 0)), bias);
    const __m256i v = _mm256_sub_epi32(_mm256_shuffle_epi32(c, _MM_SHUFFLE(3, 3, 1, 1)), bias);
    const __m256i uv = _mm256_or_si256(_mm256_and_si256(u, low), _mm256_slli_epi32(v, 16));
    const __m256i t = _mm256_add_epi32(_mm256_madd_epi16(uv, weights), _mm256_and_si256(uv, high));
    const __m256i up = _mm256_and_si256(_mm256_cmpgt_epi32(t, _mm256_setzero_si256()), full);
    const __m256i green = _mm256_srai_epi32(_mm256_add_epi32(t, _mm256_sub_epi32(up, half)), 16);
    return Channels{_mm256_add_epi32(y, u), _mm256_sub_epi32(y, green), _mm256_add_epi32(y, v)};
  };
  auto store = [](uint16_t* p, __m256i lo, __m256i hi) {
    const __m256i words = _mm256_permute4x64_epi64(_mm256_packs_epi32(lo, hi), _MM_SHUFFLE(3, 1, 2, 0));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), Limit(words));
  };
  uint32_t x = 0;
  for (; x + 16 <= w; x += 16, src += 64) {
    const Channels a = eight(src), c = eight(src + 32);
    store(b + x, a.b, c.b);
    store(g + x, a.g, c.g);
    store(r + x, a.r, c.r);
  }
  if (x < w) Words20ToPlanesPortable(src, b + x, g + x, r + x, w - x);
}

}  // namespace

const YuvRowKernels kYuvRowsAVX2 = {Packed10ToPlanesAVX2, Words20ToPlanesAVX2};

}  // namespace kestrelink::rows
