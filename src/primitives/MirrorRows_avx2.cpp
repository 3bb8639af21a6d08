// AVX2 mirror rows (this file is built with -mavx2). A vector of pixels is
// loaded from the far end of the source row, reversed in the register and
// stored at the near end of the destination. Three- and six-byte pixels go
// 5 and 2 to a 16-byte vector: the load starts one (four) bytes before the
// pixels and the store writes one (four) bytes beyond them, which the next
// store overwrites, so neither leaves the row's own pixels.
#include <immintrin.h>

#include "primitives/MirrorRows.h"

namespace kestrelink::mirror {
namespace {

inline __m256i Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(uint8_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

// Reverses the 32 bytes of a vector as 32 / Bytes pixels, for 1, 2, 4 and 8 bytes.
template <int Bytes>
inline __m256i ReverseVector(__m256i v) {
  if constexpr (Bytes == 4) return _mm256_permutevar8x32_epi32(v, _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0));
  if constexpr (Bytes == 8) return _mm256_permute4x64_epi64(v, 0x1B);
  const __m256i inLane = Bytes == 1 ? _mm256_setr_epi8(15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0,  //
                                                       15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0)
                                    : _mm256_setr_epi8(14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1,  //
                                                       14, 15, 12, 13, 10, 11, 8, 9, 6, 7, 4, 5, 2, 3, 0, 1);
  return _mm256_permute2x128_si256(_mm256_shuffle_epi8(v, inLane), v, 0x01);
}

template <int Bytes>
void ReverseWhole(const uint8_t* src, uint8_t* dst, uint32_t n) {
  constexpr uint32_t kPixels = 32 / Bytes;
  uint32_t i = 0;
  for (; i + 2 * kPixels <= n; i += 2 * kPixels) {
    const uint8_t* s = src + size_t(n - i - 2 * kPixels) * Bytes;
    const __m256i far = Load(s + 32), near = Load(s);
    Store(dst + size_t(i) * Bytes, ReverseVector<Bytes>(far));
    Store(dst + size_t(i) * Bytes + 32, ReverseVector<Bytes>(near));
  }
  for (; i + kPixels <= n; i += kPixels)
    Store(dst + size_t(i) * Bytes, ReverseVector<Bytes>(Load(src + size_t(n - i - kPixels) * Bytes)));
  ReversePortable<Bytes>(src, dst + size_t(i) * Bytes, n - i);
}

void Reverse3(const uint8_t* src, uint8_t* dst, uint32_t n) {
  // Bytes 1-15 of the load hold five pixels; they leave in reverse order as bytes 0-14.
  const __m128i order = _mm_setr_epi8(13, 14, 15, 10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3, 0);
  uint32_t i = 0;
  for (; i + 6 <= n; i += 5) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + size_t(n - i - 5) * 3 - 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + size_t(i) * 3), _mm_shuffle_epi8(v, order));
  }
  ReversePortable<3>(src, dst + size_t(i) * 3, n - i);
}

void Reverse6(const uint8_t* src, uint8_t* dst, uint32_t n) {
  // Bytes 4-15 of the load hold two pixels; they leave swapped as bytes 0-11.
  const __m128i order = _mm_setr_epi8(10, 11, 12, 13, 14, 15, 4, 5, 6, 7, 8, 9, 0, 1, 2, 3);
  uint32_t i = 0;
  for (; i + 3 <= n; i += 2) {
    const __m128i v = _mm_loadu_si128(reinterpret_cast<const __m128i*>(src + size_t(n - i - 2) * 6 - 4));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + size_t(i) * 6), _mm_shuffle_epi8(v, order));
  }
  ReversePortable<6>(src, dst + size_t(i) * 6, n - i);
}

}  // namespace

const MirrorRowKernels kMirrorRowsAVX2 = {ReverseWhole<1>, ReverseWhole<2>, Reverse3,
                                          ReverseWhole<4>, Reverse6,        ReverseWhole<8>};

}  // namespace kestrelink::mirror
