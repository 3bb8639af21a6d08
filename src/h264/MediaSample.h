#pragma once
// The media sample the frame constructors read: one buffer of GetSize()
// bytes, of which GetActualDataLength() hold data, with an optional start and
// stop time in 100-nanosecond units. And the video description that carries
// an AVC stream's parameter sets, each behind a length prefix.
#include <cstdint>

class IMediaSample {
 public:
  virtual ~IMediaSample() = default;
  virtual uint8_t* GetPointer() = 0;
  virtual int32_t GetSize() = 0;
  // False when the sample carries no time.
  virtual bool GetTime(int64_t& start, int64_t& stop) = 0;
  virtual int32_t GetActualDataLength() = 0;
  virtual bool SetActualDataLength(int32_t length) = 0;
};

struct MPEG2VIDEOINFO {
  uint32_t dwFlags;               // bytes of a NAL length prefix in the samples; 0: start codes
  uint32_t cbSequenceHeader;      // bytes at dwSequenceHeader
  const uint8_t* dwSequenceHeader;  // parameter sets, each behind a 2-byte big-endian length
};
