#pragma once
// A byte buffer with a window of valid data and time stamps. It either owns
// its buffer (constructed with a size) or is a view of someone else's memory
// (SetBufferPointer); the codecs read from data pointer onwards and move it
// as they consume.
#include <cstddef>
#include <cstdint>

#include "umc/UmcStatus.h"

namespace UMC {

class MediaData {
 public:
  // A size above 0 allocates (and owns) a buffer of that many bytes.
  explicit MediaData(size_t size = 0);
  virtual ~MediaData();
  MediaData(const MediaData&) = delete;
  MediaData& operator=(const MediaData&) = delete;

  virtual size_t GetDataSize() const { return m_dataSize; }
  // Views `size` bytes at `pointer`, with no valid data yet; frees an owned buffer.
  virtual Status SetBufferPointer(uint8_t* pointer, size_t size);
  // Valid bytes from the data pointer; more than the buffer holds is an error.
  virtual Status SetDataSize(size_t size);
  // Consumes `bytes` from the front of the valid data.
  virtual Status MoveDataPointer(int64_t bytes);
  // Back to an empty window at the start of the buffer, times cleared.
  virtual Status Reset();
  // Frees an owned buffer and clears everything.
  virtual Status Close();

  uint8_t* GetDataPointer() const { return m_data; }
  uint8_t* GetBufferPointer() const { return m_buffer; }
  size_t GetBufferSize() const { return m_bufferSize; }
  bool OwnsBuffer() const { return m_ownsBuffer; }
  void SetTime(double start, double end) {
    m_pts_start = start;
    m_pts_end = end;
  }
  double GetTime() const { return m_pts_start; }
  // kWholeUnits: the valid data ends where a NAL unit and its access unit
  // end (a stored record), rather than wherever a network read stopped.
  enum : uint32_t { kWholeUnits = 1 };
  uint32_t GetFlags() const { return m_flags; }
  void SetFlags(uint32_t flags) { m_flags = flags; }
  int32_t GetFrameType() const { return m_frameType; }
  void SetFrameType(int32_t type) { m_frameType = type; }

 protected:
  double m_pts_start = -1.0;
  double m_pts_end = 0;
  uint64_t m_bufferSize = 0;
  uint64_t m_dataSize = 0;
  uint8_t* m_buffer = nullptr;
  uint8_t* m_data = nullptr;
  int32_t m_frameType = 0;
  bool m_ownsBuffer = false;
  uint32_t m_flags = 0;
};

}  // namespace UMC
