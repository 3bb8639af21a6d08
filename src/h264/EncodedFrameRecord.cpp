#include "h264/EncodedFrameRecord.h"

namespace kestrelink::h264 {

namespace {

uint8_t* Bytes(void* record) { return static_cast<uint8_t*>(record); }
const uint8_t* Bytes(const void* record) { return static_cast<const uint8_t*>(record); }

void Put(uint8_t* at, uint32_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) at[i] = uint8_t(value >> (8 * i));
}

uint32_t Get(const uint8_t* at, int bytes) {
  uint32_t value = 0;
  for (int i = 0; i < bytes; ++i) value |= uint32_t(at[i]) << (8 * i);
  return value;
}

}  // namespace

void WriteRecordHeader(void* record, uint32_t payloadBytes, uint16_t gopSize, uint16_t framesSinceKey) {
  Put(Bytes(record), payloadBytes + uint32_t(kRecordHeaderBytes), 4);
  Put(Bytes(record) + 4, gopSize, 2);
  Put(Bytes(record) + 6, framesSinceKey, 2);
}

uint32_t RecordSize(const void* record) { return Get(Bytes(record), 4); }
uint16_t RecordGopSize(const void* record) { return uint16_t(Get(Bytes(record) + 4, 2)); }
uint16_t RecordFramesSinceKey(const void* record) { return uint16_t(Get(Bytes(record) + 6, 2)); }

bool IsKeyRecord(const void* record) { return (Bytes(record)[12] & 31) == 7; }

}  // namespace kestrelink::h264
