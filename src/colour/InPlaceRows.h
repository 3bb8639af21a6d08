#pragma once
// The frame loop of the correction stages, which work in place: each row is
// read from the image, or with a flip from a flipped copy of it, and written
// to the image.
#include <cstdint>
#include <memory>

#include "frame/FrameCopy.h"
#include "frame/RowLoop.h"

namespace kestrelink::colour {

// Calls row(in, out) for every row of a packed image of width x height
// pixels of pixelBytes bytes. The copy is freed before return.
template <class Row>
void ApplyRowsInPlace(void* image, uint32_t width, uint32_t height, uint32_t pixelBytes, bool flip, Row row) {
  const size_t rowBytes = size_t(width) * pixelBytes;
  std::unique_ptr<uint8_t[]> copy;
  const void* source = image;
  if (flip) {
    copy.reset(new uint8_t[rowBytes * height]);
    CopyFrame(image, rowBytes, height, copy.get(), false);
    source = copy.get();
  }
  ForEachRow(height, flip, [&](uint32_t in, uint32_t out) { row(RowAt(source, rowBytes, in), RowAt(image, rowBytes, out)); });
}

}  // namespace kestrelink::colour
