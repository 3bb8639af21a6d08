#pragma once
// Walks the NAL units of a sample, either behind big-endian length prefixes
// of lengthSize bytes or behind 00 00 01 start codes. It never reads outside
// the size it is given, whatever the prefixes claim.
#include <cstdint>

class NALUIterator {
 public:
  NALUIterator(const uint8_t* data, uint32_t size, uint32_t lengthSize)
      : size(size), lengthSize(lengthSize), data(data) {}

  // Moves to the next unit; false when none is left.
  bool Advance();
  // The unit's bytes from its header byte on.
  const uint8_t* Payload() const { return data + payloadStart; }
  uint32_t PayloadSize() const;

  uint64_t nalStart = 0;
  uint64_t payloadStart = 0;
  uint64_t position = 0;
  uint64_t nextUnit = 0;
  uint32_t size;
  uint32_t lengthSize;
  uint32_t type = 0;
  const uint8_t* data;

 private:
  bool StartCodeAt(uint64_t at) const { return at + 3 <= size && data[at] == 0 && data[at + 1] == 0 && data[at + 2] == 1; }
};
