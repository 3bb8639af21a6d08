// The portable rows of the reversible transforms; also the tails of the
// vector rows. Right shifts of negative values are arithmetic (floor).
#include "jpeg2000/WaveletKernels.h"

namespace kestrelink::j2k {
namespace portable {

void RctForward(int32_t* c0, int32_t* c1, int32_t* c2, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const int32_t r = c0[i], g = c1[i], b = c2[i];
    c0[i] = (r + 2 * g + b) >> 2;
    c1[i] = b - g;
    c2[i] = r - g;
  }
}

void RctInverse(int32_t* c0, int32_t* c1, int32_t* c2, size_t n) {
  for (size_t i = 0; i < n; ++i) {
    const int32_t y = c0[i], u = c1[i], v = c2[i];
    const int32_t g = y - ((u + v) >> 2);
    c0[i] = v + g;
    c1[i] = g;
    c2[i] = u + g;
  }
}

void Predict(const int32_t* evenA, const int32_t* evenB, const int32_t* odd, int32_t* high, size_t n) {
  for (size_t i = 0; i < n; ++i) high[i] = odd[i] - ((evenA[i] + evenB[i]) >> 1);
}

void Update(const int32_t* highA, const int32_t* highB, const int32_t* even, int32_t* low, size_t n) {
  for (size_t i = 0; i < n; ++i) low[i] = even[i] + ((highA[i] + highB[i] + 2) >> 2);
}

void Unupdate(const int32_t* highA, const int32_t* highB, const int32_t* low, int32_t* even, size_t n) {
  for (size_t i = 0; i < n; ++i) even[i] = low[i] - ((highA[i] + highB[i] + 2) >> 2);
}

void Unpredict(const int32_t* evenA, const int32_t* evenB, const int32_t* high, int32_t* odd, size_t n) {
  for (size_t i = 0; i < n; ++i) odd[i] = high[i] + ((evenA[i] + evenB[i]) >> 1);
}

void Split(const int32_t* row, int32_t* even, int32_t* odd, size_t n) {
  for (size_t i = 0; i < n / 2; ++i) {
    even[i] = row[2 * i];
    odd[i] = row[2 * i + 1];
  }
  if (n & 1) even[n / 2] = row[n - 1];
}

void Merge(const int32_t* even, const int32_t* odd, int32_t* row, size_t n) {
  for (size_t i = 0; i < n / 2; ++i) {
    row[2 * i] = even[i];
    row[2 * i + 1] = odd[i];
  }
  if (n & 1) row[n - 1] = even[n / 2];
}

}  // namespace portable

const WaveletKernels kWaveletKernelsPortable = {
    portable::RctForward, portable::RctInverse, portable::Predict, portable::Update,
    portable::Unupdate,   portable::Unpredict,  portable::Split,   portable::Merge,
};

}  // namespace kestrelink::j2k
