// The 8-bit block transforms held in AVX2 registers: the same sums as the
// portable kernels (JpegKernelBody.h), a row of eight 32-bit lanes to a
// register, transposed in registers and stored as packed rows, so every
// variant that includes this gives the portable variant's bytes. Included
// by the AVX2 and AVX-512 units inside their own namespaces; the zigzag
// order of the forward transform's output is the including unit's step.
// The unit includes <immintrin.h> first (this file sits inside its
// namespace; no include guard: included once per unit).

namespace blocks {

using V = __m256i;

inline V Add(V a, V b) { return _mm256_add_epi32(a, b); }
inline V Sub(V a, V b) { return _mm256_sub_epi32(a, b); }
inline V Mul(V a, int32_t c) { return _mm256_mullo_epi32(a, _mm256_set1_epi32(c)); }
inline V Set(int32_t c) { return _mm256_set1_epi32(c); }

// r[i] lane j becomes r[j] lane i.
inline void Transpose8(V r[8]) {
  const V t0 = _mm256_unpacklo_epi32(r[0], r[1]), t1 = _mm256_unpackhi_epi32(r[0], r[1]);
  const V t2 = _mm256_unpacklo_epi32(r[2], r[3]), t3 = _mm256_unpackhi_epi32(r[2], r[3]);
  const V t4 = _mm256_unpacklo_epi32(r[4], r[5]), t5 = _mm256_unpackhi_epi32(r[4], r[5]);
  const V t6 = _mm256_unpacklo_epi32(r[6], r[7]), t7 = _mm256_unpackhi_epi32(r[6], r[7]);
  const V u0 = _mm256_unpacklo_epi64(t0, t2), u1 = _mm256_unpackhi_epi64(t0, t2);
  const V u2 = _mm256_unpacklo_epi64(t1, t3), u3 = _mm256_unpackhi_epi64(t1, t3);
  const V u4 = _mm256_unpacklo_epi64(t4, t6), u5 = _mm256_unpackhi_epi64(t4, t6);
  const V u6 = _mm256_unpacklo_epi64(t5, t7), u7 = _mm256_unpackhi_epi64(t5, t7);
  r[0] = _mm256_permute2x128_si256(u0, u4, 0x20);
  r[1] = _mm256_permute2x128_si256(u1, u5, 0x20);
  r[2] = _mm256_permute2x128_si256(u2, u6, 0x20);
  r[3] = _mm256_permute2x128_si256(u3, u7, 0x20);
  r[4] = _mm256_permute2x128_si256(u0, u4, 0x31);
  r[5] = _mm256_permute2x128_si256(u1, u5, 0x31);
  r[6] = _mm256_permute2x128_si256(u2, u6, 0x31);
  r[7] = _mm256_permute2x128_si256(u3, u7, 0x31);
}

// One forward pass down the registers (d[k] is row k); `kLast` is the final pass.
template <bool kLast>
inline void ForwardPass(V d[8]) {
  constexpr int shiftEven = kLast ? kPass1Bits : 0;
  constexpr int shiftOdd = kLast ? kConstBits + kPass1Bits : kConstBits - kPass1Bits;
  const V roundOdd = Set(1 << (shiftOdd - 1));
  const V t0 = Add(d[0], d[7]), t7 = Sub(d[0], d[7]);
  const V t1 = Add(d[1], d[6]), t6 = Sub(d[1], d[6]);
  const V t2 = Add(d[2], d[5]), t5 = Sub(d[2], d[5]);
  const V t3 = Add(d[3], d[4]), t4 = Sub(d[3], d[4]);
  const V t10 = Add(t0, t3), t13 = Sub(t0, t3), t11 = Add(t1, t2), t12 = Sub(t1, t2);
  if constexpr (kLast) {
    const V roundEven = Set(1 << (shiftEven - 1));
    d[0] = _mm256_srai_epi32(Add(Add(t10, t11), roundEven), shiftEven);
    d[4] = _mm256_srai_epi32(Add(Sub(t10, t11), roundEven), shiftEven);
  } else {
    d[0] = _mm256_slli_epi32(Add(t10, t11), kPass1Bits);
    d[4] = _mm256_slli_epi32(Sub(t10, t11), kPass1Bits);
  }
  const V z1 = Mul(Add(t12, t13), F0541);
  d[2] = _mm256_srai_epi32(Add(Add(z1, Mul(t13, F0765)), roundOdd), shiftOdd);
  d[6] = _mm256_srai_epi32(Add(Sub(z1, Mul(t12, F1847)), roundOdd), shiftOdd);
  const V z5 = Mul(Add(Add(t4, t6), Add(t5, t7)), F1175);
  const V a1 = Mul(Add(t4, t7), -F0899), a2 = Mul(Add(t5, t6), -F2562);
  const V a3 = Add(Mul(Add(t4, t6), -F1961), z5), a4 = Add(Mul(Add(t5, t7), -F0390), z5);
  d[7] = _mm256_srai_epi32(Add(Add(Mul(t4, F0298), Add(a1, a3)), roundOdd), shiftOdd);
  d[5] = _mm256_srai_epi32(Add(Add(Mul(t5, F2053), Add(a2, a4)), roundOdd), shiftOdd);
  d[3] = _mm256_srai_epi32(Add(Add(Mul(t6, F3072), Add(a2, a3)), roundOdd), shiftOdd);
  d[1] = _mm256_srai_epi32(Add(Add(Mul(t7, F1501), Add(a1, a4)), roundOdd), shiftOdd);
}

// The forward transform and quantiser: four registers of 16 coefficients in
// the transposed order (u * 8 + v).
inline void FdctQuantTransposed(const uint8_t* src, intptr_t step, const ForwardQuant& quant, V out[4]) {
  V r[8];
  const V centre = Set(128);
  for (int i = 0; i < 8; ++i)
    r[i] = Sub(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(src + i * step))), centre);
  ForwardPass<false>(r);  // along the columns
  Transpose8(r);
  ForwardPass<true>(r);  // along the rows: r[u] lane v
  V q[8];
  for (int u = 0; u < 8; ++u) {
    const V mag = _mm256_abs_epi32(r[u]);
    const V half = _mm256_load_si256(reinterpret_cast<const V*>(quant.half + u * 8));
    const __m256 scale = _mm256_load_ps(quant.scale + u * 8);
    const V m = _mm256_cvttps_epi32(_mm256_mul_ps(_mm256_cvtepi32_ps(Add(mag, half)), scale));
    q[u] = _mm256_sign_epi32(m, r[u]);
  }
  for (int i = 0; i < 4; ++i) out[i] = _mm256_permute4x64_epi64(_mm256_packs_epi32(q[2 * i], q[2 * i + 1]), 0xD8);
}

// One inverse pass down the registers; `kLast` is the final pass (adds 128).
template <bool kLast>
inline void InversePass(V d[8]) {
  constexpr int shift = kLast ? kConstBits + kPass1Bits + 3 : kConstBits - kPass1Bits;
  const V round = Set(int32_t((1u << (shift - 1)) + (kLast ? (128u << shift) : 0)));
  const V z1 = Mul(Add(d[2], d[6]), F0541);
  const V e2 = Sub(z1, Mul(d[6], F1847)), e3 = Add(z1, Mul(d[2], F0765));
  const V e0 = Add(_mm256_slli_epi32(Add(d[0], d[4]), kConstBits), round);
  const V e1 = Add(_mm256_slli_epi32(Sub(d[0], d[4]), kConstBits), round);
  const V t10 = Add(e0, e3), t13 = Sub(e0, e3), t11 = Add(e1, e2), t12 = Sub(e1, e2);
  V o0 = d[7], o1 = d[5], o2 = d[3], o3 = d[1];
  const V z5 = Mul(Add(Add(o0, o2), Add(o1, o3)), F1175);
  const V a1 = Mul(Add(o0, o3), -F0899), a2 = Mul(Add(o1, o2), -F2562);
  const V a3 = Add(Mul(Add(o0, o2), -F1961), z5), a4 = Add(Mul(Add(o1, o3), -F0390), z5);
  o0 = Add(Mul(o0, F0298), Add(a1, a3));
  o1 = Add(Mul(o1, F2053), Add(a2, a4));
  o2 = Add(Mul(o2, F3072), Add(a2, a3));
  o3 = Add(Mul(o3, F1501), Add(a1, a4));
  d[0] = _mm256_srai_epi32(Add(t10, o3), shift);
  d[7] = _mm256_srai_epi32(Sub(t10, o3), shift);
  d[1] = _mm256_srai_epi32(Add(t11, o2), shift);
  d[6] = _mm256_srai_epi32(Sub(t11, o2), shift);
  d[2] = _mm256_srai_epi32(Add(t12, o1), shift);
  d[5] = _mm256_srai_epi32(Sub(t12, o1), shift);
  d[3] = _mm256_srai_epi32(Add(t13, o0), shift);
  d[4] = _mm256_srai_epi32(Sub(t13, o0), shift);
}

// A block whose only nonzero coefficient is DC: every sum but the DC's is
// zero, so the two passes reduce to two shifts of one value (the same
// wrapping sums as the full transform, so the same samples).
inline bool DcOnly(const int16_t* coef) {
  const V a = _mm256_loadu_si256(reinterpret_cast<const V*>(coef));
  const V b = _mm256_loadu_si256(reinterpret_cast<const V*>(coef + 16));
  const V c = _mm256_loadu_si256(reinterpret_cast<const V*>(coef + 32));
  const V d = _mm256_loadu_si256(reinterpret_cast<const V*>(coef + 48));
  const V ac = _mm256_and_si256(a, _mm256_setr_epi16(0, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1, -1));
  const V any = _mm256_or_si256(_mm256_or_si256(ac, b), _mm256_or_si256(c, d));
  return _mm256_testz_si256(any, any);
}

inline void StoreDcOnly(const int16_t* coef, const int32_t* dequant, uint8_t* dst, intptr_t step) {
  constexpr int shift1 = kConstBits - kPass1Bits, shift2 = kConstBits + kPass1Bits + 3;
  const uint32_t a = uint32_t(int32_t(coef[0])) * uint32_t(dequant[0]);
  const uint32_t p = uint32_t(int32_t((a << kConstBits) + (1u << (shift1 - 1))) >> shift1);
  const int32_t v = int32_t((p << kConstBits) + (1u << (shift2 - 1)) + (128u << shift2)) >> shift2;
  const __m128i row = _mm_set1_epi8(char(v < 0 ? 0 : v > 255 ? 255 : v));
  for (int y = 0; y < 8; ++y) _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + y * step), row);
}

inline void IdctStore(const int16_t* coef, const int32_t* dequant, uint8_t* dst, intptr_t step) {
  if (DcOnly(coef)) {
    StoreDcOnly(coef, dequant, dst, step);
    return;
  }
  V r[8];
  for (int v = 0; v < 8; ++v)
    r[v] = _mm256_mullo_epi32(_mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(coef + v * 8))),
                              _mm256_loadu_si256(reinterpret_cast<const V*>(dequant + v * 8)));
  InversePass<false>(r);  // down the columns first
  Transpose8(r);
  InversePass<true>(r);  // along the rows: r[x] lane y
  Transpose8(r);         // r[y] lane x
  // Saturating packs clamp to 0 .. 255; the lanes' order is put right by one permute.
  const V order = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
  for (int h = 0; h < 2; ++h) {
    const V p = _mm256_packus_epi16(_mm256_packs_epi32(r[4 * h], r[4 * h + 1]),
                                    _mm256_packs_epi32(r[4 * h + 2], r[4 * h + 3]));
    const V rows = _mm256_permutevar8x32_epi32(p, order);  // rows 4h .. 4h + 3, 8 bytes each
    const __m128i lo = _mm256_castsi256_si128(rows), hi = _mm256_extracti128_si256(rows, 1);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + (4 * h + 0) * step), lo);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + (4 * h + 1) * step), _mm_unpackhi_epi64(lo, lo));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + (4 * h + 2) * step), hi);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(dst + (4 * h + 3) * step), _mm_unpackhi_epi64(hi, hi));
  }
}

}  // namespace blocks
