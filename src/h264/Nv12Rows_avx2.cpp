// AVX2 NV12 rows (built with -mavx2): 32 pairs a step. The unpacks work
// within 128-bit lanes, so the quarters of u and v are first put in the
// order 0, 2, 1, 3, which brings pairs 0-15 out in the low unpack and
// 16-31 in the high one.
#include <immintrin.h>

#include "h264/Nv12RowsBody.h"

namespace kestrelink::h264 {
namespace {

struct Avx2 {
  static constexpr uint32_t kBytes = 32;
  using Reg = __m256i;
  static Reg Load(const uint8_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
  static void Store(uint8_t* p, Reg r) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), r); }
  static void Stream(uint8_t* p, Reg r) { _mm256_stream_si256(reinterpret_cast<__m256i*>(p), r); }
  static Reg Splat(uint8_t value) { return _mm256_set1_epi8(char(value)); }
  static void Interleave(Reg u, Reg v, Reg& first, Reg& second) {
    const Reg uu = _mm256_permute4x64_epi64(u, 0xD8), vv = _mm256_permute4x64_epi64(v, 0xD8);
    first = _mm256_unpacklo_epi8(uu, vv);
    second = _mm256_unpackhi_epi8(uu, vv);
  }
};

}  // namespace

const Nv12RowKernels kNv12RowsAVX2 = nv12body::Kernels<Avx2>();

}  // namespace kestrelink::h264
