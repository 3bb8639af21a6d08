#pragma once
// Decoding through the library's own codec, shared by the software and GPU
// back-ends: grey or BGR rows at (channels x width + 3) rounded down to a
// multiple of 4, 8 bits a sample. Failures are worded to the debug output.
#include <cstdint>

namespace kestrelink::jpegfront {

// One JPEG image of size bytes; position receives the input position
// reached, on failure too.
bool DecodeWithCodec(const uint8_t* data, uint32_t size, void* dst, uint32_t& position);

// The compressed buffer form: a 32-bit little-endian size that counts itself,
// then the stream.
bool DecodeSizedBuffer(const void* src, void* dst);

// Bytes of the stream behind a size word. The word counts itself, so an input
// of the word's value would reach 4 bytes past the buffer it describes; the
// input stops at the buffer's end, where a well-formed stream has ended.
inline uint32_t StreamBytes(uint32_t sizeWord) { return sizeWord < 4 ? 0 : sizeWord - 4; }

// Row step of the encoders' sources and the decoders' destinations.
inline int RowStep(int channels, uint32_t width) { return (channels * static_cast<int>(width) + 3) & ~3; }

}  // namespace kestrelink::jpegfront
