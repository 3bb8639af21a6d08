#pragma once
// The AVX2 kernels of the fixed-point real transform, included after
// FftReal16Body.h into each unit built with AVX2 or more, inside its own
// namespace. Every kernel gives exactly the portable body's lanes.
// The including unit brings <immintrin.h>, <algorithm>, <cstring> and
// FftReal16Plan.h in first.

inline __m256i Load(const int32_t* p) { return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)); }
inline void Store(int32_t* p, __m256i v) { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

// MulRe and MulIm on eight lanes from whole 64-bit products: each sum
// x c - y s (x s + y c) plus the rounding half is exact in 64 bits, and its
// bits 15 .. 46 are the rounded product, the same 32 bits as the high and
// low split gives (both are exact modulo 2^32). Even lanes multiply in
// place, odd ones after a shuffle down; the shifts put each result back in
// its own half of the 64 bits.
inline void Multiply8(__m256i xr, __m256i xi, __m256i c, __m256i s, __m256i& tr, __m256i& ti) {
  const __m256i half = _mm256_set1_epi64x(16384);
  const __m256i xro = _mm256_shuffle_epi32(xr, 0xF5), xio = _mm256_shuffle_epi32(xi, 0xF5);
  const __m256i co = _mm256_shuffle_epi32(c, 0xF5), so = _mm256_shuffle_epi32(s, 0xF5);
  const __m256i reEven = _mm256_add_epi64(_mm256_sub_epi64(_mm256_mul_epi32(xr, c), _mm256_mul_epi32(xi, s)), half);
  const __m256i reOdd = _mm256_add_epi64(_mm256_sub_epi64(_mm256_mul_epi32(xro, co), _mm256_mul_epi32(xio, so)), half);
  const __m256i imEven = _mm256_add_epi64(_mm256_add_epi64(_mm256_mul_epi32(xr, s), _mm256_mul_epi32(xi, c)), half);
  const __m256i imOdd = _mm256_add_epi64(_mm256_add_epi64(_mm256_mul_epi32(xro, so), _mm256_mul_epi32(xio, co)), half);
  tr = _mm256_blend_epi32(_mm256_srli_epi64(reEven, 15), _mm256_slli_epi64(reOdd, 17), 0xAA);
  ti = _mm256_blend_epi32(_mm256_srli_epi64(imEven, 15), _mm256_slli_epi64(imOdd, 17), 0xAA);
}

// The same on four lanes, for the pass of half-length 4.
inline void Multiply4(__m128i xr, __m128i xi, __m128i c, __m128i s, __m128i& tr, __m128i& ti) {
  const __m128i low = _mm_set1_epi32(0x7FFF), half = _mm_set1_epi32(16384);
  const __m128i rh = _mm_srai_epi32(xr, 15), ih = _mm_srai_epi32(xi, 15);
  const __m128i rl = _mm_and_si128(xr, low), il = _mm_and_si128(xi, low);
  const __m128i reHigh = _mm_sub_epi32(_mm_mullo_epi32(rh, c), _mm_mullo_epi32(ih, s));
  const __m128i reLow = _mm_sub_epi32(_mm_mullo_epi32(rl, c), _mm_mullo_epi32(il, s));
  const __m128i imHigh = _mm_add_epi32(_mm_mullo_epi32(rh, s), _mm_mullo_epi32(ih, c));
  const __m128i imLow = _mm_add_epi32(_mm_mullo_epi32(rl, s), _mm_mullo_epi32(il, c));
  tr = _mm_add_epi32(reHigh, _mm_srai_epi32(_mm_add_epi32(reLow, half), 15));
  ti = _mm_add_epi32(imHigh, _mm_srai_epi32(_mm_add_epi32(imLow, half), 15));
}

inline __m128i Load4(const int32_t* p) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(p)); }
inline void Store4(int32_t* p, __m128i v) { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

inline void Radix2Pass4(int32_t* re, int32_t* im, uint32_t half, const int32_t* cr, const int32_t* ci) {
  const __m128i c = Load4(cr), sn = Load4(ci);
  for (uint32_t s = 0; s < half; s += 8) {
    __m128i tr, ti;
    Multiply4(Load4(re + s + 4), Load4(im + s + 4), c, sn, tr, ti);
    const __m128i xr = Load4(re + s), xi = Load4(im + s);
    Store4(re + s + 4, _mm_sub_epi32(xr, tr));
    Store4(im + s + 4, _mm_sub_epi32(xi, ti));
    Store4(re + s, _mm_add_epi32(xr, tr));
    Store4(im + s, _mm_add_epi32(xi, ti));
  }
}

// Passes of half-length 8 and more go eight butterflies a step, half-length
// 4 four a step; shorter ones take the plain pass.
inline void Radix2Pass8(int32_t* re, int32_t* im, uint32_t half, uint32_t h, const int32_t* cr, const int32_t* ci) {
  if (h == 4) return Radix2Pass4(re, im, half, cr, ci);
  if (h < 8) return Radix2Pass(re, im, half, h, cr, ci);
  for (uint32_t s = 0; s < half; s += 2 * h) {
    int32_t *ar = re + s, *ai = im + s, *br = re + s + h, *bi = im + s + h;
    for (uint32_t j = 0; j < h; j += 8) {
      __m256i tr, ti;
      Multiply8(Load(br + j), Load(bi + j), Load(cr + j), Load(ci + j), tr, ti);
      const __m256i xr = Load(ar + j), xi = Load(ai + j);
      Store(br + j, _mm256_sub_epi32(xr, tr));
      Store(bi + j, _mm256_sub_epi32(xi, ti));
      Store(ar + j, _mm256_add_epi32(xr, tr));
      Store(ai + j, _mm256_add_epi32(xi, ti));
    }
  }
}

// Bins 1 .. 8j of the split pass eight at a time where the scaling is a
// plain rounding shift (every flag but the square root, ordinary scale
// factors); the ends and the rest go the plain way. Z[M - k] for eight k is
// a reversed load.
inline void SplitPass8(const FftPlan& plan, const int32_t* re, const int32_t* im, int16_t* dst, int scaleFactor) {
  const uint32_t m = plan.half;
  const int shift = plan.shift + scaleFactor;
  uint32_t k = 1;
  if (plan.multiplier == 1 && shift >= 1 && shift <= 30 && m >= 16) {
    const __m256i reverse = _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0);
    const __m256i round = _mm256_set1_epi32(1 << (shift - 1));
    const __m128i count = _mm_cvtsi32_si128(shift);
    for (; k + 8 <= m; k += 8) {
      const __m256i pr = Load(re + k), pi = Load(im + k);
      const __m256i qr = _mm256_permutevar8x32_epi32(Load(re + m - k - 7), reverse);
      const __m256i qi = _mm256_permutevar8x32_epi32(Load(im + m - k - 7), reverse);
      const __m256i ar = _mm256_add_epi32(pr, qr), ai = _mm256_sub_epi32(pi, qi);
      const __m256i br = _mm256_sub_epi32(pr, qr), bi = _mm256_add_epi32(pi, qi);
      __m256i tr, ti;
      Multiply8(br, bi, Load(plan.splitRe.data() + k), Load(plan.splitIm.data() + k), tr, ti);
      const __m256i xr = _mm256_sra_epi32(_mm256_add_epi32(_mm256_add_epi32(ar, ti), round), count);
      const __m256i xi = _mm256_sra_epi32(_mm256_add_epi32(_mm256_sub_epi32(ai, tr), round), count);
      // Interleave re and im, saturate to 16 bits: k .. k+3 in the low lane, k+4 .. k+7 in the high.
      const __m256i packed = _mm256_packs_epi32(_mm256_unpacklo_epi32(xr, xi), _mm256_unpackhi_epi32(xr, xi));
      _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + 2 * k), packed);
    }
  }
  SplitPass(plan, re, im, dst, scaleFactor, 0, 1);
  SplitPass(plan, re, im, dst, scaleFactor, k, m + 1);
}

// An 8 x 8 block of 32-bit lanes turned about its diagonal: row j of the
// result holds lane j of each input row.
inline void Transpose8x8(__m256i (&r)[8]) {
  __m256i t[8], u[8];
  for (int j = 0; j < 8; j += 2) {
    t[j] = _mm256_unpacklo_epi32(r[j], r[j + 1]);
    t[j + 1] = _mm256_unpackhi_epi32(r[j], r[j + 1]);
  }
  for (int j = 0; j < 8; j += 4) {
    u[j] = _mm256_unpacklo_epi64(t[j], t[j + 2]);
    u[j + 1] = _mm256_unpackhi_epi64(t[j], t[j + 2]);
    u[j + 2] = _mm256_unpacklo_epi64(t[j + 1], t[j + 3]);
    u[j + 3] = _mm256_unpackhi_epi64(t[j + 1], t[j + 3]);
  }
  for (int j = 0; j < 4; ++j) {
    r[j] = _mm256_permute2x128_si256(u[j], u[j + 4], 0x20);
    r[j + 4] = _mm256_permute2x128_si256(u[j], u[j + 4], 0x31);
  }
}

// Radix-4 butterflies on lanes 0 .. 3 of a group (twiddles 1 and -i).
inline void Radix4Lanes(__m256i* vr, __m256i* vi) {
  const __m256i b0r = _mm256_add_epi32(vr[0], vr[1]), b0i = _mm256_add_epi32(vi[0], vi[1]);
  const __m256i b1r = _mm256_sub_epi32(vr[0], vr[1]), b1i = _mm256_sub_epi32(vi[0], vi[1]);
  const __m256i b2r = _mm256_add_epi32(vr[2], vr[3]), b2i = _mm256_add_epi32(vi[2], vi[3]);
  const __m256i b3r = _mm256_sub_epi32(vr[2], vr[3]), b3i = _mm256_sub_epi32(vi[2], vi[3]);
  vr[0] = _mm256_add_epi32(b0r, b2r), vi[0] = _mm256_add_epi32(b0i, b2i);
  vr[2] = _mm256_sub_epi32(b0r, b2r), vi[2] = _mm256_sub_epi32(b0i, b2i);
  vr[1] = _mm256_add_epi32(b1r, b3i), vi[1] = _mm256_sub_epi32(b1i, b3r);
  vr[3] = _mm256_sub_epi32(b1r, b3i), vi[3] = _mm256_add_epi32(b1i, b3r);
}

// One butterfly of a radix-2 pass: a + t and a - t.
inline void Butterfly(__m256i& ar, __m256i& ai, __m256i& br, __m256i& bi, __m256i tr, __m256i ti) {
  br = _mm256_sub_epi32(ar, tr), bi = _mm256_sub_epi32(ai, ti);
  ar = _mm256_add_epi32(ar, tr), ai = _mm256_add_epi32(ai, ti);
}

// The load in bit-reversed order, the radix-4 pass and the radix-2 pass of
// half-length 4 at once, for 64 points and more. Positions 8u .. 8u + 7
// hold the points r + e * {0, 4, 2, 6, 1, 5, 3, 7}, e = half / 8, with
// 8r the reversed place of u (and of r: the reversal is its own inverse);
// so eight consecutive r are eight plain loads, one per eighth of the row,
// each lane working one group of eight, and a transpose gives each group's
// eight results to one store. Twiddles 1 and -i of the last pass are exact
// (1.0 is held as 32768), the other two are the plan's. Each step reads
// four cache lines' worth of the row, and asks for four lines of `ahead`.
inline uint32_t Front8(const FftPlan& plan, const int16_t* src, const int16_t* ahead, int32_t* re, int32_t* im) {
  const uint32_t m = plan.half, e = m / 8;
  if (m < 64) return FrontPlain(plan, src, ahead, re, im);
  static constexpr uint32_t kEighth[8] = {0, 4, 2, 6, 1, 5, 3, 7};
  const bool widen = plan.guard >= 0;
  const __m128i up = _mm_cvtsi32_si128(widen ? plan.guard : 0), down = _mm_cvtsi32_si128(widen ? 0 : -plan.guard);
  const __m256i round = _mm256_set1_epi32(widen ? 0 : 1 << (-plan.guard - 1));
  const __m256i c1 = _mm256_set1_epi32(plan.passRe[4]), s1 = _mm256_set1_epi32(plan.passIm[4]);
  const __m256i c3 = _mm256_set1_epi32(plan.passRe[6]), s3 = _mm256_set1_epi32(plan.passIm[6]);
  const __m256i zero = _mm256_setzero_si256();
  for (uint32_t r = 0; r < e; r += 8) {
    if (ahead)
      for (uint32_t line = 0; line < 4; ++line)
        _mm_prefetch(reinterpret_cast<const char*>(ahead + 16 * r) + 64 * line, _MM_HINT_T0);
    __m256i vr[8], vi[8];
    for (int j = 0; j < 8; ++j) {
      const __m256i w = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(src + 2 * (kEighth[j] * e + r)));
      const __m256i x = _mm256_srai_epi32(_mm256_slli_epi32(w, 16), 16), y = _mm256_srai_epi32(w, 16);
      if (widen) {
        vr[j] = _mm256_sll_epi32(x, up), vi[j] = _mm256_sll_epi32(y, up);
      } else {
        vr[j] = _mm256_sra_epi32(_mm256_add_epi32(x, round), down);
        vi[j] = _mm256_sra_epi32(_mm256_add_epi32(y, round), down);
      }
    }
    Radix4Lanes(vr, vi);
    Radix4Lanes(vr + 4, vi + 4);
    __m256i tr, ti;
    Butterfly(vr[0], vi[0], vr[4], vi[4], vr[4], vi[4]);
    Multiply8(vr[5], vi[5], c1, s1, tr, ti);
    Butterfly(vr[1], vi[1], vr[5], vi[5], tr, ti);
    Butterfly(vr[2], vi[2], vr[6], vi[6], vi[6], _mm256_sub_epi32(zero, vr[6]));  // -i (x + iy) = y - ix
    Multiply8(vr[7], vi[7], c3, s3, tr, ti);
    Butterfly(vr[3], vi[3], vr[7], vi[7], tr, ti);
    Transpose8x8(vr);
    Transpose8x8(vi);
    for (int l = 0; l < 8; ++l) {
      const uint32_t at = plan.reversed[r + l];
      Store(re + at, vr[l]);
      Store(im + at, vi[l]);
    }
  }
  return 8;
}

// out[i] += lane i of m in double precision, i < 8.
inline void AddWidened8(double* out, __m256 m) {
  _mm256_storeu_pd(out, _mm256_add_pd(_mm256_loadu_pd(out), _mm256_cvtps_pd(_mm256_castps256_ps128(m))));
  _mm256_storeu_pd(out + 4, _mm256_add_pd(_mm256_loadu_pd(out + 4), _mm256_cvtps_pd(_mm256_extractf128_ps(m, 1))));
}

inline void AddMagnitudes8(const Ipp16sc* points, double* spectrum, uint32_t count) {
  uint32_t i = 0;
  for (; i + 8 <= count; i += 8) {
    // Eight (re, im) pairs of 16 bits: sign-extend, then split the halves.
    const __m256i pairs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(points + i));
    const __m256 re = _mm256_cvtepi32_ps(_mm256_srai_epi32(_mm256_slli_epi32(pairs, 16), 16));
    const __m256 im = _mm256_cvtepi32_ps(_mm256_srai_epi32(pairs, 16));
    AddWidened8(spectrum + i, _mm256_sqrt_ps(_mm256_add_ps(_mm256_mul_ps(re, re), _mm256_mul_ps(im, im))));
  }
  AddMagnitudesPlain(points + i, spectrum + i, count - i);
}
// AddMagnitudes8 for both halves: the conjugate's magnitude is the same
// but where an imaginary part is -32768 (its conjugate saturates to 32767);
// the upper half takes the eight lanes reversed.
inline void AddMagnitudePairs8(const Ipp16sc* points, double* up, double* down, uint32_t count) {
  const __m256i reverse = _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0), lowest = _mm256_set1_epi32(-32768);
  uint32_t j = 0;
  for (; j + 8 <= count; j += 8) {
    const __m256i pairs = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(points + j));
    const __m256i imInt = _mm256_srai_epi32(pairs, 16);
    const __m256 re = _mm256_cvtepi32_ps(_mm256_srai_epi32(_mm256_slli_epi32(pairs, 16), 16));
    const __m256 im = _mm256_cvtepi32_ps(imInt);
    const __m256 sq = _mm256_mul_ps(re, re);
    const __m256 m = _mm256_sqrt_ps(_mm256_add_ps(sq, _mm256_mul_ps(im, im)));
    __m256 mirror = m;
    if (_mm256_movemask_epi8(_mm256_cmpeq_epi32(imInt, lowest))) {
      const __m256i negated = _mm256_subs_epi16(_mm256_setzero_si256(), pairs);
      const __m256 conjIm = _mm256_cvtepi32_ps(_mm256_srai_epi32(negated, 16));
      mirror = _mm256_sqrt_ps(_mm256_add_ps(sq, _mm256_mul_ps(conjIm, conjIm)));
    }
    AddWidened8(up + j, m);
    AddWidened8(down - j - 7, _mm256_permutevar8x32_ps(mirror, reverse));
  }
  AddMagnitudePairsPlain(points + j, up + j, down - j, count - j);
}

// The lower half copied as it stands; the upper half eight points a step:
// a reversed load of the mirror points, the imaginary parts negated with
// saturation (the conjugate of -32768 is 32767, as in the plain form).
inline void ConjCcs8(const int16_t* src, Ipp16sc* dst, uint32_t len) {
  const uint32_t half = len / 2;
  std::memcpy(static_cast<void*>(dst), src, (half + 1) * sizeof(Ipp16sc));
  const __m256i reverse = _mm256_setr_epi32(7, 6, 5, 4, 3, 2, 1, 0);
  uint32_t k = half + 1;
  for (; k + 8 <= len; k += 8) {
    const __m256i w =
        _mm256_permutevar8x32_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(dst + (len - k - 7))), reverse);
    const __m256i conj = _mm256_blend_epi16(w, _mm256_subs_epi16(_mm256_setzero_si256(), w), 0xAA);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(dst + k), conj);
  }
  for (; k < len; ++k) {
    const Ipp16sc& mirror = dst[len - k];
    dst[k] = {mirror.re, Ipp16s(mirror.im == -32768 ? 32767 : -mirror.im)};
  }
}
