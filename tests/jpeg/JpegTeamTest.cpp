// The codec's team against its single thread. Encoding: with a team, the
// MCU rows are coded in one run per thread and the runs joined, which must
// give the single-threaded stream byte for byte, whatever the run
// boundaries cut (DC predictions, stuffed 0xFF bytes, bits short of a
// byte). Decoding: one thread decodes ahead of another that transforms and
// converts, which must give the single thread's pixels, damaged streams
// included.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "JpegTestSupport.h"
#include "support/TestSupport.h"

namespace {

using namespace jpegtest;

// Uniform noise: coded at high quality it gives a stuffed 0xFF byte every
// few hundred bytes, on both sides of every run boundary.
jpegpeer::Image Noise(int width, int height, int channels) {
  jpegpeer::Image im{width, height, channels, std::vector<uint8_t>(size_t(width) * height * channels)};
  std::mt19937 rng(7);
  for (uint8_t& p : im.pixels) p = uint8_t(rng());
  return im;
}

size_t StuffedBytes(const std::vector<uint8_t>& s) {
  size_t n = 0;
  for (size_t i = 0; i + 1 < s.size(); ++i) n += s[i] == 0xFF && s[i + 1] == 0;
  return n;
}

TEST(JpegTeam, EncodeEqualsTheSingleThreadStream) {
  struct Case {
    const char* name;
    jpegpeer::Image image;
    OurOptions options;
  };
  OurOptions q85_411, q100_444, q100_422, gray, optimised, restarts, extended;
  q85_411.sampling = JS_411;
  q100_444.sampling = JS_444;
  q100_444.quality = 100;
  q100_422.sampling = JS_422;
  q100_422.quality = 100;
  gray.quality = 95;
  optimised.optimise = true;
  restarts.restartInterval = 7;
  extended.mode = JPEG_EXTENDED;
  const Case cases[] = {
      {"scene 2x2", jpegpeer::Scene(250, 190, 3), q85_411},
      {"noise 4:4:4 q100", Noise(96, 64, 3), q100_444},
      {"noise 4:2:2 q100", Noise(41, 33, 3), q100_422},
      {"noise grey", Noise(77, 50, 1), gray},
      {"two MCU rows", jpegpeer::Scene(33, 17, 3), q85_411},
      {"optimised tables", Noise(120, 70, 3), optimised},
      {"restart interval", Noise(120, 70, 3), restarts},
      {"extended", jpegpeer::Scene(64, 48, 1), extended},
  };
  for (const Case& c : cases) {
    std::vector<uint8_t> single;
    {
      testsupport::ScopedTeam one(1);
      single = EncodeOurs(c.image, c.options);
    }
    ASSERT_FALSE(single.empty()) << c.name;
    if (std::string(c.name).rfind("noise", 0) == 0) {
      EXPECT_GT(StuffedBytes(single), 4u) << c.name;
    }
    for (int team : {2, 3}) {
      testsupport::ScopedTeam scoped(team);
      EXPECT_EQ(EncodeOurs(c.image, c.options), single) << c.name << " team " << team;
    }
  }
}

TEST(JpegTeam, DecodeEqualsTheSingleThreadPixels) {
  OurOptions q85_411, q90_444, q75_422, restarts;
  q90_444.sampling = JS_444;
  q90_444.quality = 90;
  q75_422.sampling = JS_422;
  q75_422.quality = 75;
  restarts.restartInterval = 3;
  const std::vector<uint8_t> streams[] = {
      EncodeOurs(jpegpeer::Scene(250, 190, 3), q85_411), EncodeOurs(jpegpeer::Scene(97, 131, 3), q90_444),
      EncodeOurs(jpegpeer::Scene(61, 45, 3), q75_422),   EncodeOurs(jpegpeer::Scene(130, 77, 1), q85_411),
      EncodeOurs(Noise(120, 70, 3), restarts)};
  for (size_t i = 0; i < std::size(streams); ++i) {
    // As written, then cut short inside the scan (the rows past the cut decode as far as they go).
    for (size_t keep : {streams[i].size(), streams[i].size() * 2 / 3}) {
      const std::vector<uint8_t> stream(streams[i].begin(), streams[i].begin() + long(keep));
      jpegpeer::Image single, team;
      JERRCODE singleStatus, teamStatus;
      {
        testsupport::ScopedTeam one(1);
        singleStatus = DecodeOurs(stream, single);
      }
      {
        testsupport::ScopedTeam two(2);
        teamStatus = DecodeOurs(stream, team);
      }
      EXPECT_EQ(teamStatus, singleStatus) << "stream " << i << " bytes " << keep;
      if (keep == streams[i].size()) {
        EXPECT_EQ(singleStatus, JPEG_OK) << "stream " << i;
        EXPECT_EQ(team.pixels, single.pixels) << "stream " << i;
      }
    }
  }
}

}  // namespace
