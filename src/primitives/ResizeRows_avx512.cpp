// AVX-512 resize rows (this file is built with -mavx512f -mavx512bw): the
// vertical pass of 8-bit samples at 32 samples a step, and the rows that
// fetch whole pixels (three- and four-channel 8-bit taps, nearest neighbour
// of four-byte pixels and of 16-bit samples) through two-register permutes
// of a 128-byte window of the source row where a step's pixels fit one,
// gathering only where they do not: AVX2 has no two-register permute. All
// in the order and rounding of the portable rows; the other rows are the
// AVX2 ones.
#include <immintrin.h>

#include <algorithm>

#include "primitives/ResizeEngine.h"
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
    if (keepFourth)
      _mm256_mask_storeu_epi8(dst + j, write, _mm512_castsi512_si256(bytes));
    else
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + j), _mm512_castsi512_si256(bytes));
  }
  V8Portable(rows, w, taps, j, n, keepFourth, dst);
}

// The first `bytes` (at most 128) bytes from p as two registers, the rest
// zero; nothing past them is read.
struct Window {
  __m512i lo, hi;
};
inline Window LoadWindow(const uint8_t* p, uint32_t bytes) {
  const __mmask64 all = ~__mmask64(0);
  return {_mm512_maskz_loadu_epi8(_bzhi_u64(all, bytes), p),
          _mm512_maskz_loadu_epi8(bytes > 64 ? _bzhi_u64(all, bytes - 64) : 0, p + 64)};
}

// True when every lane of rel (offsets less the step's lowest) lies in
// 0 .. span, span itself no more than `limit`, and no lane has a bit of
// `misaligned` set.
inline bool Fits(__m512i rel, uint32_t span, uint32_t limit, int misaligned) {
  return span <= limit && _mm512_cmpgt_epu32_mask(rel, _mm512_set1_epi32(int(span))) == 0 &&
         _mm512_test_epi32_mask(rel, _mm512_set1_epi32(misaligned)) == 0;
}

// The four-byte pixels at 16 byte offsets of src: base and span are the
// lowest offset and the distance to the highest.
inline __m512i FetchPixels(const uint8_t* src, __m512i offsets, int32_t base, uint32_t span) {
  const __m512i rel = _mm512_sub_epi32(offsets, _mm512_set1_epi32(base));
  if (!Fits(rel, span, 124, 3)) return _mm512_i32gather_epi32(offsets, src, 1);
  const Window w = LoadWindow(src + base, span + 4);
  return _mm512_permutex2var_epi32(w.lo, _mm512_srli_epi32(rel, 2), w.hi);
}

// The four bytes of each of a pair's 16 lanes (PixelWindows): from the
// window where it has one, else gathered at the lanes' offsets.
inline __m512i FetchPair(const uint8_t* src, const int32_t* window, const int32_t* p0, const int32_t* p1,
                         int channels) {
  if (window[0] >= 0) {
    const uint8_t* at = src + window[0];
    const __m512i index = _mm512_loadu_si512(window + 1);
    if (channels == 4) return _mm512_permutex2var_epi32(_mm512_loadu_si512(at), index, _mm512_loadu_si512(at + 64));
    const __m512i even = _mm512_permutex2var_epi16(_mm512_loadu_si512(at), index, _mm512_loadu_si512(at + 64));
    const __m512i odd = _mm512_permutex2var_epi16(_mm512_loadu_si512(at + 1), index, _mm512_loadu_si512(at + 65));
    return _mm512_mask_blend_epi32(_mm512_test_epi32_mask(index, _mm512_set1_epi32(0x8000)), even, odd);
  }
  // Lanes 2i and 2i+1: the two taps of pixel 0 2 4 6 1 3 5 7 [i].
  const __m512i lanes = _mm512_setr_epi32(0, 16, 2, 18, 4, 20, 6, 22, 1, 17, 3, 19, 5, 21, 7, 23);
  const __m512i offsets =
      _mm512_permutex2var_epi32(_mm512_castsi256_si512(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p0))),
                                lanes, _mm512_castsi256_si512(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p1))));
  return _mm512_i32gather_epi32(offsets, src, 1);
}

void H8Px4(const uint8_t* src, const int32_t* pixOff, uint32_t pixels, const int32_t* wpairs, const int32_t* windows,
           int taps, int channels, uint32_t blocks, int16_t* out) {
  // The (tap 2t, tap 2t+1) sample pairs of a lane's first pixel, and of its
  // second, as 16-bit words: pixels 0 4 1 5, then 2 6 3 7, the order of the
  // weight table's vectors.
  constexpr char Z = -1;
  const __m512i first = _mm512_broadcast_i32x4(_mm_setr_epi8(0, Z, 4, Z, 1, Z, 5, Z, 2, Z, 6, Z, 3, Z, 7, Z));
  const __m512i second = _mm512_broadcast_i32x4(_mm_setr_epi8(8, Z, 12, Z, 9, Z, 13, Z, 10, Z, 14, Z, 11, Z, 15, Z));
  // After the final pack pixel p's samples start at word 0 16 4 20 8 24 12 28 [p].
  alignas(64) static constexpr int16_t kFour[32] = {0, 1, 2,  3,  16, 17, 18, 19, 4,  5,  6,  7,  20, 21, 22, 23,
                                                    8, 9, 10, 11, 24, 25, 26, 27, 12, 13, 14, 15, 28, 29, 30, 31};
  alignas(64) static constexpr int16_t kThree[32] = {0,  1,  2,  16, 17, 18, 4,  5,  6,  20, 21, 22, 8, 9, 10, 24,
                                                     25, 26, 12, 13, 14, 28, 29, 30, 0,  0,  0,  0,  0, 0, 0,  0};
  const __m512i order = _mm512_load_si512(channels == 4 ? kFour : kThree);
  const int pairs = (taps + 1) / 2;
  const __m512i round = _mm512_set1_epi32(128);
  for (uint32_t b = 0; b < blocks; ++b) {
    __m512i lo = round, hi = round;
    for (int t = 0; t < pairs; ++t) {
      const size_t at = size_t(b) * pairs + t;
      const __m512i pixels16 =
          FetchPair(src, windows + at * kPixelWindowInts, pixOff + size_t(2 * t) * pixels + 8 * b,
                    pixOff + size_t(std::min(2 * t + 1, taps - 1)) * pixels + 8 * b, channels);
      const int32_t* w = wpairs + at * 32;
      lo = _mm512_add_epi32(lo, _mm512_madd_epi16(_mm512_shuffle_epi8(pixels16, first), _mm512_loadu_si512(w)));
      hi = _mm512_add_epi32(hi, _mm512_madd_epi16(_mm512_shuffle_epi8(pixels16, second), _mm512_loadu_si512(w + 16)));
    }
    const __m512i words = _mm512_permutexvar_epi16(order, _mm512_packs_epi32(_mm512_srai_epi32(lo, 8),
                                                                             _mm512_srai_epi32(hi, 8)));
    if (channels == 4)
      _mm512_storeu_si512(out + 32 * size_t(b), words);
    else
      _mm512_mask_storeu_epi16(out + 24 * size_t(b), 0xFFFFFF, words);
  }
}

void NN8x4Keep(const uint8_t* src, const int32_t* off, uint32_t n, uint8_t* dst) {
  uint32_t j = 0;
  for (; j + 16 <= n; j += 16) {
    const __m512i offsets = _mm512_loadu_si512(off + j);
    const __m512i pixels = FetchPixels(src, offsets, off[j], uint32_t(off[j + 15] - off[j]));
    _mm512_mask_storeu_epi8(dst + 4 * size_t(j), 0x7777777777777777ull, pixels);
  }
  NN8x4KeepPortable(src, off, j, n, dst);
}

void NN16(const uint8_t* src, const int32_t* off, uint32_t n, uint32_t vectorEnd, uint8_t* dst) {
  uint32_t j = 0;
  for (; j + 32 <= vectorEnd; j += 32) {
    const __m512i a = _mm512_loadu_si512(off + j), b = _mm512_loadu_si512(off + j + 16);
    const int32_t base = off[j];
    const uint32_t span = uint32_t(off[j + 31] - base);
    const __m512i relA = _mm512_sub_epi32(a, _mm512_set1_epi32(base)), relB = _mm512_sub_epi32(b, _mm512_set1_epi32(base));
    __m512i words;
    if (Fits(relA, span, 126, 1) && Fits(relB, span, 126, 1)) {
      const Window w = LoadWindow(src + base, span + 2);
      const __m512i index = _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtepi32_epi16(_mm512_srli_epi32(relA, 1))),
                                               _mm512_cvtepi32_epi16(_mm512_srli_epi32(relB, 1)), 1);
      words = _mm512_permutex2var_epi16(w.lo, index, w.hi);
    } else {
      words = _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvtepi32_epi16(_mm512_i32gather_epi32(a, src, 1))),
                                 _mm512_cvtepi32_epi16(_mm512_i32gather_epi32(b, src, 1)), 1);
    }
    _mm512_storeu_si512(dst + 2 * size_t(j), words);
  }
  NN16Portable(src, off, j, n, dst);
}

ResizeRowKernels Rows() {
  ResizeRowKernels rows = kResizeRowsAVX2;
  rows.v8 = V8;
  rows.h8px4 = H8Px4;
  rows.nn8x4keep = NN8x4Keep;
  rows.nn16 = NN16;
  return rows;
}

}  // namespace

// Filled when the library loads, from the AVX2 table, which is constant.
const ResizeRowKernels kResizeRowsAVX512 = Rows();

}  // namespace kestrelink::resize
