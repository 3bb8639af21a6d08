// Background differences, rotation and mirror of the merger's layers.
#include "merge/MergeLayers.h"

#include <cstring>

#include "frame/RowLoop.h"
#include "geometry/RotatePath.h"
#include "primitives/MirrorPrimitives.h"

namespace kestrelink::merge {

template <class T>
void AbsDiffFrame(uint32_t width, uint32_t height, uint32_t maxValue, const T* a, const T* b, T* dst) {
  ForEachRow(height, false, [&](uint32_t y, uint32_t) {
    const size_t at = size_t(y) * width;
    for (uint32_t x = 0; x < width; ++x) {
      const uint32_t d = a[at + x] > b[at + x] ? a[at + x] - b[at + x] : b[at + x] - a[at + x];
      dst[at + x] = T(d < maxValue ? d : maxValue);
    }
  });
}

void ClearFrame(void* dst, uint64_t rowBytes, uint32_t height) {
  ForEachRow(height, false, [&](uint32_t y, uint32_t) { std::memset(RowAt(dst, rowBytes, y), 0, rowBytes); });
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
  if (background1) {
    layers.firstDiff.resize(size_t(w1) * h1);
    AbsDiffFrame<T>(w1, h1, maxValue, layers.first, static_cast<const T*>(background1), layers.firstDiff.data());
    layers.first = layers.firstDiff.data();
  }
  if (background2) {
    layers.secondDiff.resize(size_t(w2) * h2);
    AbsDiffFrame<T>(w2, h2, maxValue, layers.second, static_cast<const T*>(background2), layers.secondDiff.data());
    layers.second = layers.secondDiff.data();
  }
  if (motion.angle == 0.0 && motion.mirror == 0) return true;
  layers.turned.assign(size_t(w2) * h2, T(0));
  const bool rotated = motion.angle != 0.0;
  if (rotated && !Rotate(layers.second, layers.turned.data(), w2, h2, motion)) return false;
  if (motion.mirror >= 1 && motion.mirror <= 3) {
    const IppiAxis axis = IppiAxis(motion.mirror - 1);
    // After a rotation the mirror runs on the temporary, by way of a second one.
    if (rotated) {
      layers.mirrored.resize(layers.turned.size());
      if (Mirror(layers.turned.data(), layers.mirrored.data(), w2, h2, axis) != ippStsNoErr) return false;
      layers.turned.swap(layers.mirrored);
      layers.mirrored = {};
    } else if (Mirror(layers.second, layers.turned.data(), w2, h2, axis) != ippStsNoErr) {
      return false;
    }
  }
  // Settled behaviour of the format: with a mirror outside 1..3 and no
  // rotation the zeroed temporary stands as the second layer.
  layers.second = layers.turned.data();
  return true;
}

template void AbsDiffFrame<uint8_t>(uint32_t, uint32_t, uint32_t, const uint8_t*, const uint8_t*, uint8_t*);
template void AbsDiffFrame<uint16_t>(uint32_t, uint32_t, uint32_t, const uint16_t*, const uint16_t*, uint16_t*);
template bool PrepareLayers<uint8_t>(LayerFrames<uint8_t>&, uint32_t, uint32_t, const void*, const void*, uint32_t,
                                     uint32_t, const void*, const void*, uint32_t, const SecondLayerMotion&);
template bool PrepareLayers<uint16_t>(LayerFrames<uint16_t>&, uint32_t, uint32_t, const void*, const void*, uint32_t,
                                      uint32_t, const void*, const void*, uint32_t, const SecondLayerMotion&);

}  // namespace kestrelink::merge
