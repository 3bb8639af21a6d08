#include "harness/BenchSettings.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <strings.h>

#include "primitives/Variant.h"

namespace kestrelink::bench {
namespace {

Settings ReadSettings() {
  Settings s;
  const char* quick = std::getenv("KESTRELINK_BENCH_QUICK");
  if (quick && *quick && std::strcmp(quick, "0") != 0) {
    s.quick = true;
    s.width = 320;
    s.height = 240;
    s.repetitions = 3;
    s.warmUpFrames = 1;
    s.hotMinSeconds = 0.005;
    s.coldFrames = 1;
    s.evictBytes = size_t(32) << 20;
  }
  if (const char* size = std::getenv("KESTRELINK_BENCH_SIZE")) {
    unsigned w = 0, h = 0;
    if (std::sscanf(size, "%ux%u", &w, &h) == 2 && w > 0 && h > 0) {
      s.width = w;
      s.height = h;
    } else {
      std::fprintf(stderr, "KESTRELINK_BENCH_SIZE=%s is not WxH; keeping %ux%u\n", size, s.width, s.height);
    }
  }
  if (const char* seconds = std::getenv("KESTRELINK_BENCH_SECONDS")) {
    const double value = std::atof(seconds);
    if (value > 0)
      s.hotMinSeconds = value;
    else
      std::fprintf(stderr, "KESTRELINK_BENCH_SECONDS=%s is not a positive number; keeping %g\n", seconds,
                   s.hotMinSeconds);
  }
  return s;
}

}  // namespace

const Settings& BenchSettings() {
  static const Settings settings = ReadSettings();
  return settings;
}

bool ApplyVariantSetting() {
  const char* name = std::getenv("KESTRELINK_BENCH_VARIANT");
  if (!name || !*name) return true;
  for (int v = kVariantPortable; v < kVariantCount; ++v) {
    if (strcasecmp(name, VariantName(CpuVariant(v))) == 0) {
      ForceVariant(CpuVariant(v));
      return true;
    }
  }
  std::fprintf(stderr, "KESTRELINK_BENCH_VARIANT=%s is not a kernel variant\n", name);
  return false;
}

}  // namespace kestrelink::bench
