#include "jpeg/front/App1Segment.h"

namespace kestrelink::jpegfront {

std::vector<uint8_t> App1Segment(const void* metadata, unsigned short metadataSize) {
  if (metadata == nullptr || metadataSize == 0) return {};
  // Sizes above 65533 wrap in the 16-bit length: a settled behaviour of the format.
  const uint16_t length = static_cast<uint16_t>(metadataSize + 2);
  std::vector<uint8_t> segment = {0xFF, 0xE1, static_cast<uint8_t>(length >> 8), static_cast<uint8_t>(length & 0xFF)};
  const auto* bytes = static_cast<const uint8_t*>(metadata);
  segment.insert(segment.end(), bytes, bytes + metadataSize);
  return segment;
}

size_t HeaderEnd(const uint8_t* jpeg, size_t size) {
  size_t pos = 2;  // behind the start-of-image marker
  while (pos + 4 <= size && jpeg[pos] == 0xFF) {
    const uint8_t marker = jpeg[pos + 1];
    if (marker == 0xDA) return pos;
    const size_t next = pos + 2 + ((size_t(jpeg[pos + 2]) << 8) | jpeg[pos + 3]);
    if (marker == 0xC2) return next < size ? next : size;  // progressive: its tables come with the scans
    pos = next;
  }
  return size;
}

}  // namespace kestrelink::jpegfront
