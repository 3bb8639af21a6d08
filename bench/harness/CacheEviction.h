#pragma once
// Puts a frame out of the caches, as a freshly captured frame would be, by
// reading a buffer much larger than the last-level cache.
namespace kestrelink::bench {

// Reads (sums) the eviction buffer of BenchSettings().evictBytes, split over
// `threads` OpenMP threads so that the private caches of every core the
// timed frame used are swept too. Allocated and touched on first use.
void EvictCaches(int threads);

}  // namespace kestrelink::bench
