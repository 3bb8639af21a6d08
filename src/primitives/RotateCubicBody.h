#pragma once
// Bicubic interior runs of the general rotation for one vector width: a
// lane per destination pixel, the source points in double precision, the
// four tap rows gathered as 32-bit words at byte offsets, the Catmull-Rom
// sums in float in the portable order (row by row, tap by tap, nothing
// fused). The four taps of a row hold 4 * pixel-bytes contiguous bytes from
// the pixel left of floor(u), so every word read lies inside the taps.
//
// V supplies the width: kLanes; I and F (integer and float lanes, with the
// compiler's vector operators); Taps (floor and fraction of each point),
// Offsets, AddI (32-bit sums), Gather, Field, RoundLimit; and Store (lanes of
// one sample each, written as pixels).
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "primitives/RotateSampling.h"

namespace kestrelink::rotate {

template <class V>
struct CubicLanes {
  using F = typename V::F;
  // Catmull-Rom weights at offsets -1, 0, 1, 2, as CubicWeights rounds them.
  static void Weights(F t, F w[4]) {
    const F t2 = t * t, t3 = t2 * t;
    w[0] = V::Splat(-0.5f) * t3 + t2 - V::Splat(0.5f) * t;
    w[1] = V::Splat(1.5f) * t3 - V::Splat(2.5f) * t2 + V::Splat(1.0f);
    w[2] = V::Splat(-1.5f) * t3 + V::Splat(2.0f) * t2 + V::Splat(0.5f) * t;
    w[3] = V::Splat(0.5f) * t3 - V::Splat(0.5f) * t2;
  }
};

// Lanes of one sample each (32-bit, already limited to T's range) written as
// pixels a lane at a time, the samples past W left as they were.
template <class T, int C, int W, class I>
inline void StorePixels(T* d, const I* samples, int lanes) {
  alignas(64) int32_t lane[W][16];
  for (int c = 0; c < W; ++c) std::memcpy(lane[c], &samples[c], sizeof(I));
  for (int i = 0; i < lanes; ++i)
    for (int c = 0; c < W; ++c) d[i * C + c] = T(lane[c][i]);
}

template <class V, class T, int C, int W>
void CubicRun(const Warp& w, double uRow, double vRow, int a, int b, void* dst) {
  using I = typename V::I;
  using F = typename V::F;
  constexpr int kBytes = C * int(sizeof(T));  // one pixel; the four taps of a row are kBytes words
  constexpr int kMask = sizeof(T) == 1 ? 0xFF : 0xFFFF;
  constexpr float kMax = float(kMask);
  // Whether word i of a tap row holds a written sample (16-bit AC4 leaves
  // every second word to the untouched fourth sample).
  constexpr auto used = [](int i) {
    for (int k = 0; k < 4; ++k)
      for (int c = 0; c < W; ++c)
        if ((k * kBytes + c * int(sizeof(T))) / 4 == i) return true;
    return false;
  };
  T* d = static_cast<T*>(dst);
  int X = a;
  for (; X + V::kLanes <= b; X += V::kLanes, d += V::kLanes * C) {
    I iu, iv;
    F tx, ty;
    V::Taps(w, uRow, vRow, X, iu, iv, tx, ty);
    F wx[4], wy[4];
    CubicLanes<V>::Weights(tx, wx);
    CubicLanes<V>::Weights(ty, wy);
    // The pixel left of and the row above floor(u), floor(v).
    const I origin = V::AddI(V::Offsets(w, iu, iv, kBytes), V::Splat(-int(w.srcStep) - kBytes));
    F out[W];
#pragma GCC unroll 4
    for (int j = 0; j < 4; ++j) {
      const I at = V::AddI(origin, V::Splat(int(w.srcStep) * j));
      I words[kBytes];
#pragma GCC unroll 8
      for (int i = 0; i < kBytes; ++i)
        if (used(i)) words[i] = V::Gather(w, V::AddI(at, V::Splat(4 * i)));
#pragma GCC unroll 3
      for (int c = 0; c < W; ++c) {
        F row;
#pragma GCC unroll 4
        for (int k = 0; k < 4; ++k) {
          const int byte = k * kBytes + c * int(sizeof(T));
          const F term = wx[k] * V::Field(words[byte / 4], 8 * (byte % 4), kMask);
          row = k == 0 ? term : row + term;
        }
        out[c] = j == 0 ? wy[0] * row : out[c] + wy[j] * row;
      }
    }
    I samples[W];
    for (int c = 0; c < W; ++c) samples[c] = V::RoundLimit(out[c], kMax);
    V::template Store<T, C, W>(d, samples);
  }
  const Source<T, C> s{w};
  for (; X < b; ++X, d += C) RotatePixel<T, C, W, Kind::kCubic, false, true>(s, w, w.ux * X + uRow, w.vx * X + vRow, d);
}

}  // namespace kestrelink::rotate
