// The live-stream path: Annex B bytes in pieces of any size, images as they complete.
#include <kestrelink/CH264Conversion.h>

#include <gtest/gtest.h>
#include <random>

#include "h264/H264LiveFeed.h"
#include "h264/H264TestSupport.h"
#include "support/TestSupport.h"

namespace {

using h264test::Planes;

constexpr uint32_t kW = 176, kH = 144;
constexpr size_t kPitch = kW * 3;  // 528: already a multiple of 4

struct Sequence {
  std::vector<std::vector<uint8_t>> payloads;  // one access unit each
  std::vector<std::vector<uint8_t>> images;    // what DecodeImage makes of them
};

const Sequence& TestSequence() {
  static const Sequence sequence = [] {
    Sequence s;
    CH264Conversion codec;
    codec.Initialize(true, kW, kH, H264_SOURCE_YUV_PLANAR, 12, 0, 8, 0);
    codec.Initialize(false, kW, kH, H264_SOURCE_YUV_PLANAR, 0, 0, 8, 0);
    for (uint32_t t = 0; t < 30; ++t) {
      Planes frame = h264test::SyntheticFrame(kW, kH, t);
      std::vector<uint8_t> record = h264test::RecordBuffer(kW, kH);
      codec.EncodeImage(record.data(), frame.y.data(), frame.u.data(), frame.v.data());
      s.payloads.emplace_back(record.begin() + 8, record.begin() + h264test::RecordSizeOf(record));
      s.images.emplace_back(kPitch * kH);
      EXPECT_TRUE(codec.DecodeImage(t + 1, record.data(), s.images.back().data()));
    }
    return s;
  }();
  return sequence;
}

// The caller's loop with images of the sequence's size.
struct LiveFeed : h264test::LiveFeed {
  LiveFeed() : h264test::LiveFeed(kPitch * kH) {}
};

std::vector<uint8_t> Stream(size_t first, size_t last) {
  std::vector<uint8_t> bytes;
  for (size_t i = first; i < last; ++i)
    bytes.insert(bytes.end(), TestSequence().payloads[i].begin(), TestSequence().payloads[i].end());
  const uint8_t delimiter[] = {0, 0, 0, 1, 9, 0x10};  // an access unit delimiter ends the last picture
  bytes.insert(bytes.end(), std::begin(delimiter), std::end(delimiter));
  return bytes;
}

TEST(H264LiveStream, RandomPiecesGiveEveryPictureAsTheRecordPathDoes) {
  const std::vector<uint8_t> stream = Stream(0, 30);
  for (uint32_t seed : {1u, 2u, 3u}) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::mt19937 rng(seed);
    LiveFeed feed;
    for (size_t at = 0; at < stream.size();) {
      const size_t piece = std::min<size_t>(1 + rng() % (seed == 3 ? 12 : 900), stream.size() - at);
      feed.Feed(stream.data() + at, piece);
      at += piece;
    }
    ASSERT_EQ(feed.images.size(), 30u);
    for (size_t i = 0; i < 30; ++i) EXPECT_EQ(feed.images[i], TestSequence().images[i]) << "picture " << i + 1;
  }
}

TEST(H264LiveStream, ParameterSetsAloneAreTakenWholeAndTheSliceDecodesNext) {
  const std::vector<uint8_t>& key = TestSequence().payloads[0];
  const auto units = h264test::NalUnits(key.data(), key.size());
  ASSERT_EQ(units.size(), 3u);                     // SPS, PPS, slice
  const size_t headers = units[1].first + units[1].second;  // through the picture parameter set
  LiveFeed feed;
  int consumed = -5;
  std::vector<uint8_t> headerBytes(key.begin(), key.begin() + headers);
  EXPECT_EQ(feed.codec.DecodeImageFromRTSP(int(headers), headerBytes.data(), feed.image.data(), int(feed.image.size()),
                                           consumed), 0);
  EXPECT_EQ(consumed, int(headers));
  // The rest of the key frame and the next one: the key picture comes in this call.
  std::vector<uint8_t> rest(key.begin() + headers, key.end());
  rest.insert(rest.end(), TestSequence().payloads[1].begin(), TestSequence().payloads[1].end());
  EXPECT_EQ(feed.codec.DecodeImageFromRTSP(int(rest.size()), rest.data(), feed.image.data(), int(feed.image.size()),
                                           consumed), 1);
  EXPECT_EQ(feed.image, TestSequence().images[0]);
  EXPECT_LT(consumed, int(rest.size()));  // the second picture waits for what follows it
}

TEST(H264LiveStream, AStreamOpenedMidGopRecoversAtTheNextSequenceParameterSet) {
  const std::vector<uint8_t> stream = Stream(4, 30);  // frames 5 to 30; key frames at 13 and 25
  LiveFeed feed;
  for (size_t at = 0; at < stream.size(); at += 500) feed.Feed(stream.data() + at, std::min<size_t>(500, stream.size() - at));
  EXPECT_GT(feed.refusals, 0);
  ASSERT_EQ(feed.images.size(), 18u);
  for (size_t i = 0; i < feed.images.size(); ++i) EXPECT_EQ(feed.images[i], TestSequence().images[12 + i]) << i;
}

TEST(H264LiveStream, AnImageBufferTooSmallGivesNoImage) {
  const std::vector<uint8_t> stream = Stream(0, 2);
  CH264Conversion codec;
  ASSERT_TRUE(codec.InitWithRTSP());
  std::vector<uint8_t> small(kPitch * kH - 1);
  int consumed = 0;
  EXPECT_EQ(codec.DecodeImageFromRTSP(int(stream.size()), const_cast<uint8_t*>(stream.data()), small.data(),
                                      int(small.size()), consumed), 0);
  EXPECT_TRUE(codec.UnInitWithRTSP());
}

TEST(H264LiveStream, GarbageIsRefusedOrDroppedWithoutHarm) {
  for (uint32_t seed = 0; seed < 8; ++seed) {
    std::vector<uint8_t> junk = testsupport::RandomBytes(3000, seed);
    if (seed % 2) {  // start codes of every type scattered in
      for (size_t at = 0; at + 4 < junk.size(); at += 97) junk[at] = 0, junk[at + 1] = 0, junk[at + 2] = 1;
    }
    LiveFeed feed;
    for (size_t at = 0; at < junk.size(); at += 333) feed.Feed(junk.data() + at, std::min<size_t>(333, junk.size() - at));
    // A good stream after it still decodes.
    const std::vector<uint8_t> stream = Stream(0, 3);
    feed.Feed(stream.data(), stream.size());
    EXPECT_GE(feed.images.size(), 1u) << "seed " << seed;
  }
}

}  // namespace
