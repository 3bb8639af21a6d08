#pragma once
// Run settings shared by every benchmark program, read once from the
// environment:
//   KESTRELINK_BENCH_QUICK=1        smoke run: 3 repetitions of a small frame
//   KESTRELINK_BENCH_SIZE=WxH       another frame size (default 1920x1080)
//   KESTRELINK_BENCH_VARIANT=name   force a kernel variant (portable, sse2,
//                                   ssse3, avx2, avx512); default: the machine's
//   KESTRELINK_BENCH_SECONDS=s      timed seconds of each hot repetition (default 0.1),
//                                   to shorten a long matrix without fewer repetitions
#include <cstddef>
#include <cstdint>

namespace kestrelink::bench {

struct Settings {
  bool quick = false;
  uint32_t width = 1920;
  uint32_t height = 1080;
  int repetitions = 15;           // the median of these is reported
  int warmUpFrames = 2;           // untimed frames before each repetition
  double hotMinSeconds = 0.1;     // timed frames per hot repetition, in seconds
  int coldFrames = 4;             // frames per cold repetition, each after an eviction
  size_t evictBytes = size_t(128) << 20;  // read before each cold frame
};

const Settings& BenchSettings();

// The run's frame size, for a program's frame set to build on.
struct FrameSize {
  uint32_t w = BenchSettings().width;
  uint32_t h = BenchSettings().height;
  size_t pixels = size_t(w) * h;
};

// Forces the kernel variant named by KESTRELINK_BENCH_VARIANT, if any.
// Returns false when the name is not a variant.
bool ApplyVariantSetting();

}  // namespace kestrelink::bench
