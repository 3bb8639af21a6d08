// Background differences, rotation and mirror of the merger's layers.
#include "merge/MergeLayers.h"

#include <climits>

#include "frame/RowLoop.h"
#include "geometry/RotatePath.h"
#include "primitives/AnalysisPrimitives.h"
#include "primitives/MirrorPrimitives.h"

namespace kestrelink::merge {

namespace {

constexpr int kBufferRow = 64;

IppStatus AbsDiff(const uint8_t* a, const uint8_t* b, uint8_t* dst, int step, IppiSize size) {
  return ippiAbsDiff_8u_C1R(a, step, b, step, dst, step, size);
}
IppStatus AbsDiff(const uint16_t* a, const uint16_t* b, uint16_t* dst, int step, IppiSize size) {
  return ippiAbsDiff_16u_C1R(a, step, b, step, dst, step, size);
}

}  // namespace

LayerBuffer::~LayerBuffer() { ippiFree(data_); }

bool LayerBuffer::Allocate(size_t bytes) {
  ippiFree(data_);
  data_ = nullptr;
  const size_t rows = (bytes + kBufferRow - 1) / kBufferRow;
  if (rows == 0 || rows > size_t(INT_MAX)) return false;
  int step = 0;
  data_ = ippiMalloc_8u_C1(kBufferRow, int(rows), &step);
  rows_ = int(rows);
  // A row of 64 bytes is already aligned, so the step is the row.
  return data_ != nullptr && step == kBufferRow;
}

void LayerBuffer::Clear() {
  ForEachBand(uint32_t(rows_), [&](uint32_t first, uint32_t count) {
    return int(ippiSet_8u_C1R(0, data_ + size_t(first) * kBufferRow, kBufferRow, {kBufferRow, int(count)}));
  });
}

template <class T>
void AbsDiffFrame(uint32_t width, uint32_t height, uint32_t maxValue, const T* a, const T* b, T* dst) {
  const uint64_t rowBytes = uint64_t(width) * sizeof(T);
  if (rowBytes > uint64_t(INT_MAX) || height > uint32_t(INT_MAX)) return;
  ForEachBand(height, [&](uint32_t first, uint32_t count) {
    const size_t at = size_t(first) * width;
    const IppStatus s = AbsDiff(a + at, b + at, dst + at, int(rowBytes), {int(width), int(count)});
    // Samples beyond the depth can differ by more than its largest value.
    if (s == ippStsNoErr && maxValue < T(~T(0))) {
      T* out = dst + at;
      const T top = T(maxValue);
      for (size_t i = 0; i < size_t(count) * width; ++i) out[i] = out[i] < top ? out[i] : top;
    }
    return int(s);
  });
}

void ClearFrame(void* dst, uint64_t rowBytes, uint32_t height) {
  if (rowBytes > uint64_t(INT_MAX) || height > uint32_t(INT_MAX)) return;
  ForEachBand(height, [&](uint32_t first, uint32_t count) {
    return int(ippiSet_8u_C1R(0, RowAt(dst, rowBytes, first), int(rowBytes), {int(rowBytes), int(count)}));
  });
}

namespace {

IppStatus Mirror(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t h, IppiAxis axis) {
  return ippiMirror_8u_C1R(src, int(w), dst, int(w), {int(w), int(h)}, axis);
}
IppStatus Mirror(const uint16_t* src, uint16_t* dst, uint32_t w, uint32_t h, IppiAxis axis) {
  return ippiMirror_16u_C1R(src, int(2 * w), dst, int(2 * w), {int(w), int(h)}, axis);
}

bool Rotate(const uint8_t* src, uint8_t* dst, uint32_t w, uint32_t h, const SecondLayerMotion& m) {
  return geometry::RotateGeneral<Ipp8u>(ippiRotate_8u_C1R, 1, w, h, const_cast<uint8_t*>(src), w, h, dst, m.centerX,
                                        m.centerY, m.angle, m.interpolation, m.smoothEdge);
}
bool Rotate(const uint16_t* src, uint16_t* dst, uint32_t w, uint32_t h, const SecondLayerMotion& m) {
  return geometry::RotateGeneral<Ipp16u>(ippiRotate_16u_C1R, 2, w, h, const_cast<uint16_t*>(src), w, h, dst,
                                         m.centerX, m.centerY, m.angle, m.interpolation, m.smoothEdge);
}

}  // namespace

template <class T>
bool PrepareLayers(LayerFrames<T>& layers, uint32_t w1, uint32_t h1, const void* image1, const void* background1,
                   uint32_t w2, uint32_t h2, const void* image2, const void* background2, uint32_t maxValue,
                   const SecondLayerMotion& motion) {
  layers.first = static_cast<const T*>(image1);
  layers.second = static_cast<const T*>(image2);
  const size_t bytes1 = size_t(w1) * h1 * sizeof(T), bytes2 = size_t(w2) * h2 * sizeof(T);
  if (background1) {
    if (!layers.firstDiff.Allocate(bytes1)) return false;
    AbsDiffFrame<T>(w1, h1, maxValue, layers.first, static_cast<const T*>(background1), layers.firstDiff.template As<T>());
    layers.first = layers.firstDiff.template As<T>();
  }
  if (background2) {
    if (!layers.secondDiff.Allocate(bytes2)) return false;
    AbsDiffFrame<T>(w2, h2, maxValue, layers.second, static_cast<const T*>(background2), layers.secondDiff.template As<T>());
    layers.second = layers.secondDiff.template As<T>();
  }
  if (motion.angle == 0.0 && motion.mirror == 0) return true;
  if (!layers.turned.Allocate(bytes2)) return false;
  layers.turned.Clear();
  const bool rotated = motion.angle != 0.0;
  if (rotated && !Rotate(layers.second, layers.turned.template As<T>(), w2, h2, motion)) return false;
  if (motion.mirror >= 1 && motion.mirror <= 3) {
    const IppiAxis axis = IppiAxis(motion.mirror - 1);
    // After a rotation the mirror runs on the temporary, by way of a second one.
    if (rotated) {
      if (!layers.mirrored.Allocate(bytes2)) return false;
      if (Mirror(layers.turned.template As<T>(), layers.mirrored.template As<T>(), w2, h2, axis) != ippStsNoErr) return false;
      layers.turned.Swap(layers.mirrored);
    } else if (Mirror(layers.second, layers.turned.template As<T>(), w2, h2, axis) != ippStsNoErr) {
      return false;
    }
  }
  // Settled behaviour of the format: with a mirror outside 1..3 and no
  // rotation the zeroed temporary stands as the second layer.
  layers.second = layers.turned.template As<T>();
  return true;
}

template void AbsDiffFrame<uint8_t>(uint32_t, uint32_t, uint32_t, const uint8_t*, const uint8_t*, uint8_t*);
template void AbsDiffFrame<uint16_t>(uint32_t, uint32_t, uint32_t, const uint16_t*, const uint16_t*, uint16_t*);
template bool PrepareLayers<uint8_t>(LayerFrames<uint8_t>&, uint32_t, uint32_t, const void*, const void*, uint32_t,
                                     uint32_t, const void*, const void*, uint32_t, const SecondLayerMotion&);
template bool PrepareLayers<uint16_t>(LayerFrames<uint16_t>&, uint32_t, uint32_t, const void*, const void*, uint32_t,
                                      uint32_t, const void*, const void*, uint32_t, const SecondLayerMotion&);

}  // namespace kestrelink::merge
