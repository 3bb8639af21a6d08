// Lossless JPEG 2000 encoding (CIppImageWrapper::EncodeJpeg2K) against the
// two peer libraries with the same coding settings: one tile, 5 levels of
// the 5-3 wavelet, 64x64 code-blocks, one layer, LRCP, the colour transform
// on BGR24. Ours writes the packet record to memory; the first peer writes
// a codestream to memory, the second to a file under /dev/shm (it has no
// memory sink that reports a size). Each peer gets the frame as planes,
// split before timing, and copies them into its own image inside the timed
// call, as ours loads its layout. Thread counts: ours through the library's
// team, the first peer through its codec's thread setting, the second
// through its process-wide pool. That pool is fixed when the library starts
// (a restart leaves it with no workers, and the codec's own thread setting
// does not limit it), so it starts once with two workers, and for the
// one-thread rows both are pinned to one CPU, where they take turns.
// Compressed sizes are printed after the summary.
#include <dirent.h>
#include <sched.h>
#include <sys/types.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include <kestrelink/CIppImageWrapper.h>

#include "harness/BenchHarness.h"
#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"
#include "jpeg2000/GrokPeer.h"
#include "jpeg2000/OpenJpegPeer.h"

namespace kestrelink::bench {
namespace {

// A camera-like scene: slow ramps, ripples of a few frequencies, a bright
// square and a little fixed-seed noise, channel by channel.
std::vector<uint8_t> CameraScene(uint32_t w, uint32_t h, int channels) {
  std::vector<uint8_t> noise(size_t(w) * h);
  FillBytes(noise.data(), noise.size(), 0x2000);
  std::vector<uint8_t> out(size_t(w) * h * channels);
  for (uint32_t y = 0; y < h; ++y)
    for (uint32_t x = 0; x < w; ++x)
      for (int c = 0; c < channels; ++c) {
        double v = 30 + 120.0 * (x + y) / (w + h) + 25 * std::cos(y * 0.02 * (c + 1)) + 15 * std::sin(x * 0.05);
        if (x > w / 3 && x < w / 2 && y > h / 4 && y < h / 2) v += 70 - 20 * c;
        v += (noise[size_t(y) * w + x] % 9) - 4;
        out[(size_t(y) * w + x) * channels + c] = uint8_t(v < 0 ? 0 : v > 255 ? 255 : v);
      }
  return out;
}

void Fail(const std::string& what) {
  std::fprintf(stderr, "bench_jpeg2000: %s failed\n", what.c_str());
  std::exit(1);
}

std::vector<pid_t> ThreadIds() {
  std::vector<pid_t> ids;
  if (DIR* d = opendir("/proc/self/task")) {
    while (const dirent* e = readdir(d))
      if (e->d_name[0] != '.') ids.push_back(pid_t(std::atoi(e->d_name)));
    closedir(d);
  }
  return ids;
}

// The second peer's pool of two workers, started by the first call (with a
// small encode, so that the workers exist) and pinned by each later one:
// to the CPUs the process may use for two threads, to the first of them
// for one.
void SetGrokThreads(int threads) {
  struct Pool {
    std::vector<pid_t> workers;
    cpu_set_t all;
  };
  static const Pool pool = [] {
    Pool p;
    const std::vector<pid_t> before = ThreadIds();
    j2kpeer::GrokStart(2);
    const std::vector<uint8_t> small(64 * 64, 128);
    j2kpeer::GrokEncodeToFile({small.data()}, 64, 64, "/dev/shm/kestrelink_bench_j2k_start.j2k");
    for (pid_t id : ThreadIds())
      if (std::find(before.begin(), before.end(), id) == before.end()) p.workers.push_back(id);
    if (p.workers.empty()) std::fprintf(stderr, "bench_jpeg2000: the second peer started no workers\n");
    CPU_ZERO(&p.all);
    sched_getaffinity(0, sizeof p.all, &p.all);
    return p;
  }();
  cpu_set_t set = pool.all;
  if (threads == 1) {
    int first = 0;
    while (first < CPU_SETSIZE && !CPU_ISSET(first, &pool.all)) ++first;
    CPU_ZERO(&set);
    CPU_SET(first, &set);
  }
  for (pid_t id : pool.workers)
    if (sched_setaffinity(id, sizeof set, &set) != 0) Fail("pinning the second peer's workers");
}

struct SizeRow {
  std::string setting, codec;
  size_t bytes;
};
std::vector<SizeRow>& SizeRows() {
  static std::vector<SizeRow> rows;
  return rows;
}

struct Frames {
  std::vector<uint8_t> frame;               // gray or BGR24
  std::vector<std::vector<uint8_t>> planes;  // components as the peers take them: R, G, B
  std::vector<const uint8_t*> planePointers;
  FrameBuffer out;
  uint32_t format;
};

void RegisterSetting(const char* name, int channels) {
  const FrameSize size;
  const uint32_t w = size.w, h = size.h;
  auto f = std::make_shared<Frames>();
  f->frame = CameraScene(w, h, channels);
  f->format = channels == 1 ? 100 : 200;
  f->planes.assign(size_t(channels), std::vector<uint8_t>(size_t(w) * h));
  for (size_t i = 0; i < size_t(w) * h; ++i)
    for (int c = 0; c < channels; ++c) f->planes[size_t(c)][i] = f->frame[i * channels + (channels - 1 - c)];
  for (const auto& p : f->planes) f->planePointers.push_back(p.data());
  const size_t raw = f->frame.size();
  f->out = FrameBuffer(2 * raw + (1 << 20));

  auto ours = [f, w, h]() {
    CIppImageWrapper wrapper;
    wrapper.InitJPeg2KConverter(w, h, 0, 0, f->format);
    if (!wrapper.EncodeJpeg2K(nullptr, nullptr, f->frame.data(), f->out.data())) return size_t(0);
    const uint8_t* o = f->out.data();
    return size_t(o[0] | o[1] << 8 | o[2] << 16 | uint32_t(o[3]) << 24);
  };
  const std::string shm = "/dev/shm/kestrelink_bench_j2k_" + std::string(name) + ".j2k";
  const size_t oursBytes = ours();
  const size_t openJpegBytes = j2kpeer::OpenJpegEncode(f->planePointers, w, h).size();
  SetGrokThreads(2);
  const size_t grokBytes = j2kpeer::GrokEncodeToFile(f->planePointers, w, h, shm);
  if (!oursBytes || !openJpegBytes || !grokBytes) Fail(std::string("first encode of ") + name);
  SizeRows().push_back({name, "ours (packets)", oursBytes});
  SizeRows().push_back({name, "OpenJPEG", openJpegBytes});
  SizeRows().push_back({name, "Grok", grokBytes});

  const std::string op = std::string("encode:") + name;
  Register(Case{op, kOurs, raw, oursBytes, LibraryTeam(), [ours](int) { return ours() > 0; }});
  Register(Case{op, "OpenJPEG", raw, openJpegBytes, Team{"the codec's own threads", {}}, [f, w, h](int threads) {
                  return !j2kpeer::OpenJpegEncode(f->planePointers, w, h, threads).empty();
                }});
  Register(Case{op, "Grok", raw, grokBytes,
                Team{"its process-wide pool of two workers, both pinned to one CPU for one thread",
                     [](int threads) { SetGrokThreads(threads); }},
                [f, w, h, shm](int) { return j2kpeer::GrokEncodeToFile(f->planePointers, w, h, shm) > 0; }});
}

void PrintSizes() {
  std::printf("\nLossless streams of one frame (ours: the packets alone, without the ~100 bytes of headers):\n");
  std::printf("  %-8s %-16s %12s %10s\n", "setting", "codec", "bytes", "bits/px");
  const FrameSize size;
  for (const SizeRow& r : SizeRows())
    std::printf("  %-8s %-16s %12zu %10.3f\n", r.setting.c_str(), r.codec.c_str(), r.bytes,
                8.0 * double(r.bytes) / (double(size.w) * size.h));
}

}  // namespace

void RegisterCases() {
  RegisterMemcpy(1);
  RegisterMemcpy(3);
  RegisterSetting("gray8", 1);
  RegisterSetting("bgr24", 3);
  std::atexit(PrintSizes);
}

}  // namespace kestrelink::bench
