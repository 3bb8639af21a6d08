// AVX-512 NV12 rows (built with -mavx512bw): 64 pairs a step. The unpacks
// work within 128-bit lanes, so the eight quarter-lanes of u and v are first
// put in the order 0, 4, 1, 5, 2, 6, 3, 7, which brings pairs 0-31 out in
// the low unpack and 32-63 in the high one.
#include <immintrin.h>

#include "h264/Nv12RowsBody.h"

namespace kestrelink::h264 {
namespace {

struct Avx512 {
  static constexpr uint32_t kBytes = 64;
  using Reg = __m512i;
  static Reg Load(const uint8_t* p) { return _mm512_loadu_si512(p); }
  static void Store(uint8_t* p, Reg r) { _mm512_storeu_si512(p, r); }
  static void Stream(uint8_t* p, Reg r) { _mm512_stream_si512(reinterpret_cast<__m512i*>(p), r); }
  static Reg Splat(uint8_t value) { return _mm512_set1_epi8(char(value)); }
  static void Interleave(Reg u, Reg v, Reg& first, Reg& second) {
    const Reg order = _mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7);
    const Reg uu = _mm512_permutexvar_epi64(order, u), vv = _mm512_permutexvar_epi64(order, v);
    first = _mm512_unpacklo_epi8(uu, vv);
    second = _mm512_unpackhi_epi8(uu, vv);
  }
};

}  // namespace

const Nv12RowKernels kNv12RowsAVX512 = nv12body::Kernels<Avx512>();

}  // namespace kestrelink::h264
