#pragma once
// The caller's loop of the live path: join the leftover with each new piece,
// present it until no more is consumed, keep what was not consumed.
#include <kestrelink/CH264Conversion.h>

#include <cstdint>
#include <gtest/gtest.h>
#include <vector>

namespace h264test {

struct LiveFeed {
  CH264Conversion codec;
  std::vector<uint8_t> pending, image;
  std::vector<std::vector<uint8_t>> images;
  int refusals = 0;

  explicit LiveFeed(size_t imageBytes) : image(imageBytes) { EXPECT_TRUE(codec.InitWithRTSP()); }
  ~LiveFeed() { codec.UnInitWithRTSP(); }
  LiveFeed(const LiveFeed&) = delete;
  LiveFeed& operator=(const LiveFeed&) = delete;

  void Feed(const uint8_t* data, size_t size) {
    pending.insert(pending.end(), data, data + size);
    for (;;) {
      int consumed = 0;
      const int result = codec.DecodeImageFromRTSP(int(pending.size()), pending.data(), image.data(), int(image.size()), consumed);
      ASSERT_GE(consumed, 0);
      ASSERT_LE(size_t(consumed), pending.size());
      pending.erase(pending.begin(), pending.begin() + consumed);
      if (result == 1) images.push_back(image);
      if (result == -1) ++refusals;
      if (result != 1 && (consumed == 0 || pending.empty())) break;
    }
  }
};

}  // namespace h264test
