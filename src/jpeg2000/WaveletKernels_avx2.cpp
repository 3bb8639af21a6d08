// AVX2 rows of the reversible transforms (built with -mavx2): eight samples
// a step, the portable rows finish each array.
#include <immintrin.h>

#include "jpeg2000/WaveletKernels.h"

namespace kestrelink::j2k {
namespace {

inline __m256i Load(const int32_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(int32_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

void RctForward(int32_t* c0, int32_t* c1, int32_t* c2, size_t n) {
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    const __m256i r = Load(c0 + i), g = Load(c1 + i), b = Load(c2 + i);
    const __m256i sum = _mm256_add_epi32(_mm256_add_epi32(r, b), _mm256_add_epi32(g, g));
    Store(c0 + i, _mm256_srai_epi32(sum, 2));
    Store(c1 + i, _mm256_sub_epi32(b, g));
    Store(c2 + i, _mm256_sub_epi32(r, g));
  }
  portable::RctForward(c0 + i, c1 + i, c2 + i, n - i);
}

void RctInverse(int32_t* c0, int32_t* c1, int32_t* c2, size_t n) {
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    const __m256i y = Load(c0 + i), u = Load(c1 + i), v = Load(c2 + i);
    const __m256i g = _mm256_sub_epi32(y, _mm256_srai_epi32(_mm256_add_epi32(u, v), 2));
    Store(c0 + i, _mm256_add_epi32(v, g));
    Store(c1 + i, g);
    Store(c2 + i, _mm256_add_epi32(u, g));
  }
  portable::RctInverse(c0 + i, c1 + i, c2 + i, n - i);
}

void Predict(const int32_t* evenA, const int32_t* evenB, const int32_t* odd, int32_t* high, size_t n) {
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    const __m256i half = _mm256_srai_epi32(_mm256_add_epi32(Load(evenA + i), Load(evenB + i)), 1);
    Store(high + i, _mm256_sub_epi32(Load(odd + i), half));
  }
  portable::Predict(evenA + i, evenB + i, odd + i, high + i, n - i);
}

void Update(const int32_t* highA, const int32_t* highB, const int32_t* even, int32_t* low, size_t n) {
  const __m256i two = _mm256_set1_epi32(2);
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    const __m256i sum = _mm256_add_epi32(_mm256_add_epi32(Load(highA + i), Load(highB + i)), two);
    Store(low + i, _mm256_add_epi32(Load(even + i), _mm256_srai_epi32(sum, 2)));
  }
  portable::Update(highA + i, highB + i, even + i, low + i, n - i);
}

void Unupdate(const int32_t* highA, const int32_t* highB, const int32_t* low, int32_t* even, size_t n) {
  const __m256i two = _mm256_set1_epi32(2);
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    const __m256i sum = _mm256_add_epi32(_mm256_add_epi32(Load(highA + i), Load(highB + i)), two);
    Store(even + i, _mm256_sub_epi32(Load(low + i), _mm256_srai_epi32(sum, 2)));
  }
  portable::Unupdate(highA + i, highB + i, low + i, even + i, n - i);
}

void Unpredict(const int32_t* evenA, const int32_t* evenB, const int32_t* high, int32_t* odd, size_t n) {
  size_t i = 0;
  for (; i + 8 <= n; i += 8) {
    const __m256i half = _mm256_srai_epi32(_mm256_add_epi32(Load(evenA + i), Load(evenB + i)), 1);
    Store(odd + i, _mm256_add_epi32(Load(high + i), half));
  }
  portable::Unpredict(evenA + i, evenB + i, high + i, odd + i, n - i);
}

// Sixteen samples make eight even and eight odd: pairs gathered within each
// 128-bit lane, then the lanes' halves put side by side.
void Split(const int32_t* row, int32_t* even, int32_t* odd, size_t n) {
  size_t i = 0;
  for (; i + 16 <= n; i += 16) {
    const __m256i a = Load(row + i), b = Load(row + i + 8);
    const __m256i e = _mm256_castps_si256(
        _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(2, 0, 2, 0)));
    const __m256i o = _mm256_castps_si256(
        _mm256_shuffle_ps(_mm256_castsi256_ps(a), _mm256_castsi256_ps(b), _MM_SHUFFLE(3, 1, 3, 1)));
    Store(even + i / 2, _mm256_permute4x64_epi64(e, _MM_SHUFFLE(3, 1, 2, 0)));
    Store(odd + i / 2, _mm256_permute4x64_epi64(o, _MM_SHUFFLE(3, 1, 2, 0)));
  }
  portable::Split(row + i, even + i / 2, odd + i / 2, n - i);
}

void Merge(const int32_t* even, const int32_t* odd, int32_t* row, size_t n) {
  size_t i = 0;
  for (; i + 16 <= n; i += 16) {
    const __m256i e = _mm256_permute4x64_epi64(Load(even + i / 2), _MM_SHUFFLE(3, 1, 2, 0));
    const __m256i o = _mm256_permute4x64_epi64(Load(odd + i / 2), _MM_SHUFFLE(3, 1, 2, 0));
    Store(row + i, _mm256_unpacklo_epi32(e, o));
    Store(row + i + 8, _mm256_unpackhi_epi32(e, o));
  }
  portable::Merge(even + i / 2, odd + i / 2, row + i, n - i);
}

}  // namespace

const WaveletKernels kWaveletKernelsAVX2 = {
    RctForward, RctInverse, Predict, Update, Unupdate, Unpredict, Split, Merge,
};

}  // namespace kestrelink::j2k
