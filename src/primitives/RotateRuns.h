#pragma once
// Interior runs of the general rotation: destination pixels whose source
// taps all lie inside the region and whose next source row exists, so that
// a vector variant may gather whole 32-bit words at each tap. One table per
// processor variant (portable, AVX2, AVX-512); every variant gives the same
// bytes as the portable one, which is the plain per-pixel rule.
#include <cstddef>
#include <cstdint>

#include "primitives/Variant.h"

namespace kestrelink::rotate {

struct RotateRunKernels;

// One call's geometry: source region [x0, x1) x [y0, y1) (inside the image),
// and the source point of destination pixel (X, Y):
//   u = ux * X + uy * Y + u0,   v = vx * X + vy * Y + v0.
struct Warp {
  const uint8_t* src;
  ptrdiff_t srcStep;
  int x0, y0, x1, y1;
  double ux, uy, u0, vx, vy, v0;
  const RotateRunKernels* runs;  // the active variant's interior runs
};

// Pixels [a, b) of a row whose points are u = ux * X + uRow, v = vx * X +
// vRow, written from `dst` (pixel a first); no smooth edge.
using InteriorRun = void (*)(const Warp& w, double uRow, double vRow, int a, int b, void* dst);

struct RotateRunKernels {
  InteriorRun nearest8c1, linear8c1, nearest8ac4, linear8ac4, nearest16c1, linear16c1;
  InteriorRun cubic8c1, cubic8c3, cubic8ac4, cubic16c1, cubic16c3, cubic16ac4;
};

extern const RotateRunKernels kRotateRunsPortable;
extern const RotateRunKernels kRotateRunsAVX2;
extern const RotateRunKernels kRotateRunsAVX512;

inline const RotateRunKernels& RotateRuns() {
  static const RotateRunKernels* const slots[kVariantCount] = {&kRotateRunsPortable, nullptr, nullptr, &kRotateRunsAVX2,
                                                               &kRotateRunsAVX512};
  return PickVariant(slots);
}

}  // namespace kestrelink::rotate
