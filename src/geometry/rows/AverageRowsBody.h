// The average row kernels, written once as plain loops that the compiler
// vectorises for the instruction set of the unit that includes this file.
// Include it inside that unit's own namespace, once, after <cstring>; it defines
// `const AverageRowKernels kTable`. A run goes in pieces small enough for the
// piece's sums to stay in the first-level cache while the frames are added.
namespace {

using kestrelink::rows::AverageDivisor;
using kestrelink::rows::AverageRowKernels;

constexpr size_t kPiece = 1024;  // samples a piece

template <class T>
inline T Load(const uint8_t* p, size_t i) {
  T v;
  std::memcpy(&v, p + sizeof(T) * i, sizeof(T));
  return v;
}

template <class T>
inline void Store(uint8_t* p, size_t i, int32_t v) {
  const T t = T(v);
  std::memcpy(p + sizeof(T) * i, &t, sizeof(T));
}

// Quotients of n sums, each clamped; the vector form of DivideClamp.
inline void Quotients(const int32_t* sum, int32_t* q, size_t n, const AverageDivisor& d) {
  for (size_t i = 0; i < n; ++i) {
    const int32_t s = sum[i] > 0 ? sum[i] : 0;
    const int32_t v = int32_t(double(s) * d.reciprocal + d.bias);
    q[i] = v < d.max ? v : d.max;
  }
}

template <class T>
void Full(const uint8_t* const* rows, int n, int32_t* sums, uint8_t* dst, size_t count, const AverageDivisor& d) {
  alignas(64) int32_t acc[kPiece];
  alignas(64) int32_t q[kPiece];
  for (size_t x = 0; x < count; x += kPiece) {
    const size_t m = count - x < kPiece ? count - x : kPiece;
    const uint8_t* first = rows[0] + sizeof(T) * x;
    for (size_t i = 0; i < m; ++i) acc[i] = Load<T>(first, i);
    for (int f = 1; f < n; ++f) {
      const uint8_t* r = rows[f] + sizeof(T) * x;
      for (size_t i = 0; i < m; ++i) acc[i] = int32_t(uint32_t(acc[i]) + Load<T>(r, i));
    }
    Quotients(acc, q, m, d);
    std::memcpy(sums + x, acc, m * sizeof(int32_t));
    uint8_t* o = dst + sizeof(T) * x;
    for (size_t i = 0; i < m; ++i) Store<T>(o, i, q[i]);
  }
}

// Three samples of each four-sample pixel.
template <class T>
void Full4(const uint8_t* const* rows, int n, int32_t* sums, uint8_t* dst, size_t pixels, const AverageDivisor& d) {
  constexpr size_t kPixels = kPiece / 4;
  alignas(64) int32_t acc[3 * kPixels];
  alignas(64) int32_t q[3 * kPixels];
  for (size_t x = 0; x < pixels; x += kPixels) {
    const size_t m = pixels - x < kPixels ? pixels - x : kPixels;
    const uint8_t* first = rows[0] + 4 * sizeof(T) * x;
    for (size_t i = 0; i < m; ++i)
      for (size_t c = 0; c < 3; ++c) acc[3 * i + c] = Load<T>(first, 4 * i + c);
    for (int f = 1; f < n; ++f) {
      const uint8_t* r = rows[f] + 4 * sizeof(T) * x;
      for (size_t i = 0; i < m; ++i)
        for (size_t c = 0; c < 3; ++c) acc[3 * i + c] = int32_t(uint32_t(acc[3 * i + c]) + Load<T>(r, 4 * i + c));
    }
    Quotients(acc, q, 3 * m, d);
    int32_t* s = sums + 4 * x;
    uint8_t* o = dst + 4 * sizeof(T) * x;
    for (size_t i = 0; i < m; ++i)
      for (size_t c = 0; c < 3; ++c) {
        s[4 * i + c] = acc[3 * i + c];
        Store<T>(o, 4 * i + c, q[3 * i + c]);
      }
  }
}

template <class T>
void Rolling(const uint8_t* in, const uint8_t* out, int32_t* sums, uint8_t* dst, size_t count,
             const AverageDivisor& d) {
  alignas(64) int32_t q[kPiece];
  for (size_t x = 0; x < count; x += kPiece) {
    const size_t m = count - x < kPiece ? count - x : kPiece;
    int32_t* s = sums + x;
    const uint8_t *a = in + sizeof(T) * x, *b = out + sizeof(T) * x;
    for (size_t i = 0; i < m; ++i) s[i] = int32_t(uint32_t(s[i]) + Load<T>(a, i) - Load<T>(b, i));
    Quotients(s, q, m, d);
    uint8_t* o = dst + sizeof(T) * x;
    for (size_t i = 0; i < m; ++i) Store<T>(o, i, q[i]);
  }
}

void Rolling4(const uint8_t* in, const uint8_t* out, int32_t* sums, uint8_t* dst, size_t pixels,
              const AverageDivisor& d) {
  constexpr size_t kPixels = kPiece / 4;
  alignas(64) int32_t acc[3 * kPixels];
  alignas(64) int32_t q[3 * kPixels];
  for (size_t x = 0; x < pixels; x += kPixels) {
    const size_t m = pixels - x < kPixels ? pixels - x : kPixels;
    int32_t* s = sums + 4 * x;
    const uint8_t *a = in + 4 * x, *b = out + 4 * x;
    for (size_t i = 0; i < m; ++i)
      for (size_t c = 0; c < 3; ++c) acc[3 * i + c] = int32_t(uint32_t(s[4 * i + c]) + a[4 * i + c] - b[4 * i + c]);
    Quotients(acc, q, 3 * m, d);
    uint8_t* o = dst + 4 * x;
    for (size_t i = 0; i < m; ++i)
      for (size_t c = 0; c < 3; ++c) {
        s[4 * i + c] = acc[3 * i + c];
        o[4 * i + c] = uint8_t(q[3 * i + c]);
      }
  }
}

const AverageRowKernels kTable = {Full<uint8_t>,    Full<uint16_t>,    Full4<uint8_t>, Full4<uint16_t>,
                                  Rolling<uint8_t>, Rolling<uint16_t>, Rolling4};

}  // namespace
