#include "h264/NALUIterator.h"

#include <algorithm>

uint32_t NALUIterator::PayloadSize() const {
  const uint64_t end = std::min<uint64_t>(position, size);
  return end > payloadStart ? uint32_t(end - payloadStart) : 0;
}

bool NALUIterator::Advance() {
  if (position >= size) return false;
  if (lengthSize > 0 && position == nextUnit) {
    nalStart = position;
    payloadStart = position + lengthSize;
    uint64_t length = 0;
    for (uint32_t i = 0; i < lengthSize; ++i) length = (length << 8) | (position + i < size ? data[position + i] : 0);
    nextUnit += length + lengthSize;
  } else {
    while (position < size && !StartCodeAt(position) && data[position] == 0) ++position;
    nalStart = position;
    payloadStart = position + 3;  // also behind a non-zero byte, a settled behaviour of the walk
  }
  if (payloadStart >= size) {
    position = size;
    return false;
  }
  // The next unit starts at the next start code before the prefixed end and
  // the last four bytes; failing that, at the prefixed end or the sample's end.
  uint64_t limit = size >= 4 ? size - 4 : 0;
  if (nextUnit > 0) limit = std::min(limit, nextUnit);
  uint64_t at = payloadStart;
  while (at < limit && !StartCodeAt(at)) ++at;
  if (at < limit) {
    position = at;
  } else {
    position = lengthSize > 0 ? nextUnit : size;
  }
  type = data[payloadStart] & 31;
  return true;
}
