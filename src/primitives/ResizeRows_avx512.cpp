// AVX-512 resize rows (this file is built with -mavx512f -mavx512bw): the
// vertical pass of 8-bit samples at 32 samples a step, in the order and
// rounding of the portable rows; the other rows are the AVX2 ones, whose
// gathers gain nothing from wider vectors.
#include <immintrin.h>

#include "primitives/ResizeRows.h"

namespace kestrelink::resize {
namespace {

inline __m512i LoadRow(const int16_t* p) { return _mm512_loadu_si512(p); }

void V8(const int16_t* const* rows, const int16_t* w, int taps, uint32_t n, bool keepFourth, uint8_t* dst) {
  // Every fourth byte of a 32-byte step is left as it was with keepFourth.
  const __mmask32 write = keepFourth ? __mmask32(0x77777777u) : __mmask32(0xFFFFFFFFu);
  const __m512i order = _mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7);
  uint32_t j = 0;
  for (; j + 32 <= n; j += 32) {
    __m512i lo = _mm512_set1_epi32(1 << 19), hi = lo;
    for (int k = 0; k < taps; k += 2) {
      const bool pair = k + 1 < taps;
      const __m512i r0 = LoadRow(rows[k] + j), r1 = pair ? LoadRow(rows[k + 1] + j) : _mm512_setzero_si512();
      const int second = pair ? w[k + 1] : 0;
      const __m512i wp = _mm512_set1_epi32(int(uint32_t(uint16_t(second)) << 16 | uint16_t(w[k])));
      lo = _mm512_add_epi32(lo, _mm512_madd_epi16(_mm512_unpacklo_epi16(r0, r1), wp));
      hi = _mm512_add_epi32(hi, _mm512_madd_epi16(_mm512_unpackhi_epi16(r0, r1), wp));
    }
    // Unpacking and packing within lanes puts the samples back in order;
    // the byte pack leaves each lane's 8 bytes twice, gathered here.
    const __m512i words = _mm512_packs_epi32(_mm512_srai_epi32(lo, 20), _mm512_srai_epi32(hi, 20));
    const __m512i bytes = _mm512_permutexvar_epi64(order, _mm512_packus_epi16(words, words));
    _mm256_mask_storeu_epi8(dst + j, write, _mm512_castsi512_si256(bytes));
  }
  V8Portable(rows, w, taps, j, n, keepFourth, dst);
}

ResizeRowKernels Rows() {
  ResizeRowKernels rows = kResizeRowsAVX2;
  rows.v8 = V8;
  return rows;
}

}  // namespace

// Filled when the library loads, from the AVX2 table, which is constant.
const ResizeRowKernels kResizeRowsAVX512 = Rows();

}  // namespace kestrelink::resize
