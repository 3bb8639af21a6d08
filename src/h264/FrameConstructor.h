#pragma once
// Frame constructors: one media sample in, one bitstream for Media SDK
// decoding out. The bitstream's Data belongs to the constructor's allocations
// (malloc); the base frees the old Data before it builds a new one. Saved
// headers go in front of the next frame only.
#include <cstdint>
#include <memory>

#include <mfx/mfxstructures.h>

#include "h264/MediaSample.h"

class CFrameConstructor {
 public:
  CFrameConstructor();
  virtual ~CFrameConstructor() = default;
  virtual mfxStatus ConstructFrame(IMediaSample* sample, mfxBitstream* bitstream);
  virtual void Reset();
  // Keeps the bitstream's data to put in front of the next frame, when it fits.
  void SaveHeaders(mfxBitstream* bitstream);

 protected:
  // The sample's data length, never more than its buffer and never negative.
  static uint32_t SampleBytes(IMediaSample* sample);
  // Points the bitstream at a new zeroed Data of `bytes` bytes, all of it
  // counted as data; false when that can't be had.
  static bool NewData(mfxBitstream* bitstream, uint32_t bytes);

  std::unique_ptr<uint8_t[]> m_headers;
  uint32_t m_headerSize = 0;
  uint32_t m_headerCapacity = 100;
};

// 100-nanosecond units to 90 kHz ticks; -10000000 is "no time", all ones.
mfxU64 ConvertSampleTime(int64_t time);

class CVC1FrameConstructor : public CFrameConstructor {
 public:
  explicit CVC1FrameConstructor(mfxVideoParam* params) : m_params(params) {}
  mfxStatus ConstructFrame(IMediaSample* sample, mfxBitstream* bitstream) override;
  // Simple and main profiles: wraps the sample in place as a sequence header
  // record (00 00 00 C5, length, data, height, width).
  mfxStatus WrapSequenceHeader(IMediaSample* sample);

 private:
  bool Advanced() const;
  mfxVideoParam* m_params;
};

class CAVCFrameConstructor : public CFrameConstructor {
 public:
  CAVCFrameConstructor();
  mfxStatus ConstructFrame(IMediaSample* sample, mfxBitstream* bitstream) override;
  void Reset() override;
  // Takes the parameter sets of the description and the samples' prefix size.
  mfxStatus ReadSequenceHeader(const MPEG2VIDEOINFO* info, mfxBitstream* bitstream);

 private:
  bool m_headerDone = false;
  uint32_t m_lengthSize = 0;
  uint32_t m_sequenceLengthSize = 2;
  std::unique_ptr<uint8_t[]> m_sequenceHeaders;
  uint32_t m_sequenceHeaderSize = 0;
  std::unique_ptr<uint8_t[]> m_startCode;
  uint32_t m_startCodeSize = 4;
};
