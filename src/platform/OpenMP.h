#pragma once
// The one door to the OpenMP runtime: the process-wide team size that every
// row loop uses, and the block time.
namespace kestrelink::platform {

// Team size for the library's parallel regions, shared by the whole process.
// Starts at the runtime's default (OMP_NUM_THREADS, else the core count).
int TeamSize();

// Sets the process-wide team size. The value is kept as given; regions use it
// limited to 1 .. kMaxTeamSize so that a stray setting can't stop the process.
void SetTeamSize(int threads);
inline constexpr int kMaxTeamSize = 256;

// Number of threads a parallel region of the library gets now, measured by
// entering one and letting the master thread count.
int MeasureTeamSize();

// Workers sleep at once when a region ends. Calls the runtime's
// kmp_set_blocktime(0) where it has one; does nothing under libgomp.
void SetBlockTimeZero();

}  // namespace kestrelink::platform
