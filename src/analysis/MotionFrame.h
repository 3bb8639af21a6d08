#pragma once
// Placing the motion detector's rectangles on packed frames: byte offsets,
// row steps, and the rows of a rectangle that stay inside a frame.
#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace kestrelink::analysis {

// Rows of a region (first byte `start`, rows `step` bytes apart, each
// `rowBytes` long) that end inside a frame of `frameBytes`, at most `rows`;
// -1 when the region begins before the frame. Rows past the frame's end are
// the ones a caller's rectangle cannot have meant; they are left out.
inline int FitRows(uint64_t frameBytes, int64_t start, int64_t step, int64_t rowBytes, int rows) {
  if (start < 0) return -1;
  if (rows <= 0 || rowBytes <= 0 || uint64_t(start + rowBytes) > frameBytes) return 0;
  if (step <= 0) return rows;
  const uint64_t fit = (frameBytes - uint64_t(start + rowBytes)) / uint64_t(step) + 1;
  return int(std::min<uint64_t>(uint64_t(rows), fit));
}

// Byte offset of pixel (x, y) of a packed frame `width` pixels wide.
inline int64_t PixelOffset(unsigned int width, int x, int y, int sampleBytes) {
  return (int64_t(y) * width + x) * sampleBytes;
}

inline uint64_t FrameBytes(unsigned int width, unsigned int height, int sampleBytes) {
  return uint64_t(width) * height * uint64_t(sampleBytes);
}

// The largest sample of a bit depth, within 16 bits.
inline int FullScale(int bitDepth) { return bitDepth >= 16 ? 65535 : bitDepth <= 0 ? 0 : (1 << bitDepth) - 1; }

template <class T>
inline T* At(void* frame, int64_t byteOffset) {
  return reinterpret_cast<T*>(static_cast<uint8_t*>(frame) + byteOffset);
}

}  // namespace kestrelink::analysis
