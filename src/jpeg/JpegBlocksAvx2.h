// The 8-bit block transforms held in AVX2 registers: the same sums as the
// portable kernels (JpegKernelBody.h), a row of eight 32-bit lanes to a
// register, transposed in registers and stored as packed rows, so every
// variant that includes this gives the portable variant's bytes. The
// rotations' products are regrouped into multiply-adds of word pairs
// (vpmaddwd), one weight per input: the same integer sums, modulo 2^32 as
// the portable ones, whenever every factor fits a word. The forward
// transform's always do (8-bit samples); the inverse checks its factors and
// keeps 32-bit products for a block that a damaged stream makes too large. Included
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

// Two 32-bit registers whose values fit words, as word pairs: a | b << 16.
inline V Pair(V a, V b) { return _mm256_blend_epi16(a, _mm256_slli_epi32(b, 16), 0xAA); }
inline V Weights(int32_t low, int32_t high) {
  return _mm256_set1_epi32(int32_t(uint32_t(uint16_t(low)) | (uint32_t(uint16_t(high)) << 16)));
}
inline V MulAdd(V pair, int32_t low, int32_t high) { return _mm256_madd_epi16(pair, Weights(low, high)); }

// The even rotation: c2 = t12 F0541 + t13 (F0541 + F0765), c6 = t12 (F0541 -
// F1847) + t13 F0541 (z1 = (t12 + t13) F0541 spread over its terms).
inline void EvenRotation(V t12, V t13, V& c2, V& c6) {
  const V p = Pair(t12, t13);
  c2 = MulAdd(p, F0541, F0541 + F0765);
  c6 = MulAdd(p, F0541 - F1847, F0541);
}

// The odd part's four sums of t4 .. t7 (the forward names; the inverse's
// d7, d5, d3, d1), each input's weight gathered from z5 and the a1 .. a4
// terms: c7 is t4 F0298 + a1 + a3, c5 t5 F2053 + a2 + a4, c3 t6 F3072 + a2 +
// a3, c1 t7 F1501 + a1 + a4.
inline void OddSums(V t4, V t5, V t6, V t7, V& c7, V& c5, V& c3, V& c1) {
  const V p45 = Pair(t4, t5), p67 = Pair(t6, t7);
  c7 = Add(MulAdd(p45, F0298 - F0899 - F1961 + F1175, F1175), MulAdd(p67, F1175 - F1961, F1175 - F0899));
  c5 = Add(MulAdd(p45, F1175, F2053 - F2562 - F0390 + F1175), MulAdd(p67, F1175 - F2562, F1175 - F0390));
  c3 = Add(MulAdd(p45, F1175 - F1961, F1175 - F2562), MulAdd(p67, F3072 - F2562 - F1961 + F1175, F1175));
  c1 = Add(MulAdd(p45, F1175 - F0899, F1175 - F0390), MulAdd(p67, F1175, F1501 - F0899 - F0390 + F1175));
}

// One forward pass down the registers (d[k] is row k); `kLast` is the final
// pass. Its factors are differences of at most four samples' worth of the
// first pass (|value| < 2^14), so every one fits a word.
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
  V c2, c6, c7, c5, c3, c1;
  EvenRotation(t12, t13, c2, c6);
  OddSums(t4, t5, t6, t7, c7, c5, c3, c1);
  d[2] = _mm256_srai_epi32(Add(c2, roundOdd), shiftOdd);
  d[6] = _mm256_srai_epi32(Add(c6, roundOdd), shiftOdd);
  d[7] = _mm256_srai_epi32(Add(c7, roundOdd), shiftOdd);
  d[5] = _mm256_srai_epi32(Add(c5, roundOdd), shiftOdd);
  d[3] = _mm256_srai_epi32(Add(c3, roundOdd), shiftOdd);
  d[1] = _mm256_srai_epi32(Add(c1, roundOdd), shiftOdd);
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

// One inverse pass down the registers; `kLast` is the final pass (adds
// 128). `kWords`: the factors d1, d2, d3, d5, d6, d7 fit words, and the
// rotations are multiply-adds; else 32-bit products.
template <bool kLast, bool kWords>
inline void InversePass(V d[8]) {
  constexpr int shift = kLast ? kConstBits + kPass1Bits + 3 : kConstBits - kPass1Bits;
  const V round = Set(int32_t((1u << (shift - 1)) + (kLast ? (128u << shift) : 0)));
  V e2, e3, o0, o1, o2, o3;
  if constexpr (kWords) {
    EvenRotation(d[6], d[2], e3, e2);  // the forward rotation with t12 = d6, t13 = d2
    OddSums(d[7], d[5], d[3], d[1], o0, o1, o2, o3);
  } else {
    const V z1 = Mul(Add(d[2], d[6]), F0541);
    e2 = Sub(z1, Mul(d[6], F1847));
    e3 = Add(z1, Mul(d[2], F0765));
    o0 = d[7], o1 = d[5], o2 = d[3], o3 = d[1];
    const V z5 = Mul(Add(Add(o0, o2), Add(o1, o3)), F1175);
    const V a1 = Mul(Add(o0, o3), -F0899), a2 = Mul(Add(o1, o2), -F2562);
    const V a3 = Add(Mul(Add(o0, o2), -F1961), z5), a4 = Add(Mul(Add(o1, o3), -F0390), z5);
    o0 = Add(Mul(o0, F0298), Add(a1, a3));
    o1 = Add(Mul(o1, F2053), Add(a2, a4));
    o2 = Add(Mul(o2, F3072), Add(a2, a3));
    o3 = Add(Mul(o3, F1501), Add(a1, a4));
  }
  const V e0 = Add(_mm256_slli_epi32(Add(d[0], d[4]), kConstBits), round);
  const V e1 = Add(_mm256_slli_epi32(Sub(d[0], d[4]), kConstBits), round);
  const V t10 = Add(e0, e3), t13 = Sub(e0, e3), t11 = Add(e1, e2), t12 = Sub(e1, e2);
  d[0] = _mm256_srai_epi32(Add(t10, o3), shift);
  d[7] = _mm256_srai_epi32(Sub(t10, o3), shift);
  d[1] = _mm256_srai_epi32(Add(t11, o2), shift);
  d[6] = _mm256_srai_epi32(Sub(t11, o2), shift);
  d[2] = _mm256_srai_epi32(Add(t12, o1), shift);
  d[5] = _mm256_srai_epi32(Sub(t12, o1), shift);
  d[3] = _mm256_srai_epi32(Add(t13, o0), shift);
  d[4] = _mm256_srai_epi32(Sub(t13, o0), shift);
}

// Whether rows 1, 2, 3, 5, 6 and 7 (the rotations' factors) fit words.
inline bool FactorsFitWords(const V d[8]) {
  const V bias = Set(0x8000);
  V over = _mm256_setzero_si256();
  for (int k = 1; k < 8; ++k)
    if (k != 4) over = _mm256_or_si256(over, Add(d[k], bias));
  return _mm256_testz_si256(over, Set(int32_t(0xFFFF0000u)));
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
  V r[8], dq[8];
  V dqOver = _mm256_setzero_si256();
  for (int v = 0; v < 8; ++v) {
    dq[v] = _mm256_loadu_si256(reinterpret_cast<const V*>(dequant + v * 8));
    dqOver = _mm256_or_si256(dqOver, dq[v]);
  }
  // Entries below 2^15 make each product one multiply-add (the coefficient's
  // sign word meets a zero word).
  const bool smallTable = _mm256_testz_si256(dqOver, Set(int32_t(0xFFFF8000u)));
  for (int v = 0; v < 8; ++v) {
    const V c = _mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(coef + v * 8)));
    r[v] = smallTable ? _mm256_madd_epi16(c, dq[v]) : _mm256_mullo_epi32(c, dq[v]);
  }
  // Down the columns first; the same sums either way.
  if (FactorsFitWords(r))
    InversePass<false, true>(r);
  else
    InversePass<false, false>(r);
  Transpose8(r);
  // Along the rows: r[x] lane y.
  if (FactorsFitWords(r))
    InversePass<true, true>(r);
  else
    InversePass<true, false>(r);
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
