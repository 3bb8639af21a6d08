#include "harness/BenchHarness.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <deque>
#include <map>
#include <memory>

#include "harness/BenchSettings.h"
#include "harness/CacheEviction.h"
#include "harness/FrameBuffer.h"
#include "platform/OpenMP.h"

namespace kestrelink::bench {
namespace {

struct Registry {
  std::vector<Case> cases;
  std::map<std::string, RunKey> runs;  // benchmark name -> case and mode
  std::deque<FrameBuffer> memcpyBuffers;
};

Registry& TheRegistry() {
  static Registry registry;
  return registry;
}

void Fail(benchmark::State& state) { state.SkipWithError("the call reported a failure"); }

// Hot: frames back to back on the same buffers, timed by the library.
void RunHot(benchmark::State& state, const Case& c, int threads) {
  for (auto _ : state) {
    if (!c.run(threads)) return Fail(state);
    benchmark::ClobberMemory();
  }
}

// Cold: each frame after a sweep of the caches; only the frame is timed.
void RunCold(benchmark::State& state, const Case& c, int threads) {
  using Clock = std::chrono::steady_clock;
  for (auto _ : state) {
    EvictCaches(threads);
    const auto start = Clock::now();
    const bool ok = c.run(threads);
    benchmark::ClobberMemory();
    const auto stop = Clock::now();
    if (!ok) return Fail(state);
    state.SetIterationTime(std::chrono::duration<double>(stop - start).count());
  }
}

void RunCase(benchmark::State& state, size_t caseIndex, Mode mode) {
  const Case& c = TheRegistry().cases[caseIndex];
  if (c.team.set) c.team.set(mode.threads);
  // Warm-up: first-call work (tables, thread pools) stays out of the timing.
  for (int i = 0; i < BenchSettings().warmUpFrames; ++i) {
    if (!c.run(mode.threads)) return Fail(state);
  }
  if (mode.cold) {
    RunCold(state, c, mode.threads);
  } else {
    RunHot(state, c, mode.threads);
  }
  state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(c.bytesWritten));
}

}  // namespace

Team LibraryTeam() {
  return {"kestrelink::platform::SetTeamSize(n)", [](int threads) { platform::SetTeamSize(threads); }};
}

Team SplitRowsTeam() { return {"frame split into n bands of rows, one OpenMP thread each", {}}; }

std::string ModeName(const Mode& mode) {
  return std::string(mode.cold ? "cold " : "hot  ") + std::to_string(mode.threads) + " thr";
}

void Register(Case c) {
  Registry& registry = TheRegistry();
  const Settings& settings = BenchSettings();
  const size_t index = registry.cases.size();
  registry.cases.push_back(std::move(c));
  const Case& added = registry.cases.back();
  for (int m = 0; m < kModeCount; ++m) {
    const Mode mode = kModes[m];
    const std::string name = added.operation + "/" + added.implementation + "/" +
                             (mode.cold ? "cold" : "hot") + "/team:" + std::to_string(mode.threads);
    registry.runs[name] = RunKey{index, m};
    auto* b = benchmark::RegisterBenchmark(name.c_str(), [index, mode](benchmark::State& state) {
      RunCase(state, index, mode);
    });
    b->Repetitions(settings.repetitions)->ReportAggregatesOnly(true)->Unit(benchmark::kMicrosecond);
    if (mode.cold) {
      // The sweep is far longer than a frame: a fixed count keeps it bounded.
      b->UseManualTime()->Iterations(settings.coldFrames);
    } else {
      b->UseRealTime()->MinTime(settings.hotMinSeconds);
    }
  }
}

void RegisterMemcpy(uint32_t bytesPerPixel) {
  const Settings& s = BenchSettings();
  RegisterMemcpyFrame(s.width, s.height, bytesPerPixel);
}

void RegisterMemcpyFrame(uint32_t width, uint32_t height, uint32_t bytesPerPixel) {
  const Settings& s = BenchSettings();
  Registry& registry = TheRegistry();
  const size_t rowBytes = size_t(width) * bytesPerPixel;
  const size_t bytes = rowBytes * height;
  FrameBuffer& src = registry.memcpyBuffers.emplace_back(bytes);
  FrameBuffer& dst = registry.memcpyBuffers.emplace_back(bytes);
  FillBytes(src.data(), bytes, 0x3E3C9ull + bytesPerPixel);
  Case c;
  c.operation = "memcpy:" + std::to_string(bytesPerPixel) + "Bpp";
  if (width != s.width || height != s.height)
    c.operation = "memcpy:" + std::to_string(width) + "x" + std::to_string(height) + ":" + std::to_string(bytesPerPixel) + "Bpp";
  c.implementation = kMemcpy;
  c.bytesRead = bytes;
  c.bytesWritten = bytes;
  c.team = SplitRowsTeam();
  c.run = [&src, &dst, rowBytes, rows = height](int threads) {
    SplitRows(rows, threads, [&](uint32_t first, uint32_t count) {
      std::memcpy(dst.data() + first * rowBytes, src.data() + first * rowBytes, count * rowBytes);
    });
    return true;
  };
  Register(std::move(c));
}

bool FindRun(const std::string& benchmarkName, RunKey& key) {
  const auto& runs = TheRegistry().runs;
  const auto it = runs.find(benchmarkName);
  if (it == runs.end()) return false;
  key = it->second;
  return true;
}

const std::vector<Case>& RegisteredCases() { return TheRegistry().cases; }

}  // namespace kestrelink::bench
