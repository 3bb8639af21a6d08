// The JPEG kernels' one body, included into each instruction-set unit inside
// that unit's own namespace (JpegKernels_*.cpp): fixed-width loops over eight
// 32-bit lanes that the compiler turns into vectors of the unit's width.
// The transforms are the standard's separable integer forms with 13-bit
// constants and two guard bits between the passes.
// (no include guard: included once per unit)

constexpr int kConstBits = 13, kPass1Bits = 2;
constexpr int32_t F0298 = 2446, F0390 = 3196, F0541 = 4433, F0765 = 6270, F0899 = 7373, F1175 = 9633,
                  F1501 = 12299, F1847 = 15137, F1961 = 16069, F2053 = 16819, F2562 = 20995, F3072 = 25172;

using Lanes = int32_t[8];

template <class T>
inline void Transpose(const T* in, T* out) {
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 8; ++j) out[j * 8 + i] = in[i * 8 + j];
}

// One forward pass along the rows of `d` (d[k][lane]); `last` is the final pass.
template <bool kLast>
inline void ForwardPass(const int32_t* d, int32_t* o) {
  constexpr int shiftEven = kLast ? kPass1Bits : 0;
  constexpr int shiftOdd = kLast ? kConstBits + kPass1Bits : kConstBits - kPass1Bits;
  constexpr int32_t roundEven = kLast ? 1 << (shiftEven - 1) : 0, roundOdd = 1 << (shiftOdd - 1);
  for (int j = 0; j < 8; ++j) {
    const int32_t t0 = d[0 * 8 + j] + d[7 * 8 + j], t7 = d[0 * 8 + j] - d[7 * 8 + j];
    const int32_t t1 = d[1 * 8 + j] + d[6 * 8 + j], t6 = d[1 * 8 + j] - d[6 * 8 + j];
    const int32_t t2 = d[2 * 8 + j] + d[5 * 8 + j], t5 = d[2 * 8 + j] - d[5 * 8 + j];
    const int32_t t3 = d[3 * 8 + j] + d[4 * 8 + j], t4 = d[3 * 8 + j] - d[4 * 8 + j];
    const int32_t t10 = t0 + t3, t13 = t0 - t3, t11 = t1 + t2, t12 = t1 - t2;
    if constexpr (kLast) {
      o[0 * 8 + j] = (t10 + t11 + roundEven) >> shiftEven;
      o[4 * 8 + j] = (t10 - t11 + roundEven) >> shiftEven;
    } else {
      o[0 * 8 + j] = (t10 + t11) * (1 << kPass1Bits);
      o[4 * 8 + j] = (t10 - t11) * (1 << kPass1Bits);
    }
    const int32_t z1 = (t12 + t13) * F0541;
    o[2 * 8 + j] = (z1 + t13 * F0765 + roundOdd) >> shiftOdd;
    o[6 * 8 + j] = (z1 - t12 * F1847 + roundOdd) >> shiftOdd;
    const int32_t z5 = (t4 + t6 + t5 + t7) * F1175;
    const int32_t a1 = -(t4 + t7) * F0899, a2 = -(t5 + t6) * F2562;
    const int32_t a3 = -(t4 + t6) * F1961 + z5, a4 = -(t5 + t7) * F0390 + z5;
    o[7 * 8 + j] = (t4 * F0298 + a1 + a3 + roundOdd) >> shiftOdd;
    o[5 * 8 + j] = (t5 * F2053 + a2 + a4 + roundOdd) >> shiftOdd;
    o[3 * 8 + j] = (t6 * F3072 + a2 + a3 + roundOdd) >> shiftOdd;
    o[1 * 8 + j] = (t7 * F1501 + a1 + a4 + roundOdd) >> shiftOdd;
  }
}

void FdctQuant(const uint8_t* src, intptr_t step, const ForwardQuant& quant, int16_t* zigzag) {
  alignas(64) int32_t a[64], b[64];
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 8; ++j) a[i * 8 + j] = int32_t(src[i * step + j]) - 128;
  ForwardPass<false>(a, b);  // along the columns: b[v][x]
  Transpose(b, a);           // a[x][v]
  ForwardPass<true>(a, b);   // along the rows: b[u][v], transposed coefficients
  alignas(64) int32_t q[64];
  for (int i = 0; i < 64; ++i) {
    const int32_t v = b[i], mag = v < 0 ? -v : v;
    const int32_t m = int32_t(float(mag + quant.half[i]) * quant.scale[i]);
    q[i] = v < 0 ? -m : m;
  }
  for (int k = 0; k < 64; ++k) zigzag[k] = int16_t(q[kZigzagToTransposed[k]]);
}

// One inverse pass along the rows of `d`; `last` is the final pass. The sums
// wrap (unsigned) so that a damaged stream's coefficients give some samples
// rather than undefined behaviour; a well-formed stream never comes near.
template <bool kLast>
inline void InversePass(const uint32_t* d, uint32_t* o) {
  using U = uint32_t;
  constexpr int shift = kLast ? kConstBits + kPass1Bits + 3 : kConstBits - kPass1Bits;
  constexpr U round = (U(1) << (shift - 1)) + (kLast ? (U(128) << shift) : 0);
  for (int j = 0; j < 8; ++j) {
    const U z1 = (d[2 * 8 + j] + d[6 * 8 + j]) * U(F0541);
    const U e2 = z1 - d[6 * 8 + j] * U(F1847), e3 = z1 + d[2 * 8 + j] * U(F0765);
    const U e0 = ((d[0 * 8 + j] + d[4 * 8 + j]) << kConstBits) + round;
    const U e1 = ((d[0 * 8 + j] - d[4 * 8 + j]) << kConstBits) + round;
    const U t10 = e0 + e3, t13 = e0 - e3, t11 = e1 + e2, t12 = e1 - e2;
    U o0 = d[7 * 8 + j], o1 = d[5 * 8 + j], o2 = d[3 * 8 + j], o3 = d[1 * 8 + j];
    const U z5 = (o0 + o2 + o1 + o3) * U(F1175);
    const U a1 = (o0 + o3) * U(-F0899), a2 = (o1 + o2) * U(-F2562);
    const U a3 = (o0 + o2) * U(-F1961) + z5, a4 = (o1 + o3) * U(-F0390) + z5;
    o0 = o0 * U(F0298) + a1 + a3;
    o1 = o1 * U(F2053) + a2 + a4;
    o2 = o2 * U(F3072) + a2 + a3;
    o3 = o3 * U(F1501) + a1 + a4;
    o[0 * 8 + j] = U(int32_t(t10 + o3) >> shift);
    o[7 * 8 + j] = U(int32_t(t10 - o3) >> shift);
    o[1 * 8 + j] = U(int32_t(t11 + o2) >> shift);
    o[6 * 8 + j] = U(int32_t(t11 - o2) >> shift);
    o[2 * 8 + j] = U(int32_t(t12 + o1) >> shift);
    o[5 * 8 + j] = U(int32_t(t12 - o1) >> shift);
    o[3 * 8 + j] = U(int32_t(t13 + o0) >> shift);
    o[4 * 8 + j] = U(int32_t(t13 - o0) >> shift);
  }
}

void IdctStore(const int16_t* coef, const int32_t* dequant, uint8_t* dst, intptr_t step) {
  alignas(64) uint32_t a[64], b[64];
  for (int i = 0; i < 64; ++i) a[i] = uint32_t(int32_t(coef[i])) * uint32_t(dequant[i]);  // a[v][u]
  InversePass<false>(a, b);  // down the columns first, as the standard's reference order: b[y][u]
  Transpose(b, a);           // a[u][y]
  InversePass<true>(a, b);   // along the rows: b[x][y], offset by 128
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 8; ++j) {
      const int32_t v = int32_t(b[j * 8 + i]);
      dst[i * step + j] = uint8_t(v < 0 ? 0 : v > 255 ? 255 : v);
    }
}

// Full-range colour weights in 65536ths.
constexpr int32_t kYr = 19595, kYg = 38470, kYb = 7471;
constexpr int32_t kCbr = -11059, kCbg = -21709, kCbb = 32768, kCrr = 32768, kCrg = -27439, kCrb = -5329;
constexpr int32_t kCrToR = 91881, kCbToG = -22554, kCrToG = -46802, kCbToB = 116130;

template <uint32_t kBytes, uint32_t kRed>
void PixelsToYccFixed(const uint8_t* __restrict src, uint8_t* __restrict y, uint8_t* __restrict cb,
                      uint8_t* __restrict cr, uint32_t w) {
  constexpr uint32_t kBlue = 2 - kRed;
  for (size_t x = 0; x < w; ++x) {
    const int32_t r = src[x * kBytes + kRed], g = src[x * kBytes + 1], b = src[x * kBytes + kBlue];
    y[x] = uint8_t((kYr * r + kYg * g + kYb * b + 32768) >> 16);
    cb[x] = uint8_t((kCbr * r + kCbg * g + kCbb * b + (128 << 16) + 32767) >> 16);
    cr[x] = uint8_t((kCrr * r + kCrg * g + kCrb * b + (128 << 16) + 32767) >> 16);
  }
}

void PixelsToYcc(const uint8_t* src, uint32_t bytes, uint32_t red, uint8_t* y, uint8_t* cb, uint8_t* cr,
                 uint32_t w) {
  if (bytes == 4)
    red ? PixelsToYccFixed<4, 2>(src, y, cb, cr, w) : PixelsToYccFixed<4, 0>(src, y, cb, cr, w);
  else
    red ? PixelsToYccFixed<3, 2>(src, y, cb, cr, w) : PixelsToYccFixed<3, 0>(src, y, cb, cr, w);
}

inline uint8_t Clamp255(int32_t v) { return uint8_t(v < 0 ? 0 : v > 255 ? 255 : v); }

template <uint32_t kBytes, uint32_t kRed>
void YccToPixelsFixed(const uint8_t* __restrict y, const uint8_t* __restrict cb, const uint8_t* __restrict cr,
                      uint8_t* __restrict dst, uint32_t w) {
  constexpr uint32_t kBlue = 2 - kRed;
  for (size_t x = 0; x < w; ++x) {
    const int32_t l = y[x], u = cb[x] - 128, v = cr[x] - 128;
    dst[x * kBytes + kRed] = Clamp255(l + ((kCrToR * v + 32768) >> 16));
    dst[x * kBytes + 1] = Clamp255(l + ((kCbToG * u + kCrToG * v + 32768) >> 16));
    dst[x * kBytes + kBlue] = Clamp255(l + ((kCbToB * u + 32768) >> 16));
    if constexpr (kBytes == 4) dst[x * kBytes + 3] = 255;
  }
}

void YccToPixels(const uint8_t* y, const uint8_t* cb, const uint8_t* cr, uint8_t* dst, uint32_t bytes, uint32_t red,
                 uint32_t w) {
  if (bytes == 4)
    red ? YccToPixelsFixed<4, 2>(y, cb, cr, dst, w) : YccToPixelsFixed<4, 0>(y, cb, cr, dst, w);
  else
    red ? YccToPixelsFixed<3, 2>(y, cb, cr, dst, w) : YccToPixelsFixed<3, 0>(y, cb, cr, dst, w);
}

void DownH2V1(const uint8_t* __restrict src, uint8_t* __restrict dst, uint32_t w) {
  for (size_t x = 0; x < w; ++x) dst[x] = uint8_t((src[2 * x] + src[2 * x + 1] + (x & 1)) >> 1);
}

void DownH2V2(const uint8_t* __restrict src0, const uint8_t* __restrict src1, uint8_t* __restrict dst, uint32_t w) {
  for (size_t x = 0; x < w; ++x)
    dst[x] = uint8_t((src0[2 * x] + src0[2 * x + 1] + src1[2 * x] + src1[2 * x + 1] + 1 + (x & 1)) >> 2);
}

// The triangle filter across: each output takes 3 parts of its own column and
// 1 of the neighbour on its side, the row ends repeating their last column.
// The column sums are 3 x near + far for 2 x 2 sampling, 4 x near for 2 x 1
// (so one rounding serves both: 2 x 1 is 2 x 2 with far = near, shifted 2
// less).
template <bool kVertical>
void UpH2Fixed(const uint8_t* __restrict near, const uint8_t* __restrict far, uint8_t* __restrict dst, uint32_t w) {
  auto sum = [&](size_t x) -> int32_t {
    if constexpr (kVertical) return 3 * near[x] + far[x];
    else return near[x];
  };
  constexpr int shift = kVertical ? 4 : 2;
  constexpr int32_t even = kVertical ? 8 : 1, odd = kVertical ? 7 : 2;
  if (w == 1) {
    dst[0] = dst[1] = uint8_t((4 * sum(0) + even) >> shift);
    return;
  }
  dst[0] = uint8_t((4 * sum(0) + even) >> shift);
  dst[1] = uint8_t((3 * sum(0) + sum(1) + odd) >> shift);
  for (size_t x = 1; x + 1 < w; ++x) {
    const int32_t c = sum(x), l = sum(x - 1), r = sum(x + 1);
    dst[2 * x] = uint8_t((3 * c + l + even) >> shift);
    dst[2 * x + 1] = uint8_t((3 * c + r + odd) >> shift);
  }
  const uint32_t x = w - 1;
  dst[2 * x] = uint8_t((3 * sum(x) + sum(x - 1) + even) >> shift);
  dst[2 * x + 1] = uint8_t((4 * sum(x) + odd) >> shift);
}

void UpH2(const uint8_t* near, const uint8_t* far, uint8_t* dst, uint32_t w) {
  if (w == 0) return;
  far ? UpH2Fixed<true>(near, far, dst, w) : UpH2Fixed<false>(near, nullptr, dst, w);
}

constexpr JpegKernels kTable = {FdctQuant, IdctStore, PixelsToYcc, YccToPixels, DownH2V1, DownH2V2, UpH2};
