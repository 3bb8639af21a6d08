// Decimating rows with AVX-512 byte shuffles, four lanes of the shuffle plan
// a step: one 64-byte store where the lanes meet, four 16-byte stores in
// order where a lane ends short (each overwrites the previous one's spare bytes).
#include <immintrin.h>

#include "geometry/ResampleRows.h"
#include "geometry/ResampleShuffle.h"

namespace kestrelink::geometry {

namespace {

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

inline __m512i LoadLanes(const uint8_t* s, size_t laneSrc) {
  const __m512i v = _mm512_castsi128_si512(Load(s));
  return _mm512_inserti32x4(_mm512_inserti32x4(_mm512_inserti32x4(v, Load(s + laneSrc), 1), Load(s + 2 * laneSrc), 2),
                            Load(s + 3 * laneSrc), 3);
}

template <size_t Bytes, uint32_t Step>
struct Row {
  static uint32_t Run(const uint8_t* src, uint32_t count, uint8_t* dst) {
    using P = Plan<Bytes, Step>;
    __m512i mask[P::kLoads];
    for (uint32_t l = 0; l < P::kLoads; ++l) mask[l] = _mm512_broadcast_i32x4(Load(P::kMasks[l].data()));
    const size_t laneSrc = size_t(P::kPixels) * Step * Bytes, laneDst = size_t(P::kPixels) * Bytes;
    uint32_t i = 0;
    for (; LanesFit<Bytes, Step>(i, count, 4); i += 4 * P::kPixels) {
      const uint8_t* s = src + size_t(i) * Step * Bytes;
      __m512i out = _mm512_setzero_si512();
      for (uint32_t l = 0; l < P::kLoads; ++l)
        out = _mm512_or_si512(out, _mm512_shuffle_epi8(LoadLanes(s + 16 * l, laneSrc), mask[l]));
      uint8_t* d = dst + size_t(i) * Bytes;
      if constexpr (P::kWhole) {
        _mm512_storeu_si512(d, out);
      } else {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm512_castsi512_si128(out));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + laneDst), _mm512_extracti32x4_epi32(out, 1));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 2 * laneDst), _mm512_extracti32x4_epi32(out, 2));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(d + 3 * laneDst), _mm512_extracti32x4_epi32(out, 3));
      }
    }
    // The rest in single lanes, so short rows still move by vector.
    for (; LanesFit<Bytes, Step>(i, count, 1); i += P::kPixels) {
      const uint8_t* s = src + size_t(i) * Step * Bytes;
      __m128i out = _mm_setzero_si128();
      for (uint32_t l = 0; l < P::kLoads; ++l)
        out = _mm_or_si128(out, _mm_shuffle_epi8(Load(s + 16 * l), Load(P::kMasks[l].data())));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + size_t(i) * Bytes), out);
    }
    return i;
  }
};

}  // namespace

constinit const ResampleRowKernels kResampleRowsAVX512 = [] {
  ResampleRowKernels k = {};
  FillSteps<1, ResampleRowKernels, Row>(k);
  FillSteps<2, ResampleRowKernels, Row>(k);
  FillSteps<3, ResampleRowKernels, Row>(k);
  FillSteps<4, ResampleRowKernels, Row>(k);
  FillSteps<6, ResampleRowKernels, Row>(k);
  FillSteps<8, ResampleRowKernels, Row>(k);
  return k;
}();

}  // namespace kestrelink::geometry
