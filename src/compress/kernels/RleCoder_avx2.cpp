// 256-bit run-length loops (AVX2), built with that flag.
#include <immintrin.h>

#include "compress/kernels/RleCoder.h"
#include "compress/kernels/RleCoderLoops.h"

namespace kestrelink::compress {
namespace {

struct Vec256 {
  static constexpr size_t kWidth = 32;
  static constexpr uint64_t kAll = 0xFFFFFFFFu;
  static __m256i Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
  static uint64_t EqualPairs16(const uint8_t* p) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 1));
    return unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)));
  }
  static uint64_t EqualPairs(const uint8_t* p) {
    return uint64_t(unsigned(_mm256_movemask_epi8(_mm256_cmpeq_epi8(Load(p), Load(p + 1)))));
  }
  static uint64_t EqualTo(const uint8_t* p, uint8_t v) {
    return uint64_t(unsigned(_mm256_movemask_epi8(_mm256_cmpeq_epi8(Load(p), _mm256_set1_epi8(char(v))))));
  }
  static void Copy(uint8_t* d, const uint8_t* s) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), Load(s)); }
  static void Copy16(uint8_t* d, const uint8_t* s) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s)));
  }
  static void Fill(uint8_t* d, uint8_t v) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), _mm256_set1_epi8(char(v)));
  }
};

size_t Encode(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  return EncodeRuns<Vec256>(src, n, dst, room, taken);
}
size_t Decode(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  return DecodeRuns<Vec256>(src, n, dst, room, taken);
}

}  // namespace

const RleCoderKernels kRleCoderAVX2 = {Encode, Decode};

}  // namespace kestrelink::compress
