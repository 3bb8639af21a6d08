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
    const auto lane = [&](uint32_t j) {
      const uint8_t* s = src + size_t(j) * Step * Bytes;
      __m128i out = _mm_setzero_si128();
      for (uint32_t l = 0; l < P::kLoads; ++l)
        out = _mm_or_si128(out, _mm_shuffle_epi8(Load(s + 16 * l), Load(P::kMasks[l].data())));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + size_t(j) * Bytes), out);
    };
    const uint32_t from = i;
    return from + StepRow(P::kPixels, LastFit<Bytes, Step>(count, 1) - int64_t(from),
                          [&](uint32_t j) { return LanesFit<Bytes, Step>(from + j, count, 1); },
                          [&](uint32_t j) { lane(from + j); });
  }
};

// Every second pixel of one and two bytes by packing, as the AVX2 rows do,
// 128 source bytes a step; the 64-bit quarters are put back in order across
// the four lanes. The AVX2 rows finish the row.
template <size_t Bytes>
uint32_t Halve(const uint8_t* src, uint32_t count, uint8_t* dst) {
  constexpr uint32_t kOut = 64 / Bytes;
  const __m512i low = Bytes == 1 ? _mm512_set1_epi16(0xFF) : _mm512_set1_epi32(0xFFFF);
  const __m512i order = _mm512_set_epi64(7, 5, 3, 1, 6, 4, 2, 0);
  uint32_t i = 0;
  for (; i + kOut + 1 <= count; i += kOut) {
    const uint8_t* s = src + 2 * Bytes * size_t(i);
    const __m512i a = _mm512_and_si512(_mm512_loadu_si512(s), low);
    const __m512i b = _mm512_and_si512(_mm512_loadu_si512(s + 64), low);
    const __m512i packed = Bytes == 1 ? _mm512_packus_epi16(a, b) : _mm512_packus_epi32(a, b);
    _mm512_storeu_si512(dst + Bytes * size_t(i), _mm512_permutexvar_epi64(order, packed));
  }
  return i + kResampleRowsAVX2.rows[Bytes][2](src + 2 * Bytes * size_t(i), count - i, dst + Bytes * size_t(i));
}

}  // namespace

constinit const ResampleRowKernels kResampleRowsAVX512 = ShuffleRowTable<ResampleRowKernels, Row>(&Halve<1>, &Halve<2>);

}  // namespace kestrelink::geometry
