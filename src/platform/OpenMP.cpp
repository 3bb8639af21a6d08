#include "platform/OpenMP.h"

#include <dlfcn.h>
#include <omp.h>

#include <algorithm>
#include <atomic>

namespace kestrelink::platform {
namespace {

std::atomic<int>& TeamSetting() {
  static std::atomic<int> team{omp_get_max_threads()};
  return team;
}

using BlockTimeFn = void (*)(int);

BlockTimeFn FindBlockTime() {
  return reinterpret_cast<BlockTimeFn>(dlsym(RTLD_DEFAULT, "kmp_set_blocktime"));
}

}  // namespace

int TeamSize() {
  return std::clamp(TeamSetting().load(std::memory_order_relaxed), 1, kMaxTeamSize);
}

void SetTeamSize(int threads) {
  TeamSetting().store(threads, std::memory_order_relaxed);
  omp_set_num_threads(TeamSize());
}

int MeasureTeamSize() {
  int measured = 1;
#pragma omp parallel num_threads(TeamSize())
  {
#pragma omp master
    measured = omp_get_num_threads();
  }
  return measured;
}

void SetBlockTimeZero() {
  static const BlockTimeFn blockTime = FindBlockTime();
  if (blockTime) blockTime(0);
}

}  // namespace kestrelink::platform
