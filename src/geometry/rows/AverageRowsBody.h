// The average row kernels, written once as plain loops that the compiler
// vectorises for the instruction set of the unit that includes this file.
// Include it inside that unit's own namespace, once, after <cstring>; it defines
// `const AverageRowKernels kTable`. A full average goes in pieces small
// enough for the piece's sums to stay in the first-level cache while the
// frames are added.
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

// The divisor's fields as values: loops that store through pointers then
// need not reload them, and vectorise.
struct Divide {
  double reciprocal, bias;
  int32_t max;
  explicit Divide(const AverageDivisor& d) : reciprocal(d.reciprocal), bias(d.bias), max(d.max) {}
  // The vector form of DivideClamp.
  int32_t operator()(int32_t sum) const {
    const int32_t q = int32_t(double(sum > 0 ? sum : 0) * reciprocal + bias);
    return q < max ? q : max;
  }
};

// acc = the samples of `row`, or acc += them.
template <class T>
inline void FirstRow(int32_t* __restrict acc, const uint8_t* __restrict row, size_t m) {
  for (size_t i = 0; i < m; ++i) acc[i] = Load<T>(row, i);
}
template <class T>
inline void AddRow(int32_t* __restrict acc, const uint8_t* __restrict row, size_t m) {
  for (size_t i = 0; i < m; ++i) acc[i] = int32_t(uint32_t(acc[i]) + Load<T>(row, i));
}
// Two frames a pass, written out: the compiler's own jamming of the frame
// loop would leave it scalar.
template <class T>
inline void AddRows(int32_t* __restrict acc, const uint8_t* __restrict a, const uint8_t* __restrict b, size_t m) {
  for (size_t i = 0; i < m; ++i) acc[i] = int32_t(uint32_t(acc[i]) + Load<T>(a, i) + Load<T>(b, i));
}

// Sums out, and their quotients.
template <class T>
inline void Finish(const int32_t* __restrict acc, int32_t* __restrict sums, uint8_t* __restrict dst, size_t m,
                   const Divide divide) {
  for (size_t i = 0; i < m; ++i) {
    sums[i] = acc[i];
    Store<T>(dst, i, divide(acc[i]));
  }
}

template <class T>
void Full(const uint8_t* const* rows, int n, int32_t* sums, uint8_t* dst, size_t count, const AverageDivisor& d) {
  const Divide divide(d);
  alignas(64) int32_t acc[kPiece];
  for (size_t x = 0; x < count; x += kPiece) {
    const size_t m = count - x < kPiece ? count - x : kPiece;
    FirstRow<T>(acc, rows[0] + sizeof(T) * x, m);
    int f = 1;
    for (; f + 1 < n; f += 2) AddRows<T>(acc, rows[f] + sizeof(T) * x, rows[f + 1] + sizeof(T) * x, m);
    if (f < n) AddRow<T>(acc, rows[f] + sizeof(T) * x, m);
    Finish<T>(acc, sums + x, dst + sizeof(T) * x, m, divide);
  }
}

// Three samples of each four-sample pixel.
template <class T>
void Full4(const uint8_t* const* rows, int n, int32_t* sums, uint8_t* dst, size_t pixels, const AverageDivisor& d) {
  const Divide divide(d);
  constexpr size_t kPixels = kPiece / 4;
  alignas(64) int32_t acc[3 * kPixels];
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
    int32_t* s = sums + 4 * x;
    uint8_t* o = dst + 4 * sizeof(T) * x;
    for (size_t i = 0; i < m; ++i)
      for (size_t c = 0; c < 3; ++c) {
        s[4 * i + c] = acc[3 * i + c];
        Store<T>(o, 4 * i + c, divide(acc[3 * i + c]));
      }
  }
}

template <class T>
void Rolling(const uint8_t* __restrict in, const uint8_t* __restrict out, int32_t* __restrict sums,
             uint8_t* __restrict dst, size_t count, const AverageDivisor& d) {
  const Divide divide(d);
  for (size_t i = 0; i < count; ++i) {
    const int32_t sum = int32_t(uint32_t(sums[i]) + Load<T>(in, i) - Load<T>(out, i));
    sums[i] = sum;
    Store<T>(dst, i, divide(sum));
  }
}

void Rolling4(const uint8_t* __restrict in, const uint8_t* __restrict out, int32_t* __restrict sums,
              uint8_t* __restrict dst, size_t pixels, const AverageDivisor& d) {
  const Divide divide(d);
  for (size_t i = 0; i < pixels; ++i)
    for (size_t c = 0; c < 3; ++c) {
      const size_t j = 4 * i + c;
      const int32_t sum = int32_t(uint32_t(sums[j]) + in[j] - out[j]);
      sums[j] = sum;
      dst[j] = uint8_t(divide(sum));
    }
}

const AverageRowKernels kTable = {Full<uint8_t>,    Full<uint16_t>,    Full4<uint8_t>, Full4<uint16_t>,
                                  Rolling<uint8_t>, Rolling<uint16_t>, Rolling4};

}  // namespace
