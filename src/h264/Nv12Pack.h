#pragma once
// Packing of the encoder's source into the NV12 planes the run-time takes:
// luma rows at pitch W, then one plane of interleaved U, V pairs at pitch W,
// both over the frame aligned to 16 (W by H) of a true w by h source.
#include <cstddef>
#include <cstdint>

namespace kestrelink::h264 {

struct Nv12Frame {
  uint8_t* luma;     // W * H bytes
  uint8_t* chroma;   // W * H / 2 bytes
  uint32_t width;    // w, true size
  uint32_t height;   // h
  uint32_t alignedWidth;   // W
  uint32_t alignedHeight;  // H
};

// Planar 4:2:0 source; u and v have w / 2 bytes a row. Chroma rows 0 .. H/2-1
// are read, so a height that is not a multiple of 16 reads up to 8 chroma rows
// past h / 2, which the caller provides.
void PackNv12Planar(const uint8_t* y, const uint8_t* u, const uint8_t* v, const Nv12Frame& frame);

// Luma alone: the chroma plane becomes 128, grey.
void PackNv12Mono(const uint8_t* y, const Nv12Frame& frame);

}  // namespace kestrelink::h264
