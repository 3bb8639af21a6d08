// Portable interior runs: the per-pixel rule, one pixel at a time. The rows
// call them only through a vector variant's table; they are the reference
// the variant tests hold the vector runs to.
#include "primitives/RotateSampling.h"

namespace kestrelink::rotate {
namespace {

template <class T, int C, int W, Kind K>
void Run(const Warp& w, double uRow, double vRow, int a, int b, void* dst) {
  const Source<T, C> s{w};
  T* d = static_cast<T*>(dst);
  for (int X = a; X < b; ++X, d += C) RotatePixel<T, C, W, K, false, true>(s, w, w.ux * X + uRow, w.vx * X + vRow, d);
}

}  // namespace

const RotateRunKernels kRotateRunsPortable = {
    Run<uint8_t, 1, 1, Kind::kNearest>, Run<uint8_t, 1, 1, Kind::kLinear>,   Run<uint8_t, 4, 3, Kind::kNearest>,
    Run<uint8_t, 4, 3, Kind::kLinear>,  Run<uint16_t, 1, 1, Kind::kNearest>, Run<uint16_t, 1, 1, Kind::kLinear>,
    Run<uint8_t, 1, 1, Kind::kCubic>,   Run<uint8_t, 3, 3, Kind::kCubic>,    Run<uint8_t, 4, 3, Kind::kCubic>,
    Run<uint16_t, 1, 1, Kind::kCubic>,  Run<uint16_t, 3, 3, Kind::kCubic>,   Run<uint16_t, 4, 3, Kind::kCubic>};

}  // namespace kestrelink::rotate
