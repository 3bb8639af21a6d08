#pragma once
// The steps every composing member of CIppImageMerger shares before its
// overlay: check the frames, place the layers, take the backgrounds off,
// rotate and mirror the second layer, and find where each row reads it.
#include <cstdint>

#include "merge/MergeLayers.h"
#include "merge/MergeLayout.h"
#include "platform/OpenMP.h"

namespace kestrelink::merge {

// 16-bit samples and the byte scale of the colour tables and ratios.
inline uint32_t DepthMax(uint32_t bitDepth) { return (1u << bitDepth) - 1u; }
inline uint32_t ToByte(uint32_t v, uint32_t bitDepth) {
  return bitDepth >= 8 ? v >> (bitDepth - 8) : v << (8 - bitDepth);
}
inline uint32_t FromByte(uint32_t v, uint32_t bitDepth) {
  return bitDepth >= 8 ? v << (bitDepth - 8) : v >> (8 - bitDepth);
}
inline bool DepthInRange(uint32_t bitDepth) { return bitDepth >= 1 && bitDepth <= 16; }

template <class T>
struct MergeCall {
  Placement p;
  LayerFrames<T> layers;
  RowPlan plan;
  bool cleared = false;  // the layers' sizes differ, so the output starts cleared
  uint32_t top = 0;      // the largest sample of the depth
};

// Checks the depth (1 to 16) and the frames, has the gamma table built for
// the depth (rebuildGamma(bits)), then places and prepares the layers.
template <class T, class RebuildGamma>
bool BeginCall(MergeCall<T>& call, uint32_t bitDepth, RebuildGamma rebuildGamma, uint32_t w1, uint32_t h1,
               const void* image1, const void* background1, uint32_t w2, uint32_t h2, const void* image2,
               const void* background2, const void* dst, int pixelBytes, int offsetX, int offsetY,
               const SecondLayerMotion& motion) {
  platform::SetBlockTimeZero();
  if (!DepthInRange(bitDepth) || !image1 || !image2 || !dst) return false;
  if (!Place(w1, h1, w2, h2, offsetX, offsetY, pixelBytes, call.p)) return false;
  rebuildGamma(int(bitDepth));
  call.top = DepthMax(bitDepth);
  call.cleared = w1 != w2 || h1 != h2;
  if (!PrepareLayers<T>(call.layers, w1, h1, image1, background1, w2, h2, image2, background2, call.top, motion))
    return false;
  call.plan = PlanRows(call.p);
  return true;
}

}  // namespace kestrelink::merge
