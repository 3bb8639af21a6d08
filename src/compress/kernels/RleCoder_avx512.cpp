// 512-bit run-length loops (AVX-512 BW), built with those flags. Only
// plain whole-vector stores: the loops never need a masked one.
#include <immintrin.h>

#include "compress/kernels/RleCoder.h"
#include "compress/kernels/RleCoderLoops.h"

namespace kestrelink::compress {
namespace {

struct Vec512 {
  static constexpr size_t kWidth = 64;
  static constexpr uint64_t kAll = ~uint64_t(0);
  static uint64_t EqualPairs16(const uint8_t* p) {
    const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 1));
    return unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(a, b)));
  }
  static uint64_t EqualPairs(const uint8_t* p) {
    return _mm512_cmpeq_epi8_mask(_mm512_loadu_si512(p), _mm512_loadu_si512(p + 1));
  }
  static uint64_t EqualTo(const uint8_t* p, uint8_t v) {
    return _mm512_cmpeq_epi8_mask(_mm512_loadu_si512(p), _mm512_set1_epi8(char(v)));
  }
  static void Copy(uint8_t* d, const uint8_t* s) { _mm512_storeu_si512(d, _mm512_loadu_si512(s)); }
  static void Copy16(uint8_t* d, const uint8_t* s) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_loadu_si128(reinterpret_cast<const __m128i*>(s)));
  }
  static void Fill(uint8_t* d, uint8_t v) { _mm512_storeu_si512(d, _mm512_set1_epi8(char(v))); }
};

size_t Encode(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  return EncodeRuns<Vec512>(src, n, dst, room, taken);
}
size_t Decode(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  return DecodeRuns<Vec512>(src, n, dst, room, taken);
}

}  // namespace

const RleCoderKernels kRleCoderAVX512 = {Encode, Decode};

}  // namespace kestrelink::compress
