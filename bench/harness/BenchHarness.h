#pragma once
// The shared benchmark harness. A program describes each implementation of
// an operation as a Case; Register turns it into four benchmarks, one per
// mode: {hot, cold} x {1 thread, team of 2}.
//
//   hot   the same source and destination buffers every frame, so the frame
//         sits in the caches as far as it fits;
//   cold  before each timed frame the caches are swept (EvictCaches), so the
//         frame comes from memory, as a freshly captured one would.
//
// Every benchmark runs BenchSettings().repetitions repetitions after an
// untimed warm-up, and the median frame time is what the summary reports.
// Cases with the same operation name are compared row by row; each case is
// also compared with the memcpy of its output size (RegisterMemcpy), the
// physical limit of a pass that writes that many bytes.
#include <omp.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kestrelink::bench {

// How an implementation spreads one frame over a team of threads.
struct Team {
  std::string how;                    // printed in the summary's legend
  std::function<void(int threads)> set;  // called before each repetition; may be empty
};

// The library's own: the process-wide team of kestrelink::platform.
Team LibraryTeam();
// Single-threaded code: the case splits its frame with SplitRows, one band
// of rows per thread.
Team SplitRowsTeam();

struct Case {
  std::string operation;       // what is computed; rows with the same name are compared
  std::string implementation;  // "ours", a peer's name, or "memcpy"
  size_t bytesRead = 0;        // per frame
  size_t bytesWritten = 0;     // per frame
  Team team;
  // Converts one frame with `threads` threads; false reports a failure.
  std::function<bool(int threads)> run;
};

inline constexpr const char* kOurs = "ours";
inline constexpr const char* kMemcpy = "memcpy";

// Registers the four benchmarks of a case. Call from RegisterCases().
void Register(Case c);

// Registers memcpy of a frame of `bytesPerPixel` bytes per pixel, as
// operation "memcpy:<n>Bpp", on buffers of its own.
void RegisterMemcpy(uint32_t bytesPerPixel);
// The same for a frame of another size (a resize's output), as operation
// "memcpy:<w>x<h>:<n>Bpp".
void RegisterMemcpyFrame(uint32_t width, uint32_t height, uint32_t bytesPerPixel);

// Defined by each benchmark program: registers its cases. Called by main
// once the command line and the settings have been read.
void RegisterCases();

struct Mode {
  bool cold;
  int threads;
};
inline constexpr Mode kModes[] = {{false, 1}, {false, 2}, {true, 1}, {true, 2}};
inline constexpr int kModeCount = int(sizeof(kModes) / sizeof(kModes[0]));
std::string ModeName(const Mode& mode);  // "hot  1 thr", "cold 2 thr"

// What the summary needs to know about a benchmark it was given.
struct RunKey {
  size_t caseIndex;
  int modeIndex;
};
bool FindRun(const std::string& benchmarkName, RunKey& key);
const std::vector<Case>& RegisteredCases();

// A program's set of frames and converters, made on first use (after the
// settings are read) and shared by all its cases.
template <class FrameSet>
FrameSet& Shared() {
  static FrameSet frames;
  return frames;
}

// Registers one of our calls on a program's frame set (which has `pixels`):
// call(frames) converts one frame. Sizes are bytes per pixel over `per`
// (10 for tenths of a byte).
template <class FrameSet, class Call>
void RegisterOurs(const char* operation, size_t readPerPixel, size_t writtenPerPixel, Call call, size_t per = 1) {
  const size_t pixels = Shared<FrameSet>().pixels;
  Register(Case{operation, kOurs, readPerPixel * pixels / per, writtenPerPixel * pixels / per, LibraryTeam(),
                [call](int) { return call(Shared<FrameSet>()); }});
}

// Calls body(firstRow, rowCount) for `threads` contiguous bands that cover
// rows 0 .. rows-1, one per OpenMP thread; in the calling thread for one.
template <class Body>
void SplitRows(uint32_t rows, int threads, Body&& body) {
  if (threads <= 1) {
    body(uint32_t(0), rows);
    return;
  }
#pragma omp parallel num_threads(threads)
  {
    const uint64_t team = uint64_t(omp_get_num_threads()), id = uint64_t(omp_get_thread_num());
    const uint32_t begin = uint32_t(rows * id / team), end = uint32_t(rows * (id + 1) / team);
    if (end > begin) body(begin, end - begin);
  }
}

}  // namespace kestrelink::bench
