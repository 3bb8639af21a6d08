#pragma once
// Row kernels of the reversible transforms on signed 32-bit samples: the
// colour transform over three planes and the four lifting steps of the 5-3
// wavelet. A lifting kernel works element by element on whole arrays, so
// the same kernel lifts rows of a plane (the column pass) and the split
// halves of one row (the row pass). One table per processor variant
// (portable, AVX2); every variant gives the portable results.
#include <cstddef>
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::j2k {

struct WaveletKernels {
  // y = (r + 2g + b) >> 2, u = b - g, v = r - g, in place over n samples.
  void (*rctForward)(int32_t* c0, int32_t* c1, int32_t* c2, size_t n);
  // g = y - ((u + v) >> 2), r = v + g, b = u + g.
  void (*rctInverse)(int32_t* c0, int32_t* c1, int32_t* c2, size_t n);
  // high[i] = odd[i] - ((evenA[i] + evenB[i]) >> 1)
  void (*predict)(const int32_t* evenA, const int32_t* evenB, const int32_t* odd, int32_t* high, size_t n);
  // low[i] = even[i] + ((highA[i] + highB[i] + 2) >> 2)
  void (*update)(const int32_t* highA, const int32_t* highB, const int32_t* even, int32_t* low, size_t n);
  // even[i] = low[i] - ((highA[i] + highB[i] + 2) >> 2)
  void (*unupdate)(const int32_t* highA, const int32_t* highB, const int32_t* low, int32_t* even, size_t n);
  // odd[i] = high[i] + ((evenA[i] + evenB[i]) >> 1)
  void (*unpredict)(const int32_t* evenA, const int32_t* evenB, const int32_t* high, int32_t* odd, size_t n);
  // even[i] = row[2i], odd[i] = row[2i + 1] over n samples of row.
  void (*split)(const int32_t* row, int32_t* even, int32_t* odd, size_t n);
  // row[2i] = even[i], row[2i + 1] = odd[i] over n samples of row.
  void (*merge)(const int32_t* even, const int32_t* odd, int32_t* row, size_t n);
};

extern const WaveletKernels kWaveletKernelsPortable;
extern const WaveletKernels kWaveletKernelsAVX2;

inline const WaveletKernels& ActiveWaveletKernels() {
  static const WaveletKernels* const slots[kVariantCount] = {&kWaveletKernelsPortable, nullptr, nullptr,
                                                             &kWaveletKernelsAVX2, nullptr};
  return PickVariant(slots);
}

namespace portable {
void RctForward(int32_t* c0, int32_t* c1, int32_t* c2, size_t n);
void RctInverse(int32_t* c0, int32_t* c1, int32_t* c2, size_t n);
void Predict(const int32_t* evenA, const int32_t* evenB, const int32_t* odd, int32_t* high, size_t n);
void Update(const int32_t* highA, const int32_t* highB, const int32_t* even, int32_t* low, size_t n);
void Unupdate(const int32_t* highA, const int32_t* highB, const int32_t* low, int32_t* even, size_t n);
void Unpredict(const int32_t* evenA, const int32_t* evenB, const int32_t* high, int32_t* odd, size_t n);
void Split(const int32_t* row, int32_t* even, int32_t* odd, size_t n);
void Merge(const int32_t* even, const int32_t* odd, int32_t* row, size_t n);
}  // namespace portable

}  // namespace kestrelink::j2k
