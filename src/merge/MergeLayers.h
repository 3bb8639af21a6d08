#pragma once
// The merger's layers before the overlay: the first and second frames with
// their backgrounds taken off, the second rotated and mirrored, each in a
// temporary of its own that the LayerFrames releases.
#include <cstddef>
#include <cstdint>
#include <utility>

namespace kestrelink::merge {

// A tightly packed frame from the image allocator (as rows of 64 bytes, so
// that the rows meet), released with it.
class LayerBuffer {
 public:
  LayerBuffer() = default;
  LayerBuffer(const LayerBuffer&) = delete;
  LayerBuffer& operator=(const LayerBuffer&) = delete;
  ~LayerBuffer();
  // False when the allocator has no room; any earlier frame is released.
  bool Allocate(size_t bytes);
  // Sets every byte to zero, over the thread team.
  void Clear();
  template <class T>
  T* As() const {
    return reinterpret_cast<T*>(data_);
  }
  void Swap(LayerBuffer& other) { std::swap(data_, other.data_), std::swap(rows_, other.rows_); }

 private:
  uint8_t* data_ = nullptr;
  int rows_ = 0;
};

template <class T>
struct LayerFrames {
  const T* first = nullptr;
  const T* second = nullptr;
  LayerBuffer firstDiff, secondDiff, turned, mirrored;
};

// dst = |a - b|, clamped to maxValue, over the thread team by bands of rows.
template <class T>
void AbsDiffFrame(uint32_t width, uint32_t height, uint32_t maxValue, const T* a, const T* b, T* dst);

struct SecondLayerMotion {
  int centerX, centerY;
  double angle;
  int mirror, interpolation;
  bool smoothEdge;
};

// Fills `layers`; false when a temporary can't be had or the rotation
// fails (the temporaries go with `layers`). maxValue bounds the background differences.
template <class T>
bool PrepareLayers(LayerFrames<T>& layers, uint32_t w1, uint32_t h1, const void* image1, const void* background1,
                   uint32_t w2, uint32_t h2, const void* image2, const void* background2, uint32_t maxValue,
                   const SecondLayerMotion& motion);

// Sets every byte of a frame to zero, over the thread team by rows.
void ClearFrame(void* dst, uint64_t rowBytes, uint32_t height);

}  // namespace kestrelink::merge
