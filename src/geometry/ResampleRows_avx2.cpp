// Decimating rows with AVX2 byte shuffles. A lane of 16 output bytes holds
// the whole pixels that fit (16 / Bytes of them); its source bytes span at
// most four 16-byte loads, each shuffled into place and the results or-ed.
// Two lanes a step: one 32-byte store where the lanes meet, two 16-byte
// stores in order where a lane ends short (the second overwrites the first's
// spare bytes).
#include <immintrin.h>

#include <array>

#include "geometry/ResampleRows.h"

namespace kestrelink::geometry {

namespace {

template <size_t Bytes, uint32_t Step>
struct Plan {
  static constexpr uint32_t kPixels = 16 / Bytes;                          // pixels a lane
  static constexpr uint32_t kSpan = ((kPixels - 1) * Step + 1) * Bytes;    // source bytes a lane needs
  static constexpr uint32_t kLoads = (kSpan + 15) / 16;
  static constexpr bool kWhole = kPixels * Bytes == 16;

  // Shuffle control of load l: output byte j takes source byte k when k lies
  // in that load; zero (0x80) elsewhere.
  static constexpr std::array<std::array<uint8_t, 16>, kLoads> Masks() {
    std::array<std::array<uint8_t, 16>, kLoads> m{};
    for (uint32_t l = 0; l < kLoads; ++l)
      for (uint32_t j = 0; j < 16; ++j) {
        const uint32_t k = (j / Bytes) * Step * Bytes + j % Bytes;
        m[l][j] = j < kPixels * Bytes && k / 16 == l ? uint8_t(k % 16) : uint8_t(0x80);
      }
    return m;
  }
  static constexpr auto kMasks = Masks();
};

inline __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }

template <size_t Bytes, uint32_t Step>
uint32_t Decimate(const uint8_t* src, uint32_t count, uint8_t* dst) {
  using P = Plan<Bytes, Step>;
  __m256i mask[P::kLoads];
  for (uint32_t l = 0; l < P::kLoads; ++l)
    mask[l] = _mm256_broadcastsi128_si256(Load(P::kMasks[l].data()));
  // The source ends with pixel (count - 1) * Step, the output with pixel count - 1.
  const size_t srcEnd = (size_t(count - 1) * Step + 1) * Bytes, dstEnd = size_t(count) * Bytes;
  const size_t laneSrc = size_t(P::kPixels) * Step * Bytes, laneDst = size_t(P::kPixels) * Bytes;
  uint32_t i = 0;
  for (; size_t(i) * Bytes + laneDst + 16 <= dstEnd && size_t(i) * Step * Bytes + laneSrc + 16 * P::kLoads <= srcEnd;
       i += 2 * P::kPixels) {
    const uint8_t* s = src + size_t(i) * Step * Bytes;
    __m256i out = _mm256_setzero_si256();
    for (uint32_t l = 0; l < P::kLoads; ++l) {
      const __m256i v = _mm256_inserti128_si256(_mm256_castsi128_si256(Load(s + 16 * l)), Load(s + laneSrc + 16 * l), 1);
      out = _mm256_or_si256(out, _mm256_shuffle_epi8(v, mask[l]));
    }
    uint8_t* d = dst + size_t(i) * Bytes;
    if constexpr (P::kWhole) {
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), out);
    } else {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(out));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(d + laneDst), _mm256_extracti128_si256(out, 1));
    }
  }
  return i;
}

template <size_t Bytes>
constexpr void Fill(ResampleRowKernels& k) {
  k.rows[Bytes][2] = Decimate<Bytes, 2>;
  k.rows[Bytes][3] = Decimate<Bytes, 3>;
  k.rows[Bytes][4] = Decimate<Bytes, 4>;
}

}  // namespace

constinit const ResampleRowKernels kResampleRowsAVX2 = [] {
  ResampleRowKernels k = {};
  Fill<1>(k);
  Fill<2>(k);
  Fill<3>(k);
  Fill<4>(k);
  Fill<6>(k);
  Fill<8>(k);
  return k;
}();

}  // namespace kestrelink::geometry
