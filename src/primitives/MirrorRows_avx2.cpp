// AVX2 mirror rows (this file is built with -mavx2). A vector of pixels is
// loaded from the far end of the source row, reversed in the register and
// stored at the near end of the destination. Three-byte pixels go 32 to
// three vectors (below), and their last few, like six-byte pixels, go 5 and
// 2 to a 16-byte vector: the load starts one (four) bytes before the
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

// Thirty-two three-byte pixels are 96 bytes, six 16-byte lanes. Each lane
// of the reversed run draws on at most 18 source bytes: two 16-byte loads
// two bytes apart, each shuffled to the lane's bytes it holds (zero
// elsewhere), then joined.
struct Lanes3 {
  uint8_t start[6];        // first source byte of each lane's span
  uint8_t first[6][16];    // shuffle of the load at start (0x80: not from it)
  uint8_t second[6][16];   // shuffle of the load at start + 2
};

constexpr Lanes3 MakeLanes3() {
  Lanes3 t{};
  for (int lane = 0; lane < 6; ++lane) {
    // Source byte of output byte o: pixel 31 - o/3, byte o%3 of it.
    auto from = [](int o) { return 3 * (31 - o / 3) + o % 3; };
    const int last = 16 * lane + 15;
    const int start = 3 * (31 - last / 3);
    t.start[lane] = uint8_t(start);
    for (int k = 0; k < 16; ++k) {
      const int off = from(16 * lane + k) - start;
      t.first[lane][k] = off < 16 ? uint8_t(off) : 0x80;
      t.second[lane][k] = off < 16 ? 0x80 : uint8_t(off - 2);
    }
  }
  return t;
}
constexpr Lanes3 kLanes3 = MakeLanes3();

inline __m256i LoadLanes(const uint8_t* lo, const uint8_t* hi) {
  return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(lo))),
                                 _mm_loadu_si128(reinterpret_cast<const __m128i*>(hi)), 1);
}

void Reverse3(const uint8_t* src, uint8_t* dst, uint32_t n) {
  __m256i first[3], second[3];
  for (int k = 0; k < 3; ++k) {
    first[k] = LoadLanes(kLanes3.first[2 * k], kLanes3.first[2 * k + 1]);
    second[k] = LoadLanes(kLanes3.second[2 * k], kLanes3.second[2 * k + 1]);
  }
  uint32_t i = 0;
  for (; i + 32 <= n; i += 32) {
    const uint8_t* s = src + size_t(n - i - 32) * 3;
    for (int k = 0; k < 3; ++k) {
      const uint8_t* lo = s + kLanes3.start[2 * k];
      const uint8_t* hi = s + kLanes3.start[2 * k + 1];
      const __m256i a = _mm256_shuffle_epi8(LoadLanes(lo, hi), first[k]);
      const __m256i b = _mm256_shuffle_epi8(LoadLanes(lo + 2, hi + 2), second[k]);
      Store(dst + size_t(i) * 3 + 32 * k, _mm256_or_si256(a, b));
    }
  }
  // Bytes 1-15 of the load hold five pixels; they leave in reverse order as bytes 0-14.
  const __m128i order = _mm_setr_epi8(13, 14, 15, 10, 11, 12, 7, 8, 9, 4, 5, 6, 1, 2, 3, 0);
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
