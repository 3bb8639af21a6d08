#pragma once
// Bilinear enlargement by exactly 2 on both axes, unshifted. Every output
// sample lies a quarter pixel from its nearest source centre on each axis,
// so the weights are 3/4 and 1/4 and the sample is
//   (9 * near + 3 * across + 3 * down + diagonal + 8) >> 4
// with the edge rows and columns repeated. The separable path gives exactly
// this for 8-bit samples (its fixed-point weights are 4096 and 12288) and for
// 16-bit ones (every product and sum of its float passes is exact below
// 2^24), so this path reproduces it while reading each source row pair once
// and writing two output rows in one pass.
#include <cstdint>

#include "primitives/ResizeAxis.h"
#include "primitives/ResizeEngine.h"
#include "primitives/Variant.h"

namespace kestrelink::resize {

// Row pairs: a and b are source rows from the first of m + 1 columns. For
// t < m, outA[2t] and outA[2t + 1] are the samples between columns t and
// t + 1 nearest a (a weighted 3/4 down the column), outB those nearest b;
// outB may be null, and then only outA is written.
struct Up2RowKernels {
  void (*rows8)(const uint8_t* a, const uint8_t* b, uint32_t m, uint8_t* outA, uint8_t* outB);
  void (*rows16)(const uint16_t* a, const uint16_t* b, uint32_t m, uint16_t* outA, uint16_t* outB);
};

extern const Up2RowKernels kUp2RowsPortable;
extern const Up2RowKernels kUp2RowsAVX2;
extern const Up2RowKernels kUp2RowsAVX512;

inline const Up2RowKernels& Up2Rows() {
  static const Up2RowKernels* const slots[kVariantCount] = {&kUp2RowsPortable, nullptr, nullptr, &kUp2RowsAVX2,
                                                            &kUp2RowsAVX512};
  return PickVariant(slots);
}

// The helpers below are compiled into the portable and the vector files
// alike, each with its own instruction set, so they have internal linkage:
// the linker must never hand one file's copy to another.
namespace {

// One output sample from its near and far source rows (n near, f far) and
// near and far columns.
template <class Sample>
inline Sample Up2Sample(const Sample* n, const Sample* f, int64_t nearCol, int64_t farCol) {
  const int32_t sum = 9 * int32_t(n[nearCol]) + 3 * int32_t(n[farCol]) + 3 * int32_t(f[nearCol]) + int32_t(f[farCol]);
  return Sample((sum + 8) >> 4);
}

// The portable rows from pair `from` on, also the vector variants' tails.
template <class Sample>
void Up2RowsPortable(const Sample* a, const Sample* b, uint32_t from, uint32_t m, Sample* outA, Sample* outB) {
  for (uint32_t t = from; t < m; ++t) {
    outA[2 * t] = Up2Sample(a, b, t, t + 1);
    outA[2 * t + 1] = Up2Sample(a, b, t + 1, t);
    if (!outB) continue;
    outB[2 * t] = Up2Sample(b, a, t, t + 1);
    outB[2 * t + 1] = Up2Sample(b, a, t + 1, t);
  }
}

}  // namespace

// Whether a resize takes this path: bilinear, both factors exactly 2, no
// shift, one channel.
bool IsExactUp2(int kind, double xFactor, double yFactor, double xShift, double yShift, int channels);

// The output rows of r (RunRows as the separable path takes them) over
// destination columns dx0 .. dx0 + width - 1, x the horizontal axis.
template <class Sample>
void RunUp2(const RunRows& r, const AxisMap& x, int64_t dx0, int64_t width);

}  // namespace kestrelink::resize
