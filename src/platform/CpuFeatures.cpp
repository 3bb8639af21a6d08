#include "platform/CpuFeatures.h"

#include <cpuid.h>

namespace kestrelink::platform {
namespace {

uint64_t ReadXcr0() {
  uint32_t lo = 0, hi = 0;
  __asm__ volatile("xgetbv" : "=a"(lo), "=d"(hi) : "c"(0));
  return (uint64_t(hi) << 32) | lo;
}

CpuFeatures Detect() {
  CpuFeatures f;
  unsigned a = 0, b = 0, c = 0, d = 0;
  if (!__get_cpuid(0, &a, &b, &c, &d)) return f;
  const unsigned maxLeaf = a;
  if (!__get_cpuid(1, &a, &b, &c, &d)) return f;
  f.detected = true;
  const bool mmx = d & (1u << 23), sse = d & (1u << 25);
  f.sse2 = d & (1u << 26);
  f.sse3 = c & (1u << 0);
  f.ssse3 = c & (1u << 9);
  f.fma = c & (1u << 12);
  f.sse41 = c & (1u << 19);
  f.sse42 = c & (1u << 20);
  f.movbe = c & (1u << 22);
  const bool aes = c & (1u << 25), clmul = c & (1u << 1);
  const bool osxsave = c & (1u << 27);
  f.avx = c & (1u << 28);
  uint64_t xcr0 = osxsave ? ReadXcr0() : 0;
  f.osAvx = f.avx && (xcr0 & 0x6) == 0x6;
  f.osAvx512 = f.osAvx && (xcr0 & 0xE0) == 0xE0;
  if (maxLeaf >= 7) {
    __cpuid_count(7, 0, a, b, c, d);
    f.avx2 = f.osAvx && (b & (1u << 5));
    f.bmi2 = b & (1u << 8);
    f.avx512f = f.osAvx512 && (b & (1u << 16));
    f.avx512dq = f.osAvx512 && (b & (1u << 17));
    f.avx512bw = f.osAvx512 && (b & (1u << 30));
    f.avx512vl = f.osAvx512 && (b & (1u << 31));
    f.avx512vbmi = f.osAvx512 && (c & (1u << 1));
    f.avx512vnni = f.osAvx512 && (c & (1u << 11));
  }
  f.fma = f.fma && f.osAvx;
  f.mask = (mmx ? 1u : 0) | (sse ? 2u : 0) | (f.sse2 ? 4u : 0) | (f.sse3 ? 8u : 0) |
           (f.ssse3 ? 16u : 0) | (f.movbe ? 32u : 0) | (f.sse41 ? 64u : 0) |
           (f.sse42 ? 128u : 0) | (f.avx ? 256u : 0) | (f.osAvx ? 512u : 0) |
           (aes ? 1024u : 0) | (clmul ? 2048u : 0) | (f.avx2 ? 32768u : 0);
  return f;
}

}  // namespace

const CpuFeatures& GetCpuFeatures() {
  static const CpuFeatures features = Detect();
  return features;
}

}  // namespace kestrelink::platform
