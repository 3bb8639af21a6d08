// AVX2 four-pixel steps of the YUV combines (this file is built with -mavx2).
// Sixteen pixels a round: byte shuffles spread each layout's Y, U and V to
// one 16-bit lane a pixel, pixels 0-7 in the low 128-bit half and 8-15 in
// the high one; the integer formula runs on those lanes; B, G and R narrow
// to sixteen bytes each and nine byte shuffles interleave them into 48
// bytes of BGR24. Each round reads only bytes of its own steps or of the
// step after it, which the round count leaves to the portable tail.
#include <immintrin.h>

#include <cstddef>

#include "convert/rows/YuvFormulaAVX2.h"
#include "geometry/rows/CombineYuvIndices.h"
#include "geometry/rows/CombineYuvRows.h"

namespace kestrelink::rows {
namespace {

using avx2::GreenOffset;
using avx2::Limit;
using namespace yuvsteps;

inline __m256i Lanes(__m256i bytes, const Index32& index) {
  return _mm256_shuffle_epi8(bytes, _mm256_load_si256(reinterpret_cast<const __m256i*>(index.i)));
}

// The formula on sixteen pixels' Y, U, V lanes, stored as 48 bytes of BGR24.
inline void Store16(__m256i y, __m256i u, __m256i v, uint8_t* dst) {
  const __m256i bias = _mm256_set1_epi16(128);
  u = _mm256_sub_epi16(u, bias), v = _mm256_sub_epi16(v, bias);
  const __m256i b = Limit(_mm256_add_epi16(y, u)), g = Limit(_mm256_sub_epi16(y, GreenOffset(u, v)));
  const __m256i r = Limit(_mm256_add_epi16(y, v));
  const __m256i br = _mm256_permute4x64_epi64(_mm256_packus_epi16(b, r), _MM_SHUFFLE(3, 1, 2, 0));
  const __m256i gg = _mm256_permute4x64_epi64(_mm256_packus_epi16(g, g), _MM_SHUFFLE(3, 1, 2, 0));
  const __m128i c[3] = {_mm256_castsi256_si128(br), _mm256_castsi256_si128(gg), _mm256_extracti128_si256(br, 1)};
  for (int chunk = 0; chunk < 3; ++chunk) {
    __m128i out = _mm_setzero_si128();
    for (int channel = 0; channel < 3; ++channel)
      out = _mm_or_si128(
          out, _mm_shuffle_epi8(c[channel],
                                _mm_load_si128(reinterpret_cast<const __m128i*>(kInterleave.at[chunk][channel].i))));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + 16 * chunk), out);
  }
}

inline __m256i Load2(const uint8_t* lo, const uint8_t* hi) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(lo))),
                                 _mm_loadu_si128(reinterpret_cast<const __m128i*>(hi)), 1);
}

// 4:2:2 pairs: 32 bytes, sixteen pixels, a round.
template <const Index32& Y, const Index32& U, const Index32& V, YuvStepLayout kLayout>
void Pairs(const uint8_t* s, uint8_t* d, uint32_t steps) {
  uint32_t k = 0;
  for (; k + 4 <= steps; k += 4, s += 32, d += 48) {
    const __m256i bytes = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(s));
    Store16(Lanes(bytes, Y), Lanes(bytes, U), Lanes(bytes, V), d);
  }
  kCombineYuvPortable.steps[kLayout](s, d, steps - k);
}

void Yuv422Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  Pairs<kYuv422Y, kYuv422U, kYuv422V, kStepYuv422>(s, d, steps);
}
void Uvy422Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  Pairs<kUvy422Y, kUvy422U, kUvy422V, kStepUvy422>(s, d, steps);
}

// 4:1:1: two 6-byte groups a half, loaded at bytes 0 and 12 of the round's
// 24; the second load reaches 4 bytes into the next step.
void Uvy411Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  uint32_t k = 0;
  for (; k + 5 <= steps; k += 4, s += 24, d += 48) {
    const __m256i bytes = Load2(s, s + 12);
    Store16(Lanes(bytes, kUvy411Y), Lanes(bytes, kUvy411U), Lanes(bytes, kUvy411V), d);
  }
  kCombineYuvPortable.steps[kStepUvy411](s, d, steps - k);
}

// 4:4:4: a half's eight pixels are 24 bytes, taken as pixels 0-3 from a load
// at its byte 0 and pixels 4-7 from a load at its byte 8.
void Uvy444Steps(const uint8_t* s, uint8_t* d, uint32_t steps) {
  uint32_t k = 0;
  for (; k + 4 <= steps; k += 4, s += 48, d += 48) {
    const __m256i low = Load2(s, s + 24), high = Load2(s + 8, s + 32);
    Store16(_mm256_or_si256(Lanes(low, kUvy444YLow), Lanes(high, kUvy444YHigh)),
            _mm256_or_si256(Lanes(low, kUvy444ULow), Lanes(high, kUvy444UHigh)),
            _mm256_or_si256(Lanes(low, kUvy444VLow), Lanes(high, kUvy444VHigh)), d);
  }
  kCombineYuvPortable.steps[kStepUvy444](s, d, steps - k);
}

}  // namespace

const CombineYuvKernels kCombineYuvAVX2 = {{Yuv422Steps, Uvy422Steps, Uvy411Steps, Uvy444Steps}};

}  // namespace kestrelink::rows
