// Our files and packet records decode with the peer libraries to exactly
// the samples put in.
#include <unistd.h>

#include <random>
#include <string>

#include <gtest/gtest.h>

#include "jpeg2000/GrokPeer.h"
#include "jpeg2000/Jpeg2kTestSupport.h"
#include "jpeg2000/OpenJpegPeer.h"
#include "support/TestSupport.h"

using namespace j2ktest;

namespace {

std::vector<uint8_t> WriteFile(Frame& f) {
  CIppImageWrapper wrapper;
  wrapper.InitJPeg2KConverter(f.width, f.height, 0, 0, f.format);
  // One file a process: ctest runs the tests side by side.
  const std::string path = testing::TempDir() + "j2k_interop_" + std::to_string(getpid()) + ".jp2";
  EXPECT_TRUE(wrapper.WriteJpeg2KToFile(path.c_str(), f.Plane(0), f.Plane(1), f.Plane(2)));
  std::vector<uint8_t> file = ReadFile(path);
  std::remove(path.c_str());
  return file;
}

void ExpectSamples(const j2kpeer::Decoded& d, const Frame& f, const std::string& what) {
  ASSERT_TRUE(d.ok) << what;
  ASSERT_EQ(d.width, f.width) << what;
  ASSERT_EQ(d.height, f.height) << what;
  ASSERT_EQ(d.components.size(), f.expected.size()) << what;
  for (size_t c = 0; c < f.expected.size(); ++c)
    ASSERT_EQ(d.components[c], f.expected[c]) << what << " component " << c;
}

struct Size {
  uint32_t w, h;
};

TEST(Jpeg2kInterop, FilesDecodeExactlyForEveryLayoutAndSize) {
  const uint32_t formats[] = {100, 101, 300, 400, 500, 200};
  const Size sizes[] = {{1, 1},   {2, 2},   {1, 7},    {9, 1},    {3, 5},    {17, 13},
                        {33, 32}, {64, 64}, {65, 129}, {127, 31}, {200, 67}, {257, 255}};
  for (uint32_t format : formats)
    for (const Size& s : sizes) {
      Frame f = MakeFrame(format, s.w, s.h, s.w * 31 + s.h);
      const std::vector<uint8_t> file = WriteFile(f);
      const std::string what =
          "format " + std::to_string(format) + " " + std::to_string(s.w) + "x" + std::to_string(s.h);
      ASSERT_GT(file.size(), kCodestreamOffset) << what;
      ExpectSamples(j2kpeer::OpenJpegDecode(file.data() + kCodestreamOffset, file.size() - kCodestreamOffset, false), f,
                    what);
    }
}

// White noise fills the most bit-planes a band gets; extreme steps (0 and
// 255 in a checker) give the largest high-pass values.
TEST(Jpeg2kInterop, NoiseAndCheckerFramesDecodeExactly) {
  for (uint32_t format : {100u, 200u, 300u})
    for (int pattern = 0; pattern < 2; ++pattern) {
      Frame f = MakeFrame(format, 203, 141);
      std::mt19937 rng(format + pattern);
      for (int p = 0; p < 3; ++p)
        for (size_t i = 0; i < f.planes[p].size(); ++i)
          f.planes[p][i] = pattern ? uint8_t(((i + i / 203 + size_t(p)) & 1) * 255) : uint8_t(rng());
      // The components as the layout reads them.
      for (size_t i = 0; i < size_t(203) * 141; ++i) {
        if (format == 100) f.expected[0][i] = f.planes[2][i];
        if (format == 300)
          for (int c = 0; c < 3; ++c) f.expected[size_t(c)][i] = f.planes[2 - c][i];
        if (format == 200)
          for (int c = 0; c < 3; ++c) f.expected[size_t(c)][i] = f.planes[2][3 * i + size_t(2 - c)];
      }
      const std::vector<uint8_t> file = WriteFile(f);
      ExpectSamples(j2kpeer::OpenJpegDecode(file.data() + kCodestreamOffset, file.size() - kCodestreamOffset, false), f,
                    "format " + std::to_string(format) + (pattern ? " checker" : " noise"));
    }
}

TEST(Jpeg2kInterop, SquareFilesDecodeAsJp2) {
  for (uint32_t format : {100u, 200u}) {
    Frame f = MakeFrame(format, 96, 96);
    const std::vector<uint8_t> file = WriteFile(f);
    ExpectSamples(j2kpeer::OpenJpegDecode(file.data(), file.size(), true), f, "jp2 " + std::to_string(format));
  }
}

TEST(Jpeg2kInterop, LargeFramesDecodeExactly) {
  for (uint32_t format : {100u, 200u}) {
    Frame f = MakeFrame(format, 2560, 1600, 7);
    const std::vector<uint8_t> file = WriteFile(f);
    ExpectSamples(j2kpeer::OpenJpegDecode(file.data() + kCodestreamOffset, file.size() - kCodestreamOffset, false), f,
                  "2560x1600 " + std::to_string(format));
  }
}

}  // namespace

namespace {

TEST(Jpeg2kInterop, FilesDecodeExactlyWithTheSecondPeer) {
  const Size sizes[] = {{1, 1}, {3, 5}, {65, 129}, {300, 200}};
  for (uint32_t format : {100u, 300u, 400u, 500u, 200u})
    for (const Size& s : sizes) {
      Frame f = MakeFrame(format, s.w, s.h, s.w + s.h);
      const std::vector<uint8_t> file = WriteFile(f);
      const std::string what =
          "format " + std::to_string(format) + " " + std::to_string(s.w) + "x" + std::to_string(s.h);
      ExpectSamples(j2kpeer::GrokDecode(file.data() + kCodestreamOffset, file.size() - kCodestreamOffset), f, what);
    }
}

// The same coding settings give a size within 1% of the peer's.
TEST(Jpeg2kInterop, CompressedSizeIsThePeersWithinOnePercent) {
  for (uint32_t format : {100u, 300u}) {
    Frame f = MakeFrame(format, 640, 480, 3);
    const std::vector<uint8_t> file = WriteFile(f);
    std::vector<const uint8_t*> planes;
    std::vector<std::vector<uint8_t>> bytes;
    for (const auto& c : f.expected) bytes.emplace_back(c.begin(), c.end());
    for (const auto& b : bytes) planes.push_back(b.data());
    const std::vector<uint8_t> peer = j2kpeer::OpenJpegEncode(planes, f.width, f.height);
    ASSERT_FALSE(peer.empty());
    const double ours = double(file.size() - kCodestreamOffset);
    EXPECT_NEAR(ours / double(peer.size()), 1.0, 0.01) << format << ": ours " << ours << ", peer " << peer.size();
  }
}

}  // namespace
