// Decimating rows with AVX2 byte shuffles, two lanes of the shuffle plan a
// step: one 32-byte store where the lanes meet, two 16-byte stores in order
// where a lane ends short (the second overwrites the first's spare bytes).
#include <immintrin.h>

#include "geometry/ResampleRows.h"
#include "geometry/ResampleShuffle.h"

namespace kestrelink::geometry {

namespace {

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

template <size_t Bytes, uint32_t Step>
struct Row {
  static uint32_t Run(const uint8_t* src, uint32_t count, uint8_t* dst) {
    using P = Plan<Bytes, Step>;
    __m256i mask[P::kLoads];
    for (uint32_t l = 0; l < P::kLoads; ++l) mask[l] = _mm256_broadcastsi128_si256(Load(P::kMasks[l].data()));
    const size_t laneSrc = size_t(P::kPixels) * Step * Bytes, laneDst = size_t(P::kPixels) * Bytes;
    const auto step = [&](uint32_t i) {
      const uint8_t* s = src + size_t(i) * Step * Bytes;
      __m256i out = _mm256_setzero_si256();
      for (uint32_t l = 0; l < P::kLoads; ++l) {
        const __m256i v =
            _mm256_inserti128_si256(_mm256_castsi128_si256(Load(s + 16 * l)), Load(s + laneSrc + 16 * l), 1);
        out = _mm256_or_si256(out, _mm256_shuffle_epi8(v, mask[l]));
      }
      uint8_t* d = dst + size_t(i) * Bytes;
      if constexpr (P::kWhole) {
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), out);
      } else {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(out));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + laneDst), _mm256_extracti128_si256(out, 1));
      }
    };
    return StepRow(2 * P::kPixels, LastFit<Bytes, Step>(count, 2),
                   [&](uint32_t i) { return LanesFit<Bytes, Step>(i, count, 2); }, step);
  }
};

// Every second pixel of one and two bytes by packing: the kept sample of each
// pair masked to the low half, packed with unsigned saturation (exact, as the
// high half is zero), the 64-bit quarters put back in order. 64 source bytes
// a step; a step stops where its last source byte would lie past the last pixel.
template <size_t Bytes>
uint32_t Halve(const uint8_t* src, uint32_t count, uint8_t* dst) {
  constexpr uint32_t kOut = 32 / Bytes;
  const __m256i low = Bytes == 1 ? _mm256_set1_epi16(0xFF) : _mm256_set1_epi32(0xFFFF);
  const auto step = [&](uint32_t i) {
    const uint8_t* s = src + 2 * Bytes * size_t(i);
    const __m256i a = _mm256_and_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(s)), low);
    const __m256i b = _mm256_and_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(s + 32)), low);
    const __m256i packed = Bytes == 1 ? _mm256_packus_epi16(a, b) : _mm256_packus_epi32(a, b);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + Bytes * size_t(i)),
                        _mm256_permute4x64_epi64(packed, _MM_SHUFFLE(3, 1, 2, 0)));
  };
  uint32_t i = 0;
  for (; i + kOut + 1 <= count; i += kOut) step(i);
  // The rest but the last pixel in one step that ends there, writing some
  // outputs again with the same values.
  if (i + 1 < count && count >= kOut + 1) {
    step(count - kOut - 1);
    i = count - 1;
  }
  return i;
}

}  // namespace

constinit const ResampleRowKernels kResampleRowsAVX2 = ShuffleRowTable<ResampleRowKernels, Row>(&Halve<1>, &Halve<2>);

}  // namespace kestrelink::geometry
