#pragma once
// The body of the fixed-point real transform, included into one unit per
// instruction set inside that unit's own namespace, so that each is compiled
// (and vectorised) for its set. The passes work on split real and imaginary
// lanes of 32 bits. A product with a Q15 twiddle is rounded to nearest
// exactly without 64-bit lanes: the lane splits into its high part (x >> 15)
// and its low 15 bits, and both partial sums stay below 2^31 since the
// twiddle's two parts are at most sqrt(2) * 2^15 together.
// The including unit brings <algorithm> and FftReal16Plan.h in first.

// Real part of (xr + i xi)(c + i s), rounded to nearest, in Q15.
inline int32_t MulRe(int32_t xr, int32_t xi, int32_t c, int32_t s) {
  return ((xr >> 15) * c - (xi >> 15) * s) + (((xr & 0x7FFF) * c - (xi & 0x7FFF) * s + 16384) >> 15);
}
inline int32_t MulIm(int32_t xr, int32_t xi, int32_t c, int32_t s) {
  return ((xr >> 15) * s + (xi >> 15) * c) + (((xr & 0x7FFF) * s + (xi & 0x7FFF) * c + 16384) >> 15);
}

// Even samples become real parts and odd ones imaginary parts, each point
// put at its bit-reversed place, scaled by the guard bits.
inline void LoadReversed(const kestrelink::fft::FftPlan& plan, const int16_t* src, int32_t* re, int32_t* im) {
  const uint32_t* rev = plan.reversed.data();
  if (plan.guard >= 0) {
    const int g = plan.guard;
    for (uint32_t i = 0; i < plan.half; ++i) {
      re[rev[i]] = int32_t(src[2 * i]) * (1 << g);
      im[rev[i]] = int32_t(src[2 * i + 1]) * (1 << g);
    }
  } else {
    const int g = -plan.guard;
    const int32_t round = 1 << (g - 1);
    for (uint32_t i = 0; i < plan.half; ++i) {
      re[rev[i]] = (int32_t(src[2 * i]) + round) >> g;
      im[rev[i]] = (int32_t(src[2 * i + 1]) + round) >> g;
    }
  }
}

// The first two passes at once (twiddles 1 and -i, no products).
inline void Radix4Pass(int32_t* re, int32_t* im, uint32_t half) {
  for (uint32_t s = 0; s < half; s += 4) {
    const int32_t b0r = re[s] + re[s + 1], b0i = im[s] + im[s + 1];
    const int32_t b1r = re[s] - re[s + 1], b1i = im[s] - im[s + 1];
    const int32_t b2r = re[s + 2] + re[s + 3], b2i = im[s + 2] + im[s + 3];
    const int32_t b3r = re[s + 2] - re[s + 3], b3i = im[s + 2] - im[s + 3];
    re[s] = b0r + b2r, im[s] = b0i + b2i;
    re[s + 2] = b0r - b2r, im[s + 2] = b0i - b2i;
    re[s + 1] = b1r + b3i, im[s + 1] = b1i - b3r;  // b1 + (-i) b3
    re[s + 3] = b1r - b3i, im[s + 3] = b1i + b3r;
  }
}

inline void Radix2Pass(int32_t* re, int32_t* im, uint32_t half, uint32_t h, const int32_t* cr, const int32_t* ci) {
  for (uint32_t s = 0; s < half; s += 2 * h) {
    int32_t* __restrict ar = re + s;
    int32_t* __restrict ai = im + s;
    int32_t* __restrict br = re + s + h;
    int32_t* __restrict bi = im + s + h;
    for (uint32_t j = 0; j < h; ++j) {
      const int32_t tr = MulRe(br[j], bi[j], cr[j], ci[j]), ti = MulIm(br[j], bi[j], cr[j], ci[j]);
      br[j] = ar[j] - tr, bi[j] = ai[j] - ti;
      ar[j] += tr, ai[j] += ti;
    }
  }
}

inline int16_t Saturate16(int64_t v) { return int16_t(std::clamp<int64_t>(v, -32768, 32767)); }

// 2 X[k] = A - i W^k B with A = Z[k] + conj Z[M-k], B = Z[k] - conj Z[M-k],
// then scaled, rounded and saturated into the CCS form.
inline void SplitPass(const kestrelink::fft::FftPlan& plan, const int32_t* re, const int32_t* im, int16_t* dst,
                      int scaleFactor, uint32_t from = 0, uint32_t to = ~0u) {
  const uint32_t m = plan.half;
  const int shift = std::min(plan.shift + scaleFactor, 62);  // every lane is below 2^62
  const int64_t mul = plan.multiplier;
  const int64_t round = shift > 0 ? int64_t(1) << (shift - 1) : 0;
  to = std::min(to, m + 1);
  for (uint32_t k = from; k < to; ++k) {
    const uint32_t p = k == m ? 0 : k, q = k == 0 ? 0 : m - k;
    const int32_t ar = re[p] + re[q], ai = im[p] - im[q];
    const int32_t br = re[p] - re[q], bi = im[p] + im[q];
    const int32_t c = plan.splitRe[k], s = plan.splitIm[k];
    const int32_t tr = MulRe(br, bi, c, s), ti = MulIm(br, bi, c, s);
    const int64_t xr = int64_t(ar) + ti, xi = int64_t(ai) - tr;
    if (shift > 0) {
      dst[2 * k] = Saturate16((xr * mul + round) >> shift);
      dst[2 * k + 1] = Saturate16((xi * mul + round) >> shift);
    } else {
      // Anything beyond 16 bits saturates, so clamp before the shift can overflow.
      dst[2 * k] = Saturate16(std::clamp<int64_t>(xr * mul, -65536, 65536) * (int64_t(1) << -shift));
      dst[2 * k + 1] = Saturate16(std::clamp<int64_t>(xi * mul, -65536, 65536) * (int64_t(1) << -shift));
    }
  }
  if (from == 0) dst[1] = 0;
  if (to == m + 1) dst[2 * m + 1] = 0;
}

// The plain start of the passes: the points in bit-reversed order, then the
// radix-4 pass; gives the half-length of the first radix-2 pass still to run.
inline uint32_t FrontPlain(const kestrelink::fft::FftPlan& plan, const int16_t* src, const int16_t* /*ahead*/,
                           int32_t* re, int32_t* im) {
  LoadReversed(plan, src, re, im);
  if (plan.half < 4) return 1;
  Radix4Pass(re, im, plan.half);
  return 4;
}

// front(plan, src, ahead, re, im) loads the points and runs the first
// passes, giving the half-length of the next; pass(re, im, half, h, twiddleRe,
// twiddleIm) runs one radix-2 pass; split(plan, re, im, dst, scaleFactor)
// the split pass.
template <class Front, class Pass, class Split>
inline void ForwardRowBody(const kestrelink::fft::FftPlan& plan, const int16_t* src, const int16_t* ahead, int16_t* dst,
                           int scaleFactor, int32_t* work, Front front, Pass pass, Split split) {
  const uint32_t m = plan.half;
  int32_t* re = work;
  int32_t* im = work + m;
  for (uint32_t h = front(plan, src, ahead, re, im); h < m; h <<= 1)
    pass(re, im, m, h, plan.passRe.data() + h - 1, plan.passIm.data() + h - 1);
  split(plan, re, im, dst, scaleFactor);
}

// Entries 0 .. len/2 as they stand, entry len - k the conjugate of entry k.
inline void ConjCcsPlain(const int16_t* src, Ipp16sc* dst, uint32_t len) {
  const uint32_t half = len / 2;
  for (uint32_t k = 0; k <= half; ++k) dst[k] = {src[2 * k], src[2 * k + 1]};
  for (uint32_t k = half + 1; k < len; ++k) {
    const Ipp16sc& mirror = dst[len - k];
    // The conjugate of -32768 saturates.
    dst[k] = {mirror.re, Ipp16s(mirror.im == -32768 ? 32767 : -mirror.im)};
  }
}

inline void AddMagnitudesPlain(const Ipp16sc* points, double* spectrum, uint32_t count) {
  for (uint32_t i = 0; i < count; ++i) {
    const float re = float(points[i].re), im = float(points[i].im);
    const float sq = re * re;
    const float m = __builtin_sqrtf(sq + im * im);
    spectrum[i] += double(m);
  }
}

inline void AddMagnitudePairsPlain(const Ipp16sc* points, double* up, double* down, uint32_t count) {
  for (uint32_t j = 0; j < count; ++j) {
    const float re = float(points[j].re), im = float(points[j].im);
    const float conjIm = float(points[j].im == -32768 ? 32767 : -points[j].im);
    const float sq = re * re;
    up[j] += double(__builtin_sqrtf(sq + im * im));
    *(down - j) += double(__builtin_sqrtf(sq + conjIm * conjIm));
  }
}
