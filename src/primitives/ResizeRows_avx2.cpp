// AVX2 resize rows (this file is built with -mavx2). The horizontal pass
// gathers each tap's samples as 32-bit words at their byte offsets and keeps
// the low byte or word; the vertical pass blends two rows per multiply-add
// (vpmaddwd) for 8-bit samples and one row per multiply and add for 16-bit
// ones, in the order and rounding of the portable rows.
#include <immintrin.h>

#include <algorithm>

#include "primitives/ResizeRows.h"

namespace kestrelink::resize {
namespace {

inline __m256i Gather(const uint8_t* src, const int32_t* off) {
  const __m256i o = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(off));
  return _mm256_i32gather_epi32(reinterpret_cast<const int*>(src), o, 1);
}

inline __m256i Weights8(const int16_t* w) {
  return _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(w)));
}

void H8(const uint8_t* src, const int32_t* off, const int16_t* w, int taps, uint32_t n, uint32_t vectorEnd,
        int16_t* out) {
  const __m256i low = _mm256_set1_epi32(0xFF), round = _mm256_set1_epi32(128);
  uint32_t j = 0;
  for (; j + 16 <= vectorEnd; j += 16) {
    __m256i a = round, b = round;
    for (int k = 0; k < taps; ++k) {
      const size_t at = size_t(k) * n + j;
      // Bytes are below 256 and the upper half-word of each lane is zero,
      // so the pair sum is the one product.
      a = _mm256_add_epi32(a, _mm256_madd_epi16(_mm256_and_si256(Gather(src, off + at), low), Weights8(w + at)));
      b = _mm256_add_epi32(b, _mm256_madd_epi16(_mm256_and_si256(Gather(src, off + at + 8), low), Weights8(w + at + 8)));
    }
    const __m256i packed = _mm256_packs_epi32(_mm256_srai_epi32(a, 8), _mm256_srai_epi32(b, 8));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + j), _mm256_permute4x64_epi64(packed, 0xD8));
  }
  H8Portable(src, off, w, taps, n, j, out);
}

void H16(const uint8_t* src, const int32_t* off, const float* w, int taps, uint32_t n, uint32_t vectorEnd,
         float* out) {
  const __m256i low = _mm256_set1_epi32(0xFFFF);
  uint32_t j = 0;
  for (; j + 8 <= vectorEnd; j += 8) {
    __m256 acc = _mm256_setzero_ps();
    for (int k = 0; k < taps; ++k) {
      const size_t at = size_t(k) * n + j;
      const __m256 s = _mm256_cvtepi32_ps(_mm256_and_si256(Gather(src, off + at), low));
      acc = _mm256_add_ps(acc, _mm256_mul_ps(_mm256_loadu_ps(w + at), s));
    }
    _mm256_storeu_ps(out + j, acc);
  }
  H16Portable(src, off, w, taps, n, j, out);
}

inline __m256i LoadRow(const int16_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }

void V8(const int16_t* const* rows, const int16_t* w, int taps, uint32_t n, bool keepFourth, uint8_t* dst) {
  const __m128i fourth = _mm_set1_epi32(int(0xFF000000u));
  uint32_t j = 0;
  for (; j + 16 <= n; j += 16) {
    __m256i lo = _mm256_set1_epi32(1 << 19), hi = lo;
    for (int k = 0; k < taps; k += 2) {
      const bool pair = k + 1 < taps;
      const __m256i r0 = LoadRow(rows[k] + j), r1 = pair ? LoadRow(rows[k + 1] + j) : _mm256_setzero_si256();
      const int second = pair ? w[k + 1] : 0;
      const __m256i wp = _mm256_set1_epi32(int(uint32_t(uint16_t(second)) << 16 | uint16_t(w[k])));
      lo = _mm256_add_epi32(lo, _mm256_madd_epi16(_mm256_unpacklo_epi16(r0, r1), wp));
      hi = _mm256_add_epi32(hi, _mm256_madd_epi16(_mm256_unpackhi_epi16(r0, r1), wp));
    }
    // Unpacking and packing within lanes puts the samples back in order.
    const __m256i words = _mm256_packs_epi32(_mm256_srai_epi32(lo, 20), _mm256_srai_epi32(hi, 20));
    __m128i bytes = _mm256_castsi256_si128(_mm256_permute4x64_epi64(_mm256_packus_epi16(words, words), 0x08));
    if (keepFourth)
      bytes = _mm_blendv_epi8(bytes, _mm_loadu_si128(reinterpret_cast<const __m128i*>(dst + j)), fourth);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(dst + j), bytes);
  }
  V8Portable(rows, w, taps, j, n, keepFourth, dst);
}

inline __m256i Round16(__m256 acc) {
  const __m256 top = _mm256_set1_ps(65535.0f), half = _mm256_set1_ps(0.5f);
  return _mm256_cvttps_epi32(_mm256_add_ps(_mm256_min_ps(_mm256_max_ps(acc, _mm256_setzero_ps()), top), half));
}

void V16(const float* const* rows, const float* w, int taps, uint32_t n, bool keepFourth, uint16_t* dst) {
  uint32_t j = 0;
  for (; j + 16 <= n; j += 16) {
    __m256 a = _mm256_setzero_ps(), b = a;
    for (int k = 0; k < taps; ++k) {
      const __m256 wk = _mm256_set1_ps(w[k]);
      a = _mm256_add_ps(a, _mm256_mul_ps(wk, _mm256_loadu_ps(rows[k] + j)));
      b = _mm256_add_ps(b, _mm256_mul_ps(wk, _mm256_loadu_ps(rows[k] + j + 8)));
    }
    __m256i words = _mm256_permute4x64_epi64(_mm256_packus_epi32(Round16(a), Round16(b)), 0xD8);
    __m256i* out = reinterpret_cast<__m256i*>(dst + j);
    if (keepFourth) words = _mm256_blend_epi16(words, _mm256_loadu_si256(out), 0x88);
    _mm256_storeu_si256(out, words);
  }
  V16Portable(rows, w, taps, j, n, keepFourth, dst);
}

constexpr char Z = -1;  // a zero byte in a shuffle

void H8Win(const uint8_t* src, const int32_t* win, const int32_t* w01, const int32_t* w23, uint32_t n, int16_t* out) {
  // Bytes 0, 1 and 2, 3 of each gathered word as 16-bit pairs for vpmaddwd.
  const __m256i first = _mm256_setr_epi8(0, Z, 1, Z, 4, Z, 5, Z, 8, Z, 9, Z, 12, Z, 13, Z,  //
                                          0, Z, 1, Z, 4, Z, 5, Z, 8, Z, 9, Z, 12, Z, 13, Z);
  const __m256i second = _mm256_setr_epi8(2, Z, 3, Z, 6, Z, 7, Z, 10, Z, 11, Z, 14, Z, 15, Z,  //
                                           2, Z, 3, Z, 6, Z, 7, Z, 10, Z, 11, Z, 14, Z, 15, Z);
  const __m256i round = _mm256_set1_epi32(128);
  auto eight = [&](uint32_t j) {
    const __m256i g = Gather(src, win + j);
    const __m256i a = _mm256_madd_epi16(_mm256_shuffle_epi8(g, first),
                                        _mm256_loadu_si256(reinterpret_cast<const __m256i*>(w01 + j)));
    const __m256i b = _mm256_madd_epi16(_mm256_shuffle_epi8(g, second),
                                        _mm256_loadu_si256(reinterpret_cast<const __m256i*>(w23 + j)));
    return _mm256_srai_epi32(_mm256_add_epi32(_mm256_add_epi32(a, b), round), 8);
  };
  uint32_t j = 0;
  for (; j + 16 <= n; j += 16) {
    const __m256i packed = _mm256_packs_epi32(eight(j), eight(j + 8));
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(out + j), _mm256_permute4x64_epi64(packed, 0xD8));
  }
  H8WinPortable(src, win, w01, w23, j, n, out);
}

void H16Win(const uint8_t* src, const int32_t* win, const float* wf, int width, uint32_t n, float* out) {
  const __m256i low = _mm256_set1_epi32(0xFFFF);
  uint32_t j = 0;
  for (; j + 8 <= n; j += 8) {
    const __m256i offsets = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(win + j));
    __m256 acc = _mm256_setzero_ps();
    for (int b = 0; b < width; b += 2) {
      // Two samples a gathered word: sample b low, b + 1 high.
      const __m256i g = _mm256_i32gather_epi32(reinterpret_cast<const int*>(src + 2 * b), offsets, 1);
      const __m256 s0 = _mm256_cvtepi32_ps(_mm256_and_si256(g, low)), s1 = _mm256_cvtepi32_ps(_mm256_srli_epi32(g, 16));
      acc = _mm256_add_ps(acc, _mm256_mul_ps(_mm256_loadu_ps(wf + size_t(b) * n + j), s0));
      acc = _mm256_add_ps(acc, _mm256_mul_ps(_mm256_loadu_ps(wf + size_t(b + 1) * n + j), s1));
    }
    _mm256_storeu_ps(out + j, acc);
  }
  H16WinPortable(src, win, wf, width, j, n, out);
}

void NN8(const uint8_t* src, const int32_t* off, uint32_t n, uint32_t vectorEnd, uint8_t* dst) {
  const __m256i low = _mm256_setr_epi8(0, 4, 8, 12, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z,  //
                                       0, 4, 8, 12, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z, Z);
  const __m256i join = _mm256_setr_epi32(0, 4, 1, 1, 1, 1, 1, 1);
  uint32_t j = 0;
  for (; j + 8 <= vectorEnd; j += 8) {
    const __m256i bytes = _mm256_permutevar8x32_epi32(_mm256_shuffle_epi8(Gather(src, off + j), low), join);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + j), _mm256_castsi256_si128(bytes));
  }
  NN8Portable(src, off, j, n, dst);
}

void NN16(const uint8_t* src, const int32_t* off, uint32_t n, uint32_t vectorEnd, uint8_t* dst) {
  const __m256i low = _mm256_set1_epi32(0xFFFF);
  uint32_t j = 0;
  for (; j + 16 <= vectorEnd; j += 16) {
    const __m256i a = _mm256_and_si256(Gather(src, off + j), low), b = _mm256_and_si256(Gather(src, off + j + 8), low);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * size_t(j)),
                        _mm256_permute4x64_epi64(_mm256_packus_epi32(a, b), 0xD8));
  }
  NN16Portable(src, off, j, n, dst);
}

void NN8x4Keep(const uint8_t* src, const int32_t* off, uint32_t n, uint8_t* dst) {
  const __m256i fourth = _mm256_set1_epi32(int(0xFF000000u));
  uint32_t j = 0;
  for (; j + 8 <= n; j += 8) {
    __m256i* out = reinterpret_cast<__m256i*>(dst + 4 * size_t(j));
    _mm256_storeu_si256(out, _mm256_blendv_epi8(Gather(src, off + j), _mm256_loadu_si256(out), fourth));
  }
  NN8x4KeepPortable(src, off, j, n, dst);
}

void H8Px4(const uint8_t* src, const int32_t* pixOff, uint32_t pixels, const int32_t* wpairs, const int32_t*, int taps,
           int channels, uint32_t blocks, int16_t* out) {
  // Three samples of each of a lane's two pixels, then four spare bytes.
  const __m256i three = _mm256_setr_epi8(0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, Z, Z, Z, Z,  //
                                         0, 1, 2, 3, 4, 5, 8, 9, 10, 11, 12, 13, Z, Z, Z, Z);
  const int pairs = (taps + 1) / 2;
  const __m256i zero = _mm256_setzero_si256(), round = _mm256_set1_epi32(128);
  auto load = [](const int32_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); };
  for (uint32_t b = 0; b < blocks; ++b) {
    __m256i a = round, bb = round, c = round, d = round;
    for (int t = 0; t < pairs; ++t) {
      const int k0 = 2 * t, k1 = std::min(2 * t + 1, taps - 1);
      const __m256i g0 = Gather(src, pixOff + size_t(k0) * pixels + 8 * b);
      const __m256i g1 = Gather(src, pixOff + size_t(k1) * pixels + 8 * b);
      // Taps interleaved byte by byte, then widened: one pixel's four
      // channels as (tap 2t, tap 2t+1) word pairs in each half.
      const __m256i lo = _mm256_unpacklo_epi8(g0, g1), hi = _mm256_unpackhi_epi8(g0, g1);
      const int32_t* w = wpairs + (size_t(b) * pairs + t) * 32;
      a = _mm256_add_epi32(a, _mm256_madd_epi16(_mm256_unpacklo_epi8(lo, zero), load(w)));
      bb = _mm256_add_epi32(bb, _mm256_madd_epi16(_mm256_unpackhi_epi8(lo, zero), load(w + 8)));
      c = _mm256_add_epi32(c, _mm256_madd_epi16(_mm256_unpacklo_epi8(hi, zero), load(w + 16)));
      d = _mm256_add_epi32(d, _mm256_madd_epi16(_mm256_unpackhi_epi8(hi, zero), load(w + 24)));
    }
    const __m256i x = _mm256_packs_epi32(_mm256_srai_epi32(a, 8), _mm256_srai_epi32(bb, 8));  // p0 p1 | p4 p5
    const __m256i y = _mm256_packs_epi32(_mm256_srai_epi32(c, 8), _mm256_srai_epi32(d, 8));   // p2 p3 | p6 p7
    const __m256i first = _mm256_permute2x128_si256(x, y, 0x20), second = _mm256_permute2x128_si256(x, y, 0x31);
    if (channels == 4) {
      __m256i* o = reinterpret_cast<__m256i*>(out + 32 * size_t(b));
      _mm256_storeu_si256(o, first);
      _mm256_storeu_si256(o + 1, second);
    } else {
      int16_t* o = out + 24 * size_t(b);
      const __m256i f = _mm256_shuffle_epi8(first, three), g = _mm256_shuffle_epi8(second, three);
      _mm_storeu_si128(reinterpret_cast<__m128i*>(o), _mm256_castsi256_si128(f));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(o + 6), _mm256_extracti128_si256(f, 1));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(o + 12), _mm256_castsi256_si128(g));
      _mm_storeu_si128(reinterpret_cast<__m128i*>(o + 18), _mm256_extracti128_si256(g, 1));
    }
  }
}

}  // namespace

const ResizeRowKernels kResizeRowsAVX2 = {H8, H16, V8, V16, H8Win, H16Win, NN8, NN8x4Keep, NN16, H8Px4};

}  // namespace kestrelink::resize
