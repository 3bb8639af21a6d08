// 128-bit run-length loops (SSE2, the x86-64 baseline).
#include <emmintrin.h>

#include "compress/kernels/RleCoder.h"
#include "compress/kernels/RleCoderLoops.h"

namespace kestrelink::compress {
namespace {

struct Vec128 {
  static constexpr size_t kWidth = 16;
  static constexpr uint64_t kAll = 0xFFFF;
  static __m128i Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
  static uint64_t EqualPairs(const uint8_t* p) {
    return uint64_t(unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(Load(p), Load(p + 1)))));
  }
  static uint64_t EqualTo(const uint8_t* p, uint8_t v) {
    return uint64_t(unsigned(_mm_movemask_epi8(_mm_cmpeq_epi8(Load(p), _mm_set1_epi8(char(v))))));
  }
  static void Copy(uint8_t* d, const uint8_t* s) { _mm_storeu_si128(reinterpret_cast<__m128i*>(d), Load(s)); }
  static void Copy16(uint8_t* d, const uint8_t* s) { Copy(d, s); }
  static void Fill(uint8_t* d, uint8_t v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm_set1_epi8(char(v))); }
};

size_t Encode(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  return EncodeRuns<Vec128>(src, n, dst, room, taken);
}
size_t Decode(const uint8_t* src, size_t n, uint8_t* dst, size_t room, size_t* taken) {
  return DecodeRuns<Vec128>(src, n, dst, room, taken);
}

}  // namespace

const RleCoderKernels kRleCoderSSE2 = {Encode, Decode};

}  // namespace kestrelink::compress
