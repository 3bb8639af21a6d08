// The packet record stays byte for byte what the encoder wrote when its
// block coder was checked against both peer decoders: any rework of the
// coder for speed must keep every byte. The hashes (64-bit FNV-1a of the
// whole record, count included) were taken from that encoder; the frames
// cover the block coder's paths: all-smooth, noise in every bit-plane,
// a flat field with isolated spikes (whole columns skipped, run mode),
// full-range checkers, blocks cut at odd widths and heights, and 1x1.
#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "jpeg2000/Jpeg2kTestSupport.h"
#include "support/TestSupport.h"

using namespace j2ktest;

namespace {

uint64_t Fnv1a(const std::vector<uint8_t>& bytes) {
  uint64_t h = 0xCBF29CE484222325ull;
  for (uint8_t b : bytes) h = (h ^ b) * 0x100000001B3ull;
  return h;
}

enum Pattern { kGradient, kNoise, kSpikes, kChecker };

Frame PatternFrame(uint32_t format, uint32_t w, uint32_t h, Pattern pattern) {
  Frame f = MakeFrame(format, w, h, 7);
  std::mt19937 rng(w * 31 + h);
  for (auto& plane : f.planes)
    for (size_t i = 0; i < plane.size(); ++i) {
      const size_t pixel = format == 200 ? i / 3 : i;
      const uint32_t x = uint32_t(pixel % w), y = uint32_t(pixel / w);
      if (pattern == kNoise) plane[i] = uint8_t(rng());
      if (pattern == kSpikes) plane[i] = (rng() % 997 == 0) ? uint8_t(rng()) : 128;
      if (pattern == kChecker) plane[i] = uint8_t(((x + y) & 1) * 255);
    }
  return f;
}

}  // namespace

TEST(Jpeg2kRecordBytes, RecordsKeepTheirBytes) {
  struct Row {
    uint32_t format, w, h;
    Pattern pattern;
    uint64_t hash;
  };
  const Row rows[] = {
      {100, 1, 1, kGradient, 0x05655624142d0888},     {100, 67, 45, kGradient, 0x41d6b08ad6a1016e},
      {100, 130, 70, kNoise, 0x780a051fbefd2055},      {100, 256, 192, kSpikes, 0x0346d6274b90a959},
      {100, 64, 64, kChecker, 0x6b78e610cba151bd},     {200, 301, 257, kGradient, 0xb7817894e6d667d6},
      {200, 97, 131, kNoise, 0x379de0f97dbd2114},      {300, 96, 200, kSpikes, 0x6e219b6724bfa825},
      {100, 640, 480, kGradient, 0x284e6b5881558daf},
  };
  for (auto variant : testsupport::RunnableVariants()) {
    testsupport::ScopedVariant scoped(variant);
    for (const Row& r : rows) {
      Frame f = PatternFrame(r.format, r.w, r.h, r.pattern);
      const uint64_t hash = Fnv1a(Record(f));
      EXPECT_EQ(hash, r.hash) << std::hex << "0x" << hash << std::dec << ": format " << r.format << " " << r.w << "x"
                              << r.h << " pattern " << int(r.pattern) << " " << kestrelink::VariantName(variant);
    }
  }
}
