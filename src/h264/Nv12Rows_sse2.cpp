// SSE2 NV12 rows: 16 pairs a step, unpacked low and high.
#include "h264/Nv12RowsBody.h"

namespace kestrelink::h264 {
namespace {

struct Sse2 {
  static constexpr uint32_t kBytes = 16;
  using Reg = __m128i;
  static Reg Load(const uint8_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
  static void Store(uint8_t* p, Reg r) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), r); }
  static void Stream(uint8_t* p, Reg r) { _mm_stream_si128(reinterpret_cast<__m128i*>(p), r); }
  static Reg Splat(uint8_t value) { return _mm_set1_epi8(char(value)); }
  static void Interleave(Reg u, Reg v, Reg& first, Reg& second) {
    first = _mm_unpacklo_epi8(u, v);
    second = _mm_unpackhi_epi8(u, v);
  }
};

}  // namespace

const Nv12RowKernels kNv12RowsSSE2 = nv12body::Kernels<Sse2>();

}  // namespace kestrelink::h264
