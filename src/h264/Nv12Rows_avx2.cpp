// AVX2 NV12 rows (built with -mavx2): luma and fill rows 32 bytes a step.
// Chroma rows go 16 pairs a step as in the SSE2 variant: 32 pairs a step
// (the quarters of u and v put in the order 0, 2, 1, 3 before the in-lane
// unpacks) took nearly twice as long at 1920 by 1080 with streaming stores,
// whose alignment then starts the loads 8 bytes into a line.
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
};

}  // namespace

const Nv12RowKernels kNv12RowsAVX2 = {
    nv12body::LumaRow<Avx2, false>,           nv12body::LumaRow<Avx2, true>,
    nv12body::ChromaRow<nv12body::Sse2, false>, nv12body::ChromaRow<nv12body::Sse2, true>,
    nv12body::FillRow<Avx2, false>,           nv12body::FillRow<Avx2, true>,
};

}  // namespace kestrelink::h264
