#include "primitives/Variant.h"

#include <atomic>

#include "platform/CpuFeatures.h"
#include "primitives/CpuDispatch.h"

namespace kestrelink {
namespace {

CpuVariant DetectVariant() {
  const auto& f = platform::GetCpuFeatures();
  if (f.avx512f && f.avx512bw && f.avx512vl && f.avx2) return kVariantAVX512;
  if (f.avx2) return kVariantAVX2;
  if (f.ssse3) return kVariantSSSE3;
  if (f.sse2) return kVariantSSE2;
  return kVariantPortable;
}

std::atomic<int> g_forced{kVariantCount};

}  // namespace

CpuVariant MachineVariant() {
  static const CpuVariant machine = DetectVariant();
  return machine;
}

CpuVariant ActiveVariant() {
  const int forced = g_forced.load(std::memory_order_relaxed);
  return forced < kVariantCount ? CpuVariant(forced) : DispatchedVariant();
}

void ForceVariant(CpuVariant variant) {
  int v = variant;
  if (v < kVariantCount && v > MachineVariant()) v = MachineVariant();
  if (v < 0) v = kVariantPortable;
  g_forced.store(v, std::memory_order_relaxed);
}

const char* VariantName(CpuVariant variant) {
  switch (variant) {
    case kVariantPortable: return "portable";
    case kVariantSSE2: return "sse2";
    case kVariantSSSE3: return "ssse3";
    case kVariantAVX2: return "avx2";
    case kVariantAVX512: return "avx512";
    default: return "machine";
  }
}

}  // namespace kestrelink
