#include "harness/CacheEviction.h"

#include <benchmark/benchmark.h>
#include <omp.h>

#include <cstdint>

#include "harness/BenchSettings.h"
#include "harness/FrameBuffer.h"

namespace kestrelink::bench {
namespace {

FrameBuffer& EvictionBuffer() {
  static FrameBuffer buffer = [] {
    FrameBuffer b(BenchSettings().evictBytes);
    FillBytes(b.data(), b.size(), 0xE71C7ull);
    return b;
  }();
  return buffer;
}

}  // namespace

void EvictCaches(int threads) {
  FrameBuffer& buffer = EvictionBuffer();
  const auto* words = reinterpret_cast<const uint64_t*>(buffer.data());
  const int64_t count = int64_t(buffer.size() / sizeof(uint64_t));
  uint64_t sum = 0;
#pragma omp parallel for schedule(static) reduction(+ : sum) num_threads(threads < 1 ? 1 : threads)
  for (int64_t i = 0; i < count; ++i) sum += words[i];
  benchmark::DoNotOptimize(sum);
}

}  // namespace kestrelink::bench
