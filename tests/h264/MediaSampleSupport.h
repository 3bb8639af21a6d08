#pragma once
// A media sample over a vector, for the frame constructor tests and fuzz target.
#include <algorithm>
#include <cstdint>
#include <vector>

#include "h264/MediaSample.h"

namespace h264test {

class MemorySample : public IMediaSample {
 public:
  // `room` bytes of buffer in all (0xEE behind the data), at least the data's.
  explicit MemorySample(const std::vector<uint8_t>& bytes, int32_t room = -1)
      : buffer_(std::max(bytes.size(), room > 0 ? size_t(room) : size_t(0)), 0xEE) {
    std::copy(bytes.begin(), bytes.end(), buffer_.begin());
    actual_ = int32_t(bytes.size());
  }
  uint8_t* GetPointer() override { return buffer_.empty() ? nullptr : buffer_.data(); }
  int32_t GetSize() override { return int32_t(buffer_.size()); }
  bool GetTime(int64_t& start, int64_t& stop) override {
    start = start_;
    stop = stop_;
    return hasTime_;
  }
  int32_t GetActualDataLength() override { return actual_; }
  bool SetActualDataLength(int32_t length) override {
    actual_ = length;
    return true;
  }

  void SetTime(int64_t start, int64_t stop) {
    start_ = start;
    stop_ = stop;
    hasTime_ = true;
  }
  std::vector<uint8_t> Data() const { return std::vector<uint8_t>(buffer_.begin(), buffer_.begin() + actual_); }

  std::vector<uint8_t> buffer_;
  int32_t actual_ = 0;
  int64_t start_ = 0, stop_ = 0;
  bool hasTime_ = false;
};

}  // namespace h264test
