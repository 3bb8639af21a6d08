// CIppAverageImage at 1920 x 1080: full averages of 4 and 16 mono16 and
// BGR24 frames next to OpenCV (each frame added into a 32-bit image with
// cv::add, then convertTo with the scale 1/n, which rounds where we
// truncate), and rolling averages at spans 4 and 64, which must cost the
// same, next to the floor their traffic sets: two frames and the sums read,
// the sums and one frame written, moved by memcpy (implementation "floor").
#include <kestrelink/CIppAverageImage.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "harness/PeerTeams.h"

#ifdef KESTRELINK_HAVE_OPENCV
#include <opencv2/core.hpp>
#endif

namespace kestrelink::bench {
namespace {

constexpr int kMaxFrames = 16;

// One layout's frames: 16 sources, sums, the destination.
struct Span {
  size_t samples, sampleBytes;
  std::vector<FrameBuffer> frames;
  std::vector<void*> pointers;
  FrameBuffer sums, dst, floorSrc, floorDst;
  bool flip = false;  // the rolling calls swap entering and leaving frames, keeping the sums bounded

  Span(size_t n, size_t bytes) : samples(n), sampleBytes(bytes), sums(4 * n), dst(bytes * n) {
    for (int f = 0; f < kMaxFrames; ++f) {
      frames.emplace_back(bytes * n);
      if (bytes == 2)
        FillSamples16(frames.back().words(), n, 12, 0x5A5ull + f);
      else
        FillBytes(frames.back().data(), n, 0x5A5ull + f);
      pointers.push_back(frames.back().data());
    }
    FillBytes(sums.data(), sums.size(), 0x77ull);
    std::memset(sums.data(), 0, sums.size());
    FillBytes(dst.data(), dst.size(), 0x99ull);
    const size_t floorBytes = 2 * bytes * n + 4 * n;  // read 2F + S, then write as much: 4F + 2S moved
    floorSrc = FrameBuffer(floorBytes);
    floorDst = FrameBuffer(floorBytes);
    FillBytes(floorSrc.data(), floorBytes, 0x31ull);
  }
  int* Sums() { return reinterpret_cast<int*>(sums.data()); }
};

struct AverageFrames : FrameSize {
  Span mono16{pixels, 2};
  Span bgr24{3 * pixels, 1};
  CIppAverageImage avg;
};

AverageFrames& Frames() { return Shared<AverageFrames>(); }

using Pick = Span& (*)(AverageFrames&);
Span& Mono16(AverageFrames& f) { return f.mono16; }
Span& Bgr24(AverageFrames& f) { return f.bgr24; }

void Full(const std::string& name, Pick pick, int n) {
  const Span& s = pick(Frames());
  Register(
      Case{name, kOurs, n * s.sampleBytes * s.samples, (4 + s.sampleBytes) * s.samples, LibraryTeam(), [pick, n](int) {
             AverageFrames& f = Frames();
             Span& s = pick(f);
             const int w = int(f.w), h = int(f.h);
             return s.sampleBytes == 2 ? f.avg.Mono16Average(n, w, h, 12, s.pointers.data(), s.Sums(), s.dst.data())
                                       : f.avg.BGR24Average(n, w, h, s.pointers.data(), s.Sums(), s.dst.data());
           }});
}

void Rolling(const std::string& name, Pick pick, int n) {
  const Span& s = pick(Frames());
  Register(Case{name, kOurs, (2 * s.sampleBytes + 4) * s.samples, (4 + s.sampleBytes) * s.samples, LibraryTeam(),
                [pick, n](int) {
                  AverageFrames& f = Frames();
                  Span& s = pick(f);
                  const int w = int(f.w), h = int(f.h);
                  void* in = s.pointers[s.flip ? 1 : 0];
                  void* out = s.pointers[s.flip ? 0 : 1];
                  s.flip = !s.flip;
                  return s.sampleBytes == 2 ? f.avg.RollingMono16Average(n, w, h, 12, in, out, s.Sums(), s.dst.data())
                                            : f.avg.RollingBGR24Average(n, w, h, in, out, s.Sums(), s.dst.data());
                }});
}

// memcpy of the rolling call's traffic, split in bands over the team.
void Floor(const std::string& name, Pick pick) {
  const Span& s = pick(Frames());
  const size_t bytes = s.floorSrc.size();
  Register(Case{name, "floor", bytes, bytes, SplitRowsTeam(), [pick, bytes](int threads) {
                  Span& s = pick(Frames());
                  const uint32_t rows = Frames().h;
                  const size_t rowBytes = bytes / rows;
                  SplitRows(rows, threads, [&](uint32_t first, uint32_t count) {
                    std::memcpy(s.floorDst.data() + first * rowBytes, s.floorSrc.data() + first * rowBytes,
                                count * rowBytes);
                  });
                  return true;
                }});
}

#ifdef KESTRELINK_HAVE_OPENCV
void OpenCvFull(const std::string& name, Pick pick, int n) {
  AverageFrames& f = Frames();
  Span& s = pick(f);
  struct Mats {
    std::vector<cv::Mat> frames;
    cv::Mat acc, dst;
  };
  auto mats = std::make_shared<Mats>();
  const int type = s.sampleBytes == 2 ? CV_16UC1 : CV_8UC3;
  for (int k = 0; k < n; ++k) mats->frames.emplace_back(int(f.h), int(f.w), type, s.frames[size_t(k)].data());
  mats->dst = cv::Mat(int(f.h), int(f.w), type, s.dst.data());
  Register(Case{name, "opencv", n * s.sampleBytes * s.samples, (4 + s.sampleBytes) * s.samples, OpenCvTeam(),
                [mats, n](int) {
                  cv::add(mats->frames[0], mats->frames[1], mats->acc, cv::noArray(), CV_32S);
                  for (int k = 2; k < n; ++k)
                    cv::add(mats->acc, mats->frames[size_t(k)], mats->acc, cv::noArray(), CV_32S);
                  mats->acc.convertTo(mats->dst, mats->dst.type(), 1.0 / n);
                  return true;
                }});
}
#endif

}  // namespace

void RegisterCases() {
  for (uint32_t bytesPerPixel : {2u, 3u}) RegisterMemcpy(bytesPerPixel);
  const struct {
    const char* name;
    Pick pick;
  } layouts[] = {{"Mono16", Mono16}, {"BGR24", Bgr24}};
  for (const auto& l : layouts) {
    for (int n : {4, 16}) {
      const std::string name = std::string(l.name) + " full average of " + std::to_string(n);
      Full(name, l.pick, n);
#ifdef KESTRELINK_HAVE_OPENCV
      OpenCvFull(name, l.pick, n);
#endif
    }
    for (int n : {4, 64}) {
      const std::string name = std::string(l.name) + " rolling average, span " + std::to_string(n);
      Rolling(name, l.pick, n);
      Floor(name, l.pick);
    }
  }
}

}  // namespace kestrelink::bench
