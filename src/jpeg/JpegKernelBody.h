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

// One forward pass along the rows of `d` (d[k][lane]); `kLast` is the final
// pass. The sums wrap (unsigned): at 12-bit precision a partial sum can pass
// 31 bits where the result does not, and the wrap leaves the result exact.
template <bool kLast, int kPass1>
inline void ForwardPass(const uint32_t* d, uint32_t* o) {
  using U = uint32_t;
  constexpr int shiftEven = kLast ? kPass1 : 0;
  constexpr int shiftOdd = kLast ? kConstBits + kPass1 : kConstBits - kPass1;
  constexpr U roundEven = kLast ? U(1) << (shiftEven - 1) : 0, roundOdd = U(1) << (shiftOdd - 1);
  for (int j = 0; j < 8; ++j) {
    const U t0 = d[0 * 8 + j] + d[7 * 8 + j], t7 = d[0 * 8 + j] - d[7 * 8 + j];
    const U t1 = d[1 * 8 + j] + d[6 * 8 + j], t6 = d[1 * 8 + j] - d[6 * 8 + j];
    const U t2 = d[2 * 8 + j] + d[5 * 8 + j], t5 = d[2 * 8 + j] - d[5 * 8 + j];
    const U t3 = d[3 * 8 + j] + d[4 * 8 + j], t4 = d[3 * 8 + j] - d[4 * 8 + j];
    const U t10 = t0 + t3, t13 = t0 - t3, t11 = t1 + t2, t12 = t1 - t2;
    if constexpr (kLast) {
      o[0 * 8 + j] = U(int32_t(t10 + t11 + roundEven) >> shiftEven);
      o[4 * 8 + j] = U(int32_t(t10 - t11 + roundEven) >> shiftEven);
    } else {
      o[0 * 8 + j] = (t10 + t11) << kPass1;
      o[4 * 8 + j] = (t10 - t11) << kPass1;
    }
    const U z1 = (t12 + t13) * U(F0541);
    o[2 * 8 + j] = U(int32_t(z1 + t13 * U(F0765) + roundOdd) >> shiftOdd);
    o[6 * 8 + j] = U(int32_t(z1 - t12 * U(F1847) + roundOdd) >> shiftOdd);
    const U z5 = (t4 + t6 + t5 + t7) * U(F1175);
    const U a1 = (t4 + t7) * U(-F0899), a2 = (t5 + t6) * U(-F2562);
    const U a3 = (t4 + t6) * U(-F1961) + z5, a4 = (t5 + t7) * U(-F0390) + z5;
    o[7 * 8 + j] = U(int32_t(t4 * U(F0298) + a1 + a3 + roundOdd) >> shiftOdd);
    o[5 * 8 + j] = U(int32_t(t5 * U(F2053) + a2 + a4 + roundOdd) >> shiftOdd);
    o[3 * 8 + j] = U(int32_t(t6 * U(F3072) + a2 + a3 + roundOdd) >> shiftOdd);
    o[1 * 8 + j] = U(int32_t(t7 * U(F1501) + a1 + a4 + roundOdd) >> shiftOdd);
  }
}

// Quantises 64 transposed coefficients (8 x their value) and scatters them
// into zigzag order, rounded half away from zero.
inline void QuantiseZigzag(const uint32_t* b, const ForwardQuant& quant, int16_t* zigzag) {
  alignas(64) int32_t q[64];
  for (int i = 0; i < 64; ++i) {
    const int32_t v = int32_t(b[i]), mag = v < 0 ? -v : v;
    const int32_t m = int32_t(float(mag + quant.half[i]) * quant.scale[i]);
    q[i] = v < 0 ? -m : m;
  }
  for (int k = 0; k < 64; ++k) zigzag[k] = int16_t(q[kZigzagToTransposed[k]]);
}

// Samples of type T centred on `kCentre`, `step` samples apart; 8-bit
// samples keep two guard bits between the passes, 12-bit ones one.
template <class T, int32_t kCentre, int kPass1>
void FdctQuantT(const T* src, intptr_t step, const ForwardQuant& quant, int16_t* zigzag) {
  alignas(64) uint32_t a[64], b[64];
  for (int i = 0; i < 8; ++i)
    for (int j = 0; j < 8; ++j) a[i * 8 + j] = uint32_t(int32_t(src[i * step + j]) - kCentre);
  ForwardPass<false, kPass1>(a, b);  // along the columns: b[v][x]
  Transpose(b, a);                   // a[x][v]
  ForwardPass<true, kPass1>(a, b);   // along the rows: b[u][v], transposed coefficients
  QuantiseZigzag(b, quant, zigzag);
}

void FdctQuant(const uint8_t* src, intptr_t step, const ForwardQuant& quant, int16_t* zigzag) {
  FdctQuantT<uint8_t, 128, kPass1Bits>(src, step, quant, zigzag);
}

void FdctQuant12(const uint16_t* src, intptr_t step, const ForwardQuant& quant, int16_t* zigzag) {
  FdctQuantT<uint16_t, 2048, 1>(src, step, quant, zigzag);
}

// One inverse pass along the rows of `d`; `kLast` is the final pass, which
// adds the centre 128. The sums wrap (unsigned) so that a damaged
// stream's coefficients give some samples rather than undefined behaviour;
// a well-formed stream's results never wrap.
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

// At 12 bits the fixed-point constants leave the samples too coarse for the
// accuracy bounds, so this inverse multiplies by the basis in single
// precision, rows then columns, each pass eight lanes wide with no transpose.
// Out-of-range sums (a damaged stream) clamp before they become integers.
void IdctStore12(const int16_t* coef, const int32_t* dequant, uint16_t* dst, intptr_t step) {
  alignas(64) float mid[64];
  for (int v = 0; v < 8; ++v) {
    float acc[8] = {};
    for (int u = 0; u < 8; ++u) {
      const float c = float(coef[v * 8 + u]) * float(dequant[v * 8 + u]);
      for (int x = 0; x < 8; ++x) acc[x] += c * kDctBasis[u * 8 + x];
    }
    for (int x = 0; x < 8; ++x) mid[v * 8 + x] = acc[x];
  }
  for (int y = 0; y < 8; ++y) {
    float acc[8] = {};
    for (int v = 0; v < 8; ++v) {
      const float b = kDctBasis[v * 8 + y];
      for (int x = 0; x < 8; ++x) acc[x] += b * mid[v * 8 + x];
    }
    for (int x = 0; x < 8; ++x) {
      const float s = acc[x] + 2048.5f;
      dst[y * step + x] = uint16_t(int32_t(s < 0.0f ? 0.0f : s > 4095.0f ? 4095.0f : s));
    }
  }
}

// Full-range colour weights in 65536ths.
constexpr int32_t kYr = 19595, kYg = 38470, kYb = 7471;
constexpr int32_t kCbr = -11059, kCbg = -21709, kCbb = 32768, kCrr = 32768, kCrg = -27439, kCrb = -5329;
constexpr int32_t kCrToR = 91881, kCbToG = -22554, kCrToG = -46802, kCbToB = 116130;

// Samples of type T whose chroma is centred on `kCentre` (128 for 8 bits,
// 2048 for 12); `kChannels` samples a pixel.
template <class T, int32_t kCentre, uint32_t kChannels, uint32_t kRed>
void PixelsToYccFixed(const T* __restrict src, T* __restrict y, T* __restrict cb, T* __restrict cr, uint32_t w) {
  constexpr uint32_t kBlue = 2 - kRed;
  for (size_t x = 0; x < w; ++x) {
    const int32_t r = src[x * kChannels + kRed], g = src[x * kChannels + 1], b = src[x * kChannels + kBlue];
    y[x] = T((kYr * r + kYg * g + kYb * b + 32768) >> 16);
    cb[x] = T((kCbr * r + kCbg * g + kCbb * b + (kCentre << 16) + 32767) >> 16);
    cr[x] = T((kCrr * r + kCrg * g + kCrb * b + (kCentre << 16) + 32767) >> 16);
  }
}

template <class T, int32_t kCentre>
void PixelsToYccT(const T* src, uint32_t channels, uint32_t red, T* y, T* cb, T* cr, uint32_t w) {
  if (channels == 4)
    red ? PixelsToYccFixed<T, kCentre, 4, 2>(src, y, cb, cr, w) : PixelsToYccFixed<T, kCentre, 4, 0>(src, y, cb, cr, w);
  else
    red ? PixelsToYccFixed<T, kCentre, 3, 2>(src, y, cb, cr, w) : PixelsToYccFixed<T, kCentre, 3, 0>(src, y, cb, cr, w);
}

template <class T, int32_t kMax>
inline T ClampTo(int32_t v) {
  return T(v < 0 ? 0 : v > kMax ? kMax : v);
}

template <class T, int32_t kCentre, uint32_t kChannels, uint32_t kRed>
void YccToPixelsFixed(const T* __restrict y, const T* __restrict cb, const T* __restrict cr, T* __restrict dst,
                      uint32_t w) {
  constexpr uint32_t kBlue = 2 - kRed;
  constexpr int32_t kMax = 2 * kCentre - 1;
  for (size_t x = 0; x < w; ++x) {
    const int32_t l = y[x], u = cb[x] - kCentre, v = cr[x] - kCentre;
    dst[x * kChannels + kRed] = ClampTo<T, kMax>(l + ((kCrToR * v + 32768) >> 16));
    dst[x * kChannels + 1] = ClampTo<T, kMax>(l + ((kCbToG * u + kCrToG * v + 32768) >> 16));
    dst[x * kChannels + kBlue] = ClampTo<T, kMax>(l + ((kCbToB * u + 32768) >> 16));
    if constexpr (kChannels == 4) dst[x * kChannels + 3] = T(kMax);
  }
}

template <class T, int32_t kCentre>
void YccToPixelsT(const T* y, const T* cb, const T* cr, T* dst, uint32_t channels, uint32_t red, uint32_t w) {
  if (channels == 4)
    red ? YccToPixelsFixed<T, kCentre, 4, 2>(y, cb, cr, dst, w) : YccToPixelsFixed<T, kCentre, 4, 0>(y, cb, cr, dst, w);
  else
    red ? YccToPixelsFixed<T, kCentre, 3, 2>(y, cb, cr, dst, w) : YccToPixelsFixed<T, kCentre, 3, 0>(y, cb, cr, dst, w);
}

template <class T>
void DownH2V1T(const T* __restrict src, T* __restrict dst, uint32_t w) {
  for (size_t x = 0; x < w; ++x) dst[x] = T((src[2 * x] + src[2 * x + 1] + (x & 1)) >> 1);
}

template <class T>
void DownH2V2T(const T* __restrict src0, const T* __restrict src1, T* __restrict dst, uint32_t w) {
  for (size_t x = 0; x < w; ++x)
    dst[x] = T((src0[2 * x] + src0[2 * x + 1] + src1[2 * x] + src1[2 * x + 1] + 1 + (x & 1)) >> 2);
}

// The triangle filter across: each output takes 3 parts of its own column and
// 1 of the neighbour on its side, the row ends repeating their last column.
// The column sums are 3 x near + far for 2 x 2 sampling, 4 x near for 2 x 1
// (so one rounding serves both: 2 x 1 is 2 x 2 with far = near, shifted 2
// less).
template <class T, bool kVertical>
void UpH2Fixed(const T* __restrict near, const T* __restrict far, T* __restrict dst, uint32_t w) {
  auto sum = [&](size_t x) -> int32_t {
    if constexpr (kVertical) return 3 * near[x] + far[x];
    else return near[x];
  };
  constexpr int shift = kVertical ? 4 : 2;
  constexpr int32_t even = kVertical ? 8 : 1, odd = kVertical ? 7 : 2;
  if (w == 1) {
    dst[0] = dst[1] = T((4 * sum(0) + even) >> shift);
    return;
  }
  dst[0] = T((4 * sum(0) + even) >> shift);
  dst[1] = T((3 * sum(0) + sum(1) + odd) >> shift);
  for (size_t x = 1; x + 1 < w; ++x) {
    const int32_t c = sum(x), l = sum(x - 1), r = sum(x + 1);
    dst[2 * x] = T((3 * c + l + even) >> shift);
    dst[2 * x + 1] = T((3 * c + r + odd) >> shift);
  }
  const uint32_t x = w - 1;
  dst[2 * x] = T((3 * sum(x) + sum(x - 1) + even) >> shift);
  dst[2 * x + 1] = T((4 * sum(x) + odd) >> shift);
}

template <class T>
void UpH2T(const T* near, const T* far, T* dst, uint32_t w) {
  if (w == 0) return;
  far ? UpH2Fixed<T, true>(near, far, dst, w) : UpH2Fixed<T, false>(near, nullptr, dst, w);
}

constexpr JpegKernels kTable = {
    FdctQuant,
    IdctStore,
    PixelsToYccT<uint8_t, 128>,
    YccToPixelsT<uint8_t, 128>,
    DownH2V1T<uint8_t>,
    DownH2V2T<uint8_t>,
    UpH2T<uint8_t>,
    {FdctQuant12, IdctStore12, PixelsToYccT<uint16_t, 2048>, YccToPixelsT<uint16_t, 2048>, DownH2V1T<uint16_t>,
     DownH2V2T<uint16_t>, UpH2T<uint16_t>},
};
