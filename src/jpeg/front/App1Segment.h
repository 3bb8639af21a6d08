#pragma once
// The caller's metadata in a JPEG file:
//
//   offset  size  field
//   0       2     FF E1 (APP1 marker)
//   2       2     length, big-endian: metadataSize + 2, kept to 16 bits
//   4       n     the caller's bytes as given
//
// It stands behind the encoder's headers: before the first scan of a
// sequential image, right behind the frame header of a progressive one.
#include <cstddef>
#include <cstdint>
#include <vector>

namespace kestrelink::jpegfront {

// Empty when metadata is null or metadataSize 0.
std::vector<uint8_t> App1Segment(const void* metadata, unsigned short metadataSize);

// Offset in an encoded image where the encoder's headers end: the first
// start-of-scan marker, or the end of a progressive frame header; size when
// neither is found.
size_t HeaderEnd(const uint8_t* jpeg, size_t size);

}  // namespace kestrelink::jpegfront
