// AVX2 interior runs of the general rotation (this file is built with
// -mavx2, without FMA, so every product and sum rounds as in the portable
// rule). Eight destination pixels at a time: their source points in double
// precision, the taps gathered as 32-bit words at byte offsets (a word may
// reach past the tap into the same or the next row, which the caller
// guarantees exists), the bilinear blend in float in the portable order.
#include <immintrin.h>

#include "primitives/RotateCubicBody.h"

namespace kestrelink::rotate {
namespace {

// Source points of pixels X .. X+7: u and v, four doubles to a register.
struct Points {
  __m256d u0, u1, v0, v1;
};

inline Points PointsAt(const Warp& w, double uRow, double vRow, int X) {
  const __m256d x0 = _mm256_add_pd(_mm256_set1_pd(double(X)), _mm256_setr_pd(0, 1, 2, 3));
  const __m256d x1 = _mm256_add_pd(_mm256_set1_pd(double(X)), _mm256_setr_pd(4, 5, 6, 7));
  const __m256d ux = _mm256_set1_pd(w.ux), vx = _mm256_set1_pd(w.vx);
  const __m256d ur = _mm256_set1_pd(uRow), vr = _mm256_set1_pd(vRow);
  return {_mm256_add_pd(_mm256_mul_pd(ux, x0), ur), _mm256_add_pd(_mm256_mul_pd(ux, x1), ur),
          _mm256_add_pd(_mm256_mul_pd(vx, x0), vr), _mm256_add_pd(_mm256_mul_pd(vx, x1), vr)};
}

inline __m256i Truncate(__m256d lo, __m256d hi) {
  return _mm256_set_m128i(_mm256_cvttpd_epi32(hi), _mm256_cvttpd_epi32(lo));
}

// float(p - trunc(p)) of eight points.
inline __m256 Fraction(__m256d lo, __m256d hi, __m256i whole) {
  const __m128 a = _mm256_cvtpd_ps(_mm256_sub_pd(lo, _mm256_cvtepi32_pd(_mm256_castsi256_si128(whole))));
  const __m128 b = _mm256_cvtpd_ps(_mm256_sub_pd(hi, _mm256_cvtepi32_pd(_mm256_extracti128_si256(whole, 1))));
  return _mm256_set_m128(b, a);
}

// Byte offsets of taps (x, y) for pixels of `bytes` bytes.
inline __m256i Offsets(const Warp& w, __m256i x, __m256i y, int bytes) {
  return _mm256_add_epi32(_mm256_mullo_epi32(y, _mm256_set1_epi32(int(w.srcStep))),
                          _mm256_mullo_epi32(x, _mm256_set1_epi32(bytes)));
}

inline __m256i Gather(const Warp& w, __m256i offsets) {
  return _mm256_i32gather_epi32(reinterpret_cast<const int*>(w.src), offsets, 1);
}

// Round<T>: + 0.5, limited to 0 .. max, truncated.
inline __m256i RoundLimit(__m256 v, float max) {
  const __m256 r =
      _mm256_min_ps(_mm256_max_ps(_mm256_add_ps(v, _mm256_set1_ps(0.5f)), _mm256_setzero_ps()), _mm256_set1_ps(max));
  return _mm256_cvttps_epi32(r);
}

inline __m256 Lerp(__m256 a, __m256 b, __m256 t) { return _mm256_add_ps(a, _mm256_mul_ps(t, _mm256_sub_ps(b, a))); }

// Sample `field` (shift, mask) of each 32-bit word, as floats.
inline __m256 Field(__m256i words, int shift, int mask) {
  return _mm256_cvtepi32_ps(_mm256_and_si256(_mm256_srli_epi32(words, shift), _mm256_set1_epi32(mask)));
}

// The bilinear blend of one sample from the four tap words.
inline __m256 Blend(__m256i w00, __m256i w01, __m256i w10, __m256i w11, int shift01, int shift, int mask, __m256 tx,
                    __m256 ty) {
  const __m256 top = Lerp(Field(w00, shift, mask), Field(w01, shift + shift01, mask), tx);
  const __m256 bottom = Lerp(Field(w10, shift, mask), Field(w11, shift + shift01, mask), tx);
  return Lerp(top, bottom, ty);
}

// The low byte of each 32-bit lane, eight bytes in order.
inline void StoreLowBytes(uint8_t* d, __m256i v) {
  const __m256i packed = _mm256_packus_epi16(_mm256_packus_epi32(v, v), v);  // per lane: bytes 0-3
  const __m256i joined = _mm256_permutevar8x32_epi32(packed, _mm256_setr_epi32(0, 4, 0, 0, 0, 0, 0, 0));
  _mm_storel_epi64(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(joined));
}

// The low word of each 32-bit lane, eight words in order.
inline void StoreLowWords(uint16_t* d, __m256i v) {
  const __m256i packed = _mm256_permute4x64_epi64(_mm256_packus_epi32(v, v), 0x08);
  _mm_storeu_si128(reinterpret_cast<__m128i*>(d), _mm256_castsi256_si128(packed));
}

template <class T, int C, int W, Kind K>
void Tail(const Warp& w, double uRow, double vRow, int a, int b, T* d) {
  const Source<T, C> s{w};
  for (int X = a; X < b; ++X, d += C) RotatePixel<T, C, W, K, false, true>(s, w, w.ux * X + uRow, w.vx * X + vRow, d);
}

// The words at the nearest taps of pixels X .. X+7, pixels of `bytes` bytes.
inline __m256i NearestWords(const Warp& w, double uRow, double vRow, int X, int bytes) {
  const __m256d half = _mm256_set1_pd(0.5);
  const Points p = PointsAt(w, uRow, vRow, X);
  const __m256i x = Truncate(_mm256_add_pd(p.u0, half), _mm256_add_pd(p.u1, half));
  const __m256i y = Truncate(_mm256_add_pd(p.v0, half), _mm256_add_pd(p.v1, half));
  return Gather(w, Offsets(w, x, y, bytes));
}

void Nearest8C1(const Warp& w, double uRow, double vRow, int a, int b, void* dst) {
  auto* d = static_cast<uint8_t*>(dst);
  int X = a;
  for (; X + 8 <= b; X += 8, d += 8) {
    StoreLowBytes(d, _mm256_and_si256(NearestWords(w, uRow, vRow, X, 1), _mm256_set1_epi32(0xFF)));
  }
  Tail<uint8_t, 1, 1, Kind::kNearest>(w, uRow, vRow, X, b, d);
}

void Nearest16C1(const Warp& w, double uRow, double vRow, int a, int b, void* dst) {
  auto* d = static_cast<uint16_t*>(dst);
  int X = a;
  for (; X + 8 <= b; X += 8, d += 8) {
    StoreLowWords(d, _mm256_and_si256(NearestWords(w, uRow, vRow, X, 2), _mm256_set1_epi32(0xFFFF)));
  }
  Tail<uint16_t, 1, 1, Kind::kNearest>(w, uRow, vRow, X, b, d);
}

void Nearest8AC4(const Warp& w, double uRow, double vRow, int a, int b, void* dst) {
  auto* d = static_cast<uint8_t*>(dst);
  const __m256i keep = _mm256_set1_epi32(int(0xFF000000u));  // the fourth sample stays
  int X = a;
  for (; X + 8 <= b; X += 8, d += 32) {
    const __m256i old = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(d));
    const __m256i px = _mm256_blendv_epi8(NearestWords(w, uRow, vRow, X, 4), old, keep);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), px);
  }
  Tail<uint8_t, 4, 3, Kind::kNearest>(w, uRow, vRow, X, b, d);
}

// Taps, weights and the four tap words of eight bilinear points.
struct Quad {
  __m256i w00, w01, w10, w11;
  __m256 tx, ty;
};

inline Quad LinearTaps(const Warp& w, double uRow, double vRow, int X, int bytes, bool wordHoldsBoth) {
  const Points p = PointsAt(w, uRow, vRow, X);
  const __m256i x = Truncate(p.u0, p.u1), y = Truncate(p.v0, p.v1);
  const __m256i at = Offsets(w, x, y, bytes), below = _mm256_add_epi32(at, _mm256_set1_epi32(int(w.srcStep)));
  Quad q;
  q.tx = Fraction(p.u0, p.u1, x);
  q.ty = Fraction(p.v0, p.v1, y);
  q.w00 = Gather(w, at);
  q.w10 = Gather(w, below);
  q.w01 = wordHoldsBoth ? q.w00 : Gather(w, _mm256_add_epi32(at, _mm256_set1_epi32(bytes)));
  q.w11 = wordHoldsBoth ? q.w10 : Gather(w, _mm256_add_epi32(below, _mm256_set1_epi32(bytes)));
  return q;
}

void Linear8C1(const Warp& w, double uRow, double vRow, int a, int b, void* dst) {
  auto* d = static_cast<uint8_t*>(dst);
  int X = a;
  for (; X + 8 <= b; X += 8, d += 8) {
    const Quad q = LinearTaps(w, uRow, vRow, X, 1, true);
    StoreLowBytes(d, RoundLimit(Blend(q.w00, q.w01, q.w10, q.w11, 8, 0, 0xFF, q.tx, q.ty), 255.0f));
  }
  Tail<uint8_t, 1, 1, Kind::kLinear>(w, uRow, vRow, X, b, d);
}

void Linear16C1(const Warp& w, double uRow, double vRow, int a, int b, void* dst) {
  auto* d = static_cast<uint16_t*>(dst);
  int X = a;
  for (; X + 8 <= b; X += 8, d += 8) {
    const Quad q = LinearTaps(w, uRow, vRow, X, 2, true);
    StoreLowWords(d, RoundLimit(Blend(q.w00, q.w01, q.w10, q.w11, 16, 0, 0xFFFF, q.tx, q.ty), 65535.0f));
  }
  Tail<uint16_t, 1, 1, Kind::kLinear>(w, uRow, vRow, X, b, d);
}

void Linear8AC4(const Warp& w, double uRow, double vRow, int a, int b, void* dst) {
  auto* d = static_cast<uint8_t*>(dst);
  int X = a;
  for (; X + 8 <= b; X += 8, d += 32) {
    const Quad q = LinearTaps(w, uRow, vRow, X, 4, false);
    __m256i px = _mm256_and_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(d)),
                                  _mm256_set1_epi32(int(0xFF000000u)));  // the fourth sample stays
    for (int c = 0; c < 3; ++c) {
      const __m256i sample = RoundLimit(Blend(q.w00, q.w01, q.w10, q.w11, 0, 8 * c, 0xFF, q.tx, q.ty), 255.0f);
      px = _mm256_or_si256(px, _mm256_slli_epi32(sample, 8 * c));
    }
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), px);
  }
  Tail<uint8_t, 4, 3, Kind::kLinear>(w, uRow, vRow, X, b, d);
}

// Eight lanes for the cubic run body; one-sample pixels and 8-bit AC4 (whose
// fourth sample is read back and kept) are stored as vectors.
struct Lanes8 {
  static constexpr int kLanes = 8;
  using I = __m256i;
  using F = __m256;
  static F Splat(float v) { return _mm256_set1_ps(v); }
  static I Splat(int v) { return _mm256_set1_epi32(v); }
  static I AddI(I a, I b) { return _mm256_add_epi32(a, b); }
  static void Taps(const Warp& w, double uRow, double vRow, int X, I& iu, I& iv, F& tx, F& ty) {
    const Points p = PointsAt(w, uRow, vRow, X);
    iu = Truncate(p.u0, p.u1);
    iv = Truncate(p.v0, p.v1);
    tx = Fraction(p.u0, p.u1, iu);
    ty = Fraction(p.v0, p.v1, iv);
  }
  static I Offsets(const Warp& w, I x, I y, int bytes) { return rotate::Offsets(w, x, y, bytes); }
  static I Gather(const Warp& w, I offsets) { return rotate::Gather(w, offsets); }
  static F Field(I words, int shift, int mask) { return rotate::Field(words, shift, mask); }
  static I RoundLimit(F v, float max) { return rotate::RoundLimit(v, max); }
  template <class T, int C, int W>
  static void Store(T* d, const I* samples) {
    if constexpr (C == 1 && sizeof(T) == 1) {
      StoreLowBytes(d, samples[0]);
    } else if constexpr (C == 1) {
      StoreLowWords(d, samples[0]);
    } else if constexpr (sizeof(T) == 1 && C == 4) {
      __m256i px = _mm256_and_si256(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(d)),
                                    _mm256_set1_epi32(int(0xFF000000u)));  // the fourth sample stays
      for (int c = 0; c < 3; ++c) px = _mm256_or_si256(px, _mm256_slli_epi32(samples[c], 8 * c));
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(d), px);
    } else {
      StorePixels<T, C, W>(d, samples, kLanes);
    }
  }
};

}  // namespace

const RotateRunKernels kRotateRunsAVX2 = {Nearest8C1,
                                          Linear8C1,
                                          Nearest8AC4,
                                          Linear8AC4,
                                          Nearest16C1,
                                          Linear16C1,
                                          CubicRun<Lanes8, uint8_t, 1, 1>,
                                          CubicRun<Lanes8, uint8_t, 3, 3>,
                                          CubicRun<Lanes8, uint8_t, 4, 3>,
                                          CubicRun<Lanes8, uint16_t, 1, 1>,
                                          CubicRun<Lanes8, uint16_t, 3, 3>,
                                          CubicRun<Lanes8, uint16_t, 4, 3>};

}  // namespace kestrelink::rotate
