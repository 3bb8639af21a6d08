#pragma once
// The frame around every stream that CIppImageCompress writes, whatever
// the method:
//
//   offset  size       field
//   0       4          total: little-endian 32-bit length of the whole
//                      stream in bytes, this field included (payload + 4)
//   4       total - 4  the method's payload
//
// The method and the raw length are not recorded. A total below 4 reads as
// a negative payload length, which every decoder refuses as a size error.
#include <cstdint>
#include <cstring>

namespace kestrelink::compress {

inline constexpr uint32_t kTotalBytes = 4;

inline void StoreTotal(void* stream, uint32_t payloadLength) {
  const uint32_t total = payloadLength + kTotalBytes;
  const uint8_t bytes[4] = {uint8_t(total), uint8_t(total >> 8), uint8_t(total >> 16), uint8_t(total >> 24)};
  std::memcpy(stream, bytes, 4);
}

// The payload length that the total claims, in the signed 32 bits that the
// decoding kernels take.
inline int32_t PayloadLength(const void* stream) {
  uint8_t b[4];
  std::memcpy(b, stream, 4);
  const uint32_t total = uint32_t(b[0]) | uint32_t(b[1]) << 8 | uint32_t(b[2]) << 16 | uint32_t(b[3]) << 24;
  return int32_t(total - kTotalBytes);
}

inline uint8_t* PayloadOf(void* stream) { return stream ? static_cast<uint8_t*>(stream) + kTotalBytes : nullptr; }

}  // namespace kestrelink::compress
