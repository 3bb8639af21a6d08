#pragma once
// The merger's layers before the overlay: the first and second frames with
// their backgrounds taken off, the second rotated and mirrored, each in a
// temporary of its own that the LayerFrames releases.
#include <cstdint>
#include <vector>

namespace kestrelink::merge {

template <class T>
struct LayerFrames {
  const T* first = nullptr;
  const T* second = nullptr;
  std::vector<T> firstDiff, secondDiff, turned, mirrored;
};

// dst = |a - b|, clamped to maxValue, over the thread team by rows.
template <class T>
void AbsDiffFrame(uint32_t width, uint32_t height, uint32_t maxValue, const T* a, const T* b, T* dst);

struct SecondLayerMotion {
  int centerX, centerY;
  double angle;
  int mirror, interpolation;
  bool smoothEdge;
};

// Fills `layers`; false when the rotation fails (the temporaries go with
// `layers`). maxValue bounds the background differences.
template <class T>
bool PrepareLayers(LayerFrames<T>& layers, uint32_t w1, uint32_t h1, const void* image1, const void* background1,
                   uint32_t w2, uint32_t h2, const void* image2, const void* background2, uint32_t maxValue,
                   const SecondLayerMotion& motion);

// Sets every byte of a frame to zero, over the thread team by rows.
void ClearFrame(void* dst, uint64_t rowBytes, uint32_t height);

}  // namespace kestrelink::merge
