#pragma once
// The encoded frame record, the unit between H.264 encode and decode. Little-endian:
//
//   offset  width      field           meaning
//   0       u32        recordSize      payload bytes + 8: the whole record
//   4       u16        gopSize         the GOP size on a key frame, else 0
//   6       u16        framesSinceKey  0 on a key frame, then 1, 2, ...
//   8       size - 8   payload         Annex B bytes of one frame, opening with a start code
//
// A record is a key frame exactly when byte 12 (the NAL header behind a
// four-byte start code) names a sequence parameter set.
#include <cstddef>
#include <cstdint>

namespace kestrelink::h264 {

inline constexpr size_t kRecordHeaderBytes = 8;

void WriteRecordHeader(void* record, uint32_t payloadBytes, uint16_t gopSize, uint16_t framesSinceKey);
uint32_t RecordSize(const void* record);
uint16_t RecordGopSize(const void* record);
uint16_t RecordFramesSinceKey(const void* record);
bool IsKeyRecord(const void* record);

}  // namespace kestrelink::h264
